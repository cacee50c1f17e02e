#pragma once

#include <tarvel/lua/lua_bridge.h>
#include <tarvel/lua/lua_vm.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>

#include "lua/value/function_handle.h"
#include "lua/value/heap.h"
#include "lua/value/table.h"
#include "lua/value/value.h"

// What the files that connect hosts and interpreters share.

namespace tarvel::lua {

// Holds a share in the function and in the heap that it lives in, so that it may outlive the
// interpreter.
struct LuaFunctionHandle::Target {
  Target(const internal::Value& borrowed, internal::Heap& functionHeap)
      : function(internal::OwnedValue::share(borrowed)), heap(functionHeap) {
    heap.addOwner();
  }
  ~Target() {
    function.get().function->exported = nullptr;
    function = internal::OwnedValue();
    heap.removeOwner();
  }
  Target(const Target&) = delete;
  Target& operator=(const Target&) = delete;

  internal::OwnedValue function;
  internal::Heap& heap;
};

namespace internal {

// The handle of a function, borrowed, in its heap.
std::shared_ptr<LuaFunctionHandle> handleOf(const Value& function, Heap& heap);

// Keys 1 to n and nothing else.
bool isSequence(Table& table) noexcept;

inline LuaVM::Impl& implOf(bridge::Interpreter* interpreter) noexcept {
  return *reinterpret_cast<LuaVM::Impl*>(interpreter);
}
inline bridge::Interpreter* interpreterOf(LuaVM::Impl& impl) noexcept {
  return reinterpret_cast<bridge::Interpreter*>(&impl);
}

// A number of keys that a host announces, as a table takes it. A wrong guess does no harm.
inline std::uint32_t tableHint(std::size_t count) noexcept {
  return static_cast<std::uint32_t>(std::min<std::size_t>(count, 1U << 20));
}

}  // namespace internal

}  // namespace tarvel::lua
