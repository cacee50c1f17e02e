#include "lua/native_objects.h"

#include <string>
#include <utility>

#include "lua/lua_vm_impl.h"
#include "lua/value/native_class.h"
#include "lua/value/native_object.h"

namespace tarvel::lua::internal {

namespace {

// The handle of an object of this type; null for everything else.
const HostObjectHandle* handleOf(const Value& value, const void* typeKey) noexcept {
  if (value.tag != kUserData || value.native->kind != NativeObject::Kind::Host) return nullptr;
  if (value.native->type.typeKey() != typeKey) return nullptr;
  return static_cast<const HostObjectHandle*>(value.native->handle.get());
}

OwnedValue makeMember(LuaVM::Impl& interpreter, const NativeClass& type, char separator,
                      std::string_view name, NativeFunction function) {
  if (!function) return OwnedValue();
  return OwnedValue(
      interpreter.makeNative((type.name() + separator).append(name), std::move(function)));
}

}  // namespace

NativeClass& defineClass(LuaVM::Impl& interpreter, const void* typeKey, std::string_view name) {
  NativeClass*& type = interpreter.hostClasses[typeKey];
  if (type == nullptr) type = &NativeClass::create(interpreter.heap, name, typeKey);
  return *type;
}

NativeClass* findClass(const LuaVM::Impl& interpreter, const void* typeKey) noexcept {
  const auto entry = interpreter.hostClasses.find(typeKey);
  return entry == interpreter.hostClasses.end() ? nullptr : entry->second;
}

void addMethod(LuaVM::Impl& interpreter, NativeClass& type, std::string_view name,
               NativeFunction method) {
  const OwnedValue key(Value(interpreter.strings.intern(name)));
  type.setMethod(key.get().string, makeMember(interpreter, type, ':', name, std::move(method)));
}

void addProperty(LuaVM::Impl& interpreter, NativeClass& type, std::string_view name,
                 NativeFunction getter, NativeFunction setter) {
  const OwnedValue key(Value(interpreter.strings.intern(name)));
  type.setProperty(key.get().string, {makeMember(interpreter, type, '.', name, std::move(getter)),
                                      makeMember(interpreter, type, '.', name, std::move(setter))});
}

Value wrapObject(LuaVM::Impl& interpreter, NativeClass& type, const std::shared_ptr<void>& object) {
  if (object == nullptr) return Value();
  if (NativeObject* const known = type.find(object.get())) return retain(Value(known));
  Heap& heap = interpreter.heap;
  OwnedValue wrapped(Value(NativeObject::create(heap, NativeObject::Kind::Host, type,
                                                std::make_unique<HostObjectHandle>(heap, object))));
  type.remember(object.get(), *wrapped.get().native);
  return wrapped.take();
}

std::shared_ptr<void> sharedObjectOf(const Value& value, const void* typeKey) noexcept {
  const HostObjectHandle* const handle = handleOf(value, typeKey);
  return handle == nullptr ? nullptr : handle->object;
}

void* objectOf(const Value& value, const void* typeKey) noexcept {
  const HostObjectHandle* const handle = handleOf(value, typeKey);
  return handle == nullptr ? nullptr : handle->object.get();
}

void* requireObject(std::string_view name, ValueSpan arguments, std::size_t index, Site site,
                    const void* typeKey) {
  if (index >= arguments.size() || arguments[index].tag != kUserData)
    failRuntime(site, std::string(name) + " expects userdata");
  void* const object = objectOf(arguments[index], typeKey);
  if (object == nullptr) failRuntime(site, std::string(name) + " received the wrong userdata type");
  return object;
}

}  // namespace tarvel::lua::internal
