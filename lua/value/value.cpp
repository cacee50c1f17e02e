#include "lua/value/value.h"

#include <array>
#include <charconv>
#include <memory>
#include <stdexcept>
#include <utility>

#include "lua/value/environment.h"
#include "lua/value/function_handle.h"
#include "lua/value/heap.h"
#include "lua/value/iterator_state.h"
#include "lua/value/native_object.h"
#include "lua/value/number_rules.h"
#include "lua/value/string_object.h"
#include "lua/value/table.h"

namespace tarvel::lua::internal {

namespace {

constexpr int kFloatDigits = 6;  // significant digits of a printed float

void appendAddress(std::string& out, const char* kind, const void* object) {
  std::array<char, 2 + 2 * sizeof object> digits;
  const auto address = reinterpret_cast<std::uintptr_t>(object);
  const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), address, 16).ptr;
  out.append(kind).append(": 0x").append(digits.data(), end);
}

template <class T>
void destroyIn(T* object) noexcept {
  object->~T();
  Heap::release(object, sizeof(T));
}

// The handle goes last: an object of the host's may hold the last share in the heap.
[[gnu::noinline]] void dismantleNative(NativeObject* object) noexcept {
  object->leaveClass();
  const std::unique_ptr<NativeHandle> handle = std::move(object->handle);
  destroyIn(object);
}

// Gives up what an object holds, then its memory. What it held may go as well, through
// destroyObject.
void dismantle(Value value) noexcept {
  switch (value.tag) {
    case kTable:
      Table::destroy(value.table);
      return;
    case kFunction: {
      FunctionObject* const function = value.function;
      for (std::uint64_t i = 0; i < function->captureCount; ++i) drop(function->captures()[i]);
      drop(Value(function->name));
      // The code goes last: a host's function may hold the last share in the heap that this is in.
      FunctionCode* const code = function->code;
      Heap::release(function, FunctionObject::blockBytes(function->captureCount));
      code->removeReference();
      return;
    }
    case kUserData:
      dismantleNative(value.native);
      return;
    case kIterator:
      destroyIn(value.iterator);
      return;
    case kEnvironment:
      drop(value.environment->slot);
      destroyIn(value.environment);
      return;
    default:
      return;
  }
}

// The heap that an object other than a string is in.
Heap& heapOf(Value value) noexcept {
  if (value.tag != kFunction) return Heap::of(value.object);
  return Heap::of(value.object, FunctionObject::blockBytes(value.function->captureCount));
}

// Objects that wait for dismantle, newest first: linked through their counts, which are no longer
// needed. The low bits of a link are the tag of the object it points to. Each holds a share in its
// heap, because what is dismantled before it may be the host's function that holds its interpreter.
// Here `destruction.waiting` is the newest.
constexpr std::uint64_t kLinkTagMask = Heap::kGranularity - 1;

void dismantleWaiting() noexcept {
  while (destruction.waiting != 0) {
    Value next = Value::ofTag(destruction.waiting & kLinkTagMask);
    next.object = reinterpret_cast<Object*>(destruction.waiting & ~kLinkTagMask);
    destruction.waiting = next.object->count;
    Heap& heap = heapOf(next);
    dismantle(next);
    heap.removeOwner();
  }
}

// Whatever may hold other objects. Out of line, so that releasing a string needs no frame.
[[gnu::noinline]] void destroyContainer(Value value) noexcept {
  if (destruction.isUnderWay) {
    if (value.tag == kUserData) [[unlikely]]
      value.native->leaveClass();
    heapOf(value).addOwner();
    value.object->count = destruction.waiting;
    destruction.waiting = reinterpret_cast<std::uintptr_t>(value.object) | value.tag;
    return;
  }
  destruction.isUnderWay = true;
  dismantle(value);
  dismantleWaiting();
  destruction.isUnderWay = false;
}

}  // namespace

void destroyObject(Value value) noexcept {
  if (value.tag == kString) {
    Heap::release(value.string, value.string->blockBytes());
    return;
  }
  destroyContainer(value);
}

ValueKind Value::kind() const noexcept {
  switch (tag) {
    case kFalse:
    case kTrue:
      return ValueKind::Boolean;
    case kInteger:
      return ValueKind::Integer;
    case kFloat:
      return ValueKind::Float;
    case kString:
      return ValueKind::String;
    case kTable:
      return ValueKind::Table;
    case kFunction:
      return ValueKind::Function;
    case kUserData:
      return ValueKind::UserData;
    case kIterator:
      return ValueKind::Iterator;
    default:
      return ValueKind::Nil;
  }
}

void Value::appendTo(std::string& out) const {
  switch (kind()) {
    case ValueKind::Nil:
      out.append("nil");
      return;
    case ValueKind::Integer:
    case ValueKind::Float: {
      std::array<char, kLongestNumber> digits;
      out.append(digits.data(), writeNumber(digits.data()));
      return;
    }
    case ValueKind::Boolean:
      out.append(tag == kTrue ? "true" : "false");
      return;
    case ValueKind::String:
      out.append(string->view());
      return;
    case ValueKind::Table:
      appendAddress(out, "table", table);
      return;
    case ValueKind::Function:
      // A function prints by its name, not by its address.
      out.append("function: ")
          .append(function->name->length == 0 ? "anonymous" : function->name->view());
      return;
    case ValueKind::UserData:
      appendAddress(out, "userdata", native);
      return;
    case ValueKind::Iterator:
      appendAddress(out, "iterator", iterator);
      return;
  }
}

char* Value::writeNumber(char* out) const noexcept {
  char* const end = out + kLongestNumber;
  if (tag == kInteger) return std::to_chars(out, end, integer).ptr;
  return std::to_chars(out, end, number, std::chars_format::general, kFloatDigits).ptr;
}

std::string Value::toString() const {
  std::string text;
  appendTo(text);
  return text;
}

std::int64_t Value::asInteger() const {
  if (tag == kInteger) return integer;
  if (tag == kFloat) return saturatingInteger(number);
  throw std::runtime_error("value is not numeric");
}

double Value::asFloat() const {
  if (tag == kFloat) return number;
  if (tag == kInteger) return static_cast<double>(integer);
  throw std::runtime_error("value is not numeric");
}

const char* describeValueType(const Value& value) noexcept {
  switch (value.kind()) {
    case ValueKind::Nil:
      return "nil";
    case ValueKind::Integer:
    case ValueKind::Float:
      return "number";
    case ValueKind::Boolean:
      return "boolean";
    case ValueKind::String:
      return "string";
    case ValueKind::Table:
      return "table";
    case ValueKind::Function:
      return "function";
    case ValueKind::UserData:
      return "userdata";
    case ValueKind::Iterator:
      return "iterator";
  }
  return "unknown";
}

}  // namespace tarvel::lua::internal
