#include "tests/refusal/refused_calls.h"

#include <fcntl.h>
#include <pthread.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <cstdarg>
#include <cstdint>

#include "tests/refusal/refused_memory.h"

namespace tarvel::lua::refusal {

namespace {

// Only one thread at a time makes calls here.
Fault current;
std::array<std::atomic<std::size_t>, 9> counts{};

// 0, an errno, or kShort.
int faultOf(Call call) noexcept {
  const std::size_t number = counts[static_cast<std::size_t>(call)]++;
  if (call != current.call) return 0;
  const bool isHit = current.withAllLater ? number >= current.number : number == current.number;
  return isHit ? current.error : 0;
}

bool isRefused(Call call) noexcept {
  const int fault = faultOf(call);
  if (fault > 0) errno = fault;
  return fault > 0;
}

}  // namespace

void injectFault(const Fault& fault) noexcept {
  current = fault;
  for (auto& count : counts) count = 0;
  const bool isMemory = fault.call == Call::Memory;
  refuseInProcess(isMemory ? fault.number : SIZE_MAX,
                  fault.withAllLater ? Refused::WithAllLater : Refused::Alone);
}

std::size_t callCount(Call call) noexcept {
  return call == Call::Memory ? countInProcess() : counts[static_cast<std::size_t>(call)].load();
}

}  // namespace tarvel::lua::refusal

using namespace tarvel::lua::refusal;

extern "C" {
int __real_open(const char* path, int flags, ...);
int __wrap_open(const char* path, int flags, ...) {
  va_list more;
  va_start(more, flags);
  const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(more, mode_t) : 0;
  va_end(more);
  return isRefused(Call::Open) ? -1 : __real_open(path, flags, mode);
}

ssize_t __real_read(int file, void* bytes, std::size_t count);
ssize_t __wrap_read(int file, void* bytes, std::size_t count) {
  const int fault = faultOf(Call::Read);
  if (fault > 0) errno = fault;
  return fault > 0 ? -1
                   : __real_read(file, bytes, fault < 0 ? std::min<std::size_t>(1, count) : count);
}

ssize_t __real_write(int file, const void* bytes, std::size_t count);
ssize_t __wrap_write(int file, const void* bytes, std::size_t count) {
  const int fault = faultOf(Call::Write);
  if (fault > 0) errno = fault;
  return fault > 0 ? -1
                   : __real_write(file, bytes, fault < 0 ? std::min<std::size_t>(1, count) : count);
}

// What fails is closed all the same.
int __real_close(int file);
int __wrap_close(int file) {
  const int result = __real_close(file);
  return isRefused(Call::Close) ? -1 : result;
}

off_t __real_lseek(int file, off_t offset, int whence);
off_t __wrap_lseek(int file, off_t offset, int whence) {
  return isRefused(Call::Seek) ? -1 : __real_lseek(file, offset, whence);
}

int __real_fstat(int file, struct stat* status);
int __wrap_fstat(int file, struct stat* status) {
  return isRefused(Call::Status) ? -1 : __real_fstat(file, status);
}

int __real_pthread_create(pthread_t* thread, const pthread_attr_t* attributes, void* (*body)(void*),
                          void* argument);
int __wrap_pthread_create(pthread_t* thread, const pthread_attr_t* attributes, void* (*body)(void*),
                          void* argument) {
  const int fault = faultOf(Call::Thread);
  return fault > 0 ? fault : __real_pthread_create(thread, attributes, body, argument);
}
}

namespace tarvel::lua::refusal {

// As a stream of the C library does: what was not taken is offered again. Nothing interrupts the
// program's own.
void useOwnStandardStreams() {
  cookie_io_functions_t output{};
  output.write = [](void*, const char* bytes, std::size_t count) -> ssize_t {
    std::size_t written = 0;
    while (written < count) {
      const ssize_t more = __wrap_write(STDOUT_FILENO, bytes + written, count - written);
      if (more < 0 && errno == EINTR) continue;
      if (more < 0) return 0;
      written += static_cast<std::size_t>(more);
    }
    return static_cast<ssize_t>(written);
  };
  stdout = fopencookie(nullptr, "w", output);
  cookie_io_functions_t input{};
  input.read = [](void*, char* bytes, std::size_t count) {
    ssize_t arrived;
    do {
      arrived = __wrap_read(STDIN_FILENO, bytes, count);
    } while (arrived < 0 && errno == EINTR);
    return arrived;
  };
  stdin = fopencookie(nullptr, "r", input);
}

}  // namespace tarvel::lua::refusal
