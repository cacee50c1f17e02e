// A plug-in host: every plug-in has an interpreter of its own, with a bound for each thing that it
// could take, and reaches nothing but its output, which goes to a string.
#include <tarvel/lua/lua_vm.h>

#include <chrono>
#include <cstddef>
#include <iostream>
#include <stdexcept>
#include <stop_token>
#include <string>
#include <string_view>
#include <thread>

namespace lua = tarvel::lua;

struct Plugin {
  std::string name;
  std::string source;
};

void run(const Plugin& plugin, const lua::LuaLimits& limits) {
  std::string page;
  lua::LuaVM vm({.reach = lua::LuaReach::Output,
                 .supervised = true,
                 .limits = limits,
                 .output = [&page](std::string_view text) {
                   if (page.size() + text.size() > 64) throw std::runtime_error("too much output");
                   page += text;
                 }});
  const lua::LuaResult result = vm.runScriptString(plugin.source, plugin.name);
  std::cout << "== " << plugin.name << '\n' << page;
  if (result.ok) return;
  const lua::LuaError& error = *result.detail;
  std::cout << "-- " << result.error;
  if (!error.trace.empty()) std::cout << ", in " << error.trace.front().function;
  std::cout << '\n';
}

int main() {
  const Plugin plugins[] = {
      {"greeting", "print('Good morning,')\nprint('harbour!')"},
      {"spinning", "local function spin()\n  while true do end\nend\npcall(spin)"},
      {"hoarding", "local t = {}\nfor i = 1, 64 do t[i] = string.rep('x', 1000000 + i) end"},
      {"sinking", "local function sink(n) return 1 + sink(n + 1) end\npcall(sink, 1)\nsink(1)"},
      {"shouting", "while true do print('Buy now!') end"},
      {"prying", "print(io.open)\nos.execute('ls')"}};
  const lua::LuaLimits strict = {.steps = 1'000'000,
                                 .time = std::chrono::seconds(10),
                                 .memory = std::size_t{16} << 20,
                                 .stack = std::size_t{64} << 10};
  for (const Plugin& plugin : plugins) run(plugin, strict);

  // Nothing but another thread ends this one: say, the user who pressed a key.
  std::stop_source key;
  const std::jthread user([&key] {
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    key.request_stop();
  });
  run({"waiting", "while not isReady do end"}, {.stop = key.get_token()});
}
