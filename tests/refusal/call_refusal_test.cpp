#include <fcntl.h>
#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "cli/script_files.h"
#include "tests/refusal/refused_calls.h"
#include "tests/unit/value_support.h"

// Every call by which the program asks the system for something fails once, with each error that is
// plausible, alone and with all that follow. Either nothing shows, or the program says so and ends
// with a status; what it printed until then is the beginning of what it would have printed, and
// there is no half of a container.

int runProgram(int count, char** arguments);  // the program's main

namespace tarvel::lua::refusal {
namespace {

namespace fs = std::filesystem;

struct Scenario {
  std::vector<std::string> arguments;
  std::string input;
  bool isDialogue = false;  // goes on after a failure, and ends with status 0
};

const std::map<std::string, std::string> kFiles = {
    {"files.lua", R"(
local f = io.open('out', 'w') for i = 1, 3 do f:write(('x'):rep(20000), i, '\n') end f:close()
f = io.open('out') local a, b = #f:read(), #f:read('a') f:close()
f = io.open('out', 'a') f:write('end') local at = f:seek('cur') f:close()
f = io.open('both', 'rw') f:write('one two 3 four\n', ('y'):rep(40000)) f:seek('set', 4)
local word = f:read(3) f:write('-') local n, rest = f:read('n'), f:read() f:seek('end', -2)
local y = f:read('a') f:close()
print(a, b, at, word, n, rest, y) for i = 1, 3 do print(('z'):rep(3000)) end
f = io.open('none') print(f))"},
    {"left.lua", "f = io.open('left', 'w') f:write('text') print('done')"},
    {"print.lua",
     "for i = 1, 4000 do print(i, 'some text') io.write(i) end io.stdout:write('end')"},
    {"plain.lua", "print('plain', arg[0], arg[1])"},
};

const Scenario kScenarios[] = {
    {{"files.lua"}, "", false},
    {{"left.lua"}, "", false},
    {{"print.lua"}, "", false},
    {{"plain.lua", "x"}, "", false},
    {{"--compile", "files.lua", "new.tlbc"}, "", false},
    {{"--run-bytecode", "plain.tlbc", "x"}, "", false},
    {{"--repl"},
     "x = 5\nprint(x + 1)\nerror('e')\nio.open('out', 'w'):write('t')\nprint('l')",
     true},
};

struct Error {
  Call call;
  int error;
  bool mustNotShow = false;
};
const Error kErrors[] = {
    {Call::Open, EINTR, true},
    {Call::Open, EMFILE},
    {Call::Open, ENOMEM},
    {Call::Open, EACCES},
    {Call::Read, EINTR, true},
    {Call::Read, kShort, true},
    {Call::Read, EIO},
    {Call::Read, EAGAIN},
    {Call::Write, EINTR, true},
    {Call::Write, kShort, true},
    {Call::Write, EIO},
    {Call::Write, ENOSPC},
    {Call::Write, EAGAIN},
    {Call::Close, EINTR, true},
    {Call::Close, EIO},
    {Call::Close, ENOSPC},
    {Call::Seek, EIO},
    {Call::Status, EIO},
    {Call::Thread, EAGAIN, true},
    {Call::Memory, ENOMEM},
};

constexpr std::size_t kMemoryStep = internal::kCheckedHeap ? 97 : 1;

struct Outcome {
  int status = 0;
  std::string output;
  std::string errors;
  std::map<std::string, std::string> files;
  bool wasHit = false;  // there was a call for the fault
};

std::string contentOf(const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

class RefusedCalls : public ::testing::Test {
 protected:
  RefusedCalls() {
    std::string name = testing::TempDir() + "tarvellua-XXXXXX";
    folder_ = mkdtemp(name.data());
    for (const auto& [file, text] : kFiles) std::ofstream(folder_ / file) << text;
    EXPECT_EQ(0, run({{"--compile", "plain.lua", "plain.tlbc"}, "", false}, {}).status);
  }
  ~RefusedCalls() override { fs::remove_all(folder_); }

  // In a process of its own, in the folder, which it leaves as it was.
  Outcome run(const Scenario& scenario, const Fault& fault) {
    // Some systems wait for the disk where a file is made empty and written anew.
    for (const char* const name : {"in", "stdout", "stderr", "hit"}) fs::remove(folder_ / name);
    std::ofstream(folder_ / "in") << scenario.input;
    const pid_t child = fork();
    if (child == 0) runChild(scenario, fault);
    int status = 0;
    waitpid(child, &status, 0);
    Outcome outcome;
    outcome.status = WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
    outcome.output = contentOf(folder_ / "stdout");
    outcome.errors = contentOf(folder_ / "stderr");
    outcome.wasHit = contentOf(folder_ / "hit") == "1";
    for (const char* const name : {"out", "both", "left", "new.tlbc"}) {
      if (!fs::exists(folder_ / name)) continue;
      outcome.files[name] = contentOf(folder_ / name);
      fs::remove(folder_ / name);
    }
    return outcome;
  }

  // Sound is what does not differ, or says so.
  void expectSound(const Scenario& scenario, const Outcome& expected, const Outcome& outcome,
                   Call call, bool mayShow) {
    if (outcome.status == expected.status && outcome.output == expected.output &&
        outcome.errors == expected.errors && outcome.files == expected.files)
      return;
    EXPECT_TRUE(mayShow) << "it shows: " << outcome.errors;
    if (!scenario.isDialogue) {
      EXPECT_EQ(1, outcome.status) << "an error without a status, or worse";
    }
    // Deliberate: a dialogue ends without a word when there is no more to read, for any reason.
    const bool mayBeSilent = scenario.isDialogue && call == Call::Read;
    EXPECT_TRUE(expected.errors != outcome.errors || mayBeSilent) << "nothing is said";
    std::istringstream lines(outcome.errors);
    for (std::string line; std::getline(lines, line);) {
      EXPECT_TRUE(line.starts_with("tarvellua: ") || scenario.isDialogue) << line;
    }
    const auto container = outcome.files.find("new.tlbc");
    if (container != outcome.files.end()) {
      EXPECT_EQ(expected.files.at("new.tlbc"), container->second) << "half a container";
    }
  }

  fs::path folder_;

 private:
  [[noreturn]] void runChild(const Scenario& scenario, const Fault& fault) {
    const auto redirect = [](const char* path, int flags, int descriptor) {
      dup2(open(path, flags, 0600), descriptor);
    };
    if (chdir(folder_.c_str()) != 0) _exit(2);
    redirect("in", O_RDONLY, STDIN_FILENO);
    redirect("stdout", O_WRONLY | O_CREAT | O_TRUNC, STDOUT_FILENO);
    redirect("stderr", O_WRONLY | O_CREAT | O_TRUNC, STDERR_FILENO);
    std::vector<std::string> words{"tarvellua"};
    words.insert(words.end(), scenario.arguments.begin(), scenario.arguments.end());
    std::vector<char*> arguments;
    for (std::string& word : words) arguments.push_back(word.data());
    arguments.push_back(nullptr);
    useOwnStandardStreams();
    injectFault(fault);
    const int status = runProgram(static_cast<int>(words.size()), arguments.data());
    const char* const hit = wasHit() ? "1" : "0";
    injectFault({});
    redirect("hit", O_WRONLY | O_CREAT | O_TRUNC, STDOUT_FILENO);
    if (write(STDOUT_FILENO, hit, 1) != 1) _exit(2);
    _exit(status);
  }
};

TEST_F(RefusedCalls, ShowOrDoNoHarm) {
  std::size_t runs = 0;
  for (const Scenario& scenario : kScenarios) {
    const Outcome expected = run(scenario, {});
    EXPECT_EQ(0, expected.status) << expected.errors;
    for (const Error& error : kErrors) {
      for (const bool withAllLater : {false, true}) {
        const bool isEndless = withAllLater && error.error == EINTR;
        if (isEndless) continue;
        // Checked builds ask for each object; many of those requests are alike.
        const std::size_t step = error.call == Call::Memory ? kMemoryStep : 1;
        for (std::size_t number = 0;; number += step) {
          SCOPED_TRACE(::testing::Message()
                       << scenario.arguments[0] << " call " << static_cast<int>(error.call) << ", "
                       << number << (withAllLater ? " and all later" : "") << ": " << error.error);
          const Outcome outcome = run(scenario, {error.call, number, withAllLater, error.error});
          ++runs;
          if (!outcome.wasHit && outcome.status >= 0) break;
          expectSound(scenario, expected, outcome, error.call, !error.mustNotShow);
        }
      }
    }
  }
  RecordProperty("runs", std::to_string(runs));
}

// A script that holds all descriptors keeps the program from reading how much memory there is.
TEST_F(RefusedCalls, DoNotHideTheBoundOfMemory) {
  std::ofstream(folder_ / "much.lua") << "print(#string.rep('x', 100000000))";
  EXPECT_EQ("100000000\n", run({{"much.lua"}, "", false}, {}).output);
  const Outcome refused = run({{"much.lua"}, "", false}, {Call::Open, 1, true, EMFILE});
  EXPECT_EQ("tarvellua: much.lua:1: not enough memory\n", refused.errors);
}

// A line that an error cuts short is none.
TEST(RefusedInput, IsNoLine) {
  cookie_io_functions_t functions{};
  functions.read = [](void* isOver, char* bytes, std::size_t) -> ssize_t {
    if (std::exchange(*static_cast<bool*>(isOver), true)) return -1;
    std::copy_n("one\ntwo", 7, bytes);
    return 7;
  };
  bool isOver = false;
  std::FILE* const input = fopencookie(&isOver, "r", functions);
  std::string line;
  EXPECT_TRUE(readScriptLine(input, line));
  EXPECT_EQ("one", line);
  EXPECT_FALSE(readScriptLine(input, line));
  std::fclose(input);
}

}  // namespace
}  // namespace tarvel::lua::refusal
