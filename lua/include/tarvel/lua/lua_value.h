#pragma once

#include <tarvel/lua/lua_export.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <unordered_map>
#include <variant>
#include <vector>

// Values as a host sees them when it does not know their types beforehand. Where it does, see
// lua_conversion.h: most hosts need no LuaValue at all.

namespace tarvel::lua {

// A function of a script or of the library that crossed to the host. The host can name it, call it
// (LuaVM::call), keep it, and hand it back to the interpreter it came from, which then sees the
// very same function. It keeps the function alive. It may outlive its LuaVM; then it only has its
// name. Used, and destroyed, by the thread that uses its LuaVM, also when that is gone.
class TARVELLUA_API LuaFunctionHandle : public std::enable_shared_from_this<LuaFunctionHandle> {
 public:
  ~LuaFunctionHandle();
  LuaFunctionHandle(const LuaFunctionHandle&) = delete;
  LuaFunctionHandle& operator=(const LuaFunctionHandle&) = delete;

  // The name under which the function was declared or bound; "<anonymous>" for a function
  // expression.
  std::string name() const;

  // What the handle stands for; private to the interpreter.
  struct TARVELLUA_INTERNAL Target;
  explicit LuaFunctionHandle(std::unique_ptr<Target> target);
  const Target& target() const { return *target_; }

 private:
  std::unique_ptr<Target> target_;
};

// A function as a host holds it; an empty one stands for none and cannot be called.
using LuaFunction = std::shared_ptr<LuaFunctionHandle>;

// A value that crosses between host and interpreter: plain data, and functions by handle. Copies
// share sequences, objects and function handles. Converting a script's value copies it: later
// changes on one side are not seen on the other.
struct TARVELLUA_API LuaValue {
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
  explicit LuaValue(int integer) : LuaValue(std::int64_t{integer}) {}
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

}  // namespace tarvel::lua
