#include <fcntl.h>
#include <pthread.h>
#if __has_include(<stdio_ext.h>)
#include <stdio_ext.h>
#endif
#include <sys/resource.h>
#include <tarvel/lua/lua_vm.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <memory>
#include <string>
#include <utility>

#include "cli/interactive_loop.h"
#include "cli/reporting.h"
#include "cli/script_container.h"
#include "cli/script_files.h"
#include "lua/program_support.h"

// The program: chooses a run mode from the first argument and turns the outcome into messages and
// an exit status.

namespace tarvel::lua {

namespace {

// The interpreter's thread gets a stack of its own size: pages cost nothing until a script recurses
// that deep. The address sanitizer gives up its bookkeeping for exceptions on stacks beyond 64 MB.
#ifdef TARVELLUA_WIDE_FRAMES
constexpr std::size_t kStackBytes = std::size_t{60} << 20;
#else
constexpr std::size_t kStackBytes = std::size_t{256} << 20;
#endif
// Where so much cannot be had, half of it may do, down to the size that a process usually starts
// with.
constexpr std::size_t kLeastStackBytes = std::size_t{8} << 20;

constexpr int kStatusMask = 0xFF;  // what the system keeps of an exit status

struct Arguments {
  int count;
  char** values;

  std::string at(int index) const {
    return index < count && values[index] != nullptr ? std::string(values[index]) : std::string();
  }
};

// ---- The run modes; each returns the exit status or throws --------------------------------------

int printUsage(const char* program) {
  if (program == nullptr) program = "tarvellua";  // started without even a name
  std::fprintf(stderr,
               "Usage:\n"
               "  %s <script> [args...]\n"
               "  %s --compile <script> <output.bytecode>\n"
               "  %s --run-bytecode <input.bytecode> [args...]\n"
               "  %s --repl\n",
               program, program, program, program);
  return 1;
}

LuaValue buildArgTable(const std::string& scriptName, Arguments arguments, int firstArgument) {
  auto table = std::make_shared<LuaValue::Object>();
  table->emplace("0", LuaValue(scriptName));
  for (int i = firstArgument; i < arguments.count; ++i) {
    table->emplace(std::to_string(i - firstArgument + 1), LuaValue(arguments.at(i)));
  }
  return LuaValue(std::move(table));
}

// The exit status of a finished run of `source`. Throws FailedRun for a failed one.
int requireOk(const LuaResult& result, const std::string& source) {
  if (!result.ok) {
    throw FailedRun(result.error, result.detail ? helpFor(*result.detail, source) : std::string());
  }
  return result.exitRequested ? result.exitCode & kStatusMask : 0;
}

int runScript(LuaVM& vm, Arguments arguments) {
  const std::string path = arguments.at(1);
  vm.setGlobal("arg", buildArgTable(path, arguments, 2));
  const std::string source = readScriptFile(path, "unable to open script file: ");
  return requireOk(vm.runScriptString(source, path), source);
}

// Nothing is written unless the script is a valid chunk.
int compileScript(LuaVM& vm, Arguments arguments) {
  const std::string path = arguments.at(2);
  const ScriptContainer container{path, readScriptFile(path, "failed to open file: ")};
  try {
    checkScript(vm, container.source, container.chunkName).value();
  } catch (const LuaException& rejection) {
    throw FailedRun(rejection.what(), helpFor(rejection.error(), container.source));
  }
  writeContainerFile(arguments.at(3), buildContainer(container));
  return 0;
}

int runContainer(LuaVM& vm, Arguments arguments) {
  const std::string path = arguments.at(2);
  vm.setGlobal("arg", buildArgTable(path, arguments, 3));
  const ScriptContainer container = parseContainer(readContainerFile(path));
  return requireOk(vm.runScriptString(container.source, container.chunkName), container.source);
}

int dispatch(LuaVM& vm, Arguments arguments) {
  if (arguments.count < 2) return printUsage(arguments.values[0]);
  const std::string mode = arguments.at(1);
  if (mode == "--repl") return runInteractively(vm);
  if (mode == "--compile") {
    return arguments.count == 4 ? compileScript(vm, arguments) : printUsage(arguments.values[0]);
  }
  if (mode == "--run-bytecode") {
    return arguments.count > 2 ? runContainer(vm, arguments) : printUsage(arguments.values[0]);
  }
  return runScript(vm, arguments);
}

int run(Arguments arguments) {
  try {
    LuaVM vm(LuaOptions{.supervised = traceIsWanted()});
    return dispatch(vm, arguments);
  } catch (const std::exception& error) {
    return fail(error);
  }
}

// ---- Around the run -----------------------------------------------------------------------------

// A closed standard descriptor would be taken by the next file that is opened: a script's file
// would then get what the script prints. What stands in here fails like a closed one.
void occupyStandardDescriptors() {
  for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    if (fcntl(descriptor, F_GETFD) == -1 && errno == EBADF) {
      open("/dev/null", descriptor == STDIN_FILENO ? O_WRONLY : O_RDONLY);
    }
  }
}

// A file that may not grow further is then a failed write, which is reported, and not the end of
// the process. A handler, because the programs that a script starts would inherit SIG_IGN.
void surviveFileSizeLimit() {
  struct sigaction action {};
  if (sigaction(SIGXFSZ, nullptr, &action) != 0 || action.sa_handler == SIG_IGN) return;
  action.sa_handler = [](int) {};
  action.sa_flags = SA_RESTART;
  sigaction(SIGXFSZ, &action, nullptr);
}

// Only one thread at a time uses standard output here, so each piece of text that a script writes
// can do without a lock.
void useOutputWithoutLock() {
#ifdef FSETLOCKING_BYCALLER
  __fsetlocking(stdout, FSETLOCKING_BYCALLER);
#endif
}

// What a script printed must not get lost silently.
int finishStandardOutput(int status) {
  const bool failedBefore = std::ferror(stdout) != 0;
  if (std::fflush(stdout) == 0 && !failedBefore) return status;
  fail("failed to write standard output");
  return status == 0 ? 1 : status;
}

// Nor what it wrote to a file that it left open.
int checkFiles(int status) {
  if (!fileTextWasLost()) return status;
  fail("failed to write file");
  return status == 0 ? 1 : status;
}

#ifdef TARVELLUA_CHECKED_HEAP
constexpr int kWrongObjectCountStatus = 99;

// Only circles are left to the end of their interpreter; a test that makes some says so, and then
// there must be some.
int checkObjectCount(int status) {
  const std::size_t count = abandonedObjectCount();
  const bool expectsCycles = std::getenv("TARVELLUA_EXPECT_CYCLES") != nullptr;
  if ((count > 0) == expectsCycles) return status;
  std::fprintf(stderr, "tarvellua: %zu objects were left to the interpreter's end\n", count);
  return kWrongObjectCountStatus;
}
#else
int checkObjectCount(int status) { return status; }
#endif

struct Run {
  Arguments arguments;
  int status;
};

void* runOnThisThread(void* data) {
  Run& run = *static_cast<Run*>(data);
  run.status = finishStandardOutput(checkFiles(checkObjectCount(tarvel::lua::run(run.arguments))));
  return nullptr;
}

bool runOnNewThread(Run& run, std::size_t stackBytes) {
  pthread_attr_t attributes;
  if (pthread_attr_init(&attributes) != 0) return false;
  pthread_t thread;
  const bool started = pthread_attr_setstacksize(&attributes, stackBytes) == 0 &&
                       pthread_create(&thread, &attributes, runOnThisThread, &run) == 0;
  pthread_attr_destroy(&attributes);
  if (started) pthread_join(thread, nullptr);
  return started;
}

// What the stack may take of the address space that the process may have.
std::size_t mostStackBytes() {
  rlimit space{};
  if (getrlimit(RLIMIT_AS, &space) != 0 || space.rlim_cur == RLIM_INFINITY) return kStackBytes;
  return static_cast<std::size_t>(space.rlim_cur) / 4;
}

// A smaller stack only means that scripts can recurse less deep.
int runWithLargeStack(Arguments arguments) {
  Run run{arguments, 1};
  const std::size_t most = mostStackBytes();
  for (std::size_t bytes = kStackBytes; bytes >= kLeastStackBytes; bytes /= 2) {
    if (bytes > most && bytes > kLeastStackBytes) continue;
    if (runOnNewThread(run, bytes)) return run.status;
  }
  runOnThisThread(&run);
  return run.status;
}

}  // namespace

}  // namespace tarvel::lua

int main(int argc, char** argv) {
  tarvel::lua::occupyStandardDescriptors();
  tarvel::lua::surviveFileSizeLimit();
  tarvel::lua::useOutputWithoutLock();
  return tarvel::lua::runWithLargeStack({argc, argv});
}
