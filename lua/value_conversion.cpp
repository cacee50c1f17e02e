#include <algorithm>
#include <charconv>
#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "lua/lua_vm_impl.h"
#include "lua/value/table.h"

// How values cross between host and interpreter, and how public values print.

namespace tarvel::lua {

using internal::FunctionObject;
using internal::Heap;
using internal::MultiValue;
using internal::OwnedValue;
using internal::StringObject;
using internal::Table;
using internal::TableKey;
using internal::Value;
using internal::ValueKind;
using internal::ValueSpan;

// ---- Public values ------------------------------------------------------------------------------

LuaValue::LuaValue(std::int64_t integer) : type(Type::Integer), data(integer) {}
LuaValue::LuaValue(double number) : type(Type::Float), data(number) {}
LuaValue::LuaValue(bool boolean) : type(Type::Boolean), data(boolean) {}
LuaValue::LuaValue(std::string text) : type(Type::String), data(std::move(text)) {}
LuaValue::LuaValue(const char* text) : LuaValue(std::string(text)) {}
LuaValue::LuaValue(std::shared_ptr<Sequence> sequence)
    : type(Type::Sequence), data(std::move(sequence)) {}
LuaValue::LuaValue(std::shared_ptr<Object> object) : type(Type::Object), data(std::move(object)) {}
LuaValue::LuaValue(std::shared_ptr<LuaFunctionHandle> function)
    : type(Type::Function), data(std::move(function)) {}

// ---- Functions that crossed ---------------------------------------------------------------------

// Holds a share in the function and in the heap that it lives in, so that it may outlive the
// interpreter.
struct LuaFunctionHandle::Target {
  Target(const Value& borrowed, Heap& functionHeap)
      : function(OwnedValue::share(borrowed)), heap(functionHeap) {
    heap.addOwner();
  }
  ~Target() {
    function.get().function->exported = nullptr;
    function = OwnedValue();
    heap.removeOwner();
  }
  Target(const Target&) = delete;
  Target& operator=(const Target&) = delete;

  OwnedValue function;
  Heap& heap;
};

LuaFunctionHandle::LuaFunctionHandle(std::unique_ptr<Target> target) : target_(std::move(target)) {}

LuaFunctionHandle::~LuaFunctionHandle() = default;

std::string LuaFunctionHandle::name() const {
  return std::string(target_->function.get().function->name->view());
}

namespace {

// Nesting of sequences and objects that conversion and printing go down to, unless the stack ends
// first.
constexpr int kDeepestConversion = 1000;
constexpr std::size_t kHostBytesPerConversion = 2048;

[[noreturn]] void failBridgeOut() {
  throw std::runtime_error("value cannot be bridged out of TarvelLua");
}

[[noreturn]] void failUnsupported() { throw std::runtime_error("unsupported TarvelLua value"); }

bool isTooDeep(int depth) noexcept {
  return depth > kDeepestConversion || internal::hostStackRoom() < kHostBytesPerConversion;
}

// An existing handle stands for its function again, so that the host can tell functions apart.
std::shared_ptr<LuaFunctionHandle> handleOf(const Value& function, Heap& heap) {
  LuaFunctionHandle*& exported = function.function->exported;
  if (exported != nullptr) return exported->shared_from_this();
  auto handle = std::make_shared<LuaFunctionHandle>(
      std::make_unique<LuaFunctionHandle::Target>(function, heap));
  exported = handle.get();
  return handle;
}

// ---- Out of the interpreter ---------------------------------------------------------------------

LuaValue toPublic(const Value& value, Heap& heap, int depth);

// Keys 1 to n and nothing else.
bool isSequence(Table& table) noexcept {
  if (table.liveEntries() > 0) return false;
  for (auto i = static_cast<std::uint32_t>(table.length()); i < table.arraySize(); ++i) {
    if (!table.element(i).isNil()) return false;
  }
  return true;
}

LuaValue sequenceOf(Table& table, Heap& heap, int depth) {
  auto sequence = std::make_shared<LuaValue::Sequence>();
  const auto length = static_cast<std::uint32_t>(table.length());
  sequence->reserve(length);
  for (std::uint32_t i = 0; i < length; ++i)
    sequence->push_back(toPublic(table.element(i), heap, depth));
  return LuaValue(std::move(sequence));
}

LuaValue objectOf(const Table& table, Heap& heap, int depth) {
  auto object = std::make_shared<LuaValue::Object>();
  for (std::uint32_t i = 0; i < table.arraySize(); ++i) {
    if (table.element(i).isNil()) continue;
    object->insert_or_assign(std::to_string(i + std::uint64_t{1}),
                             toPublic(table.element(i), heap, depth));
  }
  for (std::uint32_t i = 0; i < table.entryCount(); ++i) {
    if (table.entryValue(i).isNil()) continue;
    object->insert_or_assign(table.entryKey(i).toValue().toString(),
                             toPublic(table.entryValue(i), heap, depth));
  }
  return LuaValue(std::move(object));
}

LuaValue toPublic(const Value& value, Heap& heap, int depth) {
  switch (value.kind()) {
    case ValueKind::Nil:
      return LuaValue();
    case ValueKind::Integer:
      return LuaValue(value.integer);
    case ValueKind::Float:
      return LuaValue(value.number);
    case ValueKind::Boolean:
      return LuaValue(value.isTruthy());
    case ValueKind::String:
      return LuaValue(std::string(value.string->view()));
    case ValueKind::Function:
      return LuaValue(handleOf(value, heap));
    case ValueKind::Table:
      if (isTooDeep(depth)) failBridgeOut();
      return isSequence(*value.table) ? sequenceOf(*value.table, heap, depth + 1)
                                      : objectOf(*value.table, heap, depth + 1);
    case ValueKind::UserData:
    case ValueKind::Iterator:
      break;
  }
  failBridgeOut();
}

// ---- Into the interpreter -----------------------------------------------------------------------

// The integer that a member's key is, where the whole key is one in base 10.
std::optional<std::int64_t> integerKey(const std::string& key) noexcept {
  // A key may have the plus sign and the leading white space that strtoll accepts; from_chars takes
  // neither.
  std::size_t start = 0;
  while (start < key.size() && (key[start] == ' ' || (key[start] >= '\t' && key[start] <= '\r')))
    ++start;
  if (start < key.size() && key[start] == '+') {
    ++start;
    if (start < key.size() && key[start] == '-') return std::nullopt;
  }
  std::int64_t integer = 0;
  const char* const end = key.data() + key.size();
  const auto [rest, failure] = std::from_chars(key.data() + start, end, integer);
  if (failure != std::errc() || rest != end) return std::nullopt;
  return integer;
}

class PublicReader {
 public:
  explicit PublicReader(Heap& heap) : heap_(heap) {}

  // Returns an owned value.
  Value read(const LuaValue& value, int depth) {
    switch (value.data.index()) {
      case 0:
        return Value();
      case 1:
        return Value(std::get<std::int64_t>(value.data));
      case 2:
        return Value(std::get<double>(value.data));
      case 3:
        return Value(std::get<bool>(value.data));
      case 4:
        return Value(StringObject::create(heap_, std::get<std::string>(value.data)));
      case 5:
        return readSequence(std::get<std::shared_ptr<LuaValue::Sequence>>(value.data).get(), depth);
      case 6:
        return readObject(std::get<std::shared_ptr<LuaValue::Object>>(value.data).get(), depth);
      case 7:
        return readFunction(std::get<std::shared_ptr<LuaFunctionHandle>>(value.data).get());
      default:
        failUnsupported();
    }
  }

 private:
  Value readSequence(const LuaValue::Sequence* sequence, int depth) {
    if (sequence == nullptr || isTooDeep(depth)) failUnsupported();
    OwnedValue table(Value(Table::create(heap_)));
    std::int64_t key = 0;
    for (const LuaValue& element : *sequence)
      table.get().table->setInteger(++key, read(element, depth + 1));
    return table.take();
  }

  Value readObject(const LuaValue::Object* object, int depth) {
    if (object == nullptr || isTooDeep(depth)) failUnsupported();
    OwnedValue table(Value(Table::create(heap_)));
    for (const auto& [name, member] : *object) {
      OwnedValue value(read(member, depth + 1));
      if (const std::optional<std::int64_t> integer = integerKey(name)) {
        table.get().table->setInteger(*integer, value.take());
        continue;
      }
      const OwnedValue key(Value(StringObject::create(heap_, name)));
      table.get().table->set(TableKey::ofString(key.get().string), value.take());
    }
    return table.take();
  }

  // Nothing counted may belong to two interpreters, so a function goes back only to where it came
  // from.
  Value readFunction(const LuaFunctionHandle* handle) {
    if (handle == nullptr || &handle->target().heap != &heap_) failUnsupported();
    return retain(handle->target().function.get());
  }

  Heap& heap_;
};

// ---- Printing -----------------------------------------------------------------------------------

void appendPublic(std::string& out, const LuaValue& value, int depth);

// Keys that are integers first, ascending, then the others bytewise, so that output is
// reproducible.
std::vector<const LuaValue::Object::value_type*> orderedMembers(const LuaValue::Object& object) {
  std::vector<std::pair<std::optional<std::int64_t>, const LuaValue::Object::value_type*>> keyed;
  keyed.reserve(object.size());
  for (const auto& member : object) keyed.emplace_back(integerKey(member.first), &member);
  std::sort(keyed.begin(), keyed.end(), [](const auto& a, const auto& b) {
    if (a.first.has_value() != b.first.has_value()) return a.first.has_value();
    if (a.first != b.first) return a.first < b.first;
    return a.second->first < b.second->first;
  });
  std::vector<const LuaValue::Object::value_type*> members;
  members.reserve(keyed.size());
  for (const auto& member : keyed) members.push_back(member.second);
  return members;
}

void appendSequence(std::string& out, const LuaValue::Sequence& sequence, int depth) {
  const char* separator = "{";
  for (const LuaValue& element : sequence) {
    out.append(separator);
    appendPublic(out, element, depth);
    separator = ", ";
  }
  out.append(sequence.empty() ? "{}" : "}");
}

void appendObject(std::string& out, const LuaValue::Object& object, int depth) {
  const char* separator = "{";
  for (const auto* member : orderedMembers(object)) {
    out.append(separator).append(member->first).append(": ");
    appendPublic(out, member->second, depth);
    separator = ", ";
  }
  out.append(object.empty() ? "{}" : "}");
}

void appendFunction(std::string& out, const LuaFunctionHandle* handle) {
  const std::string name = handle == nullptr ? std::string() : handle->name();
  out.append("[function ").append(name.empty() ? "anonymous" : name).append("]");
}

void appendPublic(std::string& out, const LuaValue& value, int depth) {
  if (isTooDeep(depth)) failBridgeOut();
  switch (value.data.index()) {
    case 1:
      return Value(std::get<std::int64_t>(value.data)).appendTo(out);
    case 2:
      return Value(std::get<double>(value.data)).appendTo(out);
    case 3:
      return Value(std::get<bool>(value.data)).appendTo(out);
    case 4:
      out.append(std::get<std::string>(value.data));
      return;
    case 5: {
      const auto& sequence = std::get<std::shared_ptr<LuaValue::Sequence>>(value.data);
      return appendSequence(out, sequence == nullptr ? LuaValue::Sequence() : *sequence, depth + 1);
    }
    case 6: {
      const auto& object = std::get<std::shared_ptr<LuaValue::Object>>(value.data);
      return appendObject(out, object == nullptr ? LuaValue::Object() : *object, depth + 1);
    }
    case 7:
      return appendFunction(out, std::get<std::shared_ptr<LuaFunctionHandle>>(value.data).get());
    default:
      out.append("nil");
  }
}

}  // namespace

std::string LuaValue::toString() const {
  std::string text;
  appendPublic(text, *this, 0);
  return text;
}

// ---- The interpreter's side ---------------------------------------------------------------------

LuaValue LuaVM::Impl::valueToPublic(const Value& value) const { return toPublic(value, heap, 0); }

LuaVM::Impl::Value LuaVM::Impl::publicToValue(const LuaValue& value) {
  return PublicReader(heap).read(value, 0);
}

void LuaVM::Impl::bindFunction(const std::string& name, HostFunction function) {
  if (!function) {
    bindNativeGlobal(name, {});
    return;
  }
  bindNativeGlobal(name,
                   [function = std::move(function)](LuaVM& vm, ValueSpan arguments, unsigned) {
                     Impl& interpreter = Impl::of(vm);
                     std::vector<LuaValue> publicArguments;
                     publicArguments.reserve(arguments.size());
                     for (const Value& argument : arguments)
                       publicArguments.push_back(interpreter.valueToPublic(argument));
                     return MultiValue(interpreter.publicToValue(function(vm, publicArguments)));
                   });
}

}  // namespace tarvel::lua
