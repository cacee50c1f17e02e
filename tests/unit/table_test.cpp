#include "lua/value/table.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <limits>
#include <map>
#include <random>
#include <sstream>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "lua/evaluator/iteration.h"
#include "lua/value/iterator_state.h"
#include "tests/unit/value_support.h"

namespace tarvel::lua::internal {
namespace {

constexpr std::int64_t kLowest = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t kHighest = std::numeric_limits<std::int64_t>::max();

using ModelKey = std::variant<std::int64_t, std::string, bool>;
using Items = std::vector<std::pair<ModelKey, std::int64_t>>;

// What a table has to do, in the plainest form. The value 0 stands for nil.
class TableModel {
 public:
  void set(const ModelKey& key, std::int64_t value) {
    const auto* const integer = std::get_if<std::int64_t>(&key);
    const auto size = static_cast<std::int64_t>(array_.size());
    if (integer == nullptr || *integer < 1 || (*integer >= 65 && *integer > size + 8)) {
      setEntry(key, value);
      return;
    }
    while (static_cast<std::int64_t>(array_.size()) < *integer) takeNextIntoArray();
    array_[static_cast<std::size_t>(*integer - 1)] = value;
  }

  std::int64_t get(const ModelKey& key) const {
    const auto* const integer = std::get_if<std::int64_t>(&key);
    if (integer != nullptr && *integer >= 1 &&
        static_cast<std::uint64_t>(*integer) <= array_.size())
      return array_[static_cast<std::size_t>(*integer - 1)];
    const auto entry = entries_.find(key);
    return entry == entries_.end() ? 0 : entry->second.value;
  }

  std::int64_t length() const {
    std::int64_t length = 0;
    while (get(ModelKey(length + 1)) != 0) ++length;
    return length;
  }

  Items items() const {
    Items items;
    for (std::size_t i = 0; i < array_.size(); ++i) {
      if (array_[i] != 0) items.emplace_back(static_cast<std::int64_t>(i) + 1, array_[i]);
    }
    std::map<std::uint64_t, std::pair<ModelKey, std::int64_t>> inOrder;
    for (const auto& [key, entry] : entries_) inOrder[entry.stored] = {key, entry.value};
    for (const auto& [stored, item] : inOrder) items.push_back(item);
    return items;
  }

  std::size_t entryCount() const { return entries_.size(); }

 private:
  struct Entry {
    std::int64_t value;
    std::uint64_t stored;  // when the key came in
  };

  void takeNextIntoArray() {
    const auto entry = entries_.find(static_cast<std::int64_t>(array_.size()) + 1);
    array_.push_back(entry == entries_.end() ? 0 : entry->second.value);
    if (entry != entries_.end()) entries_.erase(entry);
  }

  void setEntry(const ModelKey& key, std::int64_t value) {
    if (value == 0) {
      entries_.erase(key);
    } else if (const auto entry = entries_.find(key); entry != entries_.end()) {
      entry->second.value = value;
    } else {
      entries_[key] = {value, ++clock_};
    }
  }

  std::vector<std::int64_t> array_;
  std::map<ModelKey, Entry> entries_;
  std::uint64_t clock_ = 0;
};

Value modelValue(std::int64_t value) { return value == 0 ? Value() : Value(value); }

ModelKey modelKey(const Value& key) {
  if (key.isInteger()) return key.integer;
  if (key.isString()) return std::string(key.string->view());
  return key.isTruthy();
}

// The items of a table as `pairs` delivers them.
Items itemsOf(const TestHeap& heap, Table& table) {
  const OwnedValue iterator(Value(IteratorState::createPairs(heap.get(), table)));
  Items items;
  MultiValue item;
  while (nextIteratorItem(iterator.get().iterator, item)) {
    items.emplace_back(modelKey(item[0]), item[1].integer);
  }
  EXPECT_FALSE(nextIteratorItem(iterator.get().iterator, item)) << "exhausted for good";
  return items;
}

// A table and its model, stored to and read side by side.
class CheckedTable {
 public:
  CheckedTable(const TestHeap& heap, std::uint32_t arrayHint, std::uint32_t entryHint)
      : heap_(heap), table_(heap.table(arrayHint, entryHint)) {}

  void set(const ModelKey& key, std::int64_t value, std::mt19937_64& random) {
    const OwnedValue keyValue = makeKey(key, random);
    TableKey tableKey;
    ASSERT_TRUE(tryMakeKeyFromValue(keyValue.get(), tableKey));
    if (keyValue.get().isString() && random() % 2 == 0) {
      table().setString(keyValue.get().string, modelValue(value), anyHint(random));
    } else {
      tableSetByKey(table(), tableKey, modelValue(value));
    }
    model_.set(key, value);
  }

  void checkGet(const ModelKey& key, std::mt19937_64& random) {
    const OwnedValue keyValue = makeKey(key, random);
    TableKey tableKey;
    ASSERT_TRUE(tryMakeKeyFromValue(keyValue.get(), tableKey));
    const Value expected = modelValue(model_.get(key));
    EXPECT_EQ(expected.toString(), tableGetByKey(&table(), tableKey).toString());
    if (!keyValue.get().isString()) return;
    const Value hinted = table().getString(keyValue.get().string, anyHint(random));
    EXPECT_EQ(expected.toString(), hinted.toString());
  }

  void checkLength() { EXPECT_EQ(model_.length(), tableSequenceLength(&table())); }

  void checkItems() {
    EXPECT_EQ(model_.items(), itemsOf(heap_, table()));
    EXPECT_EQ(model_.entryCount(), table().liveEntries());
  }

  Table& table() { return *table_.get().table; }
  const TableModel& model() const { return model_; }

 private:
  // Hints are memories of one place in the code, used for whatever table and key comes along.
  static std::uint32_t& anyHint(std::mt19937_64& random) {
    static std::array<std::uint32_t, 8> hints{};
    return hints[random() % hints.size()];
  }

  // Strings are sometimes the same object as before, sometimes an equal one; integers are sometimes
  // floats.
  OwnedValue makeKey(const ModelKey& key, std::mt19937_64& random) {
    if (const auto* const text = std::get_if<std::string>(&key)) {
      OwnedValue& known = names_[*text];
      if (known.get().isNil() || random() % 4 == 0) known = heap_.text(*text);
      return known;
    }
    if (const auto* const boolean = std::get_if<bool>(&key)) return OwnedValue(Value(*boolean));
    const std::int64_t integer = std::get<std::int64_t>(key);
    const bool exact = integer > -(std::int64_t{1} << 53) && integer < std::int64_t{1} << 53;
    if (exact && random() % 4 == 0) return OwnedValue(Value(static_cast<double>(integer)));
    return OwnedValue(Value(integer));
  }

  const TestHeap& heap_;
  OwnedValue table_;
  TableModel model_;
  std::map<std::string, OwnedValue> names_;
};

// A way to draw keys, given the model as it is.
struct KeySource {
  const char* name;
  ModelKey (*draw)(std::mt19937_64& random, const TableModel& model);
};

std::int64_t between(std::mt19937_64& random, std::int64_t low, std::int64_t high) {
  return low + static_cast<std::int64_t>(random() % static_cast<std::uint64_t>(high - low + 1));
}

ModelKey anyName(std::mt19937_64& random, std::int64_t count) {
  return "name" + std::to_string(between(random, 1, count));
}

const KeySource kKeySources[] = {
    {"dense", [](auto& random, auto&) { return ModelKey(between(random, 1, 20)); }},
    {"around the constants", [](auto& random, auto&) { return ModelKey(between(random, 50, 90)); }},
    {"sparse", [](auto& random, auto&) { return ModelKey(between(random, -5, 400)); }},
    {"at the end",
     [](auto& random, auto& model) { return ModelKey(model.length() + between(random, 0, 12)); }},
    {"extreme",
     [](auto& random, auto&) {
       const std::int64_t far[] = {kLowest,
                                   kLowest + 1,
                                   -1,
                                   0,
                                   1,
                                   kHighest - 1,
                                   kHighest,
                                   std::int64_t{1} << 32,
                                   (std::int64_t{1} << 32) + 1};
       return ModelKey(far[random() % std::size(far)]);
     }},
    {"few names", [](auto& random, auto&) { return anyName(random, 7); }},
    {"many names", [](auto& random, auto&) { return anyName(random, 300); }},
    {"everything",
     [](auto& random, auto&) {
       switch (random() % 8) {
         case 0:
           return ModelKey(random() % 2 == 0);
         case 1:
           return anyName(random, 30);
         case 2:
           return ModelKey(std::string(random() % 3, '\0'));
         default:
           return ModelKey(between(random, -2, 100));
       }
     }},
};

TEST(Table, AgreesWithAModelOnRandomStores) {
  const std::pair<std::uint32_t, std::uint32_t> hints[] = {
      {0, 0}, {1, 1}, {5, 3}, {100, 9}, {3, 40}};
  std::mt19937_64 random(20240817);
  const TestHeap heap;
  for (const KeySource& source : kKeySources) {
    for (const std::uint64_t nilShare : {0u, 2u, 6u, 9u}) {  // of ten stores
      for (const auto& [arrayHint, entryHint] : hints) {
        SCOPED_TRACE(::testing::Message() << source.name << ", nil " << nilShare << "/10, hints "
                                          << arrayHint << " " << entryHint);
        CheckedTable checked(heap, arrayHint, entryHint);
        for (int step = 1; step <= 1500; ++step) {
          const ModelKey key = source.draw(random, checked.model());
          const bool isNil = random() % 10 < nilShare;
          checked.set(key, isNil ? 0 : between(random, 1, 1000000), random);
          checked.checkGet(key, random);
          checked.checkGet(source.draw(random, checked.model()), random);
          if (random() % 3 == 0) checked.checkLength();
          if (step % 50 == 0) checked.checkItems();
          if (::testing::Test::HasFailure()) FAIL() << "at step " << step;
        }
      }
    }
  }
}

// Keys in the order of `pairs` after a list of stores: "k" stores, "-k" stores nil.
struct PlacementCase {
  const char* stores;
  const char* order;
  std::int64_t length;
};

const PlacementCase kPlacement[] = {
    {"", "", 0},
    {"2 1", "1 2", 2},
    {"1 2 4", "1 2 4", 2},
    {"1 2 3 -2", "1 3", 1},
    {"1 2 3 -2 2", "1 2 3", 3},
    {"1 2 3 -3 -2 3 2", "1 2 3", 3},
    {"0 x 1", "1 0 x", 1},
    {"false true x", "false true x", 0},
    // Below 65 a key is dense wherever the array ends; from 65 on only eight past its end.
    {"x 64 63", "63 64 x", 0},
    {"66 65", "66 65", 0},
    {"100", "100", 0},
    {"64 73 x 74 72", "64 72 73 x 74", 0},
    {"64 74 x 73", "64 74 x 73", 0},
    {"64 x 72 71", "64 71 72 x", 0},
    // A stored nil extends the array like any value.
    {"x -64 72 71", "71 72 x", 0},
    {"-65 66 65", "66 65", 0},
    // Entries that the array grows over move into it, those behind its new end stay.
    {"70 66 x 64 65", "64 65 70 66 x", 0},
    {"70 66 x 64 72", "64 66 70 72 x", 0},
    {"66 67 x -66 64 65 68", "64 65 67 68 x", 0},
    {"67 -67 x 64 65 66 67", "64 65 66 67 x", 0},
    // A replaced value keeps its place, a key that comes back after nil stands at the end.
    {"a b c a", "a b c", 0},
    {"a b c -a a", "b c a", 0},
    {"a b -b b", "a b", 0},
    {"a -a b a", "b a", 0},
    {"-a a b -a -a c a", "b c a", 0},
};

TEST(Table, PlacesKeysInTheArrayOrBehindIt) {
  const TestHeap heap;
  for (const PlacementCase& c : kPlacement) {
    const OwnedValue table = heap.table();
    std::istringstream stores(c.stores);
    for (std::string store; stores >> store;) {
      const bool isNil = store[0] == '-';
      const std::string name = store.substr(isNil ? 1 : 0);
      const bool isInteger = std::isdigit(static_cast<unsigned char>(name[0])) != 0;
      const OwnedValue key = isInteger         ? OwnedValue(Value(std::int64_t{std::stoi(name)}))
                             : name == "true"  ? OwnedValue(Value(true))
                             : name == "false" ? OwnedValue(Value(false))
                                               : heap.text(name);
      TableKey tableKey;
      ASSERT_TRUE(tryMakeKeyFromValue(key.get(), tableKey));
      tableSetByKey(*table.get().table, tableKey, modelValue(isNil ? 0 : 1));
    }
    std::string order;
    const OwnedValue iterator(Value(IteratorState::createPairs(heap.get(), *table.get().table)));
    for (MultiValue item; nextIteratorItem(iterator.get().iterator, item);) {
      order += (order.empty() ? "" : " ") + item[0].toString();
    }
    EXPECT_EQ(c.order, order) << c.stores;
    EXPECT_EQ(c.length, tableSequenceLength(table.get().table)) << c.stores;
  }
}

TEST(Table, MakesKeysFromUsableValuesOnly) {
  const TestHeap heap;
  const double epsilon = std::numeric_limits<double>::epsilon();
  const struct {
    double number;
    bool usable;
    std::int64_t key;
  } floats[] = {
      {1.0, true, 1},
      {-0.0, true, 0},
      {-3.0, true, -3},
      {1 + epsilon, true, 1},
      {1 - epsilon, true, 1},
      {1 + 2 * epsilon, false, 0},
      {epsilon, true, 0},
      {std::nextafter(epsilon, 1), false, 0},
      {1.5, false, 0},
      {0.5, false, 0},
      {0x1p62, true, std::int64_t{1} << 62},
      {0x1p63, true, kHighest},
      {-0x1p63, true, kLowest},
      {std::nextafter(0x1p63, INFINITY), false, 0},
      {std::nextafter(-0x1p63, -INFINITY), false, 0},
      {INFINITY, false, 0},
      {-INFINITY, false, 0},
      {NAN, false, 0},
  };
  for (const auto& c : floats) {
    TableKey key;
    ASSERT_EQ(c.usable, tryMakeKeyFromValue(Value(c.number), key)) << c.number;
    if (!c.usable) continue;
    EXPECT_TRUE(key.toValue().isInteger());
    EXPECT_EQ(c.key, key.integer) << c.number;
  }
  const OwnedValue iteratorTable = heap.table();
  const OwnedValue unusable[] = {
      OwnedValue(), heap.table(), heap.native("f"),
      OwnedValue(Value(IteratorState::createIpairs(heap.get(), *iteratorTable.get().table)))};
  for (const OwnedValue& value : unusable) {
    TableKey key;
    EXPECT_FALSE(tryMakeKeyFromValue(value.get(), key)) << value.get().toString();
  }
  TableKey key;
  ASSERT_TRUE(tryMakeKeyFromValue(Value(true), key));
  EXPECT_TRUE(tableGetByKey(nullptr, key).isNil());
  EXPECT_EQ(0, tableSequenceLength(nullptr));
}

// A hundred thousand keys of each kind: nothing lost, nothing reordered, and after all of them have
// gone again nothing is left.
TEST(Table, GrowsAndEmpties) {
  constexpr std::int64_t kCount = 100000;
  const TestHeap heap;
  const struct {
    const char* name;
    bool ascending;  // as pairs delivers it
    OwnedValue (*key)(const TestHeap&, std::int64_t);
  } kinds[] = {
      {"dense", true, [](const TestHeap&, std::int64_t i) { return OwnedValue(Value(i)); }},
      {"negative", true, [](const TestHeap&, std::int64_t i) { return OwnedValue(Value(-i)); }},
      {"back to front", true,
       [](const TestHeap&, std::int64_t i) { return OwnedValue(Value(kCount * 20 - i * 16)); }},
      {"named", true,
       [](const TestHeap& h, std::int64_t i) { return h.text("key" + std::to_string(i)); }},
  };
  for (const auto& kind : kinds) {
    SCOPED_TRACE(kind.name);
    const OwnedValue table = heap.table();
    for (std::int64_t i = 1; i <= kCount; ++i) {
      const OwnedValue keyValue = kind.key(heap, i);
      TableKey key;
      ASSERT_TRUE(tryMakeKeyFromValue(keyValue.get(), key));
      tableSetByKey(*table.get().table, key, Value(i));
    }
    const Items items = itemsOf(heap, *table.get().table);
    ASSERT_EQ(static_cast<std::size_t>(kCount), items.size());
    for (std::int64_t i = 1; i <= kCount; ++i) {
      ASSERT_EQ(i, items[static_cast<std::size_t>(i - 1)].second);
      const OwnedValue keyValue = kind.key(heap, i);
      TableKey key;
      ASSERT_TRUE(tryMakeKeyFromValue(keyValue.get(), key));
      ASSERT_EQ(i, tableGetByKey(table.get().table, key).integer);
      tableSetByKey(*table.get().table, key, Value());
      ASSERT_TRUE(tableGetByKey(table.get().table, key).isNil());
    }
    EXPECT_TRUE(itemsOf(heap, *table.get().table).empty());
    EXPECT_EQ(0, tableSequenceLength(table.get().table));
    EXPECT_EQ(0u, table.get().table->liveEntries());
  }
}

// Keys that come and go do not pile up, neither in the table nor as strings that it keeps alive.
TEST(Table, ForgetsDeadKeys) {
  const TestHeap heap;
  OwnedValue table = heap.table();
  std::vector<OwnedValue> names;
  std::uint32_t mostEntries = 0;
  for (int i = 0; i < 10000; ++i) {
    names.push_back(heap.text("visitor" + std::to_string(i)));
    const TableKey key = TableKey::ofString(names.back().get().string);
    table.get().table->set(key, Value(std::int64_t{1}));
    EXPECT_EQ(2u, countOf(names.back()));
    table.get().table->set(key, Value());
    mostEntries = std::max(mostEntries, table.get().table->entryCount());
  }
  EXPECT_LE(mostEntries, 32u);
  const auto held = std::count_if(names.begin(), names.end(),
                                  [](const OwnedValue& name) { return countOf(name) > 1; });
  EXPECT_LE(held, 32);
  table = OwnedValue();
  for (const OwnedValue& name : names) ASSERT_EQ(1u, countOf(name));
}

TEST(Table, CountsItsReferences) {
  const TestHeap heap;
  const OwnedValue first = heap.text("same bytes");
  const OwnedValue second = heap.text("same bytes");
  const OwnedValue a = heap.text("value a");
  const OwnedValue b = heap.text("value b");
  OwnedValue table = heap.table();
  Table& t = *table.get().table;

  t.set(TableKey::ofString(first.get().string), retain(a.get()));
  t.set(TableKey::ofString(second.get().string), retain(b.get()));
  EXPECT_EQ(2u, countOf(first)) << "the key that came first stays the key";
  EXPECT_EQ(1u, countOf(second));
  EXPECT_EQ(1u, countOf(a)) << "a replaced value goes at once";
  EXPECT_EQ(2u, countOf(b));

  t.setInteger(66, retain(a.get()));  // an entry
  t.setInteger(65, retain(b.get()));  // likewise
  t.setInteger(64, retain(b.get()));  // the array
  t.setInteger(67, retain(b.get()));  // which now grows over both
  EXPECT_EQ(67u, t.arraySize());
  EXPECT_EQ(2u, countOf(a));
  EXPECT_EQ(5u, countOf(b));
  t.setInteger(66, Value());
  EXPECT_EQ(1u, countOf(a));

  t.setInteger(70, retain(a.get()));
  t.setInteger(70, retain(a.get()));  // the same value again
  EXPECT_EQ(2u, countOf(a));

  table = OwnedValue();
  for (const OwnedValue* value : {&first, &second, &a, &b}) EXPECT_EQ(1u, countOf(*value));
}

TEST(Iterator, KeepsItsItemsAndLimit) {
  const TestHeap heap;
  OwnedValue table = heap.table();
  const OwnedValue text = heap.text("element");
  for (std::int64_t i = 1; i <= 3; ++i) table.get().table->setInteger(i, retain(text.get()));

  OwnedValue pairs(Value(IteratorState::createPairs(heap.get(), *table.get().table)));
  OwnedValue ipairs(Value(IteratorState::createIpairs(heap.get(), *table.get().table)));
  table.get().table->setInteger(2, Value());                 // ipairs reads the table live
  table.get().table->setInteger(4, Value(std::int64_t{9}));  // beyond the limit
  EXPECT_EQ(6u, countOf(text)) << "two in the table, three in the snapshot";

  table = OwnedValue();
  MultiValue item;
  for (std::int64_t i = 1; i <= 3; ++i) {
    ASSERT_TRUE(nextIteratorItem(pairs.get().iterator, item));
    EXPECT_EQ(i, item[0].integer);
    EXPECT_EQ(text.get().string, item[1].string);
    ASSERT_TRUE(nextIteratorItem(ipairs.get().iterator, item));
    EXPECT_EQ(i, item[0].integer);
    EXPECT_EQ(i == 2 ? "nil" : "element", item[1].toString());
  }
  for (const OwnedValue* iterator : {&pairs, &ipairs}) {
    MultiValue untouched(Value(std::int64_t{5}));
    EXPECT_FALSE(nextIteratorItem(iterator->get().iterator, untouched));
    EXPECT_EQ(5, untouched.first().integer);
  }
  EXPECT_FALSE(nextIteratorItem(nullptr, item));
  item = MultiValue();
  pairs = ipairs = OwnedValue();
  EXPECT_EQ(1u, countOf(text));
}

}  // namespace
}  // namespace tarvel::lua::internal
