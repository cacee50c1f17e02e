#include "cli/script_files.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <new>
#include <stdexcept>
#include <utility>

// With the system's own calls: the streams of the C++ library would set up their locales whenever
// the program starts.

namespace tarvel::lua {

namespace {

// Far beyond any script; a device may never end.
constexpr std::size_t kLargestFile = std::size_t{1} << 30;  // bytes
constexpr std::size_t kPieceBytes = std::size_t{64} << 10;
constexpr mode_t kNewFilePermissions = 0666;  // before the process's mask

[[noreturn]] void fail(const char* failure, const std::string& path) {
  throw std::runtime_error(failure + path);
}

class OpenFile {
 public:
  // Throws std::bad_alloc, or std::runtime_error with the failure and the path.
  OpenFile(const std::string& path, int flags, const char* failure) {
    do {
      descriptor_ = ::open(path.c_str(), flags | O_CLOEXEC, kNewFilePermissions);
    } while (descriptor_ < 0 && errno == EINTR);
    if (descriptor_ >= 0) return;
    if (errno == ENOMEM) throw std::bad_alloc();
    fail(failure, path);
  }
  ~OpenFile() { close(); }
  OpenFile(OpenFile&& other) noexcept : descriptor_(std::exchange(other.descriptor_, -1)) {}
  OpenFile(const OpenFile&) = delete;
  OpenFile& operator=(const OpenFile&) = delete;

  bool isOfType(mode_t type) const noexcept {
    struct stat status;
    return fstat(descriptor_, &status) == 0 && (status.st_mode & S_IFMT) == type;
  }
  // Negative where it has no size.
  off_t size() const noexcept {
    const off_t end = lseek(descriptor_, 0, SEEK_END);
    lseek(descriptor_, 0, SEEK_SET);
    return end;
  }

  // How many bytes were read: 0 at the end of the file, negative after a failure.
  ssize_t read(char* bytes, std::size_t most) const noexcept {
    ssize_t count;
    do {
      count = ::read(descriptor_, bytes, most);
    } while (count < 0 && errno == EINTR);
    return count;
  }
  bool write(std::string_view bytes) const noexcept {
    while (!bytes.empty()) {
      const ssize_t count = ::write(descriptor_, bytes.data(), bytes.size());
      if (count > 0) bytes.remove_prefix(static_cast<std::size_t>(count));
      if (count == 0 || (count < 0 && errno != EINTR)) return false;
    }
    return true;
  }
  bool close() noexcept {
    const int descriptor = descriptor_;
    descriptor_ = -1;
    return descriptor < 0 || ::close(descriptor) == 0 || errno == EINTR;
  }

 private:
  int descriptor_;
};

// A directory can be opened, but not read.
OpenFile openForReading(const std::string& path, const char* openFailure) {
  OpenFile file(path, O_RDONLY, openFailure);
  if (file.isOfType(S_IFDIR)) fail(openFailure, path);
  return file;
}

}  // namespace

std::string readScriptFile(const std::string& path, const char* openFailure) {
  const OpenFile file = openForReading(path, openFailure);
  std::string text;
  std::array<char, kPieceBytes> piece;
  while (const ssize_t count = file.read(piece.data(), piece.size())) {
    if (count < 0) fail("failed to read file: ", path);
    text.append(piece.data(), static_cast<std::size_t>(count));
    if (text.size() > kLargestFile) fail("file is too large: ", path);
  }
  return text;
}

std::string readContainerFile(const std::string& path) {
  const OpenFile file = openForReading(path, "failed to open file: ");
  const off_t size = file.size();
  if (size < 0) fail("failed to size file: ", path);
  if (static_cast<std::size_t>(size) > kLargestFile) fail("file is too large: ", path);
  std::string bytes(static_cast<std::size_t>(size), '\0');
  for (std::size_t arrived = 0; arrived < bytes.size();) {
    const ssize_t count = file.read(bytes.data() + arrived, bytes.size() - arrived);
    if (count <= 0) fail("failed to read file: ", path);
    arrived += static_cast<std::size_t>(count);
  }
  return bytes;
}

bool readScriptLine(std::FILE* input, std::string& line) {
  line.clear();
  for (int byte = std::getc(input); byte != '\n'; byte = std::getc(input)) {
    if (byte == EOF) return !line.empty() && std::ferror(input) == 0;  // not half a line
    line.push_back(static_cast<char>(byte));
    if (line.size() > kLargestFile) throw std::runtime_error("line is too long");
  }
  return true;
}

void writeContainerFile(const std::string& path, std::string_view bytes) {
  OpenFile file(path, O_WRONLY | O_CREAT | O_TRUNC, "failed to open file for writing: ");
  // A device that is full, or whatever else was there before, stays.
  const bool isRegular = file.isOfType(S_IFREG);
  std::array<char, PATH_MAX> target;  // links would stay, too
  const bool isKnown = realpath(path.c_str(), target.data()) != nullptr;
  const bool isWritten = file.write(bytes);
  if (file.close() && isWritten) return;
  if (isRegular && isKnown) unlink(target.data());
  fail("failed to write file: ", path);
}

}  // namespace tarvel::lua
