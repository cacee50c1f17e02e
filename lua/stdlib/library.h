#pragma once

#include <tarvel/lua/lua_vm.h>

#include "lua/value/multi_value.h"
#include "lua/value/native_object.h"
#include "lua/value/value.h"

// The native functions of the standard library, named after what scripts call. All take the
// interpreter, the arguments (borrowed) and the site of the call, and return owned values.

namespace tarvel::lua::internal {

// base_functions.cpp
MultiValue basePrint(LuaVM& vm, ValueSpan args, Site site);
MultiValue baseToString(LuaVM& vm, ValueSpan args, Site site);
MultiValue baseToNumber(LuaVM& vm, ValueSpan args, Site site);
MultiValue baseType(LuaVM& vm, ValueSpan args, Site site);
MultiValue baseAssert(LuaVM& vm, ValueSpan args, Site site);
MultiValue baseError(LuaVM& vm, ValueSpan args, Site site);
MultiValue basePcall(LuaVM& vm, ValueSpan args, Site site);
MultiValue basePairs(LuaVM& vm, ValueSpan args, Site site);
MultiValue baseIpairs(LuaVM& vm, ValueSpan args, Site site);

// string_functions.cpp
MultiValue stringSub(LuaVM& vm, ValueSpan args, Site site);
MultiValue stringFormat(LuaVM& vm, ValueSpan args, Site site);
MultiValue stringRep(LuaVM& vm, ValueSpan args, Site site);
MultiValue stringUnpack(LuaVM& vm, ValueSpan args, Site site);

// string_patterns.cpp
MultiValue stringFind(LuaVM& vm, ValueSpan args, Site site);
MultiValue stringMatch(LuaVM& vm, ValueSpan args, Site site);
MultiValue stringGmatch(LuaVM& vm, ValueSpan args, Site site);
MultiValue stringGsub(LuaVM& vm, ValueSpan args, Site site);

// table_functions.cpp
MultiValue tableRemove(LuaVM& vm, ValueSpan args, Site site);
MultiValue tableConcat(LuaVM& vm, ValueSpan args, Site site);
MultiValue tableSort(LuaVM& vm, ValueSpan args, Site site);

// math_functions.cpp
MultiValue mathMin(LuaVM& vm, ValueSpan args, Site site);
MultiValue mathMax(LuaVM& vm, ValueSpan args, Site site);
MultiValue mathFloor(LuaVM& vm, ValueSpan args, Site site);

// files/file_functions.cpp
MultiValue ioOpen(LuaVM& vm, ValueSpan args, Site site);
MultiValue ioWrite(LuaVM& vm, ValueSpan args, Site site);

// os_functions.cpp
MultiValue osExecute(LuaVM& vm, ValueSpan args, Site site);
MultiValue osExit(LuaVM& vm, ValueSpan args, Site site);

}  // namespace tarvel::lua::internal
