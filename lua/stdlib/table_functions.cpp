#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>
#include <utility>

#include "lua/lua_vm_impl.h"
#include "lua/stdlib/arguments.h"
#include "lua/stdlib/library.h"
#include "lua/stdlib/sorting.h"
#include "lua/stdlib/text_builder.h"
#include "lua/value/completion.h"
#include "lua/value/metered_work.h"
#include "lua/value/value_list.h"

// table.remove, concat, sort. A sequence usually stands in the table's array part as a whole, but
// may go on in the hash part.

namespace tarvel::lua::internal {

namespace {

// Calls visit(key) for the keys from `first` to `last`, which count as work.
template <class Visit>
void forEachKey(WorkMeter& meter, std::int64_t first, std::int64_t last, Site site,
                const Visit& visit) {
  if (first > last) return;
  inPieces(meter, static_cast<std::size_t>(last - first + 1), kElementsPerStep, site,
           [&](std::size_t offset, std::size_t count) {
             const std::int64_t start = first + static_cast<std::int64_t>(offset);
             const std::int64_t end = start + static_cast<std::int64_t>(count);
             for (std::int64_t key = start; key < end; ++key) visit(key);
           });
}

// So many are moved as fast as a table is prepared for not moving them.
constexpr std::int64_t kFewElements = 64;

// Moves the elements behind `position` down and returns the one that stood there, owned. A run that
// ends meanwhile leaves that one among those that have moved.
Value takeOut(WorkMeter& meter, Table& table, std::int64_t position, std::int64_t length,
              Site site) {
  OwnedValue removed = OwnedValue::share(table.getInteger(position));
  const std::int64_t arrayEnd = std::min<std::int64_t>(length, table.arraySize());
  std::int64_t gap = position;
  if (gap < arrayEnd) {
    // The element itself fills the gap that is left behind those that have moved, so that each
    // place goes on owning one value.
    Value* const first = &table.element(static_cast<std::uint32_t>(gap - 1));
    inPieces(meter, static_cast<std::size_t>(arrayEnd - gap), kElementsPerStep, site,
             [&](std::size_t offset, std::size_t count) {
               Value* const hole = first + offset;
               std::copy(hole + 1, hole + 1 + count, hole);
               hole[count] = removed.get();
             });
    gap = arrayEnd;
  }
  for (; gap < length; ++gap) {
    meter.step(site);
    table.setInteger(gap, retain(table.getInteger(gap + 1)));
  }
  table.setInteger(length, Value());
  return removed.take();
}

}  // namespace

Value tableRemove(LuaVM& vm, ValueSpan args, Site site) {
  requireArgumentCount("table.remove", args.size(), 1, 2);
  Table& table = requireTable("table.remove", args, 0, site);
  const std::int64_t length = table.length();
  const std::int64_t position =
      isGiven(args, 1) ? requireInteger("table.remove", args, 1, site) : length;
  if (position < 1 || position > length) return Value();
  WorkMeter& meter = LuaVM::Impl::of(vm).heap.meter();
  // A supervised interpreter moves the elements, because it counts that.
  Value first;
  if (position == 1 && length > kFewElements && length <= table.arraySize() &&
      !meter.isSupervised() && table.tryTakeFirst(static_cast<std::uint32_t>(length), first))
    return first;
  return takeOut(meter, table, position, length, site);
}

// ---- table.concat -------------------------------------------------------------------------------

namespace {

constexpr std::size_t kUsualNumberLength = 4;  // bytes

// Exact for strings.
std::size_t expectedLength(const Value& value) noexcept {
  return value.isString() ? value.string->length : kUsualNumberLength;
}

char* copyBytes(std::string_view bytes, char* out) noexcept {
  return std::copy(bytes.begin(), bytes.end(), out);
}

// The joined text of strings, of which there is one at least, owned; nil where another value is
// among them, and for what is too much to be done at once in a supervised run.
Value joinStrings(Heap& heap, const Value* first, const Value* last, std::string_view separator,
                  Site site) {
  WorkMeter& meter = heap.meter();
  const auto count = static_cast<std::size_t>(last - first);
  if (meter.isSupervised() && count > kStepsPerPiece * kElementsPerStep) return Value();
  std::size_t length = 0;
  for (const Value* element = first; element != last; ++element) {
    if (!element->isString()) return Value();
    length += (element != first ? separator.size() : 0) + element->string->length;
    if (length > StringObject::kMaximumLength) failNotEnoughMemory(site);
  }
  if (meter.isSupervised() && stepsForBytes(length) > kStepsPerPiece) return Value();
  meter.spend(2 * count / kElementsPerStep + stepsForBytes(length), site);
  StringObject* const joined = createText(heap, length, site);
  char* out = copyBytes(first->string->view(), joined->data());
  for (const Value* element = first + 1; element != last; ++element) {
    out = copyBytes(element->string->view(), copyBytes(separator, out));
  }
  return Value(joined);
}

}  // namespace

Value tableConcat(LuaVM& vm, ValueSpan args, Site site) {
  requireArgumentCount("table.concat", args.size(), 1, 2);
  Table& table = requireTable("table.concat", args, 0, site);
  const PrintableText separatorText(args.size() > 1 ? args[1] : Value());
  const std::string_view separator = args.size() > 1 ? separatorText.view() : std::string_view();
  LuaVM::Impl& interpreter = LuaVM::Impl::of(vm);
  const std::int64_t count = table.length();
  if (count == 0) return interpreter.makeString({});

  WorkMeter& meter = interpreter.heap.meter();
  if (count <= static_cast<std::int64_t>(table.arraySize())) {
    const Value* const first = &table.element(0);
    const Value joined = joinStrings(interpreter.heap, first, first + count, separator, site);
    if (!joined.isNil()) return joined;
  }
  std::size_t length = expectedLength(table.getInteger(1));
  forEachKey(meter, 2, count, site, [&](std::int64_t key) {
    length += separator.size() + expectedLength(table.getInteger(key));
    if (length > StringObject::kMaximumLength) failNotEnoughMemory(site);
  });
  TextBuilder joined(interpreter.heap, length, site);
  joined.append(table.getInteger(1));
  forEachKey(meter, 2, count, site, [&](std::int64_t key) {
    joined.append(separator);
    joined.append(table.getInteger(key));
  });
  return joined.take();
}

// ---- table.sort ---------------------------------------------------------------------------------

namespace {

double numberOf(const Value& value) noexcept {
  return value.isInteger() ? static_cast<double>(value.integer) : value.number;
}

// Deliberate: "not greater or equal" is the dialect's default order, which puts NaN before
// everything and everything before NaN. The sort has to end all the same.
struct NumberOrder {
  bool operator()(const Value& a, const Value& b) const noexcept {
    return !(numberOf(a) >= numberOf(b));
  }
};

struct StringOrder {
  bool operator()(const Value& a, const Value& b) const noexcept {
    return compareStrings(a.string, b.string) < 0;
  }
};

// Two numbers by value, everything else by its printable form.
class MixedOrder {
 public:
  bool operator()(const Value& a, const Value& b) {
    if (a.isNumber() && b.isNumber()) return NumberOrder()(a, b);
    return textOf(a, textOfA_) < textOf(b, textOfB_);
  }

 private:
  static std::string_view textOf(const Value& value, std::string& buffer) {
    if (value.isString()) return value.string->view();
    buffer.clear();
    value.appendTo(buffer);
    return buffer;
  }

  std::string textOfA_;
  std::string textOfB_;
};

// An order of a supervised interpreter: comparisons are steps. Of strings so are the bytes
// that are compared.
template <class Order>
class CountedOrder {
 public:
  // `isFast`: no comparison takes long by itself.
  CountedOrder(WorkMeter& meter, bool isFast, Site site)
      : meter_(meter), isFast_(isFast), site_(site) {}

  // The order without counting for a range in which so many comparisons are made at once, which are
  // counted now; null where they may take long.
  Order* countAtOnce(std::ptrdiff_t size, std::uint64_t comparisons) {
    if (!isFast_ || size > sorting::kSortedAtOnce) return nullptr;
    meter_.spend(comparisons, site_);
    return &order_;
  }

  bool operator()(const Value& a, const Value& b) {
    meter_.step(site_);
    if (a.isString() && b.isString()) return textGoesBefore(a.string->view(), b.string->view());
    return order_(a, b);
  }

 private:
  bool textGoesBefore(std::string_view a, std::string_view b) {
    const std::size_t common = std::min(a.size(), b.size());
    for (std::size_t offset = 0; offset < common; offset += kPiece) {
      const std::size_t count = std::min(kPiece, common - offset);
      const int order = std::memcmp(a.data() + offset, b.data() + offset, count);
      if (order != 0) return order < 0;
      meter_.spend(stepsForBytes(count), site_);
    }
    return a.size() < b.size();
  }

  static constexpr std::size_t kPiece = 16 * kBytesPerStep;

  WorkMeter& meter_;
  bool isFast_;
  Site site_;
  Order order_;
};

// A copy of a table's elements, which it owns, in the interpreter's own memory, so that sorts
// nested without end are refused in time.
class SortedElements {
 public:
  // `count` is the table's length, at least 1. Throws std::bad_alloc and what ends a run.
  SortedElements(Heap& heap, const Table& table, std::int64_t count, Site site)
      : elements_(heap, static_cast<std::size_t>(count)) {
    forEachKey(heap.meter(), 1, count, site,
               [&](std::int64_t key) { elements_.add(retain(table.getInteger(key))); });
  }

  Value* begin() noexcept { return elements_.begin(); }
  Value* end() noexcept { return elements_.end(); }

  void moveTo(Table& table) {
    std::int64_t key = 0;
    for (Value& element : *this) table.setInteger(++key, std::exchange(element, Value()));
  }

 private:
  ValueList elements_;
};

bool isNumber(const Value& value) noexcept { return value.isNumber(); }
bool isString(const Value& value) noexcept { return value.isString(); }
bool isShortString(const Value& value) noexcept {
  return value.isString() && value.string->length < kBytesPerStep;
}

template <class Order>
void sortBy(WorkMeter& meter, SortedElements& elements, bool isFast, Site site) {
  if (meter.isSupervised()) {
    introspectiveSort(elements.begin(), elements.end(), CountedOrder<Order>(meter, isFast, site));
  } else {
    introspectiveSort(elements.begin(), elements.end(), Order());
  }
}

void sortInDefaultOrder(WorkMeter& meter, SortedElements& elements, Site site) {
  bool allNumbers = true;
  bool allStrings = true;
  bool allShort = true;
  const auto count = static_cast<std::size_t>(elements.end() - elements.begin());
  inPieces(meter, count, kElementsPerStep, site, [&](std::size_t offset, std::size_t some) {
    const Value* const first = elements.begin() + offset;
    allNumbers = allNumbers && std::all_of(first, first + some, isNumber);
    allStrings = allStrings && std::all_of(first, first + some, isString);
    allShort = allShort && std::all_of(first, first + some, isShortString);
  });
  if (allNumbers) {
    sortBy<NumberOrder>(meter, elements, true, site);
  } else if (allStrings) {
    sortBy<StringOrder>(meter, elements, allShort, site);
  } else {
    sortBy<MixedOrder>(meter, elements, false, site);
  }
}

// Sorts in the default order without a copy where nothing can end the sort halfway. False, and
// nothing done, elsewhere.
bool sortInPlace(const WorkMeter& meter, Table& table, std::int64_t count) {
  if (meter.isSupervised() || count > static_cast<std::int64_t>(table.arraySize())) return false;
  Value* const first = &table.element(0);
  Value* const last = first + count;
  if (std::all_of(first, last, isNumber)) {
    introspectiveSort(first, last, NumberOrder());
  } else if (std::all_of(first, last, isString)) {
    introspectiveSort(first, last, StringOrder());
  } else {
    return false;
  }
  return true;
}

}  // namespace

// Equal elements may change places. An error, or the run's end, leaves the table as it was.
Value tableSort(LuaVM::Impl& interpreter, Value* frame, std::uint32_t argumentCount, Site site) {
  const ValueSpan args(frame + 1, argumentCount);
  requireArgumentCount("table.sort", args.size(), 1, 2);
  Table& table = requireTable("table.sort", args, 0, site);
  const bool hasComparator = isGiven(args, 1);
  if (hasComparator && !args[1].isFunction()) {
    failRuntime(site, "table.sort comparator must be a function");
  }
  const std::int64_t count = table.length();
  if (count < 2) return ReturnSignal::noValues();

  WorkMeter& meter = interpreter.heap.meter();
  if (!hasComparator && sortInPlace(meter, table, count)) return ReturnSignal::noValues();
  // A comparator may change the table and drop what it holds. When it fails, the copy has to go.
  const LandingBarrier barrier(interpreter.landing);
  SortedElements elements(interpreter.heap, table, count, site);
  if (hasComparator) {
    introspectiveSort(elements.begin(), elements.end(), [&](const Value& a, const Value& b) {
      return interpreter.callPredicate(args[1], a, b, site);
    });
  } else {
    sortInDefaultOrder(meter, elements, site);
  }
  meter.spend(static_cast<std::uint64_t>(count) / kElementsPerStep, site);
  elements.moveTo(table);
  return ReturnSignal::noValues();
}

}  // namespace tarvel::lua::internal
