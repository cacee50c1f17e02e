// A rules engine: scripts decide about orders. Orders and decisions are structs of the host, which
// cross as tables. Rules are replaced while the program runs; faulty ones leave the old in force.
#include <tarvel/lua/lua_vm.h>

#include <iostream>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

namespace lua = tarvel::lua;

struct Order {
  std::string customer;
  double total = 0;
};
struct Decision {
  bool accept = false;
  double discount = 0;
};
template <>
inline constexpr auto lua::luaRecord<Order> = lua::record(lua::field("customer", &Order::customer),
                                                          lua::field("total", &Order::total));
template <>
inline constexpr auto lua::luaRecord<Decision> = lua::record(
    lua::field("accept", &Decision::accept), lua::maybe("discount", &Decision::discount));

class Rules {
 public:
  void replace(std::string_view source, std::string_view name) try {
    auto vm = std::make_unique<lua::LuaVM>(lua::LuaOptions{.reach = lua::LuaReach::None});
    vm->bind("isBlocked", [](std::string_view customer) { return customer == "Mallory"; });
    vm->call<void>(vm->load(source, name).value()).value();
    decide_ = vm->getGlobal<lua::LuaFunction>("decide").value();
    vm_ = std::move(vm);
    std::cout << name << " in force\n";
  } catch (const lua::LuaException& problem) {
    std::cout << "old rules kept: " << problem.what() << '\n';
  }

  void decide(const Order& order) {
    const auto decision = vm_->call<Decision>(decide_, order);
    std::cout << "  " << order.customer << ": ";
    if (!decision) {
      std::cout << decision.error().toString() << '\n';
    } else {
      std::cout << (decision->accept ? "yes, " : "no, ") << decision->discount << " off\n";
    }
  }

 private:
  std::unique_ptr<lua::LuaVM> vm_;
  lua::LuaFunction decide_;
};

int main() {
  const Order orders[] = {{"Ada", 1200}, {"Mallory", 10}};
  const std::string_view versions[] = {
      "function decide(order) return {accept = order.total < 1000} end",
      "function decide(order) retrun {accept = true} end",
      "function decide(order) return {accept = 'yes'} end",
      "function decide(order)\n  return {accept = true, discount = order.totl / 100}\nend",
      "function decide(order) return {accept = not isBlocked(order.customer), discount = 5} end"};
  Rules rules;
  int number = 0;
  for (const std::string_view source : versions) {
    rules.replace(source, "rules " + std::to_string(++number));
    for (const Order& order : orders) rules.decide(order);
  }
}
