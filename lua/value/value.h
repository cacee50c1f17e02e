#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <type_traits>

namespace tarvel::lua::internal {

class Table;
struct Environment;
struct FunctionObject;
struct IteratorState;
struct NativeObject;
struct StringObject;

// The common start of everything that scripts share by reference. Counts are not atomic: an
// interpreter is used by one thread at a time and nothing counted belongs to two interpreters.
struct Object {
  std::uint64_t count = 1;
};

// What a script can tell apart. The numbers are part of the public value's layout.
enum class ValueKind : std::uint8_t {
  Nil = 0,
  Integer = 1,
  Float = 2,
  Boolean = 3,
  String = 4,
  Table = 5,
  Function = 6,
  UserData = 7,
  Iterator = 8,
};

// The tag word of a value. The order is what makes the common tests one comparison: false values
// are below kTrue, everything from kString on carries a counted object.
enum Tag : std::uint64_t {
  kNil = 0,
  kFalse = 1,
  kTrue = 2,
  kInteger = 3,
  kFloat = 4,
  kString = 5,
  kTable = 6,
  kFunction = 7,
  kUserData = 8,
  kIterator = 9,
  kEnvironment = 10,  // only in frame slots, never visible to a script
  // From here on: completions of statements, never stored anywhere (completion.h).
  kNormalCompletion = 16,
  kBreakCompletion = 17,
  kNoValuesCompletion = 18,
  kFailedCompletion = 19,
  kSeveralValuesCompletion = 20,
  // What a peek gives that would have had to run something; never stored either.
  kNotPeeked = 21,
  // What a native function gives in place of a result that takes its general form; never stored.
  kNotAnswered = 22,
};

// A value of the dialect: 16 bytes, trivially copyable, so that it travels in two registers. It
// owns nothing by itself: whoever stores a counted value calls retain() and later drop(), or holds
// it in an OwnedValue. The functions that return a Value say whether the result is owned by the
// caller or borrowed.
struct Value {
  std::uint64_t tag;
  union {
    std::int64_t integer;
    double number;
    Object* object;
    StringObject* string;
    Table* table;
    FunctionObject* function;
    NativeObject* native;
    IteratorState* iterator;
    Environment* environment;
    Value* values;  // kSeveralValuesCompletion
  };

  constexpr Value() noexcept : tag(kNil), integer(0) {}
  constexpr explicit Value(bool b) noexcept : tag(b ? kTrue : kFalse), integer(0) {}
  constexpr explicit Value(std::int64_t i) noexcept : tag(kInteger), integer(i) {}
  constexpr explicit Value(double d) noexcept : tag(kFloat), number(d) {}
  explicit Value(StringObject* s) noexcept : tag(kString), string(s) {}
  explicit Value(Table* t) noexcept : tag(kTable), table(t) {}
  explicit Value(FunctionObject* f) noexcept : tag(kFunction), function(f) {}
  explicit Value(NativeObject* n) noexcept : tag(kUserData), native(n) {}
  explicit Value(IteratorState* i) noexcept : tag(kIterator), iterator(i) {}
  explicit Value(Environment* e) noexcept : tag(kEnvironment), environment(e) {}

  static constexpr Value ofTag(std::uint64_t t) noexcept {
    Value v;
    v.tag = t;
    return v;
  }

  bool isNil() const noexcept { return tag == kNil; }
  bool isInteger() const noexcept { return tag == kInteger; }
  bool isFloat() const noexcept { return tag == kFloat; }
  bool isNumber() const noexcept { return tag == kInteger || tag == kFloat; }
  bool isString() const noexcept { return tag == kString; }
  bool isTable() const noexcept { return tag == kTable; }
  bool isFunction() const noexcept { return tag == kFunction; }
  bool isTruthy() const noexcept { return tag >= kTrue; }
  bool isCounted() const noexcept { return tag >= kString; }
  ValueKind kind() const noexcept;

  // The printable form. Deliberate: a whole float prints exactly like the integer, because scripts
  // see one kind of number.
  std::string toString() const;
  void appendTo(std::string& out) const;
  // The same of a number, into kLongestNumber bytes; returns its end. Needs no memory.
  char* writeNumber(char* out) const noexcept;
  static constexpr std::size_t kLongestNumber = 32;  // bytes

  // A float is truncated toward zero and saturates at the 64-bit limits, NaN gives 0. Any kind but
  // the two numbers throws std::runtime_error "value is not numeric".
  std::int64_t asInteger() const;
  double asFloat() const;
};

static_assert(sizeof(Value) == 16 && std::is_trivially_copyable_v<Value>);

// "nil", "number", "boolean", "string", "table", "function", "userdata" or "iterator".
const char* describeValueType(const Value& value) noexcept;

// Releases an object whose count has reached zero. Long chains are released without recursion.
void destroyObject(Value value) noexcept;

// What this thread is in the middle of destroying.
struct DestructionState {
  std::uint64_t waiting;  // objects that go next; 0 while nothing is under way
  bool isUnderWay;
  std::size_t interruptions;  // DestructionScopes that began in the middle
};
[[gnu::tls_model("initial-exec")]] inline constinit thread_local DestructionState destruction{};

// While it lives, objects are destroyed as soon as their last reference goes, also if this thread
// is already in the middle of destroying one. For what a destructor of the host's starts: scripts
// that run there expect to see their own files closed.
class DestructionScope {
 public:
  DestructionScope() noexcept
      : interrupts_(destruction.isUnderWay),
        isNested_(interrupts_ || destruction.interruptions > 0) {
    if (interrupts_) [[unlikely]] {
      outside_ = destruction;
      destruction = {0, false, outside_.interruptions + 1};
    }
  }
  ~DestructionScope() {
    if (interrupts_) [[unlikely]]
      destruction = outside_;
  }
  DestructionScope(const DestructionScope&) = delete;
  DestructionScope& operator=(const DestructionScope&) = delete;

  // Whether it, or a scope around it, began in the middle of destroying an object.
  bool isNested() const noexcept { return isNested_; }

 private:
  const bool interrupts_;
  const bool isNested_;
  DestructionState outside_;  // where it interrupts
};

inline Value retain(Value value) noexcept {
  if (value.isCounted()) ++value.object->count;
  return value;
}

inline void drop(Value value) noexcept {
  if (value.isCounted() && --value.object->count == 0) destroyObject(value);
}

// Empties a slot before it gives up what the slot held, so that nothing can see a dead object in
// it.
[[gnu::always_inline]] inline void clearSlot(Value& slot) noexcept {
  const Value old = slot;
  slot.tag = kNil;
  drop(old);
}

// Stores an owned value over whatever the slot holds.
inline void replaceSlot(Value& slot, Value owned) noexcept {
  const Value old = slot;
  slot = owned;
  drop(old);
}

inline void clearSlots(Value* first, Value* end) noexcept {
  for (; first != end; ++first) {
    if (first->isCounted()) clearSlot(*first);
  }
}

// One owned value, for everything outside the evaluator's hot path.
class OwnedValue {
 public:
  OwnedValue() noexcept = default;
  explicit OwnedValue(Value owned) noexcept : value_(owned) {}
  static OwnedValue share(Value borrowed) noexcept { return OwnedValue(retain(borrowed)); }

  OwnedValue(const OwnedValue& other) noexcept : value_(retain(other.value_)) {}
  OwnedValue(OwnedValue&& other) noexcept : value_(other.take()) {}
  OwnedValue& operator=(OwnedValue other) noexcept {
    const Value old = value_;
    value_ = other.take();
    drop(old);
    return *this;
  }
  ~OwnedValue() { drop(value_); }

  const Value& get() const noexcept { return value_; }
  // Hands the ownership to the caller; this becomes nil.
  Value take() noexcept {
    const Value value = value_;
    value_ = Value();
    return value;
  }

 private:
  Value value_;
};

}  // namespace tarvel::lua::internal
