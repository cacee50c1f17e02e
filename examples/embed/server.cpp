// A server with one interpreter for each thread. Interpreters share nothing, so no lock is needed
// around them; what handlers print goes with the response of its request.
#include <tarvel/lua/lua_vm.h>

#include <atomic>
#include <cstddef>
#include <iostream>
#include <stop_token>
#include <string>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

namespace lua = tarvel::lua;

constexpr std::string_view kHandlers = R"(
  function handle(path)
    print("asked for", path)
    if path == "/loop" then while true do end end
    if path == "/bug" then return path.size.x end
    if path == "/" then return {body = "welcome"} end
    return {status = 404, body = "no " .. path}
  end)";

struct Response {
  int status = 200;
  std::string body;
  std::string log;  // what the handler printed
};
template <>
inline constexpr auto lua::luaRecord<Response> =
    lua::record(lua::maybe("status", &Response::status), lua::field("body", &Response::body));

class Worker {
 public:
  explicit Worker(std::stop_token stop)
      : vm_({.reach = lua::LuaReach::Output,
             .supervised = true,
             .limits = {.steps = 1'000'000, .stop = std::move(stop)},
             .output = [this](std::string_view text) { log_ += text; }}) {
    vm_.call<void>(vm_.load(kHandlers, "handlers").value()).value();
  }

  Response serve(std::string_view path) {
    log_.clear();
    auto response = vm_.call<Response>("handle", path);
    if (!response) response = Response{500, response.error().toString(), ""};
    response->log = log_;
    return *response;
  }

 private:
  std::string log_;  // before vm_, which writes to it
  lua::LuaVM vm_;
};

int main() {
  const std::vector<std::string> paths = {"/", "/boats", "/loop", "/bug", "/"};
  std::vector<Response> responses(paths.size());
  std::atomic<std::size_t> next = 0;
  std::vector<std::jthread> threads;  // which stop their scripts where an exception ends this
  for (int number = 0; number < 3; ++number) {
    threads.emplace_back([&](std::stop_token stop) {
      Worker worker(std::move(stop));
      for (std::size_t i = next++; i < paths.size(); i = next++)
        responses[i] = worker.serve(paths[i]);
    });
  }
  for (std::jthread& thread : threads) thread.join();
  for (const Response& response : responses)
    std::cout << response.log << response.status << ' ' << response.body << '\n';
}
