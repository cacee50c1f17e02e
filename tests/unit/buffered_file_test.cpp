#include "lua/stdlib/buffered_file.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <optional>
#include <random>
#include <string>
#include <string_view>

namespace tarvel::lua::internal {
namespace {

// A directory of its own, removed in the end.
class Folder {
 public:
  Folder() {
    std::string name = (std::filesystem::temp_directory_path() / "tarvellua-XXXXXX").string();
    path_ = mkdtemp(name.data());
  }
  ~Folder() { std::filesystem::remove_all(path_); }
  Folder(const Folder&) = delete;
  Folder& operator=(const Folder&) = delete;

  std::string file(const char* name) const { return (path_ / name).string(); }

 private:
  std::filesystem::path path_;
};

std::unique_ptr<BufferedFile> openFile(const std::string& path, std::string_view letters) {
  return BufferedFile::open(path, OpenMode::fromLetters(letters));
}

std::string readUpTo(BufferedFile& file, std::size_t count) {
  std::string text;
  file.startReading();
  while (text.size() < count && (!file.unread().empty() || file.readMore())) {
    const std::string_view piece = file.unread().substr(0, count - text.size());
    text.append(piece);
    file.consume(piece.size());
  }
  return text;
}

std::string contentOf(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(file), {});
}

// What a file is without any buffer.
struct Model {
  std::string content;
  std::size_t position = 0;
  bool append = false;

  std::string read(std::size_t count) {
    if (position >= content.size()) return "";
    const std::string text = content.substr(position, count);
    position += text.size();
    return text;
  }

  void write(std::string_view text) {
    if (append) position = content.size();
    if (content.size() < position + text.size()) content.resize(position + text.size());
    std::copy(text.begin(), text.end(), content.begin() + static_cast<std::ptrdiff_t>(position));
    position += text.size();
  }

  std::optional<std::int64_t> seek(std::int64_t offset, int whence) {
    const std::size_t base = whence == SEEK_SET   ? 0
                             : whence == SEEK_CUR ? position
                                                  : content.size();
    const std::int64_t target = static_cast<std::int64_t>(base) + offset;
    if (target < 0) return std::nullopt;
    position = static_cast<std::size_t>(target);
    return target;
  }
};

// Mostly small steps, now and then one around the buffers' size or beyond it.
std::size_t randomSize(std::mt19937& random) {
  const std::size_t limit = random() % 8 == 0 ? 3 * BufferedFile::kBufferBytes : 500;
  return random() % limit;
}

void runRandomSteps(const std::string& path, std::string_view letters, unsigned seed) {
  std::mt19937 random(seed);
  const std::unique_ptr<BufferedFile> file = openFile(path, letters);
  ASSERT_NE(file, nullptr);
  Model model;
  model.append = letters.find('a') != std::string_view::npos;
  for (int step = 0; step < 300; ++step) {
    const std::size_t size = randomSize(random);
    switch (random() % 4) {
      case 0:
        ASSERT_EQ(readUpTo(*file, size), model.read(size)) << "step " << step;
        break;
      case 1: {
        const std::string text(size, static_cast<char>('a' + step % 26));
        file->write(text);
        if (size > 0) model.write(text);
        break;
      }
      default: {
        const int whence = std::array{SEEK_SET, SEEK_CUR, SEEK_END}[random() % 3];
        const auto offset = static_cast<std::int64_t>(size) * (random() % 2 == 0 ? 1 : -1);
        ASSERT_EQ(file->seek(offset, whence), model.seek(offset, whence)) << "step " << step;
      }
    }
  }
  file->close();
  EXPECT_EQ(contentOf(path), model.content);
}

TEST(BufferedFileTest, BehavesLikeAnUnbufferedFile) {
  const Folder folder;
  for (unsigned seed = 0; seed < 20; ++seed) {
    runRandomSteps(folder.file("both"), "rw", seed);
    runRandomSteps(folder.file(("append" + std::to_string(seed)).c_str()), "ra", seed);
    if (HasFatalFailure()) FAIL() << "seed " << seed;
  }
}

// A named pipe that is open in both directions has no position: what was read ahead must survive a
// write.
TEST(BufferedFileTest, KeepsWhatCannotBeGivenBack) {
  const Folder folder;
  const std::string path = folder.file("pipe");
  ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
  const std::unique_ptr<BufferedFile> pipe = openFile(path, "rw");
  ASSERT_NE(pipe, nullptr);
  pipe->write("abc");
  EXPECT_EQ(readUpTo(*pipe, 1), "a");
  pipe->write("def");
  EXPECT_EQ(readUpTo(*pipe, 5), "bcdef");
  EXPECT_EQ(pipe->seek(0, SEEK_CUR), std::nullopt);
  pipe->close();
}

TEST(BufferedFileTest, StoresWhatWaitsWhenItIsDestroyed) {
  const Folder folder;
  const std::string path = folder.file("file");
  std::unique_ptr<BufferedFile> file = openFile(path, "w");
  file->write("text");
  EXPECT_EQ(contentOf(path), "");
  file.reset();
  EXPECT_EQ(contentOf(path), "text");
}

TEST(BufferedFileTest, EstimatesTheRest) {
  const Folder folder;
  const std::string path = folder.file("file");
  const std::unique_ptr<BufferedFile> file = openFile(path, "rw");
  file->write(std::string(100000, 'x'));
  file->seek(0, SEEK_SET);
  EXPECT_EQ(file->estimateRest(), std::size_t{100000});
  EXPECT_EQ(readUpTo(*file, 10).size(), std::size_t{10});
  EXPECT_EQ(file->estimateRest(), std::size_t{99990});
  file->seek(5, SEEK_END);
  EXPECT_EQ(file->estimateRest(), std::size_t{0});
  EXPECT_EQ(openFile("/dev/zero", "r")->estimateRest(), std::size_t{0});
}

}  // namespace
}  // namespace tarvel::lua::internal
