#include <algorithm>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "lua/lua_vm_impl.h"
#include "lua/public_value.h"

// How public values print.

namespace tarvel::lua {

using internal::failBridgeOut;
using internal::integerKey;
using internal::isTooDeep;
using internal::requireConsistent;
using internal::Value;

namespace {

// Keys that are integers first, ascending, then the others bytewise, so that output is
// reproducible.
std::vector<const LuaValue::Object::value_type*> orderedMembers(const LuaValue::Object& object) {
  std::vector<std::pair<std::optional<std::int64_t>, const LuaValue::Object::value_type*>> keyed;
  keyed.reserve(object.size());
  for (const auto& member : object) keyed.emplace_back(integerKey(member.first), &member);
  std::sort(keyed.begin(), keyed.end(), [](const auto& a, const auto& b) {
    if (a.first.has_value() != b.first.has_value()) return a.first.has_value();
    if (a.first != b.first) return a.first < b.first;
    return a.second->first < b.second->first;
  });
  std::vector<const LuaValue::Object::value_type*> members;
  members.reserve(keyed.size());
  for (const auto& member : keyed) members.push_back(member.second);
  return members;
}

using TextWriter = bool (*)(std::string_view text) noexcept;

// Puts the printable form of a value together. With a writer the text leaves in pieces, so it may
// be larger than memory.
class PublicPrinter {
 public:
  explicit PublicPrinter(TextWriter writer = nullptr) : writer_(writer) {}

  void print(const LuaValue& value, int depth = 0) {
    if (isTooDeep(depth)) failBridgeOut();
    requireConsistent(value);
    switch (value.type) {
      case LuaValue::Type::Nil:
        return append("nil");
      case LuaValue::Type::Integer:
        return Value(std::get<std::int64_t>(value.data)).appendTo(text_);
      case LuaValue::Type::Float:
        return Value(std::get<double>(value.data)).appendTo(text_);
      case LuaValue::Type::Boolean:
        return Value(std::get<bool>(value.data)).appendTo(text_);
      case LuaValue::Type::String:
        return append(std::get<std::string>(value.data));
      case LuaValue::Type::Sequence:
        return printSequence(std::get<std::shared_ptr<LuaValue::Sequence>>(value.data).get(),
                             depth + 1);
      case LuaValue::Type::Object:
        return printObject(std::get<std::shared_ptr<LuaValue::Object>>(value.data).get(),
                           depth + 1);
      case LuaValue::Type::Function:
        return printFunction(std::get<std::shared_ptr<LuaFunctionHandle>>(value.data).get());
    }
  }

  // Hands over what has not been written.
  std::string take() { return std::move(text_); }
  void flush() {
    writer_(text_);
    text_.clear();
  }

 private:
  static constexpr std::size_t kPieceBytes = 4096;

  void append(std::string_view text) {
    if (writer_ != nullptr && text_.size() + text.size() > kPieceBytes) {
      flush();
      if (text.size() > kPieceBytes) {
        writer_(text);
        return;
      }
    }
    text_.append(text);
  }

  void printSequence(const LuaValue::Sequence* sequence, int depth) {
    append("{");
    const char* separator = "";
    if (sequence != nullptr) {
      for (const LuaValue& element : *sequence) {
        append(std::exchange(separator, ", "));
        print(element, depth);
      }
    }
    append("}");
  }

  void printObject(const LuaValue::Object* object, int depth) {
    append("{");
    const char* separator = "";
    if (object != nullptr) {
      for (const auto* member : orderedMembers(*object)) {
        append(std::exchange(separator, ", "));
        append(member->first);
        append(": ");
        print(member->second, depth);
      }
    }
    append("}");
  }

  void printFunction(const LuaFunctionHandle* handle) {
    const std::string name = handle == nullptr ? std::string() : handle->name();
    append("[function ");
    append(name.empty() ? "anonymous" : std::string_view(name));
    append("]");
  }

  TextWriter writer_;
  std::string text_;
};

}  // namespace

std::string LuaValue::toString() const {
  const internal::HostStackScope hostStack;
  PublicPrinter printer;
  printer.print(*this);
  return printer.take();
}

void LuaVM::Impl::printPublic(const LuaValue& value, TextWriter write) {
  PublicPrinter printer(write);
  printer.print(value);
  printer.flush();
}

}  // namespace tarvel::lua
