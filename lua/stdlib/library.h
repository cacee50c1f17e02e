#pragma once

#include <tarvel/lua/lua_vm.h>

#include "lua/value/function_handle.h"
#include "lua/value/multi_value.h"
#include "lua/value/native_object.h"
#include "lua/value/value.h"

// The native functions of the standard library, named after what scripts call, in the forms of
// function_handle.h. A name that ends with OfOne is that of a UnaryFunction.

namespace tarvel::lua::internal {

// base_functions.cpp
MultiValue basePrint(LuaVM& vm, ValueSpan args, Site site);
Value baseToString(LuaVM& vm, ValueSpan args, Site site);
Value baseToNumber(LuaVM& vm, ValueSpan args, Site site);
Value baseType(LuaVM& vm, ValueSpan args, Site site);
Value baseTypeOfOne(LuaVM::Impl& interpreter, Value value);
Value baseAssert(LuaVM::Impl& interpreter, Value* frame, std::uint32_t count, Site site);
Value baseError(LuaVM::Impl& interpreter, Value* frame, std::uint32_t count, Site site);
Value basePcall(LuaVM::Impl& interpreter, Value* frame, std::uint32_t count, Site site);
Value basePairs(LuaVM& vm, ValueSpan args, Site site);
Value baseIpairs(LuaVM& vm, ValueSpan args, Site site);

// string_functions.cpp
Value stringSub(LuaVM& vm, ValueSpan args, Site site);
Value stringFormat(LuaVM& vm, ValueSpan args, Site site);
Value stringRep(LuaVM& vm, ValueSpan args, Site site);
Value stringUnpack(LuaVM::Impl& interpreter, Value* frame, std::uint32_t count, Site site);

// string_patterns.cpp
Value stringFind(LuaVM::Impl& interpreter, Value* frame, std::uint32_t count, Site site);
Value stringMatch(LuaVM::Impl& interpreter, Value* frame, std::uint32_t count, Site site);
Value stringGmatch(LuaVM& vm, ValueSpan args, Site site);
Value stringGsub(LuaVM::Impl& interpreter, Value* frame, std::uint32_t count, Site site);

// table_functions.cpp
Value tableRemove(LuaVM& vm, ValueSpan args, Site site);
Value tableConcat(LuaVM& vm, ValueSpan args, Site site);
Value tableSort(LuaVM::Impl& interpreter, Value* frame, std::uint32_t count, Site site);

// math_functions.cpp
Value mathMin(LuaVM& vm, ValueSpan args, Site site);
Value mathMax(LuaVM& vm, ValueSpan args, Site site);
Value mathFloor(LuaVM& vm, ValueSpan args, Site site);
Value mathFloorOfOne(LuaVM::Impl& interpreter, Value number);

// files/file_functions.cpp
MultiValue ioOpen(LuaVM& vm, ValueSpan args, Site site);
MultiValue ioWrite(LuaVM& vm, ValueSpan args, Site site);

// os_functions.cpp
MultiValue osExecute(LuaVM& vm, ValueSpan args, Site site);
MultiValue osExit(LuaVM& vm, ValueSpan args, Site site);

}  // namespace tarvel::lua::internal
