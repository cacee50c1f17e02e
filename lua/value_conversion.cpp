#include <cstdint>
#include <exception>
#include <new>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "lua/bridge_access.h"
#include "lua/failure_report.h"
#include "lua/lua_vm_impl.h"
#include "lua/public_value.h"
#include "lua/release_scope.h"
#include "lua/value/memory_charge.h"
#include "lua/value/metered_work.h"
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
using internal::Site;
using internal::StringObject;
using internal::Table;
using internal::TableKey;
using internal::Value;
using internal::ValueKind;
using internal::ValueSpan;

// ---- Functions that crossed ---------------------------------------------------------------------

LuaFunctionHandle::LuaFunctionHandle(std::unique_ptr<Target> target) : target_(std::move(target)) {}

LuaFunctionHandle::~LuaFunctionHandle() {
  const internal::ReleaseScope release;
  target_.reset();
}

std::string LuaFunctionHandle::name() const {
  return std::string(target_->function.get().function->name->view());
}

// An existing handle stands for its function again, so that the host can tell functions apart.
std::shared_ptr<LuaFunctionHandle> internal::handleOf(const Value& function, Heap& heap) {
  LuaFunctionHandle*& exported = function.function->exported;
  if (exported != nullptr) return exported->shared_from_this();
  auto handle = std::make_shared<LuaFunctionHandle>(
      std::make_unique<LuaFunctionHandle::Target>(function, heap));
  exported = handle.get();
  return handle;
}

// ---- Out of the interpreter ---------------------------------------------------------------------

bool internal::isSequence(Table& table) noexcept {
  table.takeBack();
  if (table.liveEntries() > 0) return false;
  for (auto i = static_cast<std::uint32_t>(table.length()); i < table.arraySize(); ++i) {
    if (!table.element(i).isNil()) return false;
  }
  return true;
}

namespace {

// Copies values for the host. A table that stands in many places is copied as often, so a small
// script can ask for more than the machine has: the copies count as memory of the interpreter, and
// making them as work.
class ToPublic {
 public:
  ToPublic(Heap& heap, MemoryCharge& memory, Site site)
      : heap_(heap), memory_(memory), site_(site) {}

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
        return LuaValue(writeText(*value.string));
      case ValueKind::Function:
        memory_.add(kHandleBytes);
        return LuaValue(internal::handleOf(value, heap_));
      case ValueKind::Table:
        if (isTooDeep(depth)) failBridgeOut();
        memory_.add(kTableBytes);
        count(kMembersPerStep + value.table->arraySize() / internal::kElementsPerStep);
        return internal::isSequence(*value.table) ? writeSequence(*value.table, depth + 1)
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
    for (const Value& value : values) {
      count(1);
      copies.push_back(write(value));
    }
    return copies;
  }

 private:
  // With what the system's allocator adds, and for a member what ordering it for printing takes.
  static constexpr std::size_t kTableBytes = 96;
  static constexpr std::size_t kMemberBytes = sizeof(LuaValue::Object::value_type) + 96;
  static constexpr std::size_t kHandleBytes = 160;
  static constexpr std::size_t kMembersPerStep = 2;
  static constexpr std::size_t kFewMembers = 16;
  // How often a bucket is looked at, in members, and how long it usually is at most.
  static constexpr std::size_t kSampleDistance = 64;
  static constexpr std::size_t kUsualBucket = 8;

  // A few belong to the call that asks for them.
  void count(std::size_t members) {
    uncounted_ += members;
    if (uncounted_ < kFewMembers) return;
    heap_.meter().spend(uncounted_ / kMembersPerStep, site_);
    uncounted_ = 0;
  }

  std::string writeText(const StringObject& text) {
    memory_.add(text.length);
    if (text.length < internal::kBytesPerStep) return std::string(text.view());
    std::string copy;
    copy.reserve(text.length);
    internal::inPieces(heap_.meter(), text.view(), site_,
                       [&copy](std::string_view piece) { copy.append(piece); });
    return copy;
  }

  LuaValue writeSequence(Table& table, int depth) {
    auto sequence = std::make_shared<LuaValue::Sequence>();
    const auto length = static_cast<std::uint32_t>(table.length());
    memory_.add(length * sizeof(LuaValue));
    sequence->reserve(length);
    for (std::uint32_t i = 0; i < length; ++i) {
      count(1);
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
    count(1);
    if (value.isNil()) return;
    memory_.add(kMemberBytes);
    std::string name = key.isString() ? writeText(*key.string) : key.toString();
    const auto member = object.insert_or_assign(std::move(name), write(value, depth)).first;
    if (object.size() % kSampleDistance == 0) countCollisions(object, member->first);
  }

  // The public object's hash is no secret, so a script can choose keys that all collide.
  void countCollisions(const LuaValue::Object& object, const std::string& key) {
    if (!heap_.meter().isSupervised()) return;
    const std::size_t bucket = object.bucket_size(object.bucket(key));
    if (bucket > kUsualBucket) heap_.meter().spend(kSampleDistance * bucket / kUsualBucket, site_);
  }

  Heap& heap_;
  MemoryCharge& memory_;
  Site site_;
  std::size_t uncounted_ = 0;  // members
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

LuaValue LuaVM::Impl::valueToPublic(const Value& value, MemoryCharge& memory) const {
  return ToPublic(heap, memory, 0).write(value);
}

std::vector<LuaValue> LuaVM::Impl::valuesToPublic(ValueSpan values, MemoryCharge& memory,
                                                  Site site) const {
  return ToPublic(heap, memory, site).writeAll(values);
}

LuaVM::Impl::Value LuaVM::Impl::publicToValue(const LuaValue& value) {
  return FromPublic(heap).read(value, 0);
}

void LuaVM::Impl::bindFunction(const std::string& name, HostFunction function) {
  if (!function) {
    bindNativeGlobal(name, {});
    return;
  }
  bindNativeGlobal(
      name, [function = std::move(function)](LuaVM& vm, ValueSpan arguments, Site site) {
        Impl& interpreter = Impl::of(vm);
        MemoryCharge memory(interpreter.heap);
        const std::vector<LuaValue> publicArguments =
            interpreter.valuesToPublic(arguments, memory, site);
        internal::WorkMeter& meter = interpreter.heap.meter();
        try {
          const LuaValue result = function(*interpreter.owner, publicArguments);
          meter.spend(0, site);  // a run inside of it may have used up what this one had
          return MultiValue(interpreter.publicToValue(result));
        } catch (const std::bad_alloc&) {
          throw;
        } catch (const std::exception& error) {
          meter.spend(0, site);
          failHost(site, error, internal::hostFailureKind(error));
        }
      });
}

}  // namespace tarvel::lua
