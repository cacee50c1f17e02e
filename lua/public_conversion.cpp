#include <tarvel/lua/lua_conversion.h>

#include <algorithm>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "lua/public_value.h"
#include "lua/value/number_rules.h"
#include "lua/value/value.h"

// Conversions between C++ types and values that a host already has.

namespace tarvel::lua::bridge {

namespace {

// Keys go the same way between host and scripts as elsewhere: whole decimal numbers are integers.
LuaValue keyValue(const std::string& key) {
  const std::optional<std::int64_t> integer = internal::integerKey(key);
  return integer ? LuaValue(*integer) : LuaValue(key);
}

const LuaValue kNil;

}  // namespace

bool PublicValue::read(bool& out) const noexcept {
  const bool* const value = std::get_if<bool>(&value_->data);
  if (value != nullptr) out = *value;
  return value != nullptr;
}

bool PublicValue::read(std::int64_t& out) const noexcept {
  if (const auto* const integer = std::get_if<std::int64_t>(&value_->data)) {
    out = *integer;
    return true;
  }
  const double* const number = std::get_if<double>(&value_->data);
  return number != nullptr && internal::exactInteger(*number, out);
}

bool PublicValue::read(double& out) const noexcept {
  if (const auto* const integer = std::get_if<std::int64_t>(&value_->data)) {
    out = static_cast<double>(*integer);
    return true;
  }
  const double* const number = std::get_if<double>(&value_->data);
  if (number != nullptr) out = *number;
  return number != nullptr;
}

bool PublicValue::read(std::string_view& out) const noexcept {
  const std::string* const text = std::get_if<std::string>(&value_->data);
  if (text != nullptr) out = *text;
  return text != nullptr;
}

bool PublicValue::read(LuaFunction& out) const {
  const auto* const function = std::get_if<LuaFunction>(&value_->data);
  if (function == nullptr || *function == nullptr) return false;
  out = *function;
  return true;
}

const LuaValue::Object* PublicValue::members() const noexcept {
  const auto* const object = std::get_if<std::shared_ptr<LuaValue::Object>>(&value_->data);
  return object != nullptr ? object->get() : nullptr;
}

const LuaValue::Sequence* PublicValue::elements() const noexcept {
  const auto* const sequence = std::get_if<std::shared_ptr<LuaValue::Sequence>>(&value_->data);
  return sequence != nullptr ? sequence->get() : nullptr;
}

bool PublicValue::isTable() const noexcept { return members() != nullptr || elements() != nullptr; }

bool PublicValue::isSequence() const noexcept {
  return elements() != nullptr || members()->empty();
}

std::size_t PublicValue::length() const noexcept {
  return elements() != nullptr ? elements()->size() : 0;
}

PublicValue PublicValue::element(std::size_t number) const noexcept {
  return PublicValue((*elements())[number - 1]);
}

bool PublicValue::next(std::size_t& cursor, PublicValue& key, PublicValue& value) const {
  if (cursor >= (members() != nullptr ? members()->size() : length())) return false;
  if (members() != nullptr) {
    if (cursor++ == 0) nextMember_ = members()->begin();
    key.key_ = std::make_shared<const LuaValue>(keyValue(nextMember_->first));
    value.value_ = &nextMember_->second;
    ++nextMember_;
  } else {
    value.value_ = &(*elements())[cursor++];
    key.key_ = std::make_shared<const LuaValue>(static_cast<std::int64_t>(cursor));
  }
  key.value_ = key.key_.get();
  return true;
}

PublicValue PublicValue::field(const RecordNames& names, std::size_t number) const {
  if (members() == nullptr) return PublicValue(kNil);
  const auto member = members()->find(names.names[number]);
  return PublicValue(member != members()->end() ? member->second : kNil);
}

bool PublicValue::findOther(const RecordNames& names, std::string& key) const {
  if (elements() != nullptr) {
    key = "1";
    return !elements()->empty();
  }
  for (const auto& member : *members()) {
    const auto isKey = [&member](const char* name) { return member.first == name; };
    if (std::any_of(names.names, names.names + names.count, isKey)) continue;
    key = member.first;
    return true;
  }
  return false;
}

std::string PublicValue::description() const {
  switch (value_->type) {
    case LuaValue::Type::Nil:
      return "nil";
    case LuaValue::Type::Integer:
    case LuaValue::Type::Float:
      return value_->toString();
    case LuaValue::Type::Boolean:
      return "a boolean";
    case LuaValue::Type::String:
      return "a string";
    case LuaValue::Type::Sequence:
    case LuaValue::Type::Object:
      return "a table";
    case LuaValue::Type::Function:
      return "a function";
  }
  return "a value of no type";
}

// ---- Into a LuaValue ----------------------------------------------------------------------------

void PublicSink::function(const LuaFunction& value) {
  if (value == nullptr) {
    nil();
  } else {
    values_.emplace_back(value);
  }
}

void PublicSink::beginTable(std::size_t elements, std::size_t members) {
  if (members > 0) {
    values_.emplace_back(std::make_shared<LuaValue::Object>(members));
  } else {
    values_.emplace_back(std::make_shared<LuaValue::Sequence>());
    std::get<std::shared_ptr<LuaValue::Sequence>>(values_.back().data)->reserve(elements);
  }
}

LuaValue PublicSink::takeLast() {
  LuaValue value = std::move(values_.back());
  values_.pop_back();
  return value;
}

void PublicSink::endElement(std::size_t) {
  LuaValue element = takeLast();
  std::get<std::shared_ptr<LuaValue::Sequence>>(values_.back().data)->push_back(std::move(element));
}

void PublicSink::endMember(std::string_view key) {
  LuaValue member = takeLast();
  if (member.type == LuaValue::Type::Nil) return;
  std::get<std::shared_ptr<LuaValue::Object>>(values_.back().data)
      ->insert_or_assign(std::string(key), std::move(member));
}

void PublicSink::endRecord(const RecordNames& names) {
  auto object = std::make_shared<LuaValue::Object>(names.count);
  const std::size_t first = values_.size() - names.count;
  for (std::size_t i = 0; i < names.count; ++i) {
    LuaValue& field = values_[first + i];
    if (field.type != LuaValue::Type::Nil)
      object->insert_or_assign(names.names[i], std::move(field));
  }
  values_.resize(first);
  values_.emplace_back(std::move(object));
}

LuaValue PublicSink::take() { return takeLast(); }

}  // namespace tarvel::lua::bridge
