#pragma once

#include <pthread.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <stdexcept>
#include <string>
#include <string_view>

#include "lua/lua_vm_impl.h"
#include "lua/value/heap.h"
#include "lua/value/host_stack.h"
#include "lua/value/string_object.h"
#include "lua/value/table.h"
#include "lua/value/value.h"

namespace tarvel::lua::internal {

// What a test may have to know about the build besides kWideFrames (host_stack.h): whether it has a
// sanitizer, whose allocator ends the process instead of refusing; and whether heaps count their
// blocks, each of which is then one of the system's.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
inline constexpr bool kSanitized = true;
#elif defined(__has_feature)
inline constexpr bool kSanitized =
    __has_feature(address_sanitizer) || __has_feature(thread_sanitizer);
#else
inline constexpr bool kSanitized = false;
#endif
#ifdef TARVELLUA_CHECKED_HEAP
inline constexpr bool kCheckedHeap = true;
#else
inline constexpr bool kCheckedHeap = false;
#endif

// A heap of its own, and what tests make in it.
class TestHeap {
 public:
  TestHeap() : heap_(Heap::create()) {}
  ~TestHeap() { heap_->removeOwner(); }
  TestHeap(const TestHeap&) = delete;
  TestHeap& operator=(const TestHeap&) = delete;

  Heap& get() const { return *heap_; }
  OwnedValue text(std::string_view bytes) const {
    return OwnedValue(Value(StringObject::create(*heap_, bytes)));
  }
  OwnedValue table(std::uint32_t arrayHint = 0, std::uint32_t entryHint = 0) const {
    return OwnedValue(Value(Table::create(*heap_, arrayHint, entryHint)));
  }

 private:
  Heap* heap_;
};

inline std::uint64_t countOf(const OwnedValue& value) { return value.get().object->count; }

// A function of the host's that calls the script's global function of this name.
inline NativeFunction callOfGlobal(const std::string& name) {
  return [name](LuaVM& vm, ValueSpan arguments, Site site) {
    LuaVM::Impl& interpreter = LuaVM::Impl::of(vm);
    const Value function = interpreter.globals.at(interpreter.globals.slotOf(name));
    if (!function.isFunction()) failRuntime(site, "attempt to call a nil value");
    return interpreter.callHandle(function.function, arguments, site);
  };
}

// Runs `body` on a thread whose stack has `bytes` and waits for its end.
inline void runOnStack(std::size_t bytes, std::function<void()> body) {
  pthread_attr_t attributes;
  pthread_attr_init(&attributes);
  pthread_t thread;
  const auto start = [](void* function) -> void* {
    (*static_cast<std::function<void()>*>(function))();
    return nullptr;
  };
  const bool started = pthread_attr_setstacksize(&attributes, bytes) == 0 &&
                       pthread_create(&thread, &attributes, start, &body) == 0;
  pthread_attr_destroy(&attributes);
  if (!started) throw std::runtime_error("cannot start a thread");
  pthread_join(thread, nullptr);
}

}  // namespace tarvel::lua::internal
