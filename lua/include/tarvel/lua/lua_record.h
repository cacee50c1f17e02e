#pragma once

#include <tuple>

// How a host describes its structs, so that they cross as tables.

namespace tarvel::lua {

// One field of a record.
template <class Record, class Member>
struct LuaField {
  using Type = Member;
  const char* name;
  Member Record::*member;
  bool required;
};
template <class Record, class Member>
constexpr LuaField<Record, Member> field(const char* name, Member Record::*member) {
  return {name, member, true};
}
// May be nil; the member then keeps what its initializer says.
template <class Record, class Member>
constexpr LuaField<Record, Member> maybe(const char* name, Member Record::*member) {
  return {name, member, false};
}

template <class... Fields>
struct LuaRecord {
  std::tuple<Fields...> fields;
  bool isExact = false;

  // Other fields in a script's table are an error, which finds misspelt ones: "unknown field
  // 'prot'".
  constexpr LuaRecord exact() const { return {fields, true}; }
};
template <class... Fields>
constexpr LuaRecord<Fields...> record(Fields... fields) {
  return {std::tuple<Fields...>(fields...)};
}

// Describes a struct, once, in one statement at namespace scope:
//
//   template <>
//   inline constexpr auto tarvel::lua::luaRecord<Listener> = tarvel::lua::record(
//       tarvel::lua::field("port", &Listener::port), tarvel::lua::maybe("tls", &Listener::tls));
template <class T>
inline constexpr auto luaRecord = nullptr;

}  // namespace tarvel::lua
