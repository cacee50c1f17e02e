#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

#include "lua/lua_vm_impl.h"
#include "lua/stdlib/arguments.h"
#include "lua/stdlib/library.h"
#include "lua/stdlib/sorting.h"
#include "lua/stdlib/text_builder.h"
#include "lua/value/completion.h"
#include "lua/value/heap_allocator.h"
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
  Value first;
  if (position == 1 && length > kFewElements && length <= table.arraySize() &&
      table.tryTakeFirst(static_cast<std::uint32_t>(length), first))
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

[[gnu::noinline]] char* copyLongText(WorkMeter& meter, std::string_view text, char* out,
                                     Site site) {
  inPieces(meter, text, site,
           [&out](std::string_view piece) { out = std::copy(piece.begin(), piece.end(), out); });
  return out;
}

template <bool isCounted>
[[gnu::always_inline]] inline char* copyText(WorkMeter& meter, std::string_view text, char* out,
                                             Site site) {
  if (isCounted && text.size() >= kBytesPerStep) return copyLongText(meter, text, out, site);
  return std::copy(text.begin(), text.end(), out);
}

// Writes the strings to `out`, which has room for them. Counted, each long one is work of its own.
template <bool isCounted>
char* writeJoined(WorkMeter& meter, const Value* first, const Value* last,
                  std::string_view separator, char* out, Site site) {
  for (const Value* element = first; element != last; ++element) {
    out = copyText<isCounted>(meter, separator, out, site);
    out = copyText<isCounted>(meter, element->string->view(), out, site);
  }
  return out;
}

// The joined text of strings, of which there is one at least, owned; nil where another value is
// among them.
Value joinStrings(Heap& heap, const Value* first, const Value* last, std::string_view separator,
                  Site site) {
  WorkMeter& meter = heap.meter();
  const auto count = static_cast<std::size_t>(last - first);
  std::size_t length = 0;
  const Value* next = first;
  inPieces(meter, count, kElementsPerStep, site, [&](std::size_t offset, std::size_t some) {
    const Value* const end = first + offset + some;
    for (; next != end && next->isString(); ++next) {
      length += (next != first ? separator.size() : 0) + next->string->length;
      if (length > StringObject::kMaximumLength) failNotEnoughMemory(site);
    }
  });
  if (next != last) return Value();
  OwnedValue joined(Value(createText(heap, length, site)));
  char* out = joined.get().string->data();
  const std::string_view start = first->string->view();
  const bool isSoonDone =
      count <= kStepsPerPiece * kElementsPerStep && stepsForBytes(length) <= kStepsPerPiece;
  if (isSoonDone || !meter.isSupervised()) {
    meter.spend(count / kElementsPerStep + stepsForBytes(length), site);
    writeJoined<false>(meter, first + 1, last, separator,
                       std::copy(start.begin(), start.end(), out), site);
    return joined.take();
  }
  out = copyText<true>(meter, start, out, site);
  inPieces(meter, count - 1, kElementsPerStep, site, [&](std::size_t offset, std::size_t some) {
    const Value* const from = first + 1 + offset;
    out = writeJoined<true>(meter, from, from + some, separator, out, site);
  });
  return joined.take();
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

// Sorts by an order that may fail halfway: then the elements are as they were. The copy
// that this takes owns nothing, because nothing else runs meanwhile.
template <class Order>
void sortInCopy(Heap& heap, Value* first, Value* last, Order order, Site site) {
  if (sorting::wasOrdered(first, last, order)) return;
  const auto count = static_cast<std::size_t>(last - first);
  std::vector<Value, HeapAllocator<Value>> sorted{HeapAllocator<Value>(heap)};
  sorted.reserve(count);
  inPieces(heap.meter(), count, kElementsPerStep, site, [&](std::size_t offset, std::size_t some) {
    sorted.insert(sorted.end(), first + offset, first + offset + some);
  });
  sortUnordered(sorted.data(), sorted.data() + count, order);
  std::copy(sorted.begin(), sorted.end(), first);
}

// `isFast`: no comparison takes long by itself. Deliberate: when a limit ends such a sort, the
// elements stay in some order, because sorting a copy instead would take a tenth longer.
template <class Order>
void sortBy(Heap& heap, Value* first, Value* last, bool isFast, Site site) {
  if (heap.meter().isSupervised()) {
    const CountedOrder<Order> order(heap.meter(), isFast, site);
    if (isFast) return introspectiveSort(first, last, order);
    sortInCopy(heap, first, last, order, site);
  } else if constexpr (std::is_same_v<Order, MixedOrder>) {
    sortInCopy(heap, first, last, Order(), site);
  } else {
    introspectiveSort(first, last, Order());
  }
}

bool isNumber(const Value& value) noexcept { return value.isNumber(); }
bool isString(const Value& value) noexcept { return value.isString(); }
bool isShortString(const Value& value) noexcept {
  return value.isString() && value.string->length < kBytesPerStep;
}

// An error leaves the elements as they were.
void sortInDefaultOrder(Heap& heap, Value* first, Value* last, Site site) {
  bool allNumbers = true;
  bool allStrings = true;
  bool allShort = heap.meter().isSupervised();  // nobody else asks
  const auto count = static_cast<std::size_t>(last - first);
  inPieces(heap.meter(), count, kElementsPerStep, site, [&](std::size_t offset, std::size_t some) {
    const Value* const from = first + offset;
    const Value* const to = from + some;
    allNumbers = allNumbers && std::all_of(from, to, isNumber);
    allStrings = allStrings && std::all_of(from, to, isString);
    allShort = allShort && allStrings && std::all_of(from, to, isShortString);
  });
  if (allNumbers) {
    sortBy<NumberOrder>(heap, first, last, true, site);
  } else if (allStrings) {
    sortBy<StringOrder>(heap, first, last, allShort, site);
  } else {
    sortBy<MixedOrder>(heap, first, last, false, site);
  }
}

}  // namespace

// Equal elements may change places. An error leaves the table as it was.
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

  if (!hasComparator && count <= static_cast<std::int64_t>(table.arraySize())) {
    sortInDefaultOrder(interpreter.heap, &table.element(0), &table.element(0) + count, site);
    return ReturnSignal::noValues();
  }
  // A comparator may change the table and drop what it holds. When it fails, the copy has to go.
  const LandingBarrier barrier(interpreter.landing);
  SortedElements elements(interpreter.heap, table, count, site);
  if (hasComparator) {
    introspectiveSort(elements.begin(), elements.end(), [&](const Value& a, const Value& b) {
      return interpreter.callPredicate(args[1], a, b, site);
    });
  } else {
    sortInDefaultOrder(interpreter.heap, elements.begin(), elements.end(), site);
  }
  interpreter.heap.meter().spend(static_cast<std::uint64_t>(count) / kElementsPerStep, site);
  elements.moveTo(table);
  return ReturnSignal::noValues();
}

}  // namespace tarvel::lua::internal
