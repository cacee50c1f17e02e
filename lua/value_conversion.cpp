#include <cstdint>
#include <exception>
#include <new>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "lua/lua_vm_impl.h"
#include "lua/public_value.h"
#include "lua/release_scope.h"
#include "lua/value/memory_charge.h"
#include "lua/value/table.h"

// How values cross between host and interpreter.

namespace tarvel::lua {

using internal::failBridgeOut;
using internal::failHost;
using internal::failUnsupported;
using internal::Heap;
using internal::integerKey;
using internal::isTooDeep;
using internal::MemoryCharge;
using internal::MultiValue;
using internal::OwnedValue;
using internal::requireConsistent;
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
class ToPublic {
 public:
  explicit ToPublic(Heap& heap) : heap_(heap), memory_(heap) {}

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

class FromPublic {
 public:
  explicit FromPublic(Heap& heap) : heap_(heap) {}

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

}  // namespace

// ---- The interpreter's side ---------------------------------------------------------------------

LuaValue LuaVM::Impl::valueToPublic(const Value& value) const {
  return ToPublic(heap).write(value);
}

LuaVM::Impl::Value LuaVM::Impl::publicToValue(const LuaValue& value) {
  return FromPublic(heap).read(value, 0);
}

void LuaVM::Impl::bindFunction(const std::string& name, HostFunction function) {
  if (!function) {
    bindNativeGlobal(name, {});
    return;
  }
  bindNativeGlobal(name, [function = std::move(function)](LuaVM& vm, ValueSpan arguments,
                                                          Site site) {
    Impl& interpreter = Impl::of(vm);
    ToPublic writer(interpreter.heap);
    const std::vector<LuaValue> publicArguments = writer.writeAll(arguments);
    try {
      return MultiValue(interpreter.publicToValue(function(*interpreter.owner, publicArguments)));
    } catch (const std::bad_alloc&) {
      throw;
    } catch (const std::exception& error) {
      failHost(site, error);
    }
  });
}

}  // namespace tarvel::lua
