#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "lua/lua_vm_impl.h"
#include "lua/public_value.h"
#include "lua/value/memory_charge.h"
#include "lua/value/metered_work.h"

// How public values print.

namespace tarvel::lua {

using internal::failBridgeOut;
using internal::integerKey;
using internal::isTooDeep;
using internal::MemoryCharge;
using internal::requireConsistent;
using internal::Site;
using internal::stepsForBytes;
using internal::Value;
using internal::ValueSpan;
using internal::WorkMeter;

namespace {

// Whose work and text printing is, where it is a script's.
struct ScriptOutput {
  WorkMeter& meter;
  Site site;
  const std::function<void(std::string_view text)>& write;
};

using Member = LuaValue::Object::value_type;

// Keys that are integers first, ascending, then the others bytewise, so that output is
// reproducible.
bool goesBefore(const std::pair<std::optional<std::int64_t>, const Member*>& a,
                const std::pair<std::optional<std::int64_t>, const Member*>& b) {
  if (a.first.has_value() != b.first.has_value()) return a.first.has_value();
  if (a.first != b.first) return a.first < b.first;
  return a.second->first < b.second->first;
}

std::vector<const Member*> orderedMembers(const LuaValue::Object& object,
                                          const ScriptOutput* script) {
  std::vector<std::pair<std::optional<std::int64_t>, const Member*>> keyed;
  keyed.reserve(object.size());
  for (const auto& member : object) {
    if (script != nullptr)
      script->meter.spend(1 + stepsForBytes(member.first.size()), script->site);
    keyed.emplace_back(integerKey(member.first), &member);
  }
  if (script == nullptr || !script->meter.isSupervised()) {
    std::sort(keyed.begin(), keyed.end(), goesBefore);
  } else {
    std::sort(keyed.begin(), keyed.end(), [script](const auto& a, const auto& b) {
      const std::size_t common = std::min(a.second->first.size(), b.second->first.size());
      script->meter.spend(1 + stepsForBytes(common), script->site);
      return goesBefore(a, b);
    });
  }
  std::vector<const Member*> members;
  members.reserve(keyed.size());
  for (const auto& member : keyed) members.push_back(member.second);
  return members;
}

// Puts the printable form of a value together. For a script the text leaves in pieces, so it may be
// larger than memory.
class PublicPrinter {
 public:
  explicit PublicPrinter(const ScriptOutput* script = nullptr) : script_(script) {}

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

  // As print, for what needs no copy. False for other values.
  bool printDirectly(const Value& value) {
    if (value.isString()) {
      append(value.string->view());
    } else if (value.tag < internal::kString) {
      value.appendTo(text_);
    } else {
      return false;
    }
    return true;
  }

  void append(std::string_view text) {
    if (script_ != nullptr && text_.size() + text.size() > kPieceBytes) {
      flush();
      if (text.size() > kPieceBytes) {
        script_->write(text);
        return;
      }
    }
    text_.append(text);
  }

  // Hands over what has not been written.
  std::string take() { return std::move(text_); }
  void flush() {
    if (!text_.empty()) script_->write(text_);
    text_.clear();
  }

 private:
  static constexpr std::size_t kPieceBytes = 4096;

  void printSequence(const LuaValue::Sequence* sequence, int depth) {
    append("{");
    const char* separator = "";
    if (sequence != nullptr) {
      for (const LuaValue& element : *sequence) {
        count();
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
      for (const auto* member : orderedMembers(*object, script_)) {
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

  void count() {
    if (script_ != nullptr) script_->meter.step(script_->site);
  }

  const ScriptOutput* script_;
  std::string text_;
};

}  // namespace

std::string LuaValue::toString() const {
  const internal::HostStackScope hostStack;
  PublicPrinter printer;
  printer.print(*this);
  return printer.take();
}

namespace {

bool needsNoCopy(const Value& value) { return value.tag <= internal::kString; }

}  // namespace

// All values are copied before the first is written, because some cannot be. What was written
// before a table stays written, should that be nested too deeply for printing.
void LuaVM::Impl::printValues(ValueSpan values, Site site,
                              const std::function<void(std::string_view text)>& write) {
  MemoryCharge memory(heap);
  std::vector<LuaValue> copies;
  const bool isPlain = std::all_of(values.begin(), values.end(), needsNoCopy);
  if (!isPlain) copies = valuesToPublic(values, memory, site);
  const ScriptOutput script{heap.meter(), site, write};
  PublicPrinter printer(&script);
  heap.meter().spend(values.size() / internal::kElementsPerStep, site);
  for (std::size_t i = 0; i < values.size(); ++i) {
    if (i > 0) printer.append("\t");
    if (printer.printDirectly(values[i])) continue;
    printer.flush();
    printer.print(copies[i]);
  }
  printer.append("\n");
  printer.flush();
}

}  // namespace tarvel::lua
