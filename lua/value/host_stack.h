#pragma once

#include <cstddef>
#include <cstdint>

// The stack of the thread that an interpreter runs on, or one that its host switched to: how much
// of it is left, and how much each of the interpreter's recursions takes.

namespace tarvel::lua::internal {

// Frames are several times as large in builds without optimisation and in those with sanitizers,
// which define TARVELLUA_WIDE_FRAMES.
#if defined(TARVELLUA_WIDE_FRAMES) || !defined(__OPTIMIZE__)
inline constexpr bool kWideFrames = true;
#else
inline constexpr bool kWideFrames = false;
#endif

// In bytes of the stack, at most. Whoever is about to recurse compares them with hostStackRoom(),
// so what stands here is too much rather than too little.
namespace stack_cost {

// A level of the tree while it is executed.
inline constexpr std::uint32_t kTreeLevel = kWideFrames ? 768 : 192;
// A script's call, besides the levels of the callee's body.
inline constexpr std::uint32_t kCall = 4 * kTreeLevel;
// What a native function takes before it calls back, so that recursion through natives ends in
// time. What it takes without calling back is covered by the reserve.
inline constexpr std::uint32_t kNativeCall = 2048;
// A level of nesting in the parser, and in the passes over the tree after it.
inline constexpr std::size_t kParserLevel = kWideFrames ? 6144 : 2048;
// A level of a value that crosses between host and script, or that is printed.
inline constexpr std::size_t kConversionLevel = 2048;
// With less not even a short script can be read.
inline constexpr std::size_t kLeastForARun = std::size_t{kWideFrames ? 48 : 16} << 10;

// std::regex: what was measured with g++ and clang, optimised or not, and half as much again at
// least. Matching takes up to 320 bytes for a state; compiling up to 143 for each element of a
// sequence, 560 for each open group, and something whatever the expression is.
inline constexpr std::size_t kRegexFactor = kWideFrames ? 4 : 1;
inline constexpr std::size_t kRegexState = 512 * kRegexFactor;
inline constexpr std::size_t kRegexElement = 256 * kRegexFactor;
inline constexpr std::size_t kRegexGroup = 1024 * kRegexFactor;
inline constexpr std::size_t kRegexCompiler = 8192 * kRegexFactor;

// Kept free for what runs at the deepest point: the C++ library, the unwinder, a native function's
// own frames.
inline constexpr std::size_t kReserve = std::size_t{96} << 10;

}  // namespace stack_cost

// The stack pointer of the host's stack; it grows downward.
inline std::uintptr_t hostStackPointer() noexcept {
#if defined(__x86_64__)
  std::uintptr_t pointer;
  asm("mov %%rsp, %0" : "=r"(pointer));
  return pointer;
#elif defined(__aarch64__)
  std::uintptr_t pointer;
  asm("mov %0, sp" : "=r"(pointer));
  return pointer;
#else
  return reinterpret_cast<std::uintptr_t>(__builtin_frame_address(0));
#endif
}

// The stack that the system gave to this thread.
struct ThreadStack {
  std::uintptr_t low = 0;
  std::uintptr_t high = 0;  // 0: not asked for yet, or unknown
  std::uintptr_t floor = 0;

  bool contains(std::uintptr_t pointer) const noexcept { return pointer > low && pointer <= high; }
};
[[gnu::tls_model("initial-exec")]] inline constinit thread_local ThreadStack threadStack;

// For a pointer that `threadStack`, as far as it is known, does not contain.
std::uintptr_t findHostStackFloor(std::uintptr_t here) noexcept;

// The lowest stack pointer that code of this thread may reach and still have room for library calls
// and for raising an exception. Derived from the real bounds of the thread's stack; on a stack that
// the host switched to itself, whose bounds nobody knows, from where a HostStackScope began.
inline std::uintptr_t hostStackFloor() noexcept {
  const std::uintptr_t here = hostStackPointer();
  return threadStack.contains(here) ? threadStack.floor : findHostStackFloor(here);
}

// Notes the floor for everything that runs on this stack while it lives. Stands around whatever
// recurses as deep as the stack allows. Those of several stacks may end in any order, and on
// another thread than they began on.
class HostStackScope {
 public:
  HostStackScope() noexcept {
    const std::uintptr_t here = hostStackPointer();
    if (threadStack.contains(here)) [[likely]] {
      floor_ = threadStack.floor;
      isListed_ = false;
    } else {
      enter(here);
    }
  }
  ~HostStackScope() {
    if (isListed_) leave();
  }
  HostStackScope(const HostStackScope&) = delete;
  HostStackScope& operator=(const HostStackScope&) = delete;

  // As hostStackFloor() says on this stack.
  std::uintptr_t floor() const noexcept { return floor_; }

 private:
  friend std::uintptr_t findHostStackFloor(std::uintptr_t here) noexcept;
  void enter(std::uintptr_t here) noexcept;
  void leave() noexcept;
  static std::uintptr_t floorOfSwitchedStack(std::uintptr_t here) noexcept;

  std::uintptr_t floor_;
  bool isListed_;            // on a stack that the host switched to
  HostStackScope* earlier_;  // of those that are listed
};

// Bytes of the host's stack that are left above the floor.
std::size_t hostStackRoom() noexcept;

}  // namespace tarvel::lua::internal
