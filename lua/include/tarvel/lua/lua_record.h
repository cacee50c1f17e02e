#pragma once

#include <tuple>

// How a host describes its structs, so that they cross as tables: see luaRecord below.

namespace tarvel::lua {

// One field of a record: the key in the table, and the member, of any type that crosses. `name` is
// not copied; it is to be a literal.
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
// One that may be missing in a script's table; the member then keeps what its initializer says.
template <class Record, class Member>
constexpr LuaField<Record, Member> maybe(const char* name, Member Record::*member) {
  return {name, member, false};
}

template <class... Fields>
struct LuaRecord {
  std::tuple<Fields...> fields;
  bool isExact = false;

  // The same record, for which other fields in a script's table are an error. That finds misspelt
  // ones: "unknown field 'prot'".
  constexpr LuaRecord exact() const { return {fields, true}; }
};
template <class... Fields>
constexpr LuaRecord<Fields...> record(Fields... fields) {
  return {std::tuple<Fields...>(fields...)};
}

// Describes a struct that can be made without arguments, once, in one statement:
//
//   template <>
//   inline constexpr auto tarvel::lua::luaRecord<Listener> = tarvel::lua::record(
//       tarvel::lua::field("port", &Listener::port), tarvel::lua::maybe("tls", &Listener::tls));
//
// It stands outside of all namespaces (a struct of a namespace is luaRecord<mine::Listener>),
// behind the struct, and before the first use of the struct with scripts: best in the same header.
template <class T>
inline constexpr auto luaRecord = nullptr;

}  // namespace tarvel::lua
