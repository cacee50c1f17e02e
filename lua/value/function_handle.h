#pragma once

#include <tarvel/lua/lua_vm.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <utility>

#include "lua/value/errors.h"
#include "lua/value/heap_resource.h"
#include "lua/value/multi_value.h"
#include "lua/value/value.h"

namespace tarvel::lua::internal {

struct FunctionExpr;
class Heap;

// A function of the library or the host. `site` is that of the call. The arguments are
// borrowed; the results are owned by the caller. Failure is an exception, never a result.
using NativeFunction = std::function<MultiValue(LuaVM&, ValueSpan arguments, Site site)>;

// A function of the library that gives exactly one value and runs nothing of a script or the host,
// so that its call needs neither room for other calls nor a list of results. The value is owned, as
// those of the others are.
using LeafFunction = Value (*)(LuaVM&, ValueSpan arguments, Site site);

// A leaf function's answer to one argument, where that takes no memory but for the result;
// otherwise kNotAnswered, and nothing has happened. Borrows the argument.
using UnaryFunction = Value (*)(LuaVM::Impl& interpreter, Value argument);

// What function values share: a script's syntax tree, or one native function.
struct FunctionCode : HeapResource {
  std::uint64_t count = 1;

  explicit FunctionCode(Heap& heap) noexcept : HeapResource(heap) {}

  void addReference() noexcept { ++count; }
  void removeReference() noexcept {
    if (--count != 0) return;
    leaveHeap();
    delete this;
  }
};

struct NativeCode : FunctionCode {
  // Calls the function in frame[0] with the `count` values behind it, which stay where they are.
  // Returns a completion (completion.h); several results stand behind the arguments, or from
  // frame[0] on where the function has released what stood there.
  using DirectCall = Value (*)(LuaVM::Impl& interpreter, Value* frame, std::uint32_t count,
                               Site site);

  NativeCode(Heap& heap, NativeFunction nativeFunction) noexcept
      : FunctionCode(heap), function(std::move(nativeFunction)) {}

  // One of these four is what a call runs.
  LeafFunction leaf = nullptr;
  DirectCall direct = nullptr;
  // Does all that belongs to a call, so that nothing else stands between a script and the function:
  // it makes room on the stack and releases what stands in the frame, as completion.h says.
  DirectCall whole = nullptr;
  NativeFunction function;  // may be empty; calling it is then a script error

  UnaryFunction unary = nullptr;  // beside `leaf`, where there is one

 private:
  void close() noexcept override { const NativeFunction closed = std::exchange(function, nullptr); }
};

// A function value: a script closure or a native function.
struct FunctionObject : Object {
  const FunctionExpr* body;  // null for a native function
  FunctionCode* code;        // owned
  StringObject* name;        // owned
  // The handle by which the host knows the function, while there is one.
  LuaFunctionHandle* exported = nullptr;
  std::uint64_t captureCount = 0;

  // What the closure captured, owned, in the order of FunctionExpr::captures: the value of a
  // variable, or the Environment that is its home.
  Value* captures() noexcept { return reinterpret_cast<Value*>(this + 1); }

  // Return an owned reference. A closure shares what it is given, and the caller fills in its
  // captures before anything else happens; a native function takes over `nativeName`.
  static FunctionObject* createClosure(Heap& heap, const FunctionExpr* functionBody,
                                       FunctionCode* chunk, StringObject* declaredName,
                                       std::uint64_t captureCount);
  static FunctionObject* createNative(Heap& heap, StringObject* nativeName,
                                      NativeFunction function);
  static FunctionObject* createNative(Heap& heap, StringObject* nativeName,
                                      std::unique_ptr<NativeCode> code);

  bool isNative() const noexcept { return body == nullptr; }
  static std::size_t blockBytes(std::uint64_t captureCount) noexcept {
    return sizeof(FunctionObject) + captureCount * sizeof(Value);
  }
};

static_assert(sizeof(FunctionObject) % alignof(Value) == 0);

}  // namespace tarvel::lua::internal
