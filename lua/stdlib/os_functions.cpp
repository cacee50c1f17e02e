#include <cstdlib>

#include "lua/stdlib/arguments.h"
#include "lua/stdlib/library.h"
#include "lua/value/errors.h"

// os.execute, os.exit.

namespace tarvel::lua::internal {

// Deliberate: the raw wait status, undecoded, so that a script can tell a signal from a status.
// What the script has written so far is not flushed before the command runs.
MultiValue osExecute(LuaVM&, ValueSpan args, Site site) {
  requireArgumentCount("os.execute", args.size(), 1, 1);
  const StringObject& command = requireString("os.execute", args, 0, site);
  return MultiValue(Value(std::int64_t{std::system(command.data())}));
}

MultiValue osExit(LuaVM&, ValueSpan args, Site site) {
  requireArgumentCount("os.exit", args.size(), 0, 1);
  const std::int64_t code = args.empty() ? 0 : requireInteger("os.exit", args, 0, site);
  throw ExitSignal{static_cast<std::int32_t>(code)};
}

}  // namespace tarvel::lua::internal
