#include <mujs.h>

#include <string>

#include "js_script.h"
#include "rows.h"

namespace embedding {

namespace {

void addNumbers(js_State* engine) {
  js_pushnumber(engine, js_tonumber(engine, 1) + js_tonumber(engine, 2));
}

void passText(js_State* engine) { js_pushstring(engine, js_tostring(engine, 1)); }

double fieldOf(js_State* engine, const char* name) {
  js_getproperty(engine, -1, name);
  const double value = js_tonumber(engine, -1);
  js_pop(engine, 1);
  return value;
}

void setField(js_State* engine, const char* name, double value) {
  js_pushnumber(engine, value);
  js_setproperty(engine, -2, name);
}

// Pushes what js_ref named, and the receiver.
void begin(js_State* engine, const char* reference) {
  js_getregistry(engine, reference);
  js_pushundefined(engine);
}

Engine makeMuJs() {
  js_State* const engine = js_newstate(nullptr, nullptr, 0);
  js_newcfunction(engine, addNumbers, "addNumbers", 2);
  js_setglobal(engine, "addNumbers");
  js_newcfunction(engine, passText, "passText", 1);
  js_setglobal(engine, "passText");
  js_dostring(engine, kJavaScript);
  const auto get = [engine](const char* name) {
    js_getglobal(engine, name);
    return js_ref(engine);
  };
  Engine rows;
  rows.name = "MuJS";
  const char* const nothing = get("nothing");
  const char* const add = get("add");
  const char* const move = get("move");
  const std::string text =
      "long = function() {\n" + longScript("function f", "  a = a + 1", "}") + "}";
  js_dostring(engine, text.c_str());
  const char* const prepared = get("long");
  rows.rows[kNothing] = [=](long n) {
    for (long i = 0; i < n; ++i) {
      begin(engine, nothing);
      js_pcall(engine, 0);
      js_pop(engine, 1);
    }
  };
  rows.rows[kAdd] = [=](long n) {
    double sum = 0;
    for (long i = 0; i < n; ++i) {
      begin(engine, add);
      js_pushnumber(engine, sum);
      js_pushnumber(engine, 2.5);
      js_pcall(engine, 2);
      sum += js_tonumber(engine, -1);
      js_pop(engine, 1);
    }
  };
  rows.rows[kAddByName] = [=](long n) {
    double sum = 0;
    for (long i = 0; i < n; ++i) {
      js_getglobal(engine, "add");
      js_pushundefined(engine);
      js_pushnumber(engine, sum);
      js_pushnumber(engine, 2.5);
      js_pcall(engine, 2);
      sum += js_tonumber(engine, -1);
      js_pop(engine, 1);
    }
  };
  rows.rows[kRecord] = [=](long n) {
    Record record;
    for (long i = 0; i < n; ++i) {
      begin(engine, move);
      js_newobject(engine);
      setField(engine, "x", record.x);
      setField(engine, "y", record.y);
      setField(engine, "z", record.z);
      js_pcall(engine, 1);
      record = {fieldOf(engine, "x"), fieldOf(engine, "y"), fieldOf(engine, "z")};
      js_pop(engine, 1);
    }
  };
  const auto loop = [engine](const char* function) {
    return [engine, function](long n) {
      begin(engine, function);
      js_pushnumber(engine, static_cast<double>(n));
      js_pcall(engine, 1);
      js_pop(engine, 1);
    };
  };
  rows.rows[kHostNumbers] = loop(get("numbers"));
  rows.rows[kHostText] = loop(get("texts"));
  rows.rows[kPrepared] = [=](long n) {
    for (long i = 0; i < n; ++i) {
      begin(engine, prepared);
      js_pcall(engine, 0);
      js_pop(engine, 1);
    }
  };
  rows.end = [engine] { js_freestate(engine); };
  return rows;
}

const Registration registration(makeMuJs);

}  // namespace

}  // namespace embedding
