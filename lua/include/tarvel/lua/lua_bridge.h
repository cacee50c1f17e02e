#pragma once

#include <tarvel/lua/lua_error.h>
#include <tarvel/lua/lua_export.h>
#include <tarvel/lua/lua_value.h>

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

// Not for hosts; it may change with every version. What the templates of the other headers are made
// of: functions of the library that take and give single values.

namespace tarvel::lua {

class LuaVM;

namespace bridge {

struct Interpreter;  // never defined: one interpreter

// A value inside an interpreter; what its words mean is the interpreter's. The tags of a few kinds
// are known here, so that these cross without a call.
struct RawValue {
  static constexpr std::uint64_t kNil = 0;
  static constexpr std::uint64_t kInteger = 3;
  static constexpr std::uint64_t kFloat = 4;
  static constexpr std::uint64_t kTable = 6;

  // Word by word, as the interpreter stores them: a load of both would have to wait for the stores.
  static RawValue load(const std::byte* place) noexcept {
    RawValue value;
    std::memcpy(&value.tag, place, sizeof(std::uint64_t));
    std::memcpy(&value.payload, place + sizeof(std::uint64_t), sizeof(std::uint64_t));
    return value;
  }
  void store(std::byte* place) const noexcept {
    std::memcpy(place, &tag, sizeof(std::uint64_t));
    std::memcpy(place + sizeof(std::uint64_t), &payload, sizeof(std::uint64_t));
  }

  std::uint64_t tag;
  std::uint64_t payload;
};

// The address of its `key` stands for a class of the host.
template <class T>
struct ClassKey {
  static inline const char key = 0;
};

// The fields of a struct that crosses.
class TARVELLUA_API RecordNames {
 public:
  RecordNames(const char* const* names, std::size_t count) noexcept;

  const char* const* const names;
  const std::size_t count;
  const std::size_t number;  // tells the records of a process apart
};

// A conversion under way: why a value is not of the type that was asked for, and where, built from
// the inside out; and what was copied. A table that stands in many places is copied as often, so
// copies out of an interpreter count as its memory until this is gone.
class TARVELLUA_API Problem {
 public:
  Problem() = default;
  // Each returns false, which conversions return on failure.
  bool expected(std::string_view what, const std::string& got);
  bool say(std::string text);
  bool unknownField(std::string_view name);
  // The problem is in a part of the value.
  bool inField(std::string_view name);
  bool inElement(std::size_t number);  // from 1
  // Goes into a table; says "nested too deeply" when there is no end to it.
  template <class Source>
  bool enter(const Source& table) {
    table.countCopy();
    return ++depth_ <= kShallow || enterDeep();
  }
  void leave() noexcept { --depth_; }
  // Something of `source` is about to be copied into so many bytes. Throws what ends the run.
  template <class Source>
  void copyItems(const Source& source, std::size_t bytes) {
    if (bytes > credit_) return source.charge(*this, bytes);
    credit_ -= static_cast<std::uint32_t>(bytes);
  }
  template <class Source>
  void copyText(const Source& source, std::size_t bytes) {
    if (bytes <= kShortText) return;
    copyItems(source, bytes);
    if (bytes >= kTextPerStep) source.countWork(bytes / kTextPerStep);
  }

  // "listeners[2].port: a whole number expected, got a string".
  std::string message() const;
  LuaError toError() const;

 private:
  friend class ScriptValue;
  static constexpr int kShallow = 16;               // levels for which there is always room
  static constexpr std::size_t kShortText = 15;     // bytes that std::string has room for in itself
  static constexpr std::size_t kTextPerStep = 128;  // bytes

  // Most values have none.
  struct State;
  struct StateRelease {
    void operator()(State* state) const noexcept;
  };

  bool enterDeep();
  bool inPart(std::string part);
  State& state();
  void charge(Interpreter* interpreter, std::size_t bytes);
  LuaValue toPublic(Interpreter* interpreter, RawValue value);

  std::unique_ptr<State, StateRelease> state_;
  int depth_ = 0;
  std::uint32_t credit_ = 4096;  // bytes that are not worth counting
};

// A value of a script, borrowed.
class TARVELLUA_API ScriptValue {
 public:
  ScriptValue(Interpreter* interpreter, RawValue raw) noexcept
      : interpreter_(interpreter), raw_(raw) {}

  RawValue raw() const noexcept { return raw_; }
  bool isNil() const noexcept { return raw_.tag == RawValue::kNil; }
  // False where it is none.
  bool read(bool& out) const noexcept { return readBoolean(raw_, out); }
  bool read(std::int64_t& out) const noexcept {  // also a whole float
    if (raw_.tag != RawValue::kInteger) return readInteger(raw_, out);
    out = std::bit_cast<std::int64_t>(raw_.payload);
    return true;
  }
  bool read(double& out) const noexcept {
    if (raw_.tag == RawValue::kFloat) {
      out = std::bit_cast<double>(raw_.payload);
      return true;
    }
    out = static_cast<double>(std::bit_cast<std::int64_t>(raw_.payload));
    return raw_.tag == RawValue::kInteger;
  }
  bool read(std::string_view& out) const noexcept { return readText(raw_, out); }
  bool read(LuaFunction& out) const;
  // Throws std::runtime_error for what cannot cross.
  LuaValue toPublic(Problem& problem) const { return problem.toPublic(interpreter_, raw_); }
  // The object of a host's class; null where it is none.
  void* address(const void* classKey) const noexcept;
  std::shared_ptr<void> object(const void* classKey) const;
  std::string className(const void* classKey) const;

  bool isTable() const noexcept { return raw_.tag == RawValue::kTable; }
  // A table is about to be copied: work that counts, because the same table may stand in a value
  // any number of times. Throws what ends the run.
  void countCopy() const;
  // The memory and the work that a copy takes.
  void charge(Problem& problem, std::size_t bytes) const { problem.charge(interpreter_, bytes); }
  void countWork(std::size_t steps) const;
  bool isSequence() const noexcept;  // the keys 1 to length and no others
  std::size_t length() const noexcept;
  ScriptValue element(std::size_t number) const noexcept;  // from 1
  // Steps through a table, from cursor 0 on. False at the end.
  bool next(std::size_t& cursor, ScriptValue& key, ScriptValue& value) const noexcept;
  // The values under a record's keys, which are as many as `names` has; borrowed from the table.
  template <std::size_t Count>
  class Fields {
   public:
    Fields(const ScriptValue& table, const RecordNames& names) : interpreter_(table.interpreter_) {
      table.readFields(names, values_);
    }
    ScriptValue operator[](std::size_t number) const noexcept {
      return {interpreter_, values_[number]};
    }

   private:
    Interpreter* interpreter_;
    RawValue values_[Count > 0 ? Count : 1];
  };
  // The first key that is not among them, as text; false where there is none.
  bool findOther(const RecordNames& names, std::string& key) const;

  // "nil", "a string", "4.5".
  std::string description() const { return describe(raw_); }

 private:
  // Take the value in registers, so that it need not stand in memory.
  static bool readBoolean(RawValue raw, bool& out) noexcept;
  static bool readInteger(RawValue raw, std::int64_t& out) noexcept;
  static bool readText(RawValue raw, std::string_view& out) noexcept;
  static std::string describe(RawValue raw);
  void readFields(const RecordNames& names, RawValue* out) const;

  Interpreter* interpreter_;
  RawValue raw_;
};

// Takes the values that a host gives, one after the other, into consecutive places. The functions
// throw std::exception for what the interpreter cannot take.
class TARVELLUA_API ScriptSink {
 public:
  ScriptSink(const ScriptSink&) = delete;
  ScriptSink& operator=(const ScriptSink&) = delete;

  void nil() { putPlain({RawValue::kNil, 0}); }
  void boolean(bool value);
  void integer(std::int64_t value) {
    putPlain({RawValue::kInteger, std::bit_cast<std::uint64_t>(value)});
  }
  void number(double value) { putPlain({RawValue::kFloat, std::bit_cast<std::uint64_t>(value)}); }
  void text(std::string_view value);
  void function(const LuaFunction& value);
  void any(const LuaValue& value);
  void object(const void* classKey, const std::shared_ptr<void>& value);
  // A table; each value that follows is put into it by one of the next two, until endTable.
  void beginTable(std::size_t elements, std::size_t members);
  void endElement(std::size_t number);  // from 1
  void endMember(std::string_view key);
  void endTable() noexcept { --depth_; }
  // The values of a record's fields follow, and become a table.
  void beginRecord();
  void endRecord(const RecordNames& names);

 protected:
  explicit ScriptSink(Interpreter* interpreter) noexcept : interpreter_(interpreter) {}
  ~ScriptSink() = default;

  Interpreter* const interpreter_;
  std::byte* next_ = nullptr;
  std::byte* end_ = nullptr;  // of the places that are known to be there
  int depth_ = 0;

 private:
  static constexpr int kShallow = 16;  // levels for which there is always room

  // Not checked for room.
  void put(RawValue value) noexcept {
    value.store(next_);
    next_ += sizeof(RawValue);
  }
  // Of what owns nothing.
  void putPlain(RawValue value) {
    if (next_ == end_) [[unlikely]]
      return putBehindRoom(value);
    put(value);
  }
  void putBehindRoom(RawValue value);
  void makeRoom();
  void enter();
};

// One call of a script's function, from the arguments to the results.
class TARVELLUA_API Call : public ScriptSink {
 public:
  // What is called: a function, what stands under a name, or nothing. What is wrong with it shows
  // in run().
  Call(LuaVM& vm, const LuaFunction& function) noexcept;
  Call(LuaVM& vm, std::string_view name) noexcept;
  explicit Call(LuaVM& vm) noexcept;
  ~Call();

  // Throws what ends the run, in forms that only failure() understands.
  void run();
  // Instead of a run: the one result is a script that was read, as a function; throws as run().
  void load(std::string_view source, std::string_view chunkName,
            std::span<const std::string_view> parameters);
  // Instead of a run: the value of a global or of a field becomes the one result, or what was put
  // into this becomes its value.
  void readGlobal(std::string_view name);
  void storeGlobal(std::string_view name);
  std::size_t count() const noexcept;
  // nil where there are fewer
  ScriptValue result(std::size_t index) const noexcept {
    return ScriptValue(interpreter_, rawResult(index));
  }
  LuaValue allResults() const;
  // What the exception in flight is for the host. Passes on what is none of ours and no
  // std::exception. Whatever the call still held is released.
  LuaError failure();

 private:
  struct State;
  State& state() noexcept;
  const State& state() const noexcept;
  RawValue rawResult(std::size_t index) const noexcept;
  [[noreturn]] void failNotCallable() const;

  alignas(std::max_align_t) std::byte state_[208];
};

// What a function of the host was called with.
class TARVELLUA_API Arguments {
 public:
  std::size_t count() const noexcept { return count_; }
  ScriptValue at(std::size_t index) const noexcept {
    return ScriptValue(interpreter_, RawValue::load(first_ + index * sizeof(RawValue)));
  }
  LuaVM& vm() const noexcept { return *vm_; }
  ScriptSink& results() noexcept { return *results_; }

  // Of arguments behind the first `before` ones, which are there.
  void requireCount(std::size_t before, std::size_t least, std::size_t most) const {
    if (count_ - before < least || count_ - before > most) failCount(least, most);
  }
  // All arguments from `index` on.
  std::vector<LuaValue> rest(std::size_t index) const;
  // The receiver of a method.
  void* receiver(const void* classKey) const;
  // Raises the script error for an argument that is none of what `expected` says (" expects a
  // table"; null for an object of a class), or for one of that kind with a problem. Scripts see it
  // as argument `number`, counted from 1; 0 for the value of an assignment.
  [[noreturn]] void fail(std::size_t index, std::size_t number, const char* expected, bool isOfKind,
                         const Problem& problem) const;

 private:
  friend class ArgumentsAccess;
  [[noreturn]] void failCount(std::size_t least, std::size_t most) const;

  const std::byte* first_ = nullptr;
  std::size_t count_ = 0;
  Interpreter* interpreter_ = nullptr;
  LuaVM* vm_ = nullptr;
  ScriptSink* results_ = nullptr;
  const std::string* name_ = nullptr;
  std::uint32_t site_ = 0;
};

// A function of the host, ready to be called by scripts.
class TARVELLUA_API Callable {
 public:
  Callable() = default;
  virtual ~Callable();
  Callable(const Callable&) = delete;
  Callable& operator=(const Callable&) = delete;
  virtual void call(Arguments& arguments) = 0;
};

}  // namespace bridge

}  // namespace tarvel::lua
