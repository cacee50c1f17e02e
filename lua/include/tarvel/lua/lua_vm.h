#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <unordered_map>
#include <variant>
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

// A function of a script or of the library that crossed to the host. The host can name it, keep it,
// and hand it back to the interpreter it came from; the interpreter then sees the very same
// function. It may outlive its LuaVM; then it only has its name.
class LuaFunctionHandle : public std::enable_shared_from_this<LuaFunctionHandle> {
 public:
  ~LuaFunctionHandle();
  LuaFunctionHandle(const LuaFunctionHandle&) = delete;
  LuaFunctionHandle& operator=(const LuaFunctionHandle&) = delete;

  // The name under which the function was declared or bound; "<anonymous>" for a function
  // expression.
  std::string name() const;

  struct Target;  // what the handle stands for; private to the interpreter
  explicit LuaFunctionHandle(std::unique_ptr<Target> target);
  const Target& target() const { return *target_; }

 private:
  std::unique_ptr<Target> target_;
};

// A value that crosses between host and interpreter: plain data, and functions by handle. Copies
// share sequences, objects and function handles. Converting a script's value copies it: later
// changes on one side are not seen on the other.
struct LuaValue {
  using Sequence = std::vector<LuaValue>;
  using Object = std::unordered_map<std::string, LuaValue>;

  enum class Type : std::uint32_t {
    Nil = 0,
    Integer = 1,
    Float = 2,
    Boolean = 3,
    String = 4,
    // The keys 1 to n of a table that has no others. A table with a hole in it, or whose keys
    // above 64 were not set in ascending order, may come as an object.
    Sequence = 5,
    // Any other table; every key as text. Of two keys with one text, such as 1 and "1", the one
    // that `pairs` reaches last remains. On the way in, keys that are whole decimal integers become
    // integers; which one of several equal ones remains is not determined.
    Object = 6,
    Function = 7,
  };

  Type type = Type::Nil;  // always the index of the alternative that `data` holds
  std::variant<std::monostate, std::int64_t, double, bool, std::string, std::shared_ptr<Sequence>,
               std::shared_ptr<Object>, std::shared_ptr<LuaFunctionHandle>>
      data;

  LuaValue() = default;  // nil
  explicit LuaValue(std::int64_t integer);
  explicit LuaValue(double number);
  explicit LuaValue(bool boolean);
  explicit LuaValue(std::string text);
  explicit LuaValue(const char* text);
  explicit LuaValue(std::shared_ptr<Sequence> sequence);
  explicit LuaValue(std::shared_ptr<Object> object);
  explicit LuaValue(std::shared_ptr<LuaFunctionHandle> function);

  // A copy that fails for want of memory (std::bad_alloc) leaves the target as it was.
  LuaValue(const LuaValue& other);
  LuaValue(LuaValue&&) noexcept = default;
  LuaValue& operator=(const LuaValue& other);
  LuaValue& operator=(LuaValue&& other) noexcept;
  // Does not recurse, however deep sequences and objects are nested.
  ~LuaValue() {
    if (data.index() == static_cast<std::size_t>(Type::Sequence) ||
        data.index() == static_cast<std::size_t>(Type::Object)) {
      releaseContainer();
    }
  }

  // As `print` shows it: "{1, 2}" for a sequence, "{1: 5, name: x}" for an object (keys that are
  // integers first, in ascending order, then the others bytewise), "[function name]" for a
  // function. Throws std::runtime_error "value cannot be bridged out of TarvelLua" for a value that
  // is nested too deeply, such as one that contains itself, and "unsupported TarvelLua value" where
  // a `type` is not the index of its `data`.
  std::string toString() const;

 private:
  void releaseContainer() noexcept;  // of a sequence or an object
};

// What one run of a script came to. It owns what it holds and stays valid after the LuaVM is gone.
struct LuaResult {
  bool ok = false;  // the run finished without an error
  // What the script returned: nil, one value, or several as a table with the keys 1, 2, ...: a
  // sequence, or an object if there is a nil among them; nils at the end are lost.
  LuaValue value;
  // "chunk:line: message". The chunk is the one that was run, also where the failing function came
  // from another one; the line is that of the function's own text. Without chunk and line "value
  // cannot be bridged out of TarvelLua" when the script returned a file, an iterator, or a table
  // that contains itself. Empty on success, and where there was no memory even for the message.
  std::string error;
  bool exitRequested = false;  // the script called os.exit; `value` is then the code
  std::int32_t exitCode = 0;   // the code that it passed
};

// One interpreter with its globals and its standard library.
class LuaVM {
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

  // Throws std::bad_alloc when there is no memory for an interpreter.
  LuaVM();
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

  class Impl;

 private:
  explicit LuaVM(std::shared_ptr<Impl> impl) noexcept;

  std::shared_ptr<Impl> impl_;  // shared with the runs that are active
};

}  // namespace tarvel::lua
