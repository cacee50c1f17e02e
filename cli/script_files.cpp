#include "cli/script_files.h"

#include <array>
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <new>
#include <stdexcept>
#include <system_error>

namespace tarvel::lua {

namespace {

// Far beyond any script; a device may never end.
constexpr std::size_t kLargestFile = std::size_t{1} << 30;  // bytes
constexpr std::size_t kPieceBytes = std::size_t{64} << 10;

[[noreturn]] void fail(const char* failure, const std::string& path) {
  throw std::runtime_error(failure + path);
}

// A stream without memory to open a file throws or fails like one without the file.
template <class Stream>
Stream openFile(const std::string& path, std::ios::openmode mode, const char* failure) {
  errno = 0;
  Stream file(path, mode);
  if (!file && errno == ENOMEM) throw std::bad_alloc();
  if (!file) fail(failure, path);
  return file;
}

// A directory can be opened, but not read.
std::ifstream openForReading(const std::string& path, const char* openFailure) {
  auto file = openFile<std::ifstream>(path, std::ios::in | std::ios::binary, openFailure);
  std::error_code ignored;
  if (std::filesystem::is_directory(path, ignored)) fail(openFailure, path);
  return file;
}

// A device that is full, or whatever else was there before, stays.
void removeRegularFile(const std::filesystem::path& target) noexcept {
  std::error_code ignored;
  if (std::filesystem::is_regular_file(target, ignored)) std::filesystem::remove(target, ignored);
}

}  // namespace

std::string readScriptFile(const std::string& path, const char* openFailure) {
  std::ifstream file = openForReading(path, openFailure);
  std::string text;
  std::array<char, kPieceBytes> piece;
  do {
    file.read(piece.data(), piece.size());
    text.append(piece.data(), static_cast<std::size_t>(file.gcount()));
    if (text.size() > kLargestFile) fail("file is too large: ", path);
  } while (file);
  if (file.bad()) fail("failed to read file: ", path);
  return text;
}

std::string readContainerFile(const std::string& path) {
  std::ifstream file = openForReading(path, "failed to open file: ");
  file.seekg(0, std::ios::end);
  const std::streamoff size = file.tellg();
  if (size < 0) fail("failed to size file: ", path);
  if (static_cast<std::size_t>(size) > kLargestFile) fail("file is too large: ", path);
  file.seekg(0);
  std::string bytes(static_cast<std::size_t>(size), '\0');
  file.read(bytes.data(), size);
  if (!file) fail("failed to read file: ", path);
  return bytes;
}

bool readScriptLine(std::istream& input, std::string& line) {
  line.clear();
  using Bytes = std::istream::traits_type;
  for (int byte = input.rdbuf()->sbumpc(); byte != '\n'; byte = input.rdbuf()->sbumpc()) {
    if (byte == Bytes::eof()) return !line.empty();
    line.push_back(Bytes::to_char_type(byte));
    if (line.size() > kLargestFile) throw std::runtime_error("line is too long");
  }
  return true;
}

void writeContainerFile(const std::string& path, std::string_view bytes) {
  // Made first, so that removing half a file later cannot fail for want of memory.
  std::error_code ignored;
  const std::filesystem::path target = std::filesystem::weakly_canonical(path, ignored);
  auto file = openFile<std::ofstream>(path, std::ios::out | std::ios::binary | std::ios::trunc,
                                      "failed to open file for writing: ");
  file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  file.close();
  if (file) return;
  removeRegularFile(target);
  fail("failed to write file: ", path);
}

}  // namespace tarvel::lua
