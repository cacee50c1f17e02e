// A configuration reader. A configuration is a script that returns a table; records say what has to
// be in it, and messages say where it is wrong.
#include <tarvel/lua/lua_vm.h>

#include <cstdint>
#include <iostream>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace lua = tarvel::lua;
using lua::field;
using lua::maybe;

struct Listener {
  std::string address = "0.0.0.0";
  std::uint16_t port = 0;
};
struct Config {
  std::string name;
  std::uint8_t workers = 1;
  std::vector<Listener> listeners;
  std::map<std::string, double> timeouts;  // in seconds
};
template <>
inline constexpr auto lua::luaRecord<Listener> =
    lua::record(maybe("address", &Listener::address), field("port", &Listener::port)).exact();
template <>
inline constexpr auto lua::luaRecord<Config> = lua::record(field("name", &Config::name),
                                                           maybe("workers", &Config::workers),
                                                           field("listeners", &Config::listeners),
                                                           maybe("timeouts", &Config::timeouts))
                                                   .exact();

lua::LuaOutcome<Config> readConfig(std::string_view source) {
  lua::LuaVM vm({.reach = lua::LuaReach::None});
  vm.setGlobal("processors", 8);
  const auto script = vm.load(source, "server.conf");
  if (!script) return script.error();
  return vm.call<Config>(*script);
}

int main() {
  const std::string_view files[] = {
      R"(local first = 8080
         return {name = "harbour", workers = processors / 2, timeouts = {read = 30, write = 2.5},
                 listeners = {{port = first}, {port = first + 1, address = "::1"}}})",
      "return {name = 'a', listeners = {{port = 80}, {prot = 81}}}",
      "return {name = 'a', listeners = {{port = 70000}}}",
      "return {name = 'a', listeners = {}, timeouts = {read = '30'}}",
      "return {name = 'a',\n        listeners = {{port = base.port}}}",
      "return {name = 'a'"};
  for (const std::string_view file : files) {
    const lua::LuaOutcome<Config> config = readConfig(file);
    std::cout << (config ? config->name : "refused: " + config.error().toString()) << '\n';
    if (!config) continue;
    std::cout << "  workers: " << int{config->workers} << '\n';
    for (const auto& [address, port] : config->listeners)
      std::cout << "  listens: " << address << " port " << port << '\n';
    for (const auto& [what, seconds] : config->timeouts)
      std::cout << "  timeout: " << what << ' ' << seconds << " s\n";
  }
}
