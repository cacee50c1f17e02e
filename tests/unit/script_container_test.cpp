#include "cli/script_container.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <string_view>

namespace tarvel::lua {
namespace {

using namespace std::string_literals;

std::string errorOf(const std::string& bytes) {
  try {
    parseContainer(bytes);
    return "no error";
  } catch (const std::runtime_error& error) {
    return error.what();
  }
}

const ScriptContainer kSmall = {"a.lua", "return 1"};
const std::string kSmallBytes = "TLBC\1\0\0\0\5\0\0\0a.lua\10\0\0\0return 1"s;

TEST(ScriptContainerTest, WritesTheseBytes) {
  EXPECT_EQ(buildContainer(kSmall), kSmallBytes);
  EXPECT_EQ(buildContainer({"", ""}), "TLBC\1\0\0\0\0\0\0\0\0\0\0\0"s);
  // A length takes all its bytes, the lowest first.
  const std::string bytes = buildContainer({"n", std::string(0x10203, 'x')});
  EXPECT_EQ(bytes.substr(0, 17), "TLBC\1\0\0\0\1\0\0\0n\3\2\1\0"s);
  EXPECT_EQ(bytes.size(), std::size_t{17 + 0x10203});
}

TEST(ScriptContainerTest, ReadsWhatWasWritten) {
  std::string everyByte;
  for (int byte = 0; byte < 256; ++byte) everyByte.push_back(static_cast<char>(byte));
  const ScriptContainer cases[] = {
      kSmall,
      {"", ""},
      {"", "x = 1"},
      {"name only", ""},
      {"line\r\nfeeds", "a\r\nb\n\r\0c"s},
      {everyByte, everyByte + everyByte},
      {std::string(300, 'n'), std::string(70000, '\xFF')},
  };
  for (const ScriptContainer& written : cases) {
    const ScriptContainer read = parseContainer(buildContainer(written));
    EXPECT_EQ(read.chunkName, written.chunkName);
    EXPECT_EQ(read.source, written.source);
  }
}

TEST(ScriptContainerTest, IgnoresWhatFollows) {
  const ScriptContainer read = parseContainer(kSmallBytes + "more"s);
  EXPECT_EQ(read.chunkName, kSmall.chunkName);
  EXPECT_EQ(read.source, kSmall.source);
}

// Which of a file's first bytes each message is about: the file's end may stand anywhere in them.
TEST(ScriptContainerTest, RefusesEveryTruncation) {
  const struct {
    std::size_t end;  // of the part
    const char* message;
  } parts[] = {
      {8, "bytecode file is too small"},  // magic and version
      {12, "bytecode is truncated"},      // length of the chunk name
      {17, "bytecode string exceeds file size"},
      {21, "bytecode is truncated"},  // length of the source
      {29, "bytecode string exceeds file size"},
  };
  std::size_t size = 0;
  for (const auto& part : parts) {
    for (; size < part.end; ++size) {
      EXPECT_EQ(errorOf(kSmallBytes.substr(0, size)), part.message) << size << " bytes";
    }
  }
  EXPECT_EQ(size, kSmallBytes.size());
  EXPECT_EQ(errorOf(kSmallBytes), "no error");
}

// Each byte in front of the strings, changed in each bit.
TEST(ScriptContainerTest, RefusesCorruption) {
  const auto corrupted = [](std::size_t offset, int bit) {
    std::string bytes = kSmallBytes;
    bytes[offset] = static_cast<char>(bytes[offset] ^ 1 << bit);
    return bytes;
  };
  for (int bit = 0; bit < 8; ++bit) {
    for (std::size_t offset = 0; offset < 4; ++offset) {
      EXPECT_EQ(errorOf(corrupted(offset, bit)), "invalid TarvelLua bytecode header") << offset;
    }
    for (std::size_t offset = 4; offset < 8; ++offset) {
      EXPECT_EQ(errorOf(corrupted(offset, bit)), "unsupported TarvelLua bytecode version")
          << offset;
    }
    // The upper bytes of a length only make it too large.
    for (const std::size_t offset : {9u, 10u, 11u, 18u, 19u, 20u}) {
      EXPECT_EQ(errorOf(corrupted(offset, bit)), "bytecode string exceeds file size") << offset;
    }
  }
}

TEST(ScriptContainerTest, ChecksInOrder) {
  const struct {
    std::string bytes;
    const char* message;
  } cases[] = {
      {"", "bytecode file is too small"},
      {"nothing", "bytecode file is too small"},
      {"TLBC\2\0\0"s, "bytecode file is too small"},
      {"tlbc\1\0\0\0"s, "invalid TarvelLua bytecode header"},
      {"XXXX\2\0\0\0"s, "invalid TarvelLua bytecode header"},
      {"TLBC\2\0\0\0"s, "unsupported TarvelLua bytecode version"},
      {"TLBC\0\0\0\0"s, "unsupported TarvelLua bytecode version"},
      {"TLBC\0\0\0\1"s, "unsupported TarvelLua bytecode version"},
      {"TLBC\1\0\0\0"s, "bytecode is truncated"},
      {"TLBC\1\0\0\0\0\0\0\0"s, "bytecode is truncated"},
      {"TLBC\1\0\0\0\1\0\0\0"s, "bytecode string exceeds file size"},
      {"TLBC\1\0\0\0\377\377\377\377name"s, "bytecode string exceeds file size"},
      {"TLBC\1\0\0\0\0\0\0\0\1\0\0\0"s, "bytecode string exceeds file size"},
  };
  for (const auto& c : cases) EXPECT_EQ(errorOf(c.bytes), c.message) << c.bytes;
}

TEST(ScriptContainerTest, ReadStringMovesTheCursor) {
  const std::string bytes = "??\3\0\0\0one\0\0\0\0\1\0\0\0x"s;
  std::size_t cursor = 2;
  EXPECT_EQ(readString(bytes, cursor), "one");
  EXPECT_EQ(cursor, std::size_t{9});
  EXPECT_EQ(readString(bytes, cursor), "");
  EXPECT_EQ(readString(bytes, cursor), "x");
  EXPECT_EQ(cursor, bytes.size());
  EXPECT_THROW(readString(bytes, cursor), std::runtime_error);
}

}  // namespace
}  // namespace tarvel::lua
