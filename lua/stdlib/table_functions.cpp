#include <algorithm>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "lua/lua_vm_impl.h"
#include "lua/stdlib/arguments.h"
#include "lua/stdlib/library.h"
#include "lua/stdlib/sorting.h"
#include "lua/stdlib/text_builder.h"

// table.remove, concat, sort. A sequence usually stands in the table's array part as a whole, but
// may go on in the hash part.

namespace tarvel::lua::internal {

namespace {

// Moves the elements behind `position` down and returns the one that stood there, owned.
Value takeOut(Table& table, std::int64_t position, std::int64_t length) {
  OwnedValue removed = OwnedValue::share(table.getInteger(position));
  const std::int64_t arrayEnd = std::min<std::int64_t>(length, table.arraySize());
  std::int64_t gap = position;
  if (gap < arrayEnd) {
    // The element itself fills the gap that is left at the end, so that each place goes on owning
    // one value.
    Value* const first = &table.element(static_cast<std::uint32_t>(gap - 1));
    Value* const last = &table.element(static_cast<std::uint32_t>(arrayEnd - 1));
    std::copy(first + 1, last + 1, first);
    *last = removed.get();
    gap = arrayEnd;
  }
  for (; gap < length; ++gap) table.setInteger(gap, retain(table.getInteger(gap + 1)));
  table.setInteger(length, Value());
  return removed.take();
}

}  // namespace

MultiValue tableRemove(LuaVM&, ValueSpan args, Site site) {
  requireArgumentCount("table.remove", args.size(), 1, 2);
  Table& table = requireTable("table.remove", args, 0, site);
  const std::int64_t length = table.length();
  const std::int64_t position =
      isGiven(args, 1) ? requireInteger("table.remove", args, 1, site) : length;
  if (position < 1 || position > length) return MultiValue(Value());
  return MultiValue(takeOut(table, position, length));
}

// ---- table.concat -------------------------------------------------------------------------------

namespace {

constexpr std::size_t kUsualNumberLength = 4;  // bytes

// Exact for strings.
std::size_t expectedLength(const Value& value) noexcept {
  return value.isString() ? value.string->length : kUsualNumberLength;
}

}  // namespace

MultiValue tableConcat(LuaVM& vm, ValueSpan args, Site site) {
  requireArgumentCount("table.concat", args.size(), 1, 2);
  Table& table = requireTable("table.concat", args, 0, site);
  const PrintableText separatorText(args.size() > 1 ? args[1] : Value());
  const std::string_view separator = args.size() > 1 ? separatorText.view() : std::string_view();
  LuaVM::Impl& interpreter = LuaVM::Impl::of(vm);
  const std::int64_t count = table.length();
  if (count == 0) return MultiValue(interpreter.makeString({}));

  std::size_t length = expectedLength(table.getInteger(1));
  for (std::int64_t key = 2; key <= count; ++key) {
    length += separator.size() + expectedLength(table.getInteger(key));
    if (length > StringObject::kMaximumLength) failNotEnoughMemory(site);
  }
  TextBuilder joined(interpreter.heap, length, site);
  joined.append(table.getInteger(1));
  for (std::int64_t key = 2; key <= count; ++key) {
    joined.append(separator);
    joined.append(table.getInteger(key));
  }
  return MultiValue(joined.take());
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

// The order in which elements stand while they are being sorted: borrowed values, in the
// interpreter's own memory, so that sorts nested without end are refused in time.
class SortedOrder {
 public:
  SortedOrder(Heap& heap, const Value* elements, std::size_t count)
      : first_(static_cast<Value*>(heap.allocate(count * sizeof(Value)))), count_(count) {
    std::uninitialized_copy_n(elements, count, first_);
  }
  ~SortedOrder() { Heap::release(first_, count_ * sizeof(Value)); }
  SortedOrder(const SortedOrder&) = delete;
  SortedOrder& operator=(const SortedOrder&) = delete;

  Value* begin() const noexcept { return first_; }
  Value* end() const noexcept { return first_ + count_; }

 private:
  Value* first_;
  std::size_t count_;
};

void sortInDefaultOrder(Value* first, Value* last) {
  if (std::all_of(first, last, [](const Value& value) { return value.isNumber(); })) {
    introspectiveSort(first, last, NumberOrder());
  } else if (std::all_of(first, last, [](const Value& value) { return value.isString(); })) {
    introspectiveSort(first, last, StringOrder());
  } else {
    introspectiveSort(first, last, MixedOrder());
  }
}

}  // namespace

// Equal elements may change places. An error leaves the table as it was.
MultiValue tableSort(LuaVM& vm, ValueSpan args, Site site) {
  requireArgumentCount("table.sort", args.size(), 1, 2);
  Table& table = requireTable("table.sort", args, 0, site);
  const bool hasComparator = isGiven(args, 1);
  if (hasComparator && !args[1].isFunction()) {
    failRuntime(site, "table.sort comparator must be a function");
  }
  const std::int64_t count = table.length();
  if (count < 2) return MultiValue();

  // A comparator may change the table and drop what it holds, so a copy shares the elements until
  // they are written back.
  LuaVM::Impl& interpreter = LuaVM::Impl::of(vm);
  const OwnedValue copy(Value(Table::create(interpreter.heap, static_cast<std::uint32_t>(count))));
  Table& elements = *copy.get().table;
  for (std::int64_t key = 1; key <= count; ++key) {
    elements.setInteger(key, retain(table.getInteger(key)));
  }
  const SortedOrder order(interpreter.heap, &elements.element(0), static_cast<std::size_t>(count));
  if (hasComparator) {
    introspectiveSort(order.begin(), order.end(), [&](const Value& a, const Value& b) {
      return interpreter.callPredicate(args[1], a, b, site);
    });
  } else {
    sortInDefaultOrder(order.begin(), order.end());
  }
  std::int64_t key = 0;
  for (const Value& element : order) table.setInteger(++key, retain(element));
  return MultiValue();
}

}  // namespace tarvel::lua::internal
