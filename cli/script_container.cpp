#include "cli/script_container.h"

#include <limits>
#include <stdexcept>

namespace tarvel::lua {

namespace {

constexpr std::size_t kNumberBytes = 4;
constexpr std::size_t kHeaderBytes = kBytecodeMagic.size() + kNumberBytes;

void appendNumber(std::string& bytes, std::uint32_t number) {
  for (std::size_t i = 0; i < kNumberBytes; ++i) {
    bytes.push_back(static_cast<char>(number >> (8 * i) & 0xFF));
  }
}

void appendString(std::string& bytes, const std::string& text) {
  if (text.size() > std::numeric_limits<std::uint32_t>::max()) {
    throw std::runtime_error("failed to write bytecode");
  }
  appendNumber(bytes, static_cast<std::uint32_t>(text.size()));
  bytes.append(text);
}

// The bytes must be there.
std::uint32_t numberAt(std::string_view bytes, std::size_t offset) {
  std::uint32_t number = 0;
  for (std::size_t i = kNumberBytes; i-- > 0;) {
    number = number << 8 | static_cast<unsigned char>(bytes[offset + i]);
  }
  return number;
}

}  // namespace

std::string buildContainer(const ScriptContainer& container) {
  std::string bytes(kBytecodeMagic);
  appendNumber(bytes, kBytecodeVersion);
  appendString(bytes, container.chunkName);
  appendString(bytes, container.source);
  return bytes;
}

ScriptContainer parseContainer(std::string_view bytes) {
  if (bytes.size() < kHeaderBytes) throw std::runtime_error("bytecode file is too small");
  if (!bytes.starts_with(kBytecodeMagic)) {
    throw std::runtime_error("invalid TarvelLua bytecode header");
  }
  if (numberAt(bytes, kBytecodeMagic.size()) != kBytecodeVersion) {
    throw std::runtime_error("unsupported TarvelLua bytecode version");
  }
  std::size_t cursor = kHeaderBytes;
  ScriptContainer container;
  container.chunkName = readString(bytes, cursor);
  container.source = readString(bytes, cursor);
  return container;
}

std::string readString(std::string_view bytes, std::size_t& cursor) {
  if (cursor + kNumberBytes > bytes.size()) throw std::runtime_error("bytecode is truncated");
  const std::size_t length = numberAt(bytes, cursor);
  cursor += kNumberBytes;
  if (cursor + length > bytes.size()) {
    throw std::runtime_error("bytecode string exceeds file size");
  }
  std::string text(bytes.substr(cursor, length));
  cursor += length;
  return text;
}

}  // namespace tarvel::lua
