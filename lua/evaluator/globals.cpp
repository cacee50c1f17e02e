#include <string>
#include <utility>

#include "lua/lua_vm_impl.h"

namespace tarvel::lua {

std::size_t LuaVM::Impl::resolveGlobalSlot(std::string_view name) {
  std::string key(name);
  if (const auto entry = globalSlots.find(key); entry != globalSlots.end()) return entry->second;
  // The slot comes first, so that no name ever stands for one that there was no memory for.
  globals.emplace_back();
  return globalSlots.emplace(std::move(key), globals.size() - 1).first->second;
}

void LuaVM::Impl::setGlobalValue(std::string_view name, Value owned) {
  internal::OwnedValue guard(owned);
  Value& slot = globals[resolveGlobalSlot(name)];
  internal::replaceSlot(slot, guard.take());
}

}  // namespace tarvel::lua
