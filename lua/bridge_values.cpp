#include <tarvel/lua/lua_bridge.h>

#include <atomic>
#include <bit>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>

#include "lua/bridge_access.h"
#include "lua/lua_vm_impl.h"
#include "lua/public_value.h"
#include "lua/value/memory_charge.h"
#include "lua/value/metered_work.h"
#include "lua/value/number_rules.h"
#include "lua/value/record_keys.h"
#include "lua/value/table.h"

// Single values between host and scripts: reading them from scripts, and giving them to scripts.

namespace tarvel::lua::bridge {

using internal::MemoryCharge;
using internal::OwnedValue;
using internal::Table;
using internal::TableKey;
using internal::Value;

namespace {

std::size_t nextRecordNumber() noexcept {
  static std::atomic<std::size_t> next{0};
  return next++;
}

static_assert(RawValue::kNil == internal::kNil && RawValue::kInteger == internal::kInteger &&
              RawValue::kFloat == internal::kFloat && RawValue::kTable == internal::kTable);

Value toValue(RawValue raw) noexcept {
  Value value;
  value.tag = raw.tag;
  value.integer = std::bit_cast<std::int64_t>(raw.payload);
  return value;
}
RawValue toRaw(Value value) noexcept {
  return {value.tag, std::bit_cast<std::uint64_t>(value.integer)};
}

}  // namespace

RecordNames::RecordNames(const char* const* fieldNames, std::size_t fieldCount) noexcept
    : names(fieldNames), count(fieldCount), number(nextRecordNumber()) {}

// ---- Problems -----------------------------------------------------------------------------------

namespace {

// Scripts choose names, and how deep a value is.
constexpr std::size_t kMostOfName = 100;  // bytes
constexpr std::size_t kMostOfPath = 200;  // bytes, in each of the two parts that are kept

// Cut between two characters, if it is long.
std::string shortened(std::string_view name) {
  if (name.size() <= kMostOfName) return std::string(name);
  std::size_t end = kMostOfName;
  const auto goesOn = [&] { return (static_cast<unsigned char>(name[end]) & 0xC0) == 0x80; };
  while (end > 0 && goesOn()) --end;
  return std::string(name.substr(0, end)) + "...";
}

}  // namespace

bool Problem::expected(std::string_view what, const std::string& got) {
  return say(std::string(what).append(" expected, got ").append(got));
}

// Of a long path the parts in the middle are left out.
struct Problem::State {
  std::string text;  // empty where there is no problem
  std::string path;
  std::string outerPath;  // the last parts that `path` had no room for
  bool isCut = false;     // there are others in between
  std::optional<MemoryCharge> memory;
};

void Problem::StateRelease::operator()(State* state) const noexcept { delete state; }

Problem::State& Problem::state() {
  if (state_ == nullptr) state_.reset(new State);
  return *state_;
}

bool Problem::say(std::string text) {
  state().text = std::move(text);
  return false;
}

bool Problem::unknownField(std::string_view name) {
  return say("unknown field '" + shortened(name) + "'");
}

bool Problem::inPart(std::string part) {
  const bool isInner = state_->outerPath.empty() && state_->path.size() <= kMostOfPath;
  std::string& path = isInner ? state_->path : state_->outerPath;
  if (path.size() > kMostOfPath) {
    state_->isCut = true;
    path.clear();
  }
  const std::string& next = path.empty() && !state_->isCut ? state_->path : path;
  if (!next.empty() && next.front() != '[') part.append(".");
  path.insert(0, part);
  return false;
}

bool Problem::inField(std::string_view name) { return inPart(shortened(name)); }

bool Problem::inElement(std::size_t number) { return inPart("[" + std::to_string(number) + "]"); }

// A type that contains itself can meet a table that contains itself.
bool Problem::enterDeep() {
  return !internal::isTooDeep(depth_) || say("a table that is nested too deeply");
}

std::string Problem::message() const {
  if (state_ == nullptr) return {};
  const std::string path = state_->outerPath + (state_->isCut ? " ... " : "") + state_->path;
  return path.empty() ? state_->text : path + ": " + state_->text;
}

LuaError Problem::toError() const {
  LuaError error;
  error.kind = LuaError::Kind::Value;
  error.message = message();
  return error;
}

// ---- Out of the interpreter ---------------------------------------------------------------------

void Problem::charge(Interpreter* interpreter, std::size_t bytes) {
  static_assert(kTextPerStep == internal::kBytesPerStep, "texts that cross count as others do");
  std::optional<MemoryCharge>& memory = state().memory;
  if (!memory) memory.emplace(internal::implOf(interpreter).heap);
  memory->add(bytes);
}

LuaValue Problem::toPublic(Interpreter* interpreter, RawValue value) {
  charge(interpreter, 0);
  return internal::implOf(interpreter).valueToPublic(toValue(value), *state_->memory);
}

bool ScriptValue::readBoolean(RawValue raw, bool& out) noexcept {
  const Value value = toValue(raw);
  out = value.tag == internal::kTrue;
  return value.tag == internal::kTrue || value.tag == internal::kFalse;
}

bool ScriptValue::readInteger(RawValue raw, std::int64_t& out) noexcept {
  const Value value = toValue(raw);
  if (value.isInteger()) {
    out = value.integer;
    return true;
  }
  return value.isFloat() && internal::exactInteger(value.number, out);
}

bool ScriptValue::readText(RawValue raw, std::string_view& out) noexcept {
  const Value value = toValue(raw);
  if (!value.isString()) return false;
  out = value.string->view();
  return true;
}

bool ScriptValue::read(LuaFunction& out) const {
  const Value value = toValue(raw_);
  if (!value.isFunction()) return false;
  out = internal::handleOf(value, internal::implOf(interpreter_).heap);
  return true;
}

void ScriptValue::countWork(std::size_t steps) const {
  internal::implOf(interpreter_).heap.meter().spend(steps, 0);
}

void ScriptValue::countCopy() const {
  const Table& table = *toValue(raw_).table;
  const std::uint64_t items = std::uint64_t{table.arraySize()} + table.entryCount();
  countWork(1 + items / internal::kElementsPerStep);
}

bool ScriptValue::isSequence() const noexcept { return internal::isSequence(*toValue(raw_).table); }

std::size_t ScriptValue::length() const noexcept {
  return static_cast<std::size_t>(toValue(raw_).table->length());
}

ScriptValue ScriptValue::element(std::size_t number) const noexcept {
  return {interpreter_, toRaw(toValue(raw_).table->getInteger(static_cast<std::int64_t>(number)))};
}

bool ScriptValue::next(std::size_t& cursor, ScriptValue& key, ScriptValue& value) const noexcept {
  const Table& table = *toValue(raw_).table;
  table.takeBack();
  for (; cursor < table.arraySize(); ++cursor) {
    const Value element = table.element(static_cast<std::uint32_t>(cursor));
    if (element.isNil()) continue;
    key.raw_ = toRaw(Value(static_cast<std::int64_t>(++cursor)));
    value.raw_ = toRaw(element);
    return true;
  }
  for (; cursor - table.arraySize() < table.entryCount(); ++cursor) {
    const auto number = static_cast<std::uint32_t>(cursor - table.arraySize());
    if (table.entryValue(number).isNil()) continue;
    key.raw_ = toRaw(table.entryKey(number).toValue());
    value.raw_ = toRaw(table.entryValue(number));
    ++cursor;
    return true;
  }
  return false;
}

void ScriptValue::readFields(const RecordNames& names, RawValue* out) const {
  LuaVM::Impl& interpreter = internal::implOf(interpreter_);
  const Table& table = *toValue(raw_).table;
  for (internal::RecordKeys::Key& key : interpreter.records.of(names, interpreter.strings).keys)
    *out++ = toRaw(table.getString(key.key.string, key.hint));
}

bool ScriptValue::findOther(const RecordNames& names, std::string& text) const {
  LuaVM::Impl& interpreter = internal::implOf(interpreter_);
  const internal::RecordKeys& fields = interpreter.records.of(names, interpreter.strings);
  const auto isField = [&fields](const Value& key) {
    if (!key.isString()) return false;
    for (const internal::RecordKeys::Key& field : fields.keys) {
      if (stringsEqual(field.key.string, key.string)) return true;
    }
    return false;
  };
  ScriptValue key = *this;
  ScriptValue value = *this;
  for (std::size_t cursor = 0; next(cursor, key, value);) {
    if (isField(toValue(key.raw_))) continue;
    text = toValue(key.raw_).toString();
    return true;
  }
  return false;
}

std::string ScriptValue::describe(RawValue raw) {
  const Value value = toValue(raw);
  if (value.isNumber()) return value.toString();
  if (value.isNil() || value.tag == internal::kUserData) return describeValueType(value);
  return std::string(value.tag == internal::kIterator ? "an " : "a ") + describeValueType(value);
}

// ---- Into the interpreter -----------------------------------------------------------------------

void ScriptSink::makeRoom() {
  internal::ValueStack& stack = internal::implOf(interpreter_).stack;
  constexpr std::size_t kStep = 16;  // places
  Value* const next = reinterpret_cast<Value*>(next_);
  Value* const end = next + kStep;
  if (!stack.hasRoom(end, 0) && !stack.makeRoom(end, 0)) throw std::runtime_error("stack overflow");
  end_ = reinterpret_cast<std::byte*>(end);
}

void ScriptSink::putBehindRoom(RawValue value) {
  makeRoom();
  put(value);
}

void ScriptSink::boolean(bool value) { putPlain(toRaw(Value(value))); }

// What follows makes room first, because what it makes would be lost when there is none.
void ScriptSink::text(std::string_view value) {
  if (next_ == end_) makeRoom();
  put(toRaw(internal::implOf(interpreter_).makeString(value)));
}

void ScriptSink::function(const LuaFunction& value) {
  any(value == nullptr ? LuaValue() : LuaValue(value));
}

void ScriptSink::any(const LuaValue& value) {
  if (next_ == end_) makeRoom();
  put(toRaw(internal::implOf(interpreter_).publicToValue(value)));
}

namespace {

// The table that the value in front of `next` goes into.
Table& tableBelow(std::byte* next) noexcept { return *reinterpret_cast<Value*>(next)[-2].table; }

Value takeBefore(std::byte*& next) noexcept {
  next -= sizeof(Value);
  Value& slot = *reinterpret_cast<Value*>(next);
  return std::exchange(slot, Value());
}

}  // namespace

void ScriptSink::beginTable(std::size_t elements, std::size_t members) {
  enter();
  if (next_ == end_) makeRoom();
  put(toRaw(Value(Table::create(internal::implOf(interpreter_).heap, internal::tableHint(elements),
                                internal::tableHint(members)))));
}

void ScriptSink::endElement(std::size_t number) {
  Table& table = tableBelow(next_);
  table.setInteger(static_cast<std::int64_t>(number), takeBefore(next_));
}

void ScriptSink::endMember(std::string_view key) {
  const OwnedValue name(internal::implOf(interpreter_).makeString(key));
  Table& table = tableBelow(next_);
  table.set(TableKey::ofString(name.get().string), takeBefore(next_));
}

void ScriptSink::enter() {
  if (++depth_ > kShallow && internal::isTooDeep(depth_)) internal::failUnsupported();
}

void ScriptSink::beginRecord() { enter(); }

void ScriptSink::endRecord(const RecordNames& names) {
  LuaVM::Impl& interpreter = internal::implOf(interpreter_);
  const internal::RecordKeys& fields = interpreter.records.of(names, interpreter.strings);
  const auto count = static_cast<std::uint32_t>(names.count);
  Table* const table = Table::create(interpreter.heap, 0, count);
  Value* const first = reinterpret_cast<Value*>(next_) - count;
  table->addFields([&fields](std::uint32_t i) { return fields.keys[i].key; }, first, count);
  next_ = reinterpret_cast<std::byte*>(first);
  if (next_ == end_) makeRoom();  // a record without fields
  put(toRaw(Value(table)));
  --depth_;
}

}  // namespace tarvel::lua::bridge
