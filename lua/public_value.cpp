#include "lua/public_value.h"

#include <array>
#include <charconv>
#include <cstddef>
#include <memory>
#include <new>
#include <stdexcept>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "lua/release_scope.h"
#include "lua/value/host_stack.h"

// How public values are made, copied and released.

namespace tarvel::lua {

LuaValue::LuaValue(std::int64_t integer) : type(Type::Integer), data(integer) {}
LuaValue::LuaValue(double number) : type(Type::Float), data(number) {}
LuaValue::LuaValue(bool boolean) : type(Type::Boolean), data(boolean) {}
LuaValue::LuaValue(std::string text) : type(Type::String), data(std::move(text)) {}
LuaValue::LuaValue(const char* text) : LuaValue(std::string(text)) {}
LuaValue::LuaValue(std::shared_ptr<Sequence> sequence)
    : type(Type::Sequence), data(std::move(sequence)) {}
LuaValue::LuaValue(std::shared_ptr<Object> object) : type(Type::Object), data(std::move(object)) {}
LuaValue::LuaValue(std::shared_ptr<LuaFunctionHandle> function)
    : type(Type::Function), data(std::move(function)) {}

// A variant that copies its alternative itself may be left without one, which g++ 12 takes to be
// impossible for these types and then releases what is not there.
LuaValue::LuaValue(const LuaValue& other) : type(other.type) {
  const auto copyInto = [this](auto alternative) {
    data.emplace<decltype(alternative)>(std::move(alternative));
  };
  std::visit(copyInto, other.data);
}

LuaValue& LuaValue::operator=(const LuaValue& other) { return *this = LuaValue(other); }

// The other value may be a part of this one, and must then be out of it before it goes.
LuaValue& LuaValue::operator=(LuaValue&& other) noexcept {
  LuaValue taken(std::move(other));
  std::swap(type, taken.type);
  data.swap(taken.data);
  return *this;
}

namespace {

// Releases sequences and objects one after the other: those that go with another one wait until
// that is gone, so that no depth of nesting uses up the stack.
class ReleaseQueue {
 public:
  static void release(std::shared_ptr<void> container) noexcept {
    if (active != nullptr) {
      active->add(std::move(container));
      return;
    }
    ReleaseQueue queue;
    active = &queue;
    container.reset();
    while (queue.releaseLast()) continue;
    active = nullptr;
  }

  // The queue of the release that this thread is in the middle of; null where there is none.
  static inline constinit thread_local ReleaseQueue* active = nullptr;

 private:
  // Enough for any chain, so that it needs no memory.
  static constexpr std::size_t kRoom = 4;

  // Where there is no memory to let it wait, it goes at once.
  void add(std::shared_ptr<void> container) noexcept {
    if (count_ < kRoom) {
      waiting_[count_++] = std::move(container);
      return;
    }
    try {
      more_.push_back(std::move(container));
    } catch (const std::bad_alloc&) {
    }
  }

  bool releaseLast() noexcept {
    std::shared_ptr<void> last;
    if (!more_.empty()) {
      last = std::move(more_.back());
      more_.pop_back();
    } else if (count_ > 0) {
      last = std::move(waiting_[--count_]);
    }
    return last != nullptr;
  }

  std::array<std::shared_ptr<void>, kRoom> waiting_;
  std::size_t count_ = 0;
  std::vector<std::shared_ptr<void>> more_;
};

}  // namespace

internal::ReleaseScope::ReleaseScope() noexcept
    : queueOutside_(std::exchange(ReleaseQueue::active, nullptr)) {}

internal::ReleaseScope::~ReleaseScope() {
  ReleaseQueue::active = static_cast<ReleaseQueue*>(queueOutside_);
}

void LuaValue::releaseContainer() noexcept {
  if (auto* const sequence = std::get_if<std::shared_ptr<Sequence>>(&data)) {
    if (*sequence != nullptr) ReleaseQueue::release(std::move(*sequence));
  } else if (auto* const object = std::get_if<std::shared_ptr<Object>>(&data)) {
    if (*object != nullptr) ReleaseQueue::release(std::move(*object));
  }
}

// ---- For conversion and printing ----------------------------------------------------------------

namespace internal {

namespace {

constexpr int kDeepestConversion = 1000;

}  // namespace

void failBridgeOut() { throw std::runtime_error("value cannot be bridged out of TarvelLua"); }

void failUnsupported() { throw std::runtime_error("unsupported TarvelLua value"); }

bool isTooDeep(int depth) noexcept {
  return depth > kDeepestConversion || hostStackRoom() < stack_cost::kConversionLevel;
}

std::optional<std::int64_t> integerKey(const std::string& key) noexcept {
  // A key may have the plus sign and the leading white space that strtoll accepts; from_chars takes
  // neither.
  std::size_t start = 0;
  while (start < key.size() && (key[start] == ' ' || (key[start] >= '\t' && key[start] <= '\r')))
    ++start;
  if (start < key.size() && key[start] == '+') {
    ++start;
    if (start < key.size() && key[start] == '-') return std::nullopt;
  }
  std::int64_t integer = 0;
  const char* const end = key.data() + key.size();
  const auto [rest, failure] = std::from_chars(key.data() + start, end, integer);
  if (failure != std::errc() || rest != end) return std::nullopt;
  return integer;
}

}  // namespace internal

}  // namespace tarvel::lua
