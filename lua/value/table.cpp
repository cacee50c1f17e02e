#include "lua/value/table.h"

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <new>

#include "lua/value/hashing.h"
#include "lua/value/iterator_state.h"
#include "lua/value/number_rules.h"

namespace tarvel::lua::internal {

namespace {

// Small keys are always dense, so a list filled back to front is still one array. Further keys are
// dense only near the array's end; a lone t[1000000] costs one entry instead of a million nils.
constexpr std::int64_t kFirstSparseKey = 65;
constexpr std::int64_t kDenseReach = 8;  // elements past the array's end

constexpr std::uint32_t kSmallestCapacity = 4;  // elements or entries
constexpr std::uint32_t kFreeIndexSlot = 0xFFFFFFFF;
constexpr std::uint32_t kNoEntry = 0xFFFFFFFF;
constexpr std::uint32_t kLargestCapacity = std::uint32_t{1} << 30;

std::uint64_t keyWord(std::uint64_t tag, std::uint32_t hash) {
  return tag | static_cast<std::uint64_t>(hash) << 32;
}

bool sameKey(TableKey a, TableKey b) noexcept {
  if (a.word != b.word) return false;
  if (a.integer == b.integer) return true;
  return a.tag() == kString && stringsEqual(a.string, b.string);
}

std::uint32_t grownCapacity(std::uint32_t current, std::uint32_t needed) {
  if (needed > kLargestCapacity) throw std::bad_alloc();
  return std::max({needed, std::min(current * 2, kLargestCapacity), kSmallestCapacity});
}

}  // namespace

TableKey TableKey::ofInteger(std::int64_t key) noexcept {
  TableKey result;
  result.word = keyWord(kInteger, hashOfInteger(key, processHashSecrets()));
  result.integer = key;
  return result;
}

TableKey TableKey::ofBoolean(bool key) noexcept {
  TableKey result;
  result.word = keyWord(key ? kTrue : kFalse, key ? 1 : 2);
  result.integer = 0;
  return result;
}

TableKey TableKey::ofString(StringObject* key) noexcept {
  TableKey result;
  result.word = keyWord(kString, key->hash());
  result.string = key;
  return result;
}

Value TableKey::toValue() const noexcept {
  Value value = Value::ofTag(tag());
  value.integer = integer;
  return value;
}

bool tryMakeKeyFromValue(const Value& value, TableKey& out) noexcept {
  switch (value.tag) {
    case kInteger:
      out = TableKey::ofInteger(value.integer);
      return true;
    case kString:
      out = TableKey::ofString(value.string);
      return true;
    case kFloat: {
      std::int64_t whole = 0;
      if (!wholeNumber(value.number, whole)) return false;
      out = TableKey::ofInteger(whole);
      return true;
    }
    case kFalse:
    case kTrue:
      out = TableKey::ofBoolean(value.tag == kTrue);
      return true;
    default:
      return false;
  }
}

void Table::setEntryCapacity(std::uint32_t capacity) noexcept {
  const auto code = capacity < kIndexedCapacity
                        ? capacity
                        : kIndexedCapacity + static_cast<std::uint32_t>(
                                                 std::countr_zero(capacity / kIndexedCapacity));
  capacityCode_ = static_cast<std::uint8_t>(code);
}

Table* Table::create(Heap& heap, std::uint32_t arrayHint, std::uint32_t entryHint) {
  auto* const table = new (heap.allocate(sizeof(Table))) Table;
  try {
    if (arrayHint > 0) table->reserveArray(arrayHint);
    if (entryHint > 0) table->rebuildEntries(entryHint);
  } catch (...) {
    destroy(table);
    throw;
  }
  return table;
}

void Table::destroy(Table* table) noexcept {
  for (std::uint32_t i = 0; i < table->arraySize_; ++i) drop(table->array_[i]);
  for (std::uint32_t i = 0; i < table->entryCount_; ++i) {
    drop(table->entries_[i].key.toValue());
    drop(table->entries_[i].value);
  }
  if (table->array_ != nullptr) {
    const std::uint32_t gap = table->hasHeader_ ? table->header().gap : 0;
    Heap::release(table->array_ - gap, (gap + table->arrayCapacity_) * sizeof(Value));
  }
  if (table->entries_ != nullptr)
    Heap::release(table->entries_, entryBytes(table->entryCapacity()));
  Heap::release(table, sizeof(Table));
}

// ---- Reading ------------------------------------------------------------------------------------

Value Table::get(TableKey key) const noexcept {
  return key.tag() == kInteger ? getInteger(key.integer) : getEntry(key);
}

Value Table::getEntry(TableKey key) const noexcept {
  const std::uint32_t number = findEntry(key);
  if (number != kNoEntry) return entries_[number].value;
  // A table that was lent has its array part again now.
  const std::uint64_t index = static_cast<std::uint64_t>(key.integer) - 1;
  return key.tag() == kInteger && index < arraySize_ ? array_[index] : Value();
}

Value* Table::find(TableKey key) noexcept {
  takeBack();
  const std::uint64_t index = static_cast<std::uint64_t>(key.integer) - 1;
  Value* place = nullptr;
  if (key.tag() == kInteger && index < arraySize_) {
    place = &array_[index];
  } else if (const std::uint32_t number = findEntry(key); number != kNoEntry) {
    place = &entries_[number].value;
  }
  return place == nullptr || place->isNil() ? nullptr : place;
}

Value Table::findWithHint(StringObject* key, std::uint32_t& hint) const noexcept {
  const std::uint32_t number = findEntry(TableKey::ofString(key));
  if (number == kNoEntry) return Value();
  hint = number;
  return entries_[number].value;
}

std::uint32_t Table::findEntry(TableKey key) const noexcept {
  if (capacityCode_ < kIndexedCapacity) {
    for (std::uint32_t i = 0; i < entryCount_; ++i) {
      if (sameKey(entries_[i].key, key)) return i;
    }
    return kNoEntry;
  }
  if (isLent()) {
    takeBack();
    return findEntry(key);
  }
  const std::uint32_t* const slots = index();
  const std::uint32_t mask = entryCapacity() * 2 - 1;
  for (std::uint32_t slot = key.hash() & mask; slots[slot] != kFreeIndexSlot;
       slot = (slot + 1) & mask) {
    if (sameKey(entries_[slots[slot]].key, key)) return slots[slot];
  }
  return kNoEntry;
}

// ---- Lending ------------------------------------------------------------------------------------

void Table::takeParts(const Table& lender) noexcept {
  const auto references = count;
  *this = lender;
  count = references;
}

void Table::lendTo(IteratorState& iterator) noexcept {
  iterator.parts.takeParts(*this);
  takeParts(Table());
  borrower_ = &iterator;
  capacityCode_ = kLent;
  // So that nobody concludes that something is absent.
  liveEntries_ = 1;
  integerEntries_ = 1;
}

void Table::fetchBack() {
  if (isLent()) borrower_->endLoan();
}

void Table::endLoan() noexcept {
  IteratorState& iterator = *borrower_;
  try {
    iterator.endLoan();
  } catch (const std::bad_alloc&) {
    iterator.loseItems();
  }
}

// ---- Storing ------------------------------------------------------------------------------------

void Table::set(TableKey key, Value owned) {
  if (key.tag() == kInteger) {
    setInteger(key.integer, owned);
  } else {
    setEntry(key, owned);
  }
}

void Table::setBeyondArray(std::int64_t key, Value owned) {
  const std::int64_t size = arraySize_;
  if (key == size + 1 && arraySize_ < arrayCapacity_ && integerEntries_ == 0) {
    new (&array_[arraySize_++]) Value(owned);
    return;
  }
  setAwayFromArray(key, owned);
}

// Out of line, so that appending needs no frame.
[[gnu::noinline]] void Table::setAwayFromArray(std::int64_t key, Value owned) {
  if (isLent()) {
    takeBack();
    return setInteger(key, owned);
  }
  const std::int64_t size = hasHeader_ ? std::max(header().reach, arraySize_) : arraySize_;
  if (key < 1 || (key >= kFirstSparseKey && key > size + kDenseReach)) {
    setEntry(TableKey::ofInteger(key), owned);
    return;
  }
  if (hasHeader_ && owned.isNil() && key <= header().reach) return;
  OwnedValue guard(owned);
  growArray(static_cast<std::uint32_t>(key));
  setElement(static_cast<std::uint32_t>(key - 1), guard.take());
}

void Table::setStringWithHint(StringObject* key, Value owned, std::uint32_t& hint) {
  const std::uint32_t number = setEntry(TableKey::ofString(key), owned);
  if (number != kNoEntry) hint = number;
}

// The value under `key` is about to become nil.
void Table::retreatBorder(std::int64_t key) noexcept {
  if (key >= 1 && key <= static_cast<std::int64_t>(border_))
    retreatBorderTo(static_cast<std::uint32_t>(key - 1));
}

// Returns the number of the entry that holds the value, kNoEntry when a nil needed none.
std::uint32_t Table::setEntry(TableKey key, Value owned) {
  const std::uint32_t number = findEntry(key);
  if (number == kNoEntry) return owned.isNil() ? kNoEntry : appendEntry(key, owned);
  if (owned.isNil() && key.tag() == kInteger) retreatBorder(key.integer);
  Entry& entry = entries_[number];
  if (entry.value.isNil() && !owned.isNil() && number + 1 != entryCount_) {
    const std::uint32_t appended = appendEntry(key, owned);
    return appended;
  }
  if (entry.value.isNil() != owned.isNil()) {
    if (owned.isNil()) {
      --liveEntries_;
    } else {
      ++liveEntries_;
    }
  }
  replaceSlot(entry.value, owned);
  return number;
}

std::uint32_t Table::appendEntry(TableKey key, Value owned) {
  const OwnedValue keyGuard = OwnedValue::share(key.toValue());
  OwnedValue guard(owned);
  // A key that was nil for a while leaves its old place in the order.
  if (const std::uint32_t old = findEntry(key); old != kNoEntry) forgetEntry(old);
  if (const std::uint32_t capacity = entryCapacity(); entryCount_ == capacity) {
    // With many dead entries the same room serves again.
    const bool mostlyLive = liveEntries_ >= capacity / 4 * 3;
    rebuildEntries(mostlyLive ? grownCapacity(capacity, liveEntries_ + 1) : capacity);
  }
  const std::uint32_t number = entryCount_++;
  retain(key.toValue());
  new (&entries_[number]) Entry{key, guard.take()};
  ++liveEntries_;
  if (key.tag() == kInteger) noteIntegerEntry(1);
  indexEntry(number);
  return number;
}

void Table::noteIntegerEntry(int change) noexcept {
  if (integerEntries_ == kMostIntegerEntries) return;
  integerEntries_ = (integerEntries_ + static_cast<std::uint32_t>(change)) & kMostIntegerEntries;
}

// Makes an entry unfindable; the value must be nil or moved away. Its index slot stays used until
// the next rebuild.
void Table::forgetEntry(std::uint32_t number) noexcept {
  Entry& entry = entries_[number];
  const Value key = entry.key.toValue();
  if (key.tag == kInteger) noteIntegerEntry(-1);
  entry.key.word = kNil;
  entry.key.integer = 0;
  drop(key);
}

// ---- The array part -----------------------------------------------------------------------------

void Table::reserveArray(std::uint32_t capacity) {
  if (capacity <= arrayCapacity_) return;
  if (hasHeader_) return reserveBehindGap(capacity);
  void* const block = array_ == nullptr ? heap().allocate(capacity * sizeof(Value))
                                        : heap().reallocate(array_, arrayCapacity_ * sizeof(Value),
                                                            capacity * sizeof(Value));
  array_ = static_cast<Value*>(block);
  arrayCapacity_ = capacity;
}

// Also keeps what stands in front of the elements.
[[gnu::noinline]] void Table::reserveBehindGap(std::uint32_t capacity) {
  const std::size_t gap = header().gap;
  void* const block = heap().reallocate(array_ - gap, (gap + arrayCapacity_) * sizeof(Value),
                                        (gap + capacity) * sizeof(Value));
  array_ = static_cast<Value*>(block) + gap;
  arrayCapacity_ = capacity;
}

void Table::growArray(std::uint32_t newSize) {
  // Where elements are taken out as fast as others are added, the same room serves again.
  if (newSize > arrayCapacity_ && hasHeader_ && header().gap > arrayCapacity_ / 3) slideTo(1);
  if (newSize > arrayCapacity_) reserveArray(grownCapacity(arrayCapacity_, newSize));
  const std::uint32_t oldSize = arraySize_;
  for (std::uint32_t i = oldSize; i < newSize; ++i) new (&array_[i]) Value();
  arraySize_ = newSize;
  if (integerEntries_ > 0) migrateEntries(oldSize);
}

// ---- The header of the array part ---------------------------------------------------------------

// Moves the elements to where that many places are in front of them.
void Table::slideTo(std::uint32_t gap) noexcept {
  heap().meter().note(stepsForBytes(arraySize_ * sizeof(Value)));
  ArrayHeader moved = header();
  Value* const from = array_;
  array_ = array_ - moved.gap + gap;
  arrayCapacity_ = arrayCapacity_ + moved.gap - gap;
  std::memmove(static_cast<void*>(array_), from, arraySize_ * sizeof(Value));
  moved.gap = gap;
  new (&header()) ArrayHeader(moved);
}

// False where there is no memory for it.
bool Table::makeHeader() noexcept {
  if (hasHeader_) return true;
  if (arrayCapacity_ == arraySize_) {
    try {
      reserveArray(arrayCapacity_ + arrayCapacity_ / 8 + 1);
    } catch (const std::bad_alloc&) {
      return false;
    }
  }
  heap().meter().note(stepsForBytes(arraySize_ * sizeof(Value)));
  std::memmove(static_cast<void*>(array_ + 1), array_, arraySize_ * sizeof(Value));
  ++array_;
  --arrayCapacity_;
  hasHeader_ = 1;
  new (&header()) ArrayHeader{1, arraySize_, 0, 0};
  return true;
}

bool Table::tryTakeFirst(std::uint32_t length, Value& out) noexcept {
  if (length > arraySize_) return false;
  if (length < arraySize_ && !array_[arraySize_ - 1].isNil()) return false;
  if (!makeHeader()) return false;
  header().reach = std::max(header().reach, arraySize_);
  while (arraySize_ > length && array_[arraySize_ - 1].isNil()) --arraySize_;
  if (length < arraySize_) return false;
  const ArrayHeader moved{header().gap + 1, header().reach, 0, 0};
  out = array_[0];
  ++array_;
  --arrayCapacity_;
  --arraySize_;
  border_ = length - 1;
  new (&header()) ArrayHeader(moved);
  return true;
}

// The border is about to go far back, to `index`. Counts the way that length() goes once the hole
// is filled, and notes where that may go at once.
void Table::prepareWalk(std::uint32_t index) noexcept {
  heap().meter().note((border_ - index) / kWalkedPerStep);
  if (index >= arraySize_ || !makeHeader()) return;
  header().hole = index;
  header().runEnd = std::min(border_, arraySize_);
}

void Table::advanceBorder() noexcept {
  if (hasHeader_) {
    const ArrayHeader known = header();
    while (border_ <= known.hole && border_ < arraySize_ && !array_[border_].isNil()) ++border_;
    if (border_ == known.hole + 1) border_ = std::max(border_, known.runEnd);
  }
  while (border_ < arraySize_ && !array_[border_].isNil()) ++border_;
}

// Moves the keys that the array has grown over from the hash part.
void Table::migrateEntries(std::uint32_t oldSize) noexcept {
  for (std::uint32_t i = oldSize; i < arraySize_; ++i) {
    const std::uint32_t number = findEntry(TableKey::ofInteger(static_cast<std::int64_t>(i) + 1));
    if (number == kNoEntry) continue;
    if (!entries_[number].value.isNil()) --liveEntries_;
    array_[i] = entries_[number].value;
    entries_[number].value = Value();
    forgetEntry(number);
  }
}

void Table::extendBorderIntoEntries() noexcept {
  if (isLent()) {
    takeBack();
    length();
    return;
  }
  while (!getEntry(TableKey::ofInteger(static_cast<std::int64_t>(border_) + 1)).isNil()) ++border_;
}

// ---- The hash part ------------------------------------------------------------------------------

std::size_t Table::entryBytes(std::uint32_t capacity) noexcept {
  const std::size_t indexBytes =
      capacity < kIndexedCapacity ? 0 : std::size_t{capacity} * 2 * sizeof(std::uint32_t);
  return capacity * sizeof(Entry) + indexBytes;
}

std::uint32_t* Table::index() const noexcept {
  return reinterpret_cast<std::uint32_t*>(entries_ + entryCapacity());
}

void Table::indexLargeEntry(std::uint32_t number) noexcept {
  std::uint32_t* const slots = index();
  const std::uint32_t mask = entryCapacity() * 2 - 1;
  std::uint32_t slot = entries_[number].key.hash() & mask;
  while (slots[slot] != kFreeIndexSlot) slot = (slot + 1) & mask;
  slots[slot] = number;
}

// Moves the live entries, in order, to a block with room for at least `capacity`.
void Table::rebuildEntries(std::uint32_t capacity) {
  if (capacity >= kIndexedCapacity / 2 + 1) {
    std::uint32_t powerOfTwo = kIndexedCapacity;
    while (powerOfTwo < capacity) powerOfTwo *= 2;
    capacity = powerOfTwo;
  }
  auto* const moved = static_cast<Entry*>(heap().allocate(entryBytes(capacity)));
  std::uint32_t used = 0;
  for (std::uint32_t i = 0; i < entryCount_; ++i) {
    if (entries_[i].value.isNil()) {
      forgetEntry(i);
    } else {
      new (&moved[used++]) Entry(entries_[i]);
    }
  }
  if (entries_ != nullptr) Heap::release(entries_, entryBytes(entryCapacity()));
  entries_ = moved;
  setEntryCapacity(capacity);
  entryCount_ = used;
  if (capacity < kIndexedCapacity) return;
  std::fill_n(index(), capacity * 2, kFreeIndexSlot);
  for (std::uint32_t i = 0; i < used; ++i) indexEntry(i);
}

}  // namespace tarvel::lua::internal
