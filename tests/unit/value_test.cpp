#include "lua/value/value.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <memory>
#include <random>
#include <set>
#include <sstream>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "lua/value/environment.h"
#include "lua/value/errors.h"
#include "lua/value/function_handle.h"
#include "lua/value/iterator_state.h"
#include "lua/value/multi_value.h"
#include "lua/value/native_object.h"
#include "lua/value/string_object.h"
#include "tests/unit/value_support.h"

namespace tarvel::lua::internal {
namespace {

constexpr std::int64_t kLowest = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t kHighest = std::numeric_limits<std::int64_t>::max();

// One value of each kind that has an address.
struct Objects {
  TestHeap heap;
  OwnedValue table = heap.table();
  OwnedValue userdata{Value(NativeObject::create(heap.get(), NativeObject::Kind::File, nullptr))};
  OwnedValue iterator{Value(IteratorState::createPairs(heap.get(), *table.get().table))};
};

// As the C++ library's streams write it.
std::string streamed(double number) {
  std::ostringstream out;
  out << number;
  return out.str();
}

std::string withAddress(const char* kind, const Value& value) {
  std::ostringstream out;
  out << kind << ": " << static_cast<const void*>(value.object);
  return out.str();
}

TEST(Value, PrintsAndNamesItsKind) {
  const Objects objects;
  const TestHeap& heap = objects.heap;
  const struct {
    OwnedValue value;
    std::string text;
    const char* type;
    ValueKind kind;
  } cases[] = {
      {OwnedValue(), "nil", "nil", ValueKind::Nil},
      {OwnedValue(Value(false)), "false", "boolean", ValueKind::Boolean},
      {OwnedValue(Value(true)), "true", "boolean", ValueKind::Boolean},
      {OwnedValue(Value(kLowest)), "-9223372036854775808", "number", ValueKind::Integer},
      {OwnedValue(Value(kHighest)), "9223372036854775807", "number", ValueKind::Integer},
      {OwnedValue(Value(1.0)), "1", "number", ValueKind::Float},
      {OwnedValue(Value(3.14159265)), "3.14159", "number", ValueKind::Float},
      {OwnedValue(Value(1234567.0)), "1.23457e+06", "number", ValueKind::Float},
      {OwnedValue(Value(-0.0)), "-0", "number", ValueKind::Float},
      {heap.text(""), "", "string", ValueKind::String},
      {heap.text({"a\0b", 3}), std::string("a\0b", 3), "string", ValueKind::String},
      {objects.table, withAddress("table", objects.table.get()), "table", ValueKind::Table},
      {heap.native("a.b:m"), "function: a.b:m", "function", ValueKind::Function},
      {heap.native(""), "function: anonymous", "function", ValueKind::Function},
      {objects.userdata, withAddress("userdata", objects.userdata.get()), "userdata",
       ValueKind::UserData},
      {objects.iterator, withAddress("iterator", objects.iterator.get()), "iterator",
       ValueKind::Iterator},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(c.text, c.value.get().toString());
    EXPECT_STREQ(c.type, describeValueType(c.value.get())) << c.text;
    EXPECT_EQ(c.kind, c.value.get().kind()) << c.text;
    EXPECT_EQ(c.text != "nil" && c.text != "false", c.value.get().isTruthy()) << c.text;
  }
}

TEST(Value, PrintsFloatsAsStreamsDo) {
  for (const double number : {0.0, 0.1, 100000.0, 999999.5, 1e6, 1e20, 123456.5, 1e-5, 0.0001,
                              1e100, 5e-324, 0x1p63, static_cast<double>(INFINITY)}) {
    EXPECT_EQ(streamed(number), Value(number).toString());
    EXPECT_EQ(streamed(-number), Value(-number).toString());
  }
  EXPECT_EQ("nan", Value(std::fabs(std::nan(""))).toString());
  EXPECT_EQ("-nan", Value(-std::fabs(std::nan(""))).toString());
  std::mt19937_64 random(7);
  for (int i = 0; i < 100000; ++i) {
    const auto number = std::bit_cast<double>(random());
    ASSERT_EQ(streamed(number), Value(number).toString());
    const double common = static_cast<double>(random() % 100000000) / 1000;
    ASSERT_EQ(streamed(common), Value(common).toString());
  }
}

TEST(Value, ConvertsNumbersAndNothingElse) {
  const struct {
    Value value;
    std::int64_t integer;
    double number;
  } cases[] = {
      {Value(std::int64_t{3}), 3, 3.0},
      {Value(kHighest), kHighest, 0x1p63},
      {Value(kHighest - 511), kHighest - 511, 0x1p63},  // to the nearest, ties to even
      {Value(kHighest - 512), kHighest - 512, 0x1p63 - 1024},
      {Value(2.9), 2, 2.9},
      {Value(-2.9), -2, -2.9},
      {Value(0x1p63), kHighest, 0x1p63},
      {Value(0x1p63 - 1024), kHighest - 1023, 0x1p63 - 1024},
      {Value(-0x1p63), kLowest, -0x1p63},
      {Value(-1e300), kLowest, -1e300},
      {Value(double{INFINITY}), kHighest, double{INFINITY}},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(c.integer, c.value.asInteger()) << c.value.toString();
    EXPECT_EQ(c.number, c.value.asFloat()) << c.value.toString();
  }
  EXPECT_EQ(0, Value(std::nan("")).asInteger());

  const Objects objects;
  const OwnedValue others[] = {OwnedValue(),  OwnedValue(Value(true)), objects.heap.text("3"),
                               objects.table, objects.userdata,        objects.iterator};
  for (const OwnedValue& value : others) {
    EXPECT_THROW(static_cast<void>(value.get().asInteger()), std::runtime_error);
    try {
      static_cast<void>(value.get().asFloat());
      ADD_FAILURE() << value.get().toString();
    } catch (const std::runtime_error& error) {
      EXPECT_STREQ("value is not numeric", error.what());
      EXPECT_EQ(nullptr, dynamic_cast<const RuntimeError*>(&error)) << "without a location";
    }
  }
}

// The error type follows the pcalls of the thread that raises it, and of no other.
TEST(Errors, AreOfTheTypeThatTheProtectedDepthAsksFor) {
  const auto raise = [](bool isProtected) {
    try {
      failRuntime(7, "message");
    } catch (const RuntimeError& error) {
      EXPECT_FALSE(isProtected);
      EXPECT_STREQ("message", error.what());
      EXPECT_EQ(7u, error.line);
      EXPECT_TRUE(error.hasLocation);
    } catch (const ProtectedRuntimeError& error) {
      EXPECT_TRUE(isProtected);
      EXPECT_EQ("message", error.message);
      EXPECT_EQ(7u, error.line);
      EXPECT_TRUE(error.hasLocation);
    }
  };
  raise(false);
  {
    const ProtectedCallScope outer;
    {
      const ProtectedCallScope inner;
      raise(true);
    }
    raise(true);
    runOnStack(std::size_t{256} << 10, [&] { raise(false); });
  }
  raise(false);
}

// ---- Ownership ----------------------------------------------------------------------------------

template <std::size_t N>
void checkStore() {
  SCOPED_TRACE(N);
  const TestHeap heap;
  const OwnedValue text = heap.text("element");
  for (std::size_t size = 0; size <= 4 * N + 1; ++size) {
    SCOPED_TRACE(size);
    SmallValueStore<N> store;
    for (std::size_t i = 0; i < size; ++i) {
      store.push(i % 2 == 0 ? retain(text.get()) : Value(static_cast<std::int64_t>(i)));
    }
    const std::size_t held = (size + 1) / 2;
    const auto check = [&](const SmallValueStore<N>& values, std::size_t copies) {
      ASSERT_EQ(size, values.size());
      EXPECT_EQ(size == 0, values.empty());
      EXPECT_EQ(size == 0 ? "nil" : "element", values.first().toString());
      std::size_t i = 0;
      for (const Value& value : values.span()) {
        EXPECT_EQ(&values[i], &value);
        EXPECT_EQ(i % 2 == 0 ? "element" : std::to_string(i), value.toString());
        ++i;
      }
      EXPECT_EQ(1 + copies * held, countOf(text));
    };
    check(store, 1);
    SmallValueStore<N> copy = store;
    check(copy, 2);
    SmallValueStore<N> moved = std::move(store);
    check(moved, 2);
    copy = moved;
    check(copy, 2);
    copy = std::move(moved);
    check(copy, 1);
    for (const Value& value : copy.release()) drop(value);
    EXPECT_TRUE(copy.empty());
    copy.push(retain(text.get()));  // usable again
    EXPECT_EQ(2u, countOf(text));
  }
  EXPECT_EQ(1u, countOf(text));
}

TEST(SmallValueStore, KeepsOrderAndCountsAcrossItsGrowth) {
  checkStore<2>();
  checkStore<6>();
  const MultiValue values{Value(std::int64_t{1}), Value(true), Value(2.5)};
  EXPECT_EQ(3u, values.size());
  EXPECT_EQ("2.5", values[2].toString());
}

// ---- The end of objects -------------------------------------------------------------------------

struct DestructionCounter final : NativeHandle {
  explicit DestructionCounter(int& counter) : count(counter) {}
  ~DestructionCounter() override { ++count; }
  int& count;
};

struct EmptyCode final : FunctionCode {};

// One more link in front of a chain, of the kind that its number asks for.
OwnedValue link(const TestHeap& heap, FunctionCode& code, const OwnedValue& name, OwnedValue next,
                int number) {
  Heap& memory = heap.get();
  switch (number % 6) {
    case 0: {  // an array element
      OwnedValue table = heap.table();
      table.get().table->setInteger(1, next.take());
      return table;
    }
    case 1: {  // an entry
      OwnedValue table = heap.table();
      table.get().table->set(TableKey::ofString(name.get().string), next.take());
      return table;
    }
    case 2: {  // a captured variable
      const OwnedValue environment(Value(Environment::create(memory, 1, nullptr)));
      environment.get().environment->slots()[0] = next.take();
      return OwnedValue(Value(FunctionObject::createClosure(
          memory, nullptr, &code, name.get().string, environment.get().environment)));
    }
    case 3: {  // the variable of an enclosing scope
      const OwnedValue outer(Value(Environment::create(memory, 2, nullptr)));
      outer.get().environment->slots()[1] = next.take();
      const OwnedValue inner(Value(Environment::create(memory, 0, outer.get().environment)));
      return OwnedValue(Value(FunctionObject::createClosure(
          memory, nullptr, &code, name.get().string, inner.get().environment)));
    }
    case 4: {  // an iterator's item
      ValueList items(memory);
      items.push(next.take());
      return OwnedValue(Value(IteratorState::createGmatch(memory, std::move(items), 1)));
    }
    default:  // what a native function holds
      return heap.native("holder", [next](LuaVM&, ValueSpan, unsigned) { return MultiValue(); });
  }
}

TEST(DestroyObject, ReleasesLongChainsWithoutRecursion) {
  const int length = kSanitized ? 300000 : 3000000;
  const TestHeap heap;
  auto* const code = new EmptyCode;
  const OwnedValue name = heap.text("next");
  int closed = 0;
  OwnedValue chain(Value(NativeObject::create(heap.get(), NativeObject::Kind::File,
                                              std::make_unique<DestructionCounter>(closed))));
  for (int i = 0; i < length; ++i) chain = link(heap, *code, name, std::move(chain), i);
  EXPECT_EQ(0, closed);
  runOnStack(std::size_t{64} << 10, [&] { chain = OwnedValue(); });
  EXPECT_EQ(1, closed) << "the end of the chain has gone, too";
  EXPECT_EQ(1u, countOf(name));
  EXPECT_EQ(1u, code->count);
  code->removeReference();
}

// ---- Strings ------------------------------------------------------------------------------------

TEST(StringObject, ComparesAndHashesBytes) {
  const TestHeap heap;
  std::vector<std::string> texts = {"",          {"\0", 1}, {"\0a", 2}, "a",         {"a\0", 2},
                                    {"a\0b", 3}, "ab",      "abcdefgh", "abcdefghi", "b",
                                    "\x7f",      "\x80",    "\xff",     "\xff\xff"};
  ASSERT_TRUE(std::is_sorted(texts.begin(), texts.end()));
  std::set<std::uint32_t> hashes;
  for (std::size_t i = 0; i < texts.size(); ++i) {
    for (std::size_t j = 0; j < texts.size(); ++j) {
      const OwnedValue left = heap.text(texts[i]);
      const OwnedValue right = heap.text(texts[j]);
      if (i % 2 == 0) left.get().string->hash();
      if (j % 3 == 0) right.get().string->hash();
      EXPECT_EQ(i == j, stringsEqual(left.get().string, right.get().string)) << i << " " << j;
      const int order = compareStrings(left.get().string, right.get().string);
      EXPECT_EQ(i < j, order < 0) << i << " " << j;
      EXPECT_EQ(i == j, order == 0) << i << " " << j;
      EXPECT_EQ(left.get().string->hash(), StringObject::hashOf(texts[i]));
    }
    hashes.insert(StringObject::hashOf(texts[i]));
  }
  EXPECT_EQ(texts.size(), hashes.size()) << "short texts should not collide";
  EXPECT_FALSE(hashes.contains(0));
}

TEST(StringObject, AppendsInPlaceWithRoomToGrow) {
  const TestHeap heap;
  std::mt19937_64 random(11);
  for (int round = 0; round < 20; ++round) {
    std::string model(random() % 20, 's');
    StringObject* text = StringObject::create(heap.get(), model);
    for (int i = 0; i < 60; ++i) {
      const std::string more(i % 7 == 0 ? random() % 3000 : random() % 9,
                             static_cast<char>('a' + i % 26));
      if (i % 3 == 0) text->hash();  // a hash that the append makes wrong
      text = StringObject::reserveInPlace(heap.get(), text, more.size());
      text->append(more);
      model += more;
      ASSERT_EQ(model, text->view());
      ASSERT_EQ('\0', text->data()[text->length]);
      ASSERT_EQ(StringObject::hashOf(model), text->hash());
      ASSERT_LE(sizeof(StringObject) + text->length + 1, text->blockBytes());
    }
    drop(Value(text));
  }
  StringObject* text = StringObject::create(heap.get(), "");
  std::set<std::uint32_t> rooms;
  for (int i = 0; i < 100000; ++i) {
    text = StringObject::reserveInPlace(heap.get(), text, 1);
    text->append("x");
    rooms.insert(text->capacityUnits);
  }
  EXPECT_LE(rooms.size(), 40u) << "as many moves as growth by half needs";
  EXPECT_THROW(StringObject::createUninitialized(heap.get(), StringObject::kMaximumLength + 1),
               std::bad_alloc);
  drop(Value(text));
}

TEST(StringInterner, KeepsOneCopyOfEachAndForgetsTheUnused) {
  const TestHeap heap;
  OwnedValue kept;
  {
    StringInterner strings(heap.get());
    kept = OwnedValue(Value(strings.intern("kept")));
    const OwnedValue withZero(Value(strings.intern({"kept\0", 5})));
    EXPECT_NE(kept.get().string, withZero.get().string);
    const std::size_t before = Heap::liveBlocks();
    for (int i = 0; i < 100000; ++i) {
      const std::string name = "name" + std::to_string(i);
      const OwnedValue first(Value(strings.intern(name)));
      const OwnedValue second(Value(strings.intern(name)));
      ASSERT_EQ(first.get().string, second.get().string);
      ASSERT_EQ(name, first.get().string->view());
    }
    EXPECT_LE(Heap::liveBlocks() - before, 1000u);
    const OwnedValue again(Value(strings.intern("kept")));
    EXPECT_EQ(kept.get().string, again.get().string);
    EXPECT_EQ(3u, countOf(kept)) << "two of ours, one of the interner";

    std::vector<OwnedValue> many;
    for (int i = 0; i < 5000; ++i) many.emplace_back(Value(strings.intern(std::to_string(i))));
    for (int i = 0; i < 5000; ++i) {
      const OwnedValue found(Value(strings.intern(std::to_string(i))));
      ASSERT_EQ(many[static_cast<std::size_t>(i)].get().string, found.get().string);
    }
  }
  EXPECT_EQ(1u, countOf(kept)) << "a string may outlive its interner";
}

}  // namespace
}  // namespace tarvel::lua::internal
