#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace tarvel::lua {

// A script that was checked, with the name that its error messages show, as it is kept in a
// "bytecode" file. The file holds the source text, not compiled code. All numbers in it are
// unsigned, of 32 bits, lowest byte first:
//
//   offset        size
//   0             4      "TLBC"
//   4             4      version, 1
//   8             4      N
//   12            N      chunk name
//   12 + N        4      M
//   16 + N        M      source
struct ScriptContainer {
  std::string chunkName;
  std::string source;
};

inline constexpr std::string_view kBytecodeMagic = "TLBC";
inline constexpr std::uint32_t kBytecodeVersion = 1;

// The bytes of a container's file. Throws std::runtime_error for a text whose length does not fit
// into its field.
std::string buildContainer(const ScriptContainer& container);

// Bytes behind the source are ignored. Throws std::runtime_error with one of "bytecode file is too
// small", "invalid TarvelLua bytecode header", "unsupported TarvelLua bytecode version", and what
// readString throws.
ScriptContainer parseContainer(std::string_view bytes);

// Reads one string with its length in front, and moves the cursor behind it. Throws
// std::runtime_error "bytecode is truncated" or "bytecode string exceeds file size".
std::string readString(std::string_view bytes, std::size_t& cursor);

}  // namespace tarvel::lua
