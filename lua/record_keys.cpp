#include "lua/record_keys.h"

#include <utility>

namespace tarvel::lua::internal {

RecordKeys& RecordKeyCache::make(const bridge::RecordNames& names, StringPool& strings) {
  auto made = std::make_unique<RecordKeys>();
  for (std::size_t i = 0; i < names.count; ++i)
    made->keys.push_back({OwnedValue(Value(strings.intern(names.names[i]))), 0});
  if (known_.size() <= names.number) known_.resize(names.number + 1);
  return *(known_[names.number] = std::move(made));
}

}  // namespace tarvel::lua::internal
