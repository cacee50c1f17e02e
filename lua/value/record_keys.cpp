#include "lua/value/record_keys.h"

#include <stdexcept>
#include <string>
#include <utility>

namespace tarvel::lua::internal {

RecordKeys& RecordKeyCache::make(const bridge::RecordNames& names, StringPool& strings) {
  auto made = std::make_unique<RecordKeys>();
  for (std::size_t i = 0; i < names.count; ++i) {
    OwnedValue name(Value(strings.intern(names.names[i])));
    const TableKey key = TableKey::ofString(name.get().string);
    for (const RecordKeys::Key& other : made->keys) {
      if (other.key.string == key.string)
        throw std::logic_error("a record with two fields '" + std::string(names.names[i]) + "'");
    }
    made->keys.push_back({std::move(name), key});
  }
  if (known_.size() <= names.number) known_.resize(names.number + 1);
  return *(known_[names.number] = std::move(made));
}

}  // namespace tarvel::lua::internal
