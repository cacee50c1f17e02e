#pragma once

#include <tarvel/lua/lua_bridge.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "lua/value/string_pool.h"
#include "lua/value/table.h"
#include "lua/value/value.h"

namespace tarvel::lua::internal {

// The fields of a struct of the host's in one interpreter: its keys as strings, and where each was
// found last.
struct RecordKeys {
  struct Key {
    OwnedValue name;
    TableKey key;
    std::uint32_t hint = 0;
  };
  std::vector<Key> keys;
};

// Those of all structs that have crossed, by RecordNames::number.
class RecordKeyCache {
 public:
  RecordKeys& of(const bridge::RecordNames& names, StringPool& strings) {
    if (names.number < known_.size() && known_[names.number] != nullptr)
      return *known_[names.number];
    return make(names, strings);
  }

 private:
  RecordKeys& make(const bridge::RecordNames& names, StringPool& strings);

  std::vector<std::unique_ptr<RecordKeys>> known_;
};

}  // namespace tarvel::lua::internal
