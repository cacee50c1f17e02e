#include <duktape.h>

#include <string>

#include "js_script.h"
#include "rows.h"

namespace embedding {

namespace {

duk_ret_t addNumbers(duk_context* engine) {
  duk_push_number(engine, duk_require_number(engine, 0) + duk_require_number(engine, 1));
  return 1;
}

duk_ret_t passText(duk_context* engine) {
  duk_size_t length = 0;
  const char* const text = duk_require_lstring(engine, 0, &length);
  duk_push_lstring(engine, text, length);
  return 1;
}

double fieldOf(duk_context* engine, const char* name) {
  duk_get_prop_string(engine, -1, name);
  const double value = duk_require_number(engine, -1);
  duk_pop(engine);
  return value;
}

void setField(duk_context* engine, const char* name, double value) {
  duk_push_number(engine, value);
  duk_put_prop_string(engine, -2, name);
}

Engine makeDuktape() {
  duk_context* const engine = duk_create_heap_default();
  duk_push_c_function(engine, addNumbers, 2);
  duk_put_global_string(engine, "addNumbers");
  duk_push_c_function(engine, passText, 1);
  duk_put_global_string(engine, "passText");
  duk_eval_string_noresult(engine, kJavaScript);
  // The functions stay on the stack, each at an index of its own.
  const auto get = [engine](const char* name) {
    duk_get_global_string(engine, name);
    return duk_get_top_index(engine);
  };
  Engine rows;
  rows.name = "Duktape";
  const auto nothing = get("nothing");
  const auto add = get("add");
  const auto move = get("move");
  const auto numbers = get("numbers");
  const auto texts = get("texts");
  const std::string text = "(function() {\n" + longScript("function f", "  a = a + 1", "}") + "})";
  duk_eval_string(engine, text.c_str());
  const auto prepared = duk_get_top_index(engine);
  rows.rows[kNothing] = [=](long n) {
    for (long i = 0; i < n; ++i) {
      duk_dup(engine, nothing);
      duk_pcall(engine, 0);
      duk_pop(engine);
    }
  };
  rows.rows[kAdd] = [=](long n) {
    double sum = 0;
    for (long i = 0; i < n; ++i) {
      duk_dup(engine, add);
      duk_push_number(engine, sum);
      duk_push_number(engine, 2.5);
      duk_pcall(engine, 2);
      sum += duk_require_number(engine, -1);
      duk_pop(engine);
    }
  };
  rows.rows[kAddByName] = [=](long n) {
    double sum = 0;
    for (long i = 0; i < n; ++i) {
      duk_get_global_string(engine, "add");
      duk_push_number(engine, sum);
      duk_push_number(engine, 2.5);
      duk_pcall(engine, 2);
      sum += duk_require_number(engine, -1);
      duk_pop(engine);
    }
  };
  rows.rows[kRecord] = [=](long n) {
    Record record;
    for (long i = 0; i < n; ++i) {
      duk_dup(engine, move);
      duk_push_object(engine);
      setField(engine, "x", record.x);
      setField(engine, "y", record.y);
      setField(engine, "z", record.z);
      duk_pcall(engine, 1);
      record = {fieldOf(engine, "x"), fieldOf(engine, "y"), fieldOf(engine, "z")};
      duk_pop(engine);
    }
  };
  const auto loop = [engine](duk_idx_t function) {
    return [engine, function](long n) {
      duk_dup(engine, function);
      duk_push_number(engine, static_cast<double>(n));
      duk_pcall(engine, 1);
      duk_pop(engine);
    };
  };
  rows.rows[kHostNumbers] = loop(numbers);
  rows.rows[kHostText] = loop(texts);
  rows.rows[kPrepared] = [=](long n) {
    for (long i = 0; i < n; ++i) {
      duk_dup(engine, prepared);
      duk_pcall(engine, 0);
      duk_pop(engine);
    }
  };
  rows.end = [engine] { duk_destroy_heap(engine); };
  return rows;
}

const Registration registration(makeDuktape);

}  // namespace

}  // namespace embedding
