#include "lua/stdlib/files/buffered_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>

namespace tarvel::lua::internal {

namespace {

std::atomic<bool> lostText{false};

constexpr mode_t kNewFilePermissions = 0666;  // before the process's mask

[[noreturn]] void failReading() { throw FileError("failed to read file"); }
[[noreturn]] void failWriting() { throw FileError("failed to write file"); }

int openFlags(OpenMode mode) noexcept {
  int flags = O_CLOEXEC | (!mode.write ? O_RDONLY : mode.read ? O_RDWR : O_WRONLY);
  if (mode.write) flags |= O_CREAT;
  if (mode.append) flags |= O_APPEND;
  if (mode.truncate) flags |= O_TRUNC;
  return flags;
}

int openDescriptor(const char* path, OpenMode mode) noexcept {
  int descriptor;
  do {
    descriptor = ::open(path, openFlags(mode), kNewFilePermissions);
  } while (descriptor < 0 && errno == EINTR);
  return descriptor;
}

bool isDirectory(int descriptor) noexcept {
  struct stat status;
  return fstat(descriptor, &status) == 0 && S_ISDIR(status.st_mode);
}

// How many bytes of the text the system has taken: fewer than all only after a failure.
std::size_t writeFully(int descriptor, std::string_view text) noexcept {
  std::size_t written = 0;
  while (written < text.size()) {
    const ssize_t count = ::write(descriptor, text.data() + written, text.size() - written);
    if (count > 0) {
      written += static_cast<std::size_t>(count);
    } else if (count == 0 || errno != EINTR) {
      break;
    }
  }
  return written;
}

}  // namespace

OpenMode OpenMode::fromLetters(std::string_view letters) noexcept {
  const auto has = [letters](char letter) {
    return letters.find(letter) != std::string_view::npos;
  };
  OpenMode mode;
  mode.append = has('a');
  mode.truncate = has('w');
  mode.write = mode.append || mode.truncate;
  mode.read = has('r') || !mode.write;
  return mode;
}

std::unique_ptr<BufferedFile> BufferedFile::open(const std::string& path, OpenMode mode) {
  if (mode.append && mode.truncate) return nullptr;
  if (path.find('\0') != std::string::npos) return nullptr;  // the system would open another file
  std::unique_ptr<BufferedFile> file(new BufferedFile(mode));
  file->descriptor_ = openDescriptor(path.c_str(), mode);
  if (file->descriptor_ < 0 || isDirectory(file->descriptor_)) return nullptr;
  // Where the first write will go; a file that is also read starts at its beginning.
  if (mode.append && !mode.read) lseek(file->descriptor_, 0, SEEK_END);
  return file;
}

BufferedFile::~BufferedFile() {
  if (descriptor_ < 0) return;
  const bool stored = flush();
  const bool closed = closeDescriptor();
  if (mode_.write && !(stored && closed)) lostText = true;
}

bool BufferedFile::textWasLost() noexcept { return lostText; }

void BufferedFile::close() {
  const bool stored = flush();
  const bool closed = closeDescriptor();
  if (!stored || !closed) failWriting();
}

bool BufferedFile::closeDescriptor() noexcept {
  const int descriptor = descriptor_;
  descriptor_ = -1;
  // Interrupted or not, the descriptor is gone: a second attempt could hit another file.
  return ::close(descriptor) == 0 || errno == EINTR;
}

// ---- Reading ------------------------------------------------------------------------------------

void BufferedFile::startReading() {
  if (!mode_.read) failReading();
  if (!flush()) failWriting();
}

bool BufferedFile::readMore() {
  if (readBuffer_ == nullptr) readBuffer_ = std::make_unique_for_overwrite<char[]>(kBufferBytes);
  if (readStart_ > 0) {
    std::copy(readBuffer_.get() + readStart_, readBuffer_.get() + readEnd_, readBuffer_.get());
    readEnd_ -= readStart_;
    readStart_ = 0;
  }
  const std::size_t count = readInto(readBuffer_.get() + readEnd_, kBufferBytes - readEnd_);
  readEnd_ += count;
  return count > 0;
}

std::size_t BufferedFile::readInto(char* out, std::size_t most) {
  ssize_t count;
  do {
    count = ::read(descriptor_, out, most);
  } while (count < 0 && errno == EINTR);
  if (count < 0) failReading();
  return static_cast<std::size_t>(count);
}

std::size_t BufferedFile::estimateRest() const noexcept {
  const std::size_t arrived = unread().size();
  struct stat status;
  if (fstat(descriptor_, &status) != 0 || !S_ISREG(status.st_mode)) return arrived;
  const off_t position = lseek(descriptor_, 0, SEEK_CUR);
  if (position < 0 || position >= status.st_size) return arrived;
  return arrived + static_cast<std::size_t>(status.st_size - position);
}

// ---- Writing ------------------------------------------------------------------------------------

void BufferedFile::write(std::string_view text) {
  if (!mode_.write) failWriting();
  giveBackUnread();
  if (text.size() > kBufferBytes - waiting_) {
    if (!flush()) failWriting();
    if (text.size() >= kBufferBytes) {
      if (writeFully(descriptor_, text) < text.size()) failWriting();
      return;
    }
  }
  if (writeBuffer_ == nullptr) writeBuffer_ = std::make_unique_for_overwrite<char[]>(kBufferBytes);
  std::copy(text.begin(), text.end(), writeBuffer_.get() + waiting_);
  waiting_ += text.size();
}

// What the system does not take keeps waiting: there may be room again when the file is closed.
bool BufferedFile::flush() noexcept {
  if (waiting_ == 0) return true;
  const std::size_t written = writeFully(descriptor_, {writeBuffer_.get(), waiting_});
  std::copy(writeBuffer_.get() + written, writeBuffer_.get() + waiting_, writeBuffer_.get());
  waiting_ -= written;
  return waiting_ == 0;
}

// Moves the system's position back to the script's. Where there are no positions the bytes stay
// unread.
void BufferedFile::giveBackUnread() {
  const std::size_t arrived = unread().size();
  if (arrived == 0) return;
  const off_t position = lseek(descriptor_, -static_cast<off_t>(arrived), SEEK_CUR);
  if (position < 0 && errno != ESPIPE) failWriting();
  if (position >= 0) readStart_ = readEnd_ = 0;
}

std::optional<std::int64_t> BufferedFile::seek(std::int64_t offset, int whence) {
  if (!flush()) failWriting();
  const auto arrived = static_cast<std::int64_t>(unread().size());
  std::int64_t target = offset;
  if (whence == SEEK_CUR && __builtin_sub_overflow(offset, arrived, &target)) return std::nullopt;
  const off_t position = lseek(descriptor_, target, whence);
  if (position < 0) return std::nullopt;
  readStart_ = readEnd_ = 0;
  return position;
}

}  // namespace tarvel::lua::internal
