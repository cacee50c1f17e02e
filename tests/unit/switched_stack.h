#pragma once

#include <sys/mman.h>
#include <ucontext.h>
#include <unistd.h>

#include <cstddef>
#include <functional>
#include <utility>

namespace tarvel::lua::internal {

// Runs `body` on a stack that the thread switches to by itself, with a guard page below.
class SwitchedStack {
 public:
  // Tests skip builds with wide frames.
  static constexpr const char* kWhyNot =
      "a sanitizer has to be told of such a stack, and wide frames need more";

  SwitchedStack(std::size_t bytes, std::function<void()> body)
      : body_(std::move(body)),
        page_(static_cast<std::size_t>(sysconf(_SC_PAGESIZE))),
        bytes_(page_ + bytes),
        memory_(static_cast<std::byte*>(
            mmap(nullptr, bytes_, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0))) {
    mprotect(memory_, page_, PROT_NONE);
  }
  ~SwitchedStack() { munmap(memory_, bytes_); }
  SwitchedStack(const SwitchedStack&) = delete;
  SwitchedStack& operator=(const SwitchedStack&) = delete;

  // The body from its beginning.
  void begin() {
    getcontext(&context_);
    context_.uc_stack.ss_sp = memory_ + page_;
    context_.uc_stack.ss_size = bytes_ - page_;
    context_.uc_link = &host_;
    makecontext(
        &context_, [] { running_->body_(); }, 0);
    resume();
  }
  void resume() {
    running_ = this;
    swapcontext(&host_, &context_);
  }
  // To be called by the body.
  void suspend() { swapcontext(&context_, &host_); }

 private:
  static inline SwitchedStack* running_ = nullptr;

  std::function<void()> body_;
  std::size_t page_;
  std::size_t bytes_;
  std::byte* memory_;
  ucontext_t host_;
  ucontext_t context_;
};

}  // namespace tarvel::lua::internal
