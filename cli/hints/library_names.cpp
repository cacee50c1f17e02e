#include "cli/hints/library_names.h"

#include <algorithm>
#include <array>

namespace tarvel::lua::internal {

namespace {

using Names = std::span<const std::string_view>;

// With `arg`, which is the program's.
constexpr std::string_view kGlobals[] = {
    "_VERSION", "arg",   "assert", "error",  "io",    "ipairs",   "math",     "os",
    "pairs",    "pcall", "print",  "string", "table", "tonumber", "tostring", "type"};
constexpr std::string_view kString[] = {"find",  "format", "gmatch", "gsub",
                                        "match", "rep",    "sub",    "unpack"};
constexpr std::string_view kTable[] = {"concat", "remove", "sort"};
constexpr std::string_view kMath[] = {"floor", "max", "min"};
constexpr std::string_view kIo[] = {"open", "stderr", "stdout", "write"};
constexpr std::string_view kOs[] = {"execute", "exit"};

struct Library {
  std::string_view name;
  Names members;
};
constexpr Library kLibraries[] = {{"", kGlobals},  {"string", kString}, {"table", kTable},
                                  {"math", kMath}, {"io", kIo},         {"os", kOs}};

struct Missed {
  std::string_view name;
  std::string_view remedy;
};

constexpr std::string_view kShownInDocs = "docs/library.md shows one under \"Instead of\"";
constexpr std::string_view kNoMetatables =
    "there are no metatables; copy the methods into the object";
constexpr std::string_view kOneFile = "join the files: cat a.lua b.lua > all.lua";
constexpr std::string_view kNoCoroutines = "a function that keeps its state in locals does";
constexpr std::string_view kNoBits = "there are no operations on bits";
constexpr std::string_view kNoGlobalTable = "the globals are in no table";
constexpr std::string_view kClosures = "a text cannot be run; write a function";
constexpr std::string_view kReadLines =
    "local line = file:read() while line do ... line = file:read() end";
constexpr std::string_view kFromTheShell =
    "os.execute(command .. \" > output\"), then read the file";

// Sorted as "Instead of" in docs/library.md, which tells more.
constexpr Missed kMissed[] = {
    {"select", "local first, second = f() takes what is needed"},
    {"coroutine", kNoCoroutines},
    {"table.insert", "t[#t + 1] = x"},
    {"table.unpack", "t[1], t[2], t[3]"},
    {"unpack", "t[1], t[2], t[3]"},
    {"table.pack", "{a, b, c}"},
    {"table.move", "for i = 1, #a do b[i] = a[i] end"},
    {"table.getn", "#t"},
    {"table.foreach", "for key, value in pairs(t) do"},
    {"next", "for key, value in pairs(t) do"},
    {"rawget", "t[key]"},
    {"rawset", "t[key] = value"},
    {"rawlen", "#t"},
    {"rawequal", "a == b"},
    {"math.sqrt", kShownInDocs},
    {"math.random", kShownInDocs},
    {"math.randomseed", kShownInDocs},
    {"math.pi", "3.141592653589793"},
    {"math.huge", "tonumber(\"inf\")"},
    {"math.abs", "x < 0 and -x or x"},
    {"math.ceil", "-math.floor(-x)"},
    {"math.fmod", "x % y"},
    {"math.modf", "x - x % 1, x % 1"},
    {"math.pow", "a loop that multiplies; x * x is the square"},
    {"math.type", "x % 1 == 0 tells whether x is whole"},
    {"math.tointeger", "math.floor(x)"},
    {"math.maxinteger", "9223372036854775807"},
    {"math.mininteger", "-9223372036854775807 - 1"},
    {"bit", kNoBits},
    {"bit32", kNoBits},
    {"string.len", "#s"},
    {"string.length", "#s"},
    {"string.size", "#s"},
    {"string.upper", kShownInDocs},
    {"string.lower", kShownInDocs},
    {"string.reverse", kShownInDocs},
    {"string.byte", "string.unpack(\"I4\", s:sub(i, i) .. \"\\0\\0\\0\")"},
    {"string.char", kShownInDocs},
    {"utf8", "a string is bytes, and #s is their number"},
    {"io.read", "io.open(\"/dev/stdin\"):read()"},
    {"io.stdin", "io.open(\"/dev/stdin\")"},
    {"io.lines", kReadLines},
    {"io.close", "file:close()"},
    {"io.popen", kFromTheShell},
    {"file.lines", kReadLines},
    {"file.flush", "file:close() stores what was written"},
    {"os.time", "os.execute(\"date +%s > now\"), then read the file"},
    {"os.date", "os.execute(\"date > now\"), then read the file"},
    {"os.clock", "the shell's time measures a run"},
    {"os.difftime", "a - b"},
    {"os.getenv", "os.execute(\"printenv NAME > value\"), then read the file"},
    {"os.rename", "os.execute(\"mv a b\")"},
    {"os.remove", "os.execute(\"rm a\")"},
    {"setmetatable", kNoMetatables},
    {"getmetatable", kNoMetatables},
    {"xpcall", "pcall(f, ...)"},
    {"require", kOneFile},
    {"dofile", kOneFile},
    {"loadfile", kOneFile},
    {"package", kOneFile},
    {"load", kClosures},
    {"loadstring", kClosures},
    {"_G", kNoGlobalTable},
    {"_ENV", kNoGlobalTable},
    {"warn", "io.stderr:write(text, \"\\n\")"},
    {"collectgarbage", "nothing needs to be done, objects go at once"},
    {"debug", "with TARVELLUA_TRACE=1 in the environment errors come with a trace"},
};

constexpr auto kMissedNames = [] {
  std::array<std::string_view, std::size(kMissed)> names;
  for (std::size_t i = 0; i < names.size(); ++i) names[i] = kMissed[i].name;
  return names;
}();

}  // namespace

std::string_view remedyFor(std::string_view path) {
  const auto* const missed = std::ranges::find(kMissed, path, &Missed::name);
  return missed == std::end(kMissed) ? std::string_view() : missed->remedy;
}

bool isLibraryName(std::string_view path) {
  const std::size_t point = path.find('.');
  const bool isGlobal = point == std::string_view::npos;
  const Names members = libraryMembers(isGlobal ? std::string_view() : path.substr(0, point));
  const std::string_view name = isGlobal ? path : path.substr(point + 1);
  return std::ranges::find(members, name) != members.end();
}

Names libraryMembers(std::string_view table) {
  const auto* const library = std::ranges::find(kLibraries, table, &Library::name);
  return library == std::end(kLibraries) ? Names() : library->members;
}

Names missedNames() { return kMissedNames; }

}  // namespace tarvel::lua::internal
