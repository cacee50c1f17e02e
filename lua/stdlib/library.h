#pragma once

#include <tarvel/lua/lua_vm.h>

#include <vector>

#include "lua/value/multi_value.h"
#include "lua/value/native_object.h"
#include "lua/value/value.h"

// The native functions of the standard library, named after what scripts call. All take the
// interpreter, the arguments (borrowed) and the line of the call, and return owned values.

namespace tarvel::lua::internal {

// base_functions.cpp
LuaValue basePrint(LuaVM& vm, const std::vector<LuaValue>& arguments);
MultiValue baseToString(LuaVM& vm, ValueSpan args, unsigned line);
MultiValue baseToNumber(LuaVM& vm, ValueSpan args, unsigned line);
MultiValue baseType(LuaVM& vm, ValueSpan args, unsigned line);
MultiValue baseAssert(LuaVM& vm, ValueSpan args, unsigned line);
MultiValue baseError(LuaVM& vm, ValueSpan args, unsigned line);
MultiValue basePcall(LuaVM& vm, ValueSpan args, unsigned line);
MultiValue basePairs(LuaVM& vm, ValueSpan args, unsigned line);
MultiValue baseIpairs(LuaVM& vm, ValueSpan args, unsigned line);

// string_functions.cpp
MultiValue stringSub(LuaVM& vm, ValueSpan args, unsigned line);
MultiValue stringFormat(LuaVM& vm, ValueSpan args, unsigned line);
MultiValue stringRep(LuaVM& vm, ValueSpan args, unsigned line);
MultiValue stringUnpack(LuaVM& vm, ValueSpan args, unsigned line);

// string_patterns.cpp
MultiValue stringFind(LuaVM& vm, ValueSpan args, unsigned line);
MultiValue stringMatch(LuaVM& vm, ValueSpan args, unsigned line);
MultiValue stringGmatch(LuaVM& vm, ValueSpan args, unsigned line);
MultiValue stringGsub(LuaVM& vm, ValueSpan args, unsigned line);

// table_functions.cpp
MultiValue tableRemove(LuaVM& vm, ValueSpan args, unsigned line);
MultiValue tableConcat(LuaVM& vm, ValueSpan args, unsigned line);
MultiValue tableSort(LuaVM& vm, ValueSpan args, unsigned line);

// math_functions.cpp
MultiValue mathMin(LuaVM& vm, ValueSpan args, unsigned line);
MultiValue mathMax(LuaVM& vm, ValueSpan args, unsigned line);
MultiValue mathFloor(LuaVM& vm, ValueSpan args, unsigned line);

// files/file_functions.cpp
MultiValue ioOpen(LuaVM& vm, ValueSpan args, unsigned line);
MultiValue ioWrite(LuaVM& vm, ValueSpan args, unsigned line);

// os_functions.cpp
MultiValue osExecute(LuaVM& vm, ValueSpan args, unsigned line);
MultiValue osExit(LuaVM& vm, ValueSpan args, unsigned line);

}  // namespace tarvel::lua::internal
