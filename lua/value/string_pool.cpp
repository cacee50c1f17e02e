#include "lua/value/string_pool.h"

#include <utility>

namespace tarvel::lua::internal {

StringPool::~StringPool() {
  for (StringObject* text : slots_) {
    if (text != nullptr) drop(Value(text));
  }
}

StringObject* StringPool::internHashed(std::string_view bytes, std::uint32_t hash) {
  if ((used_ + 1) * 2 > slots_.size()) rebuild();
  const std::size_t mask = slots_.size() - 1;
  std::size_t slot = hash & mask;
  for (; slots_[slot] != nullptr; slot = (slot + 1) & mask) {
    StringObject* const text = slots_[slot];
    if (text->cachedHash == hash && text->view() == bytes) {
      ++text->count;
      return text;
    }
  }
  StringObject* const text = StringObject::create(heap_, bytes);
  text->cachedHash = hash;
  text->count = 2;  // ours and the caller's
  slots_[slot] = text;
  ++used_;
  return text;
}

Value StringPool::make(std::string_view bytes) {
  if (bytes.size() > 1) return Value(StringObject::create(heap_, bytes));
  OwnedValue& shared =
      bytes.empty() ? emptyString_ : oneByteStrings_[static_cast<unsigned char>(bytes[0])];
  if (shared.get().isNil()) shared = OwnedValue(Value(intern(bytes)));
  return retain(shared.get());
}

void StringPool::rebuild() {
  std::vector<StringObject*> kept;
  kept.reserve(used_);
  for (StringObject* text : slots_) {
    if (text != nullptr && text->count > 1) kept.push_back(text);
  }
  std::size_t size = 256;
  while (size < kept.size() * 4) size *= 2;
  std::vector<StringObject*> slots(size);
  for (StringObject* text : kept) {
    std::size_t slot = text->hash() & (size - 1);
    while (slots[slot] != nullptr) slot = (slot + 1) & (size - 1);
    slots[slot] = text;
  }
  for (StringObject* text : slots_) {
    if (text != nullptr && text->count == 1) drop(Value(text));
  }
  slots_ = std::move(slots);
  used_ = kept.size();
}

}  // namespace tarvel::lua::internal
