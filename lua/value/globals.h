#pragma once

#include <cstddef>
#include <deque>
#include <functional>
#include <string>
#include <string_view>
#include <unordered_map>

#include "lua/value/hashing.h"
#include "lua/value/value.h"

namespace tarvel::lua::internal {

// The global variables of an interpreter: names to numbered slots, dense, in order of first
// mention, never given up. A slot never moves, so syntax trees point at it.
class Globals {
 public:
  Globals() = default;
  ~Globals() { clear(); }
  Globals(const Globals&) = delete;
  Globals& operator=(const Globals&) = delete;

  // The slot of a name; one that is new gets nil.
  std::size_t slotOf(std::string_view name);
  // Borrowed; nil for a name that has no slot.
  Value find(std::string_view name) const {
    const auto entry = names_.find(name);
    return entry != names_.end() ? slots_[entry->second] : Value();
  }
  Value& at(std::size_t slot) noexcept { return slots_[slot]; }
  // Stores an owned value.
  void set(std::string_view name, Value owned);
  // Makes all of them nil, from the last to the first.
  void clear() noexcept;

 private:
  struct HashOfName {
    using is_transparent = void;
    std::size_t operator()(std::string_view name) const noexcept {
      return hashOfBytes(name, processHashSecrets());
    }
  };

  std::unordered_map<std::string, std::size_t, HashOfName, std::equal_to<>> names_;
  std::deque<Value> slots_;
};

}  // namespace tarvel::lua::internal
