#include <string>

#include "lua/lua_vm_impl.h"

namespace tarvel::lua {

std::size_t LuaVM::Impl::resolveGlobalSlot(std::string_view name) {
  const auto [entry, isNew] = globalSlots.try_emplace(std::string(name), globals.size());
  if (isNew) globals.emplace_back();
  return entry->second;
}

void LuaVM::Impl::setGlobalValue(std::string_view name, Value owned) {
  internal::OwnedValue guard(owned);
  Value& slot = globals[resolveGlobalSlot(name)];
  internal::replaceSlot(slot, guard.take());
}

}  // namespace tarvel::lua
