#pragma once

#include <tarvel/lua/lua_class.h>
#include <tarvel/lua/lua_conversion.h>
#include <tarvel/lua/lua_error.h>
#include <tarvel/lua/lua_export.h>
#include <tarvel/lua/lua_options.h>
#include <tarvel/lua/lua_record.h>
#include <tarvel/lua/lua_value.h>
#include <tarvel/lua/lua_version.h>

#include <concepts>
#include <cstddef>
#include <functional>
#include <initializer_list>
#include <memory>
#include <string>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

// TarvelLua: an interpreter for a small dialect of Lua, to be embedded in a C++ program.
//
//   tarvel::lua::LuaVM vm;
//   vm.bind("log", [](std::string_view text) { std::clog << text << '\n'; });
//   vm.setGlobal("limit", 10);
//   auto script = vm.load("log('doubling') return limit * factor", "doubling", {"factor"});
//   if (!script) return fail(script.error().toString());    // "doubling:1:9: ..."
//   auto product = vm.call<double>(*script, 2.5);
//   if (!product) return fail(product.error().toString());  // "doubling:1: ..."
//   std::cout << *product << '\n';                          // 25
//
// Threads: a LuaVM, and every LuaFunctionHandle that came out of it, is used by one thread at a
// time; destroying a handle is a use, also after its LuaVM is gone. A run ends on the thread that
// began it; only its LuaLimits::stop may be requested from elsewhere. Two LuaVM objects share
// nothing and may run on two threads at once. The depth of calls that a script may reach follows
// from the stack of the thread that runs it; exceeding it is a script error ("stack overflow"),
// never a crash.

namespace tarvel::lua {

// One interpreter with its globals and its standard library. Neither copied nor moved: a
// std::unique_ptr holds one that has to travel.
class TARVELLUA_API LuaVM {
 public:
  // A function of the host that scripts can call. It gets copies of the arguments and returns one
  // value. What it throws becomes a script error with the exception's text if it is a
  // std::exception; any other exception passes through pcall and runScriptString to the host.
  //
  // It may use the LuaVM: set globals, bind functions, start runs, which have a result, an error
  // and an os.exit of their own; it may even destroy it. It must not touch the LuaVM after it
  // called what may destroy it, which includes a script that reaches such a function. What it holds
  // is destroyed when the last script that can reach the function gives it up, perhaps in the
  // middle of an expression, or when the interpreter ends. Those destructors may use the LuaVM,
  // too; near the end of the interpreter their runs fail with "the interpreter has ended".
  using HostFunction = std::function<LuaValue(LuaVM&, const std::vector<LuaValue>&)>;

  // An interpreter that may do all that the process may (LuaOptions()), or what `options` say.
  // Throws std::bad_alloc when there is no memory for it, and std::logic_error as setLimits does.
  LuaVM();
  explicit LuaVM(const LuaOptions& options);
  // Ends the interpreter: writes out and closes every file that is still open, and releases
  // everything that only this interpreter holds, circles of script objects included. What handles
  // of functions hold stays valid. A LuaVM may be destroyed by a function that its own script is
  // calling; the interpreter then ends when that run has ended.
  ~LuaVM();
  LuaVM(const LuaVM&) = delete;
  LuaVM& operator=(const LuaVM&) = delete;

  // Sets a global variable, replacing its value; a point in the name is part of it. The interpreter
  // takes a copy. Throws std::bad_alloc where there is no memory for it, or where it would exceed
  // LuaLimits::memory, and std::runtime_error "unsupported TarvelLua value" for a function of
  // another interpreter, for a value that is nested too deeply or contains itself, or where a
  // `type` is not the index of its `data`.
  void setGlobal(const std::string& name, const LuaValue& value);

  // Makes `function` the value of the global `name`; a point in the name is part of it. The
  // interpreter keeps a copy for as long as a script can reach it. Calling an empty one is a script
  // error. `bind` below does the same for functions with parameters of their own types, and faster.
  void bindFunction(const std::string& name, HostFunction function);

  // Runs `source` as one chunk; `chunkName` only labels messages. A script's failure comes back in
  // the result (ok == false), never as an exception. Globals stay for the next run, top-level
  // locals end with this one. May be called again from a host function that the script is calling.
  // Reads the text each time; `load` is for what runs more than once. Throws only what a host's
  // function throws that is no std::exception.
  LuaResult runScriptString(const std::string& source, const std::string& chunkName);

  // In the names of all functions below a point leads through tables: "game.spawn" is the field
  // `spawn` of the global table `game`, which bind and setGlobal make where it is missing. Parts of
  // a name are strings: "list.1" is the field "1", not the first element. Types that cross are
  // listed in lua_conversion.h.

  // Gives scripts a function, with any parameters and result that cross:
  //
  //   vm.bind("distance", [](double x, double y) { return std::hypot(x, y); });
  //
  // Anything with one call operator, or a function pointer. Parameters are taken by value or by
  // const reference. Those that are std::optional may be missing at the end, or nil; a first
  // parameter LuaVM& is the interpreter; a last one const std::vector<LuaValue>& takes all further
  // arguments, while anywhere else it is an ordinary sequence.
  // A std::tuple is returned as several values. Wrong arguments are errors as those of the library
  // ("distance expects a numeric argument"); what is thrown is treated as for a HostFunction; both
  // carry the line of the call. The function is kept as that of bindFunction, but not copied.
  // Throws std::runtime_error where a part of the name but the last is no table.
  template <class F>
  void bind(std::string_view name, F function) {
    bindCallable(name, bridge::makeFunction(std::move(function)));
  }

  // Sets a global or a field, from any type that crosses but LuaValue, for which the setGlobal
  // above takes names without tables. Objects are std::shared_ptr<U> with a U that is not const; a
  // null pointer becomes nil. Throws as that and as bind.
  template <class T>
  requires(!std::same_as<T, LuaValue>) void setGlobal(std::string_view name, const T& value) {
    bridge::Call global(*this);
    bridge::Conversion<std::decay_t<const T>>::give(global, value);
    global.storeGlobal(name);
  }

  // The value of a global or a field, copied; nil where there is none, which is an error only for
  // types that cannot be nil.
  template <class T = LuaValue>
  LuaOutcome<T> getGlobal(std::string_view name);

  // Describes T to this interpreter; `name` stands in messages. May be called again, to say more.
  template <class T>
  LuaClass<T> defineClass(std::string_view name) {
    return LuaClass<T>(*this, findOrMakeClass(&bridge::ClassKey<T>::key, name));
  }

  // Reads a script without running it. The result is a function of this interpreter, to be called
  // any number of times; `parameters` are locals of the script, nil where there are fewer
  // arguments. `chunkName` only labels messages.
  //
  //   auto rule = vm.load("return order.total > 100", "rule 7", {"order"});
  //   bool applies = vm.call<bool>(*rule, order).value();
  LuaOutcome<LuaFunction> load(std::string_view source, std::string_view chunkName,
                               std::initializer_list<std::string_view> parameters = {});

  // Calls a function of a script or of the library, by handle or by name, with arguments that
  // cross. R is what it returns: void ignores all values, std::tuple takes several, LuaValue takes
  // them as LuaResult::value does. A std::string_view would dangle and does not compile; do not use
  // one as the member of a record that is a result either. An error, os.exit, or a result that is
  // no R comes back in the outcome; throws only what a host's function throws that is no
  // std::exception. May be called again from a function that the script is calling.
  template <class R = LuaValue, class... Arguments>
  LuaOutcome<R> call(const LuaFunction& function, const Arguments&... arguments) {
    return callTarget<R>(function, arguments...);
  }
  template <class R = LuaValue, class... Arguments>
  LuaOutcome<R> call(std::string_view name, const Arguments&... arguments) {
    return callTarget<R>(name, arguments...);
  }

  // Steps, time and stop for the runs that begin from now on, memory and stack from now on.
  // Replaces all of them, those of the LuaOptions included: what `limits` does not set has no bound
  // any more. To change one, keep the LuaLimits, change it there, and set it again. Throws
  // std::logic_error for steps, time or stop in an interpreter that is not supervised.
  void setLimits(const LuaLimits& limits);
  LuaUsage usage() const noexcept;

  // The version of the library that is linked, "major.minor.patch". Differs from TARVELLUA_VERSION,
  // for which the host was compiled, where a shared library was replaced since.
  static const char* version() noexcept;

  class TARVELLUA_INTERNAL Impl;

 private:
  friend class bridge::Call;

  explicit LuaVM(Impl& impl) noexcept;

  void bindCallable(std::string_view name, std::shared_ptr<bridge::Callable> function);
  bridge::ClassInInterpreter* findOrMakeClass(const void* key, std::string_view name);

  template <class R, class Target, class... Arguments>
  LuaOutcome<R> callTarget(const Target& target, const Arguments&... arguments);

  Impl* impl_;  // lives as long as this, and as the runs that are active
};

// ---- Templates; nothing for hosts from here on --------------------------------------------------

namespace bridge {

// What a call returned, as an R.
template <class R>
struct Results {
  static_assert(!isView<R>, "a view would dangle: ask for a std::string");
  static LuaOutcome<R> take(const Call& call) {
    Problem problem;
    R result{};
    if (!Conversion<R>::take(call.result(0), result, problem)) return problem.toError();
    return result;
  }
};

template <>
struct Results<void> {
  static LuaOutcome<void> take(const Call&) { return {}; }
};

template <>
struct Results<LuaValue> {
  static LuaOutcome<LuaValue> take(const Call& call) { return call.allResults(); }
};

template <class... T>
struct Results<std::tuple<T...>> {
  static_assert(!(isView<T> || ...), "a view would dangle: ask for a std::string");
  static LuaOutcome<std::tuple<T...>> take(const Call& call) {
    return takeAll(call, std::index_sequence_for<T...>());
  }

 private:
  template <std::size_t... I>
  static LuaOutcome<std::tuple<T...>> takeAll(const Call& call, std::index_sequence<I...>) {
    Problem problem;
    std::tuple<T...> results{};
    const auto takeOne = [&](std::size_t index, auto& result) {
      return Conversion<std::remove_cvref_t<decltype(result)>>::take(call.result(index), result,
                                                                     problem) ||
             problem.inElement(index + 1);
    };
    if (!(takeOne(I, std::get<I>(results)) && ...)) return problem.toError();
    return results;
  }
};

}  // namespace bridge

template <class R, class Target, class... Arguments>
LuaOutcome<R> LuaVM::callTarget(const Target& target, const Arguments&... arguments) {
  bridge::Call call(*this, target);
  try {
    (bridge::Conversion<std::decay_t<const Arguments>>::give(call, arguments), ...);
    call.run();
    return bridge::Results<R>::take(call);
  } catch (...) {
    return call.failure();
  }
}

template <class T>
LuaOutcome<T> LuaVM::getGlobal(std::string_view name) {
  static_assert(!bridge::isView<T>, "a view would dangle: ask for a std::string");
  bridge::Call call(*this);
  try {
    call.readGlobal(name);
    bridge::Problem problem;
    T value{};
    if (!bridge::Conversion<T>::take(call.result(0), value, problem)) {
      problem.inField(name);
      return problem.toError();
    }
    return value;
  } catch (...) {
    return call.failure();
  }
}

}  // namespace tarvel::lua
