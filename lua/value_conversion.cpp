#include <algorithm>
#include <charconv>
#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "lua/lua_vm_impl.h"
#include "lua/release_scope.h"
#include "lua/value/memory_charge.h"
#include "lua/value/table.h"

// How values cross between host and interpreter, and how public values print.

namespace tarvel::lua {

using internal::FunctionObject;
using internal::Heap;
using internal::MemoryCharge;
using internal::MultiValue;
using internal::OwnedValue;
using internal::StringObject;
using internal::Table;
using internal::TableKey;
using internal::Value;
using internal::ValueKind;
using internal::ValueSpan;

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

LuaFunctionHandle::~LuaFunctionHandle() {
  const internal::ReleaseScope release;
  target_.reset();
}

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

// A host can set `type` and `data` apart.
void requireConsistent(const LuaValue& value) {
  if (static_cast<std::size_t>(value.type) != value.data.index()) failUnsupported();
}

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

// Keys 1 to n and nothing else.
bool isSequence(Table& table) noexcept {
  if (table.liveEntries() > 0) return false;
  for (auto i = static_cast<std::uint32_t>(table.length()); i < table.arraySize(); ++i) {
    if (!table.element(i).isNil()) return false;
  }
  return true;
}

// Copies values for the host. A table that stands in many places is copied as often, so a small
// script can ask for more than the machine has: while it lives, the copies count as memory of the
// interpreter.
class PublicWriter {
 public:
  explicit PublicWriter(Heap& heap) : heap_(heap), memory_(heap) {}

  LuaValue write(const Value& value, int depth = 0) {
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
        memory_.add(value.string->length);
        return LuaValue(std::string(value.string->view()));
      case ValueKind::Function:
        return LuaValue(handleOf(value, heap_));
      case ValueKind::Table:
        if (isTooDeep(depth)) failBridgeOut();
        memory_.add(kTableBytes);
        return isSequence(*value.table) ? writeSequence(*value.table, depth + 1)
                                        : writeObject(*value.table, depth + 1);
      case ValueKind::UserData:
      case ValueKind::Iterator:
        break;
    }
    failBridgeOut();
  }

  std::vector<LuaValue> writeAll(ValueSpan values) {
    memory_.add(values.size() * sizeof(LuaValue));
    std::vector<LuaValue> copies;
    copies.reserve(values.size());
    for (const Value& value : values) copies.push_back(write(value));
    return copies;
  }

 private:
  // With what the system's allocator adds, and for a member what ordering it for printing takes.
  static constexpr std::size_t kTableBytes = 96;
  static constexpr std::size_t kMemberBytes = sizeof(LuaValue::Object::value_type) + 96;

  LuaValue writeSequence(Table& table, int depth) {
    auto sequence = std::make_shared<LuaValue::Sequence>();
    const auto length = static_cast<std::uint32_t>(table.length());
    memory_.add(length * sizeof(LuaValue));
    sequence->reserve(length);
    for (std::uint32_t i = 0; i < length; ++i) {
      sequence->push_back(write(table.element(i), depth));
    }
    return LuaValue(std::move(sequence));
  }

  LuaValue writeObject(const Table& table, int depth) {
    auto object = std::make_shared<LuaValue::Object>();
    for (std::uint32_t i = 0; i < table.arraySize(); ++i) {
      const Value key(static_cast<std::int64_t>(i) + 1);
      writeMember(*object, key, table.element(i), depth);
    }
    for (std::uint32_t i = 0; i < table.entryCount(); ++i) {
      writeMember(*object, table.entryKey(i).toValue(), table.entryValue(i), depth);
    }
    return LuaValue(std::move(object));
  }

  void writeMember(LuaValue::Object& object, const Value& key, const Value& value, int depth) {
    if (value.isNil()) return;
    memory_.add(kMemberBytes + (key.isString() ? key.string->length : 0));
    object.insert_or_assign(key.toString(), write(value, depth));
  }

  Heap& heap_;
  MemoryCharge memory_;
};

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
    requireConsistent(value);
    switch (value.type) {
      case LuaValue::Type::Nil:
        break;
      case LuaValue::Type::Integer:
        return Value(std::get<std::int64_t>(value.data));
      case LuaValue::Type::Float:
        return Value(std::get<double>(value.data));
      case LuaValue::Type::Boolean:
        return Value(std::get<bool>(value.data));
      case LuaValue::Type::String:
        return Value(StringObject::create(heap_, std::get<std::string>(value.data)));
      case LuaValue::Type::Sequence:
        return readSequence(std::get<std::shared_ptr<LuaValue::Sequence>>(value.data).get(), depth);
      case LuaValue::Type::Object:
        return readObject(std::get<std::shared_ptr<LuaValue::Object>>(value.data).get(), depth);
      case LuaValue::Type::Function:
        return readFunction(std::get<std::shared_ptr<LuaFunctionHandle>>(value.data).get());
    }
    return Value();
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

using TextWriter = bool (*)(std::string_view text) noexcept;

// Puts the printable form of a value together. With a writer the text leaves in pieces, so it may
// be larger than memory.
class PublicPrinter {
 public:
  explicit PublicPrinter(TextWriter writer = nullptr) : writer_(writer) {}

  void print(const LuaValue& value, int depth = 0) {
    if (isTooDeep(depth)) failBridgeOut();
    requireConsistent(value);
    switch (value.type) {
      case LuaValue::Type::Nil:
        return append("nil");
      case LuaValue::Type::Integer:
        return Value(std::get<std::int64_t>(value.data)).appendTo(text_);
      case LuaValue::Type::Float:
        return Value(std::get<double>(value.data)).appendTo(text_);
      case LuaValue::Type::Boolean:
        return Value(std::get<bool>(value.data)).appendTo(text_);
      case LuaValue::Type::String:
        return append(std::get<std::string>(value.data));
      case LuaValue::Type::Sequence:
        return printSequence(std::get<std::shared_ptr<LuaValue::Sequence>>(value.data).get(),
                             depth + 1);
      case LuaValue::Type::Object:
        return printObject(std::get<std::shared_ptr<LuaValue::Object>>(value.data).get(),
                           depth + 1);
      case LuaValue::Type::Function:
        return printFunction(std::get<std::shared_ptr<LuaFunctionHandle>>(value.data).get());
    }
  }

  // Hands over what has not been written.
  std::string take() { return std::move(text_); }
  void flush() {
    writer_(text_);
    text_.clear();
  }

 private:
  static constexpr std::size_t kPieceBytes = 4096;

  void append(std::string_view text) {
    if (writer_ != nullptr && text_.size() + text.size() > kPieceBytes) {
      flush();
      if (text.size() > kPieceBytes) {
        writer_(text);
        return;
      }
    }
    text_.append(text);
  }

  void printSequence(const LuaValue::Sequence* sequence, int depth) {
    append("{");
    const char* separator = "";
    if (sequence != nullptr) {
      for (const LuaValue& element : *sequence) {
        append(std::exchange(separator, ", "));
        print(element, depth);
      }
    }
    append("}");
  }

  void printObject(const LuaValue::Object* object, int depth) {
    append("{");
    const char* separator = "";
    if (object != nullptr) {
      for (const auto* member : orderedMembers(*object)) {
        append(std::exchange(separator, ", "));
        append(member->first);
        append(": ");
        print(member->second, depth);
      }
    }
    append("}");
  }

  void printFunction(const LuaFunctionHandle* handle) {
    const std::string name = handle == nullptr ? std::string() : handle->name();
    append("[function ");
    append(name.empty() ? "anonymous" : std::string_view(name));
    append("]");
  }

  TextWriter writer_;
  std::string text_;
};

}  // namespace

std::string LuaValue::toString() const {
  const internal::HostStackScope hostStack;
  PublicPrinter printer;
  printer.print(*this);
  return printer.take();
}

// ---- The interpreter's side ---------------------------------------------------------------------

LuaValue LuaVM::Impl::valueToPublic(const Value& value) const {
  return PublicWriter(heap).write(value);
}

LuaVM::Impl::Value LuaVM::Impl::publicToValue(const LuaValue& value) {
  return PublicReader(heap).read(value, 0);
}

void LuaVM::Impl::printPublic(const LuaValue& value, TextWriter write) {
  PublicPrinter printer(write);
  printer.print(value);
  printer.flush();
}

void LuaVM::Impl::bindFunction(const std::string& name, HostFunction function) {
  if (!function) {
    bindNativeGlobal(name, {});
    return;
  }
  bindNativeGlobal(
      name, [function = std::move(function)](LuaVM& vm, ValueSpan arguments, unsigned) {
        Impl& interpreter = Impl::of(vm);
        PublicWriter writer(interpreter.heap);
        const std::vector<LuaValue> publicArguments = writer.writeAll(arguments);
        return MultiValue(interpreter.publicToValue(function(*interpreter.owner, publicArguments)));
      });
}

}  // namespace tarvel::lua
