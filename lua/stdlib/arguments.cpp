#include "lua/stdlib/arguments.h"

#include <stdexcept>
#include <string>

#include "lua/value/errors.h"

namespace tarvel::lua::internal {

void failArgument(const char* name, const char* text, Site site) {
  failRuntime(site, {name, text});
}

std::string argumentCountText(const char* name, std::size_t minimum, std::size_t maximum) {
  std::string message(name);
  message.append(" expects ");
  if (minimum == maximum) {
    message.append(std::to_string(minimum)).append(minimum == 1 ? " argument" : " arguments");
  } else if (maximum == kAnyCount) {
    // The plural also for one: scripts compare the text.
    message.append("at least ").append(std::to_string(minimum)).append(" arguments");
  } else {
    message.append("between ").append(std::to_string(minimum)).append(" and ");
    message.append(std::to_string(maximum)).append(" arguments");
  }
  return message;
}

void failArgumentCount(const char* name, std::size_t minimum, std::size_t maximum) {
  throw std::runtime_error(argumentCountText(name, minimum, maximum));
}

NativeObject& requireUserData(const char* name, ValueSpan args, std::size_t index, Site site,
                              NativeObject::Kind kind) {
  if (index >= args.size() || args[index].tag != kUserData)
    failArgument(name, " expects userdata", site);
  NativeObject& object = *args[index].native;
  if (object.handle == nullptr || object.kind != kind)
    failArgument(name, " received the wrong userdata type", site);
  return object;
}

}  // namespace tarvel::lua::internal
