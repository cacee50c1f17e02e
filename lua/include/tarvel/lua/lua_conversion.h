#pragma once

#include <tarvel/lua/lua_bridge.h>
#include <tarvel/lua/lua_record.h>
#include <tarvel/lua/lua_value.h>

#include <array>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <map>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <unordered_map>
#include <utility>
#include <vector>

// The types that cross between a host and its scripts:
//
//   bool                                boolean
//   integral types                      an integer, or a whole float; out of range is an error
//   float, double                       a number
//   std::string, std::string_view       a string; a view is valid during the call that gets it
//   const char*                         a string, null for nil; only from the host to scripts
//   std::vector<T>                      the sequence 1 to n
//   std::map, std::unordered_map        a table whose keys are strings
//     <std::string, T>
//   std::optional<T>                    nil or T
//   a struct with a luaRecord           a table with these fields, copied
//   std::shared_ptr<T>                  userdata, where T has a class (LuaVM::defineClass): the
//                                       object itself, shared with the script; a null pointer
//                                       becomes nil, nil becomes none
//   LuaFunction                         a function
//   LuaValue                            anything that it can hold
//
// Tables are copied; objects and functions are shared. Conversions never guess: no strings from
// numbers, no numbers from strings. What does not fit is a LuaError of kind Value that says where:
// "listeners[2].port: a whole number expected, got a string"; in the arguments of a bound function
// it is an error of the script.

namespace tarvel::lua {

// Not for hosts until the end of the namespace; it may change with every version.
namespace bridge {

template <class T>
inline constexpr bool isRecord =
    !std::is_same_v<std::remove_cv_t<decltype(luaRecord<T>)>, std::nullptr_t>;

// Whether a T refers to text of the interpreter, so that only parameters may be one. Not told for
// records, which may contain themselves.
template <class T>
inline constexpr bool isView =
    std::is_same_v<T, std::string_view> || std::is_same_v<T, const char*>;
template <class T>
inline constexpr bool isView<std::optional<T>> = isView<T>;
template <class T>
inline constexpr bool isView<std::vector<T>> = isView<T>;
template <class T, class Order>
inline constexpr bool isView<std::map<std::string, T, Order>> = isView<T>;
template <class T, class Hash, class Equal>
inline constexpr bool isView<std::unordered_map<std::string, T, Hash, Equal>> = isView<T>;

// Converts a T. `give` puts it into a sink. `take` reads it from a source; on failure it is false,
// and the problem says why. `fits` is whether the source is of the right kind at all; `kArgument`
// is what a function of the host says where it is not.
template <class T>
struct Conversion {
  static_assert(sizeof(T) == 0,
                "this type does not cross between host and scripts; see tarvel/lua/"
                "lua_conversion.h for those that do, and luaRecord for structs of your own");
};

template <class Readable>
struct KindOf {
  template <class Source>
  static bool fits(const Source& source) {
    Readable value;
    return source.read(value);
  }
};
struct BooleanKind : KindOf<bool> {
  static constexpr const char* kArgument = " expects a boolean argument";
};
struct NumberKind : KindOf<double> {
  static constexpr const char* kArgument = " expects a numeric argument";
};
struct StringKind : KindOf<std::string_view> {
  static constexpr const char* kArgument = " expects a string argument";
};
struct FunctionKind : KindOf<LuaFunction> {
  static constexpr const char* kArgument = " expects a function";
};
struct TableKind {
  static constexpr const char* kArgument = " expects a table";
  template <class Source>
  static bool fits(const Source& source) {
    return source.isTable();
  }
};

template <>
struct Conversion<bool> : BooleanKind {
  template <class Sink>
  static void give(Sink& sink, bool value) {
    sink.boolean(value);
  }
  template <class Source>
  static bool take(const Source& source, bool& out, Problem& problem) {
    return source.read(out) || problem.expected("a boolean", source.description());
  }
};

template <class T>
requires(std::integral<T> && !std::same_as<T, bool>) struct Conversion<T> : NumberKind {
  template <class Sink>
  static void give(Sink& sink, T value) {
    if constexpr (std::is_unsigned_v<T> && sizeof(T) == 8) {
      if (value > static_cast<T>(std::numeric_limits<std::int64_t>::max()))
        throw std::out_of_range(std::to_string(value) + " is too large for an integer of a script");
    }
    sink.integer(static_cast<std::int64_t>(value));
  }
  template <class Source>
  static bool take(const Source& source, T& out, Problem& problem) {
    std::int64_t value;
    if (!source.read(value)) return problem.expected("a whole number", source.description());
    out = static_cast<T>(value);
    if (isInRange(value)) return true;
    return problem.expected("a whole number from " + std::to_string(std::numeric_limits<T>::min()) +
                                " to " + std::to_string(std::numeric_limits<T>::max()),
                            source.description());
  }

 private:
  static constexpr bool isInRange(std::int64_t value) {
    if constexpr (std::is_unsigned_v<T>) {
      return value >= 0 && static_cast<std::uint64_t>(value) <= std::numeric_limits<T>::max();
    } else {
      return value >= std::numeric_limits<T>::min() && value <= std::numeric_limits<T>::max();
    }
  }
};

template <std::floating_point T>
struct Conversion<T> : NumberKind {
  template <class Sink>
  static void give(Sink& sink, T value) {
    sink.number(static_cast<double>(value));
  }
  template <class Source>
  static bool take(const Source& source, T& out, Problem& problem) {
    double value;
    if (!source.read(value)) return problem.expected("a number", source.description());
    out = static_cast<T>(value);
    return true;
  }
};

template <class T>
requires(std::same_as<T, std::string> || std::same_as<T, std::string_view>) struct Conversion<T>
    : StringKind {
  template <class Sink>
  static void give(Sink& sink, std::string_view value) {
    sink.text(value);
  }
  template <class Source>
  static bool take(const Source& source, T& out, Problem& problem) {
    std::string_view value;
    if (!source.read(value)) return problem.expected("a string", source.description());
    if constexpr (std::same_as<T, std::string>) problem.copyText(source, value.size());
    out = value;
    return true;
  }
};

template <>
struct Conversion<const char*> {
  template <class Sink>
  static void give(Sink& sink, const char* value) {
    if (value == nullptr) {
      sink.nil();
    } else {
      sink.text(value);
    }
  }
};

template <>
struct Conversion<LuaFunction> : FunctionKind {
  template <class Sink>
  static void give(Sink& sink, const LuaFunction& value) {
    sink.function(value);
  }
  template <class Source>
  static bool take(const Source& source, LuaFunction& out, Problem& problem) {
    return source.read(out) || problem.expected("a function", source.description());
  }
};

template <>
struct Conversion<LuaValue> {
  static constexpr const char* kArgument = "";
  template <class Sink>
  static void give(Sink& sink, const LuaValue& value) {
    sink.any(value);
  }
  template <class Source>
  static bool fits(const Source&) {
    return true;
  }
  template <class Source>
  static bool take(const Source& source, LuaValue& out, Problem& problem) {
    out = source.toPublic(problem);
    return true;
  }
};

template <class T>
struct Conversion<std::optional<T>> {
  static constexpr const char* kArgument = Conversion<T>::kArgument;
  template <class Sink>
  static void give(Sink& sink, const std::optional<T>& value) {
    if (value.has_value()) {
      Conversion<T>::give(sink, *value);
    } else {
      sink.nil();
    }
  }
  template <class Source>
  static bool fits(const Source& source) {
    return source.isNil() || Conversion<T>::fits(source);
  }
  template <class Source>
  static bool take(const Source& source, std::optional<T>& out, Problem& problem) {
    out.reset();
    return source.isNil() || Conversion<T>::take(source, out.emplace(), problem);
  }
};

// An object of the host's.
template <class T>
struct Conversion<std::shared_ptr<T>> {
  static constexpr const char* kArgument = nullptr;  // depends on what there is instead
  static constexpr const void* kKey = &ClassKey<std::remove_const_t<T>>::key;
  template <class Sink>
  static void give(Sink& sink, const std::shared_ptr<T>& value) {
    static_assert(!std::is_const_v<T>,
                  "scripts may change objects that they get: give a shared_ptr to one that is not "
                  "const; parameters may be a shared_ptr to const");
    sink.object(kKey, value);
  }
  template <class Source>
  static bool fits(const Source& source) {
    return source.address(kKey) != nullptr;
  }
  template <class Source>
  static bool take(const Source& source, std::shared_ptr<T>& out, Problem& problem) {
    out = std::static_pointer_cast<T>(source.object(kKey));
    return out != nullptr || problem.expected("a " + source.className(kKey), source.description());
  }
};

template <class T>
struct Conversion<std::vector<T>> : TableKind {
  template <class Sink>
  static void give(Sink& sink, const std::vector<T>& values) {
    sink.beginTable(values.size(), 0);
    std::size_t number = 0;
    for (const auto& value : values) {
      Conversion<T>::give(sink, value);
      sink.endElement(++number);
    }
    sink.endTable();
  }
  template <class Source>
  static bool take(const Source& source, std::vector<T>& out, Problem& problem) {
    if (!source.isTable()) return problem.expected("a sequence", source.description());
    if (!source.isSequence()) return problem.expected("a sequence", "a table with other keys");
    if (!problem.enter(source)) return false;
    const std::size_t length = source.length();
    problem.copyItems(source, length * sizeof(T));
    out.clear();
    out.reserve(length);
    for (std::size_t number = 1; number <= length; ++number) {
      T element{};
      if (!Conversion<T>::take(source.element(number), element, problem))
        return problem.inElement(number);
      out.push_back(std::move(element));
    }
    problem.leave();
    return true;
  }
};

// A map with texts as keys.
template <class Map>
struct MapConversion : TableKind {
  using T = typename Map::mapped_type;
  template <class Sink>
  static void give(Sink& sink, const Map& members) {
    sink.beginTable(0, members.size());
    for (const auto& [key, value] : members) {
      Conversion<T>::give(sink, value);
      sink.endMember(key);
    }
    sink.endTable();
  }
  template <class Source>
  static bool take(const Source& source, Map& out, Problem& problem) {
    if (!source.isTable()) return problem.expected("a table", source.description());
    if (!problem.enter(source)) return false;
    out.clear();
    Source key = source;
    Source value = source;
    for (std::size_t cursor = 0; source.next(cursor, key, value);) {
      std::string_view name;
      if (!key.read(name)) return problem.expected("a string as a key", key.description());
      problem.copyItems(source, kMemberBytes);
      problem.copyText(source, name.size());
      T member{};
      if (!Conversion<T>::take(value, member, problem)) return problem.inField(name);
      const auto place = out.insert_or_assign(std::string(name), std::move(member)).first;
      if constexpr (requires { out.bucket_size(0); }) {
        if (out.size() % kSampleDistance == 0)
          countCollisions(source, out.bucket_size(out.bucket(place->first)));
      }
    }
    problem.leave();
    return true;
  }

 private:
  // With what the map and the system's allocator add.
  static constexpr std::size_t kMemberBytes = sizeof(typename Map::value_type) + 64;
  // How often a bucket is looked at, in members, and how long it usually is at most.
  static constexpr std::size_t kSampleDistance = 64;
  static constexpr std::size_t kUsualBucket = 8;

  // The hash of an unordered map is no secret, so a script can choose keys that all collide.
  template <class Source>
  static void countCollisions(const Source& source, std::size_t bucket) {
    if (bucket > kUsualBucket) source.countWork(kSampleDistance * bucket / kUsualBucket);
  }
};

template <class T, class Order>
struct Conversion<std::map<std::string, T, Order>>
    : MapConversion<std::map<std::string, T, Order>> {};
template <class T, class Hash, class Equal>
struct Conversion<std::unordered_map<std::string, T, Hash, Equal>>
    : MapConversion<std::unordered_map<std::string, T, Hash, Equal>> {};

template <class... Fields>
constexpr std::array<const char*, sizeof...(Fields)> fieldNames(
    const std::tuple<Fields...>& fields) {
  const auto collect = [](const Fields&... each) {
    return std::array<const char*, sizeof...(Fields)>{each.name...};
  };
  return std::apply(collect, fields);
}

template <class T>
requires(isRecord<T>) struct Conversion<T> : TableKind {
  template <class Sink>
  static void give(Sink& sink, const T& value) {
    sink.beginRecord();
    forEachField([&](std::size_t, const auto& field) {
      Conversion<MemberOf<decltype(field)>>::give(sink, value.*field.member);
      return true;
    });
    sink.endRecord(names());
  }
  template <class Source>
  static bool take(const Source& source, T& out, Problem& problem) {
    if (!source.isTable()) return problem.expected("a table", source.description());
    if (!problem.enter(source)) return false;
    // First, because where a name is misspelt the field that it should have been is missing.
    if (luaRecord<T>.isExact) {
      std::string other;
      if (source.findOther(names(), other)) return problem.unknownField(other);
    }
    const typename Source::template Fields<kCount> fields(source, names());
    const bool isTaken = forEachField([&](std::size_t number, const auto& field) {
      const Source value = fields[number];
      if (!field.required && value.isNil()) return true;
      return Conversion<MemberOf<decltype(field)>>::take(value, out.*field.member, problem) ||
             problem.inField(field.name);
    });
    if (!isTaken) return false;
    problem.leave();
    return true;
  }

 private:
  static constexpr std::size_t kCount = std::tuple_size_v<decltype(luaRecord<T>.fields)>;

  template <class Field>
  using MemberOf = typename std::remove_cvref_t<Field>::Type;

  // Until `visit` says false.
  template <class Visit>
  static bool forEachField(Visit visit) {
    return std::apply(
        [&](const auto&... fields) {
          std::size_t number = 0;
          return (visit(number++, fields) && ...);
        },
        luaRecord<T>.fields);
  }

  static const RecordNames& names() {
    static constexpr auto kNames = fieldNames(luaRecord<T>.fields);
    static const RecordNames names(kNames.data(), kNames.size());
    return names;
  }
};

// ---- Values that a host already has -------------------------------------------------------------

// A LuaValue, borrowed.
class TARVELLUA_API PublicValue {
 public:
  explicit PublicValue(const LuaValue& value) noexcept : value_(&value) {}

  bool isNil() const noexcept { return value_->type == LuaValue::Type::Nil; }
  bool read(bool& out) const noexcept;
  bool read(std::int64_t& out) const noexcept;
  bool read(double& out) const noexcept;
  bool read(std::string_view& out) const noexcept;
  bool read(LuaFunction& out) const;
  LuaValue toPublic(Problem&) const { return *value_; }

  bool isTable() const noexcept;
  // What a host converts of its own is not counted.
  void countCopy() const noexcept {}
  void charge(Problem&, std::size_t) const noexcept {}
  void countWork(std::size_t) const noexcept {}
  bool isSequence() const noexcept;
  std::size_t length() const noexcept;
  PublicValue element(std::size_t number) const noexcept;
  bool next(std::size_t& cursor, PublicValue& key, PublicValue& value) const;
  template <std::size_t>
  class Fields {
   public:
    Fields(const PublicValue& table, const RecordNames& names) noexcept
        : table_(table), names_(names) {}
    PublicValue operator[](std::size_t number) const { return table_.field(names_, number); }

   private:
    const PublicValue& table_;
    const RecordNames& names_;
  };
  bool findOther(const RecordNames& names, std::string& key) const;
  std::string description() const;

 private:
  PublicValue field(const RecordNames& names, std::size_t number) const;
  const LuaValue::Object* members() const noexcept;
  const LuaValue::Sequence* elements() const noexcept;

  const LuaValue* value_;
  mutable LuaValue::Object::const_iterator nextMember_;  // while next() steps through members
  std::shared_ptr<const LuaValue> key_;                  // what `value_` shows, where this is a key
};

// Puts a LuaValue together.
class TARVELLUA_API PublicSink {
 public:
  void nil() { values_.emplace_back(); }
  void boolean(bool value) { values_.emplace_back(value); }
  void integer(std::int64_t value) { values_.emplace_back(value); }
  void number(double value) { values_.emplace_back(value); }
  void text(std::string_view value) { values_.emplace_back(std::string(value)); }
  void function(const LuaFunction& value);
  void any(const LuaValue& value) { values_.push_back(value); }
  void beginTable(std::size_t elements, std::size_t members);
  void endElement(std::size_t number);
  void endMember(std::string_view key);
  void endTable() noexcept {}
  void beginRecord() noexcept {}
  void endRecord(const RecordNames& names);
  LuaValue take();

 private:
  LuaValue takeLast();

  std::vector<LuaValue> values_;
};

}  // namespace bridge

// The same conversions without an interpreter, for values that a host already has, on any thread.
// Not for std::shared_ptr: objects of the host cannot stand in a LuaValue. toLua throws
// std::out_of_range for an unsigned integer beyond those of scripts.
template <class T>
LuaOutcome<T> fromLua(const LuaValue& value) {
  bridge::Problem problem;
  T out{};
  if (!bridge::Conversion<T>::take(bridge::PublicValue(value), out, problem))
    return problem.toError();
  return out;
}
template <class T>
LuaValue toLua(const T& value) {
  bridge::PublicSink sink;
  bridge::Conversion<T>::give(sink, value);
  return sink.take();
}

}  // namespace tarvel::lua
