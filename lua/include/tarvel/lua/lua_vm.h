#pragma once

#include <tarvel/lua/lua_error.h>
#include <tarvel/lua/lua_export.h>
#include <tarvel/lua/lua_options.h>
#include <tarvel/lua/lua_value.h>
#include <tarvel/lua/lua_version.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

// TarvelLua: an interpreter for a small dialect of Lua, to be embedded in a C++ program.
//
//   tarvel::lua::LuaVM vm;
//   vm.setGlobal("limit", tarvel::lua::LuaValue(std::int64_t{10}));
//   tarvel::lua::LuaResult result = vm.runScriptString("return limit * 2", "doubling");
//   if (!result.ok) std::cerr << result.error << '\n';       // "doubling:1: ..."
//   else std::cout << result.value.toString() << '\n';       // 20
//
// Threads: a LuaVM, and every LuaFunctionHandle that came out of it, is used by one thread at a
// time; destroying a handle is a use, also after its LuaVM is gone. A run ends on the thread that
// began it. Two LuaVM objects share nothing and may run on two threads at once. The depth of calls
// that a script may reach follows from the stack of the thread that runs it; exceeding it is a
// script error ("stack overflow"), never a crash.

namespace tarvel::lua {

// One interpreter with its globals and its standard library.
class TARVELLUA_API LuaVM {
 public:
  // A function of the host that scripts can call. It gets copies of the arguments and returns one
  // value. What it throws becomes a script error with the exception's text if it is a
  // std::exception; any other exception passes through pcall and runScriptString to the host.
  //
  // It may use the LuaVM: set globals, bind functions, start runs, which have a result, an error
  // and an os.exit of their own; it may even destroy it. What it holds is destroyed when the last
  // script that can reach the function gives it up, perhaps in the middle of an expression, or when
  // the interpreter ends. Those destructors may use the LuaVM, too; near the end of the interpreter
  // their runs fail with "the interpreter has ended".
  using HostFunction = std::function<LuaValue(LuaVM&, const std::vector<LuaValue>&)>;

  // Throws std::bad_alloc when there is no memory for an interpreter, and std::logic_error as
  // setLimits does.
  LuaVM();
  explicit LuaVM(const LuaOptions& options);
  // Ends the interpreter: writes out and closes every file that is still open, and releases
  // everything that only this interpreter holds, circles of script objects included. What handles
  // of functions hold stays valid. A LuaVM may be destroyed by a function that its own script is
  // calling; the interpreter then ends when that run has ended.
  ~LuaVM();
  LuaVM(const LuaVM&) = delete;
  LuaVM& operator=(const LuaVM&) = delete;

  // Sets a global variable, replacing its value. The interpreter takes a copy. Throws
  // std::runtime_error "unsupported TarvelLua value" for a function of another interpreter, for a
  // value that is nested too deeply or contains itself, or where a `type` is not the index of its
  // `data`.
  void setGlobal(const std::string& name, const LuaValue& value);

  // Makes `function` the value of the global `name`. The interpreter keeps a copy for as long as a
  // script can reach it. Calling an empty one is a script error.
  void bindFunction(const std::string& name, HostFunction function);

  // Runs `source` as one chunk; `chunkName` only labels messages. A script's failure comes back in
  // the result (ok == false), never as an exception. Globals stay for the next run, top-level
  // locals end with this one. May be called again from a host function that the script is calling.
  // Throws only what a host's function throws that is no std::exception.
  LuaResult runScriptString(const std::string& source, const std::string& chunkName);

  // For the runs that begin from now on. Throws std::logic_error for steps, time or stop in an
  // interpreter that is not supervised.
  void setLimits(const LuaLimits& limits);
  LuaUsage usage() const noexcept;

  // The version of the library that is linked. Differs from TARVELLUA_VERSION, for which the host
  // was compiled, where a shared library was replaced since.
  static const char* version() noexcept;

  class TARVELLUA_INTERNAL Impl;

 private:
  explicit LuaVM(Impl* impl) noexcept;

  Impl* impl_;  // lives as long as this, and as the runs that are active
};

}  // namespace tarvel::lua
