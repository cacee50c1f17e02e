#include <tarvel/lua/lua_class.h>
#include <tarvel/lua/lua_vm.h>

#include <bit>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>

#include "lua/bridge_access.h"
#include "lua/lua_vm_impl.h"
#include "lua/native_objects.h"
#include "lua/value/native_class.h"

// Classes of the host's objects, as the public header asks for them.

namespace tarvel::lua {

namespace bridge {

using internal::NativeClass;
using internal::Value;

namespace {

NativeClass& classOf(ClassInInterpreter* type) noexcept {
  return *reinterpret_cast<NativeClass*>(type);
}

}  // namespace

void* ScriptValue::address(const void* classKey) const noexcept {
  return internal::objectOf(std::bit_cast<Value>(raw_), classKey);
}

std::shared_ptr<void> ScriptValue::object(const void* classKey) const {
  return internal::sharedObjectOf(std::bit_cast<Value>(raw_), classKey);
}

std::string ScriptValue::className(const void* classKey) const {
  const NativeClass* const type = internal::findClass(internal::implOf(interpreter_), classKey);
  return type != nullptr ? type->name() : "object of a class that is not defined here";
}

void ScriptSink::object(const void* classKey, const std::shared_ptr<void>& value) {
  LuaVM::Impl& interpreter = internal::implOf(interpreter_);
  NativeClass* const type = internal::findClass(interpreter, classKey);
  if (type == nullptr && value != nullptr)
    throw std::runtime_error("an object of a class that is not defined here: see defineClass");
  if (next_ == end_) makeRoom();
  put(std::bit_cast<RawValue>(value == nullptr ? Value()
                                               : internal::wrapObject(interpreter, *type, value)));
}

namespace {

// A function of a class, owned; messages and traces show "World:spawn".
internal::OwnedValue makeMember(LuaVM::Impl& interpreter, const std::string& name,
                                std::shared_ptr<Callable> function) {
  if (function == nullptr) return internal::OwnedValue();
  return internal::OwnedValue(interpreter.makeBound(name, name, std::move(function)));
}

}  // namespace

void addMethod(LuaVM& vm, ClassInInterpreter* type, std::string_view name,
               std::shared_ptr<Callable> function) {
  LuaVM::Impl& interpreter = LuaVM::Impl::of(vm);
  const internal::InterpreterInUse use(interpreter);  // what is replaced may destroy the LuaVM
  NativeClass& owner = classOf(type);
  const internal::OwnedValue key(Value(interpreter.strings.intern(name)));
  const std::string fullName = (owner.name() + ":").append(name);
  owner.setMethod(key.get().string, makeMember(interpreter, fullName, std::move(function)));
}

void addProperty(LuaVM& vm, ClassInInterpreter* type, std::string_view name,
                 std::shared_ptr<Callable> getter, std::shared_ptr<Callable> setter) {
  LuaVM::Impl& interpreter = LuaVM::Impl::of(vm);
  const internal::InterpreterInUse use(interpreter);  // what is replaced may destroy the LuaVM
  NativeClass& owner = classOf(type);
  const internal::OwnedValue key(Value(interpreter.strings.intern(name)));
  const std::string fullName = (owner.name() + ".").append(name);
  owner.setProperty(key.get().string, {makeMember(interpreter, fullName, std::move(getter)),
                                       makeMember(interpreter, fullName, std::move(setter))});
}

}  // namespace bridge

bridge::ClassInInterpreter* LuaVM::findOrMakeClass(const void* key, std::string_view name) {
  return reinterpret_cast<bridge::ClassInInterpreter*>(&internal::defineClass(*impl_, key, name));
}

}  // namespace tarvel::lua
