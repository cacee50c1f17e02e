#include "lua/value/globals.h"

namespace tarvel::lua::internal {

std::size_t Globals::slotOf(std::string_view name) {
  if (const auto entry = names_.find(name); entry != names_.end()) return entry->second;
  // The slot comes first, so that no name ever stands for one that there was no memory for.
  slots_.emplace_back();
  return names_.emplace(name, slots_.size() - 1).first->second;
}

void Globals::set(std::string_view name, Value owned) {
  OwnedValue guard(owned);
  Value& slot = slots_[slotOf(name)];
  replaceSlot(slot, guard.take());
}

void Globals::clear() noexcept {
  for (std::size_t i = slots_.size(); i-- > 0;) clearSlot(slots_[i]);
}

}  // namespace tarvel::lua::internal
