// A simulation with objects of the host: scripts work on the boats and the sea themselves, not on
// copies, and the host calls a script's function for each boat and step.
#include <tarvel/lua/lua_vm.h>

#include <cmath>
#include <cstddef>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

namespace lua = tarvel::lua;

struct Boat {
  void push(double byX, double byY) {
    x += byX;
    y += byY;
  }
  double distance() const { return std::hypot(x, y); }

  std::string name;
  double x = 0;
  double y = 0;
};
struct Sea {
  std::shared_ptr<Boat> launch(const std::string& name) {
    return boats.emplace_back(std::make_shared<Boat>(Boat{name}));
  }
  std::size_t count() const { return boats.size(); }

  double wind = 0;
  std::vector<std::shared_ptr<Boat>> boats;
};

constexpr const char* kScript = R"(
  local flagship = sea:launch("Alva")
  sea:launch("Brisa")
  sea.wind = sea.count * 1.5

  function sail(boat, seconds)
    boat:push(seconds, sea.wind * seconds)
    if boat == flagship then boat.x = boat.x + 1 end
    return boat.distance > 8
  end)";

int main() {
  lua::LuaVM vm({.reach = lua::LuaReach::None});
  vm.defineClass<Boat>("Boat")
      .method("push", &Boat::push)
      .property("distance", &Boat::distance)
      .property("x", &Boat::x);
  vm.defineClass<Sea>("Sea")
      .method("launch", &Sea::launch)
      .property("count", &Sea::count)
      .property("wind", &Sea::wind);
  const auto sea = std::make_shared<Sea>();
  vm.setGlobal("sea", sea);
  vm.call<void>(vm.load(kScript, "harbour").value()).value();

  const auto sail = vm.getGlobal<lua::LuaFunction>("sail").value();
  for (int step = 1; step <= 3; ++step) {
    for (const std::shared_ptr<Boat>& boat : sea->boats) {
      const bool isFar = vm.call<bool>(sail, boat, 1).value();
      std::cout << boat->name << " at " << boat->x << ", " << boat->y << (isFar ? ", far\n" : "\n");
    }
  }
  std::cout << vm.call<void>(sail, sea, 1).error().toString() << '\n';
}
