#pragma once

#include <tarvel/lua/lua_vm.h>

#include <cstddef>
#include <memory>
#include <string_view>

#include "lua/value/errors.h"
#include "lua/value/function_handle.h"
#include "lua/value/multi_value.h"
#include "lua/value/value.h"

// Objects of the host's in scripts: their classes, and how they cross. A type of the host's is told
// apart by the address of something that it alone has, its key.

namespace tarvel::lua::internal {

class NativeClass;

// The class of the type, which is made when it is not there; it keeps the name that it got first.
NativeClass& defineClass(LuaVM::Impl& interpreter, const void* typeKey, std::string_view name);
// Null where there is none.
NativeClass* findClass(const LuaVM::Impl& interpreter, const void* typeKey) noexcept;

// What scripts find under `name`, also in objects that they have; it replaces what stood there. A
// method is called with whatever stands in front of the colon, see requireObject, and is
// "World:name" in messages. The functions of a property get an object of the class; an empty setter
// makes it read-only.
void addMethod(LuaVM::Impl& interpreter, NativeClass& type, std::string_view name,
               NativeFunction method);
void addProperty(LuaVM::Impl& interpreter, NativeClass& type, std::string_view name,
                 NativeFunction getter, NativeFunction setter);

// The userdata that stands for the object, owned: the same one as long as scripts have it. Nil for
// no object.
Value wrapObject(LuaVM::Impl& interpreter, NativeClass& type, const std::shared_ptr<void>& object);

// The object that userdata stands for; null when it is not of this type.
std::shared_ptr<void> sharedObjectOf(const Value& value, const void* typeKey) noexcept;
void* objectOf(const Value& value, const void* typeKey) noexcept;

// The receiver of a method, the argument number `index` from 0, of which `name` is the qualified
// name. Raises "World:spawn expects userdata" or "World:spawn received the wrong userdata type" at
// `site`.
void* requireObject(std::string_view name, ValueSpan arguments, std::size_t index, Site site,
                    const void* typeKey);

}  // namespace tarvel::lua::internal
