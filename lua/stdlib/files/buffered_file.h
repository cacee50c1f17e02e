#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

namespace tarvel::lua::internal {

// What a file operation throws; the text is the message that the script gets.
struct FileError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

// How a file is opened. Bytes are the same in text and binary mode here.
struct OpenMode {
  bool read = false;
  bool write = false;
  bool append = false;    // every write goes to the file's end
  bool truncate = false;  // the file starts empty; cannot be had together with append

  // From the letters r, w, a and b anywhere in the text. Deliberate: a text with none of r, w and a
  // reads, so that a wrong mode never destroys a file.
  static OpenMode fromLetters(std::string_view letters) noexcept;
};

// An open file with a buffer for each direction, so that reading and writing may alternate freely.
// Both directions share one position, as far as the file has positions at all.
//
// Invariants: bytes wait in the write buffer only while the read buffer is empty, except in a file
// that cannot seek, whose two directions are independent; the system's position is behind the
// unread bytes and where the waiting ones go.
//
class BufferedFile {
 public:
  // Whether any file of this process was destroyed, not closed, with text in it that could not be
  // stored. May be called from any thread.
  static bool textWasLost() noexcept;

  // Null when the file cannot be opened, or is a directory.
  static std::unique_ptr<BufferedFile> open(const std::string& path, OpenMode mode);

  // Stores what is waiting and closes the file; see textWasLost.
  ~BufferedFile();
  BufferedFile(const BufferedFile&) = delete;
  BufferedFile& operator=(const BufferedFile&) = delete;

  // ---- Reading: looking at bytes that have arrived, asking for more, taking them. ----
  // Throws FileError "failed to read file" when the file is not open for reading, and "failed to
  // write file" when text that waits to be written cannot be stored.
  void startReading();
  std::string_view unread() const noexcept {
    return {readBuffer_.get() + readStart_, readEnd_ - readStart_};
  }
  // Adds bytes to unread(), of which there must be fewer than kBufferBytes. False at the end of the
  // file; that may be asked again, because files grow. Throws FileError "failed to read file".
  bool readMore();
  // Reads up to `most` bytes past an empty unread() straight to `out`, and returns how many; 0 at
  // the end of the file. Throws as readMore.
  std::size_t readInto(char* out, std::size_t most);
  void consume(std::size_t bytes) noexcept { readStart_ += bytes; }
  // How many bytes are left to read, unread() included: a guess, for reserving memory.
  std::size_t estimateRest() const noexcept;

  // ---- Writing ----
  // Throws FileError "failed to write file", also when earlier text turns out not to fit.
  void write(std::string_view text);

  // The new position. No value when the file refuses to go there, which changes nothing. `whence`
  // is SEEK_SET, SEEK_CUR or SEEK_END. Throws FileError "failed to write file".
  std::optional<std::int64_t> seek(std::int64_t offset, int whence);

  // Closes the file in any case, then throws FileError "failed to write file" if something could
  // not be stored.
  void close();

  static constexpr std::size_t kBufferBytes = std::size_t{32} << 10;

 private:
  explicit BufferedFile(OpenMode mode) noexcept : mode_(mode) {}

  bool flush() noexcept;
  bool closeDescriptor() noexcept;
  void giveBackUnread();

  int descriptor_ = -1;  // -1: closed
  OpenMode mode_;
  // Each buffer is made with its first use.
  std::unique_ptr<char[]> readBuffer_;
  std::size_t readStart_ = 0;
  std::size_t readEnd_ = 0;
  std::unique_ptr<char[]> writeBuffer_;
  std::size_t waiting_ = 0;  // bytes at the write buffer's start
};

}  // namespace tarvel::lua::internal
