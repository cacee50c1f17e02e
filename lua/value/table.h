#pragma once

#include <cstddef>
#include <cstdint>

#include "lua/value/heap.h"
#include "lua/value/string_object.h"
#include "lua/value/value.h"

namespace tarvel::lua::internal {

// A table key in the form in which tables compare it: the value's tag with the key's hash in the
// upper half, and the payload. Two integers or booleans are the same key exactly when both words
// are equal; two strings also when only their bytes are. A key borrows its string.
struct TableKey {
  std::uint64_t word;  // tag | hash << 32
  union {
    std::int64_t integer;
    StringObject* string;
  };

  static TableKey ofInteger(std::int64_t key) noexcept;
  static TableKey ofBoolean(bool key) noexcept;
  static TableKey ofString(StringObject* key) noexcept;

  std::uint32_t tag() const noexcept { return static_cast<std::uint32_t>(word); }
  std::uint32_t hash() const noexcept { return static_cast<std::uint32_t>(word >> 32); }
  Value toValue() const noexcept;  // borrowed
};

// The only aggregate: integer keys from 1 upward stand in a dense array part, every other key in a
// hash part that keeps the order of insertion.
//
// Invariants:
// - A key has one home: when the array part grows over keys of the hash part, they move into it.
// - The values under 1 to `border_` are not nil, wherever they stand.
// - An entry whose value is nil is absent for every reader. Its place in the order is given up: a
//   key that is stored again after it was nil stands at the end.
// - A table that is lent has no parts, and an iterator has them. Its sizes send every access to
//   where the parts are fetched back first; who uses the parts as such calls takeBack().
class Table : public Object {
 public:
  // Returns an owned reference. `arrayHint` and `entryHint` say how many keys are about to be
  // stored.
  static Table* create(Heap& heap, std::uint32_t arrayHint = 0, std::uint32_t entryHint = 0);
  // Frees the table; its contents are dropped.
  static void destroy(Table* table) noexcept;

  // The value under a key, borrowed; nil when absent.
  Value get(TableKey key) const noexcept;
  Value getInteger(std::int64_t key) const noexcept {
    const std::uint64_t index = static_cast<std::uint64_t>(key) - 1;
    if (index < arraySize_) return array_[index];
    return liveEntries_ == 0 ? Value() : getEntry(TableKey::ofInteger(key));
  }
  Value getString(StringObject* key) const noexcept { return getEntry(TableKey::ofString(key)); }

  // As getString, remembering the entry's number in `hint` so that the next look-up by the same
  // code is two comparisons.
  Value getString(StringObject* key, std::uint32_t& hint) const noexcept {
    return isEntryOf(key, hint) ? entries_[hint].value : findWithHint(key, hint);
  }
  // The value under the key where the hint is right, otherwise nil.
  Value getHinted(StringObject* key, std::uint32_t hint) const noexcept {
    return isEntryOf(key, hint) ? entries_[hint].value : Value();
  }

  // The place of a value that is not nil, where the hint is right; otherwise null.
  Value* findHinted(StringObject* key, std::uint32_t hint) noexcept {
    return isEntryOf(key, hint) && !entries_[hint].value.isNil() ? &entries_[hint].value : nullptr;
  }

  // The place of the value under any key, of one that is not nil; otherwise null.
  Value* find(TableKey key) noexcept;

  // The element at an index of the array part; false when that does not reach so far.
  bool tryElement(std::uint64_t index, Value& out) const noexcept {
    if (index >= arraySize_) return false;
    out = array_[index];
    return true;
  }

  // Store an owned value. On failure (std::bad_alloc) the value is dropped and the table unchanged.
  void set(TableKey key, Value owned);
  void setInteger(std::int64_t key, Value owned) {
    const std::uint64_t index = static_cast<std::uint64_t>(key) - 1;
    if (index < arraySize_) {
      setElement(static_cast<std::uint32_t>(index), owned);
      return;
    }
    setBeyondArray(key, owned);
  }
  void setString(StringObject* key, Value owned, std::uint32_t& hint) {
    if (isEntryOf(key, hint) && !entries_[hint].value.isNil() && !owned.isNil()) {
      replaceSlot(entries_[hint].value, owned);
      return;
    }
    setStringWithHint(key, owned, hint);
  }

  // Moves values to the keys `keyOf(0)` on, strings that are not in the table; `create` made room
  // for them. Nil is left out.
  template <class KeyOf>
  void addFields(const KeyOf& keyOf, Value* values, std::uint32_t keys) noexcept {
    std::uint32_t number = entryCount_;
    for (std::uint32_t i = 0; i < keys; ++i) {
      const Value value = values[i];
      if (value.isNil()) continue;
      values[i].tag = kNil;
      const TableKey key = keyOf(i);
      ++key.string->count;
      new (&entries_[number++]) Entry{key, value};
    }
    liveEntries_ += number - entryCount_;
    while (entryCount_ < number) indexEntry(entryCount_++);
  }

  // The value of `#`: the number of leading elements that are not nil, and where the array part has
  // no nil, of the keys of the hash part that follow without a gap. Amortised constant time.
  std::int64_t length() noexcept {
    if (border_ < arraySize_ && !array_[border_].isNil()) {
      ++border_;
      if (border_ < arraySize_ && !array_[border_].isNil()) [[unlikely]]
        advanceBorder();
    }
    if (border_ >= arraySize_ && integerEntries_ > 0) extendBorderIntoEntries();
    return border_;
  }

  // The parts, for `pairs`, conversion and sorting. Nil elements and nil values are not items.
  std::uint32_t arraySize() const noexcept { return arraySize_; }
  const Value& element(std::uint32_t index) const noexcept { return array_[index]; }
  Value& element(std::uint32_t index) noexcept { return array_[index]; }
  std::uint32_t entryCount() const noexcept { return entryCount_; }
  TableKey entryKey(std::uint32_t number) const noexcept { return entries_[number].key; }
  const Value& entryValue(std::uint32_t number) const noexcept { return entries_[number].value; }
  std::uint32_t liveEntries() const noexcept { return liveEntries_; }

  // Takes the element under 1 out, owned, and moves the others of the sequence down, which is
  // `length` long and in the array part. Constant time, amortised. False, and nothing done, where
  // other elements follow or memory for it is short.
  bool tryTakeFirst(std::uint32_t length, Value& out) noexcept;

  // Gives the parts to an iterator until the next access, or until it returns them itself.
  void lendTo(IteratorState& iterator) noexcept;
  // Makes another table's parts those of this one.
  void takeParts(const Table& lender) noexcept;
  // Fetches the parts back. The first throws std::bad_alloc where the iterator, which needs a copy,
  // can get no memory for it; the second leaves that to the iterator.
  void fetchBack();
  void takeBack() const noexcept {
    if (isLent()) const_cast<Table*>(this)->endLoan();
  }

 private:
  struct Entry {
    TableKey key;
    Value value;
  };

  // What a table knows of its array part once elements were taken out at the front, or a hole was
  // made there. It stands in the last of the unused places in front of the elements.
  struct ArrayHeader {
    std::uint32_t gap;    // the number of these places
    std::uint32_t reach;  // keys up to here belong to the array part, which may be shorter
    // The elements behind the hole, up to this index, are not nil; none where it is 0.
    std::uint32_t hole;
    std::uint32_t runEnd;

    void noteNil(std::uint32_t index) noexcept {
      if (index > hole && index < runEnd) runEnd = index;
    }
  };
  static_assert(sizeof(ArrayHeader) == sizeof(Value));
  ArrayHeader& header() const noexcept { return reinterpret_cast<ArrayHeader*>(array_)[-1]; }

  bool isEntryOf(StringObject* key, std::uint32_t number) const noexcept {
    return number < entryCount_ && entries_[number].key.string == key &&
           entries_[number].key.tag() == kString;
  }
  bool isLent() const noexcept { return capacityCode_ == kLent; }
  void endLoan() noexcept;
  Value getEntry(TableKey key) const noexcept;
  Value findWithHint(StringObject* key, std::uint32_t& hint) const noexcept;
  std::uint32_t findEntry(TableKey key) const noexcept;
  void setElement(std::uint32_t index, Value owned) noexcept {
    if (owned.isNil()) noteNil(index);
    replaceSlot(array_[index], owned);
  }
  void setBeyondArray(std::int64_t key, Value owned);
  void setAwayFromArray(std::int64_t key, Value owned);
  void setStringWithHint(StringObject* key, Value owned, std::uint32_t& hint);
  std::uint32_t setEntry(TableKey key, Value owned);
  std::uint32_t appendEntry(TableKey key, Value owned);
  void forgetEntry(std::uint32_t number) noexcept;
  void growArray(std::uint32_t newSize);
  void reserveArray(std::uint32_t capacity);
  void reserveBehindGap(std::uint32_t capacity);
  void migrateEntries(std::uint32_t oldSize) noexcept;
  void extendBorderIntoEntries() noexcept;
  void retreatBorder(std::int64_t key) noexcept;
  void noteNil(std::uint32_t index) noexcept {
    if (hasHeader_) header().noteNil(index);
    if (index < border_) retreatBorderTo(index);
  }
  void retreatBorderTo(std::uint32_t index) noexcept {
    if (border_ - index > kWalkedPerStep) prepareWalk(index);
    border_ = index;
  }
  [[gnu::noinline]] void prepareWalk(std::uint32_t index) noexcept;
  void advanceBorder() noexcept;
  bool makeHeader() noexcept;
  void slideTo(std::uint32_t gap) noexcept;
  void rebuildEntries(std::uint32_t capacity);
  void indexEntry(std::uint32_t number) noexcept {
    if (capacityCode_ >= kIndexedCapacity) indexLargeEntry(number);
  }
  void indexLargeEntry(std::uint32_t number) noexcept;
  std::uint32_t* index() const noexcept;
  static std::size_t entryBytes(std::uint32_t capacity) noexcept;
  void noteIntegerEntry(int change) noexcept;
  Heap& heap() const noexcept { return Heap::of(this); }

  static constexpr std::uint32_t kWalkedPerStep = 64;

  // From this capacity on entries have an index, and capacities are powers of two; fewer entries
  // are found by looking at each.
  static constexpr std::uint32_t kIndexedCapacity = 16;
  static constexpr std::uint32_t kLent = 255;  // in place of a code for a capacity
  static constexpr std::uint32_t kMostIntegerEntries = (std::uint32_t{1} << 23) - 1;

  std::uint32_t entryCapacity() const noexcept {
    if (capacityCode_ < kIndexedCapacity) return capacityCode_;
    return kIndexedCapacity << (capacityCode_ - kIndexedCapacity);
  }
  void setEntryCapacity(std::uint32_t capacity) noexcept;

  union {
    Value* array_ = nullptr;
    IteratorState* borrower_;  // while it is lent
  };
  Entry* entries_ = nullptr;     // behind them, from kIndexedCapacity on, the hash index
  std::uint32_t arraySize_ = 0;  // keys 1 to arraySize_ live here; elements may be nil
  std::uint32_t arrayCapacity_ = 0;
  std::uint32_t border_ = 0;
  std::uint32_t entryCount_ = 0;   // used entries, dead ones included
  std::uint32_t liveEntries_ = 0;  // entries whose value is not nil
  // Entries with an integer key, dead ones included; once it is kMostIntegerEntries it stays so.
  std::uint32_t integerEntries_ : 23 = 0;
  std::uint32_t hasHeader_ : 1 = 0;
  std::uint32_t capacityCode_ : 8 = 0;  // of entryCapacity()
};

static_assert(sizeof(Table) <= 48, "three units of the heap");

// A usable key for `value`, which is borrowed; false for nil, tables, functions, userdata,
// iterators, and floats that are not whole within the epsilon or out of the 64-bit range. A whole
// float is the integer key.
bool tryMakeKeyFromValue(const Value& value, TableKey& out) noexcept;

// The operations under the names that the rest of the system knows them by. A null table reads as
// empty.
inline Value tableGetByKey(const Table* table, TableKey key) noexcept {
  return table == nullptr ? Value() : table->get(key);
}
inline void tableSetByKey(Table& table, TableKey key, Value owned) { table.set(key, owned); }
inline std::int64_t tableSequenceLength(Table* table) noexcept {
  return table == nullptr ? 0 : table->length();
}

}  // namespace tarvel::lua::internal
