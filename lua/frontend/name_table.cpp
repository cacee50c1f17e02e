#include "lua/frontend/name_table.h"

#include <utility>

#include "lua/value/string_object.h"

namespace tarvel::lua::internal {

Name* NameTable::find(std::string_view text) {
  const std::uint32_t hash = StringObject::hashOf(text);
  const std::size_t mask = slots_.size() - 1;
  std::size_t slot = hash & mask;
  for (; slots_[slot] != nullptr; slot = (slot + 1) & mask) {
    Name* const name = slots_[slot];
    if (name->hash == hash && name->text->view() == text) return name;
  }
  Name* const name = chunk_.arena.make<Name>(chunk_.own(strings_.internHashed(text, hash)), hash);
  slots_[slot] = name;
  if (++used_ * 2 > slots_.size()) grow();
  return name;
}

void NameTable::grow() {
  std::vector<Name*> slots(slots_.size() * 2);
  const std::size_t mask = slots.size() - 1;
  for (Name* name : slots_) {
    if (name == nullptr) continue;
    std::size_t slot = name->hash & mask;
    while (slots[slot] != nullptr) slot = (slot + 1) & mask;
    slots[slot] = name;
  }
  slots_ = std::move(slots);
}

}  // namespace tarvel::lua::internal
