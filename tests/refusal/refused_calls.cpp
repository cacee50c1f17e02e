#include "tests/refusal/refused_calls.h"

#include <fcntl.h>
#include <pthread.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdarg>
#include <cstdint>
#include <optional>

#include "tests/refusal/refused_memory.h"

namespace tarvel::lua::refusal {

namespace {

// Only one thread at a time makes calls here.
Fault current;
std::size_t calls = 0;  // of its kind

// 0, an errno, or kShort.
int faultOf(Call call) noexcept {
  if (call != current.call) return 0;
  const std::size_t number = calls++;
  const bool isHit = current.withAllLater ? number >= current.number : number == current.number;
  return isHit ? current.error : 0;
}

// The count of a read or a write may become one byte.
bool isRefused(Call call, std::size_t* count = nullptr) noexcept {
  const int fault = faultOf(call);
  if (fault > 0) errno = fault;
  if (fault == kShort) *count = std::min<std::size_t>(1, *count);
  return fault > 0;
}

}  // namespace

void injectFault(const Fault& fault) noexcept {
  current = fault;
  calls = 0;
  static std::optional<MemoryRefusal> memory;
  memory.emplace(fault.call == Call::Memory ? fault.number : SIZE_MAX,
                 fault.withAllLater ? Refused::WithAllLater : Refused::Alone);
}

bool wasHit() noexcept {
  return (current.call == Call::Memory ? MemoryRefusal::count() : calls) > current.number;
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
  return isRefused(Call::Read, &count) ? -1 : __real_read(file, bytes, count);
}

ssize_t __real_write(int file, const void* bytes, std::size_t count);
ssize_t __wrap_write(int file, const void* bytes, std::size_t count) {
  return isRefused(Call::Write, &count) ? -1 : __real_write(file, bytes, count);
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
