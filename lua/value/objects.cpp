// How the objects that scripts share are made. How they end: destroyObject.

#include <algorithm>
#include <new>
#include <utility>

#include "lua/value/environment.h"
#include "lua/value/function_handle.h"
#include "lua/value/iterator_state.h"
#include "lua/value/metered_work.h"
#include "lua/value/native_object.h"
#include "lua/value/string_object.h"

namespace tarvel::lua::internal {

Environment* Environment::create(Heap& heap, Value variable) {
  auto* const environment = new (heap.allocate(sizeof(Environment))) Environment;
  environment->slot = variable;
  return environment;
}

FunctionObject* FunctionObject::createClosure(Heap& heap, const FunctionExpr* functionBody,
                                              FunctionCode* chunk, StringObject* declaredName,
                                              std::uint64_t captureCount) {
  auto* const function = new (heap.allocate(blockBytes(captureCount))) FunctionObject;
  ++declaredName->count;
  chunk->addReference();
  function->body = functionBody;
  function->code = chunk;
  function->name = declaredName;
  function->captureCount = captureCount;
  return function;
}

FunctionObject* FunctionObject::createNative(Heap& heap, StringObject* nativeName,
                                             NativeFunction callable) {
  OwnedValue name{Value(nativeName)};
  auto code = std::make_unique<NativeCode>(heap, std::move(callable));
  return createNative(heap, name.take().string, std::move(code));
}

FunctionObject* FunctionObject::createNative(Heap& heap, StringObject* nativeName,
                                             std::unique_ptr<NativeCode> code) {
  OwnedValue name{Value(nativeName)};
  auto* const function = new (heap.allocate(sizeof(FunctionObject))) FunctionObject;
  function->body = nullptr;
  function->code = code.release();
  function->name = name.take().string;
  return function;
}

NativeObject* NativeObject::create(Heap& heap, Kind kind, NativeClass& type,
                                   std::unique_ptr<NativeHandle> handle) {
  return new (heap.allocate(sizeof(NativeObject))) NativeObject(kind, type, std::move(handle));
}

IteratorState::~IteratorState() {
  if (table == nullptr) return;
  if (kind == Kind::Pairs) table->takeParts(parts);
  drop(Value(table));
}

// Copies the items of the parts that are still to be delivered.
void IteratorState::copyItems(Heap& heap, WorkMeter& meter, Site site) {
  const std::uint64_t elements = parts.arraySize();
  const std::uint64_t places = elements + parts.entryCount();
  const auto firstElement = std::min(position, elements);
  const auto firstEntry = std::max(position, elements) - elements;
  const auto entries = std::min<std::uint64_t>(parts.liveEntries(), places - elements - firstEntry);
  ValueList items(heap, 2 * (elements - firstElement + entries));
  const auto forEachIndex = [&](std::uint64_t first, std::uint64_t end, const auto& visit) {
    inPieces(meter, end - first, kElementsPerStep, site, [&](std::size_t offset, std::size_t some) {
      for (std::size_t i = first + offset; i < first + offset + some; ++i)
        visit(static_cast<std::uint32_t>(i));
    });
  };
  forEachIndex(firstElement, elements, [&](std::uint32_t i) {
    if (parts.element(i).isNil()) return;
    items.add(Value(static_cast<std::int64_t>(i) + 1));
    items.add(retain(parts.element(i)));
  });
  forEachIndex(firstEntry, places - elements, [&](std::uint32_t i) {
    if (parts.entryValue(i).isNil()) return;
    items.add(retain(parts.entryKey(i).toValue()));
    items.add(retain(parts.entryValue(i)));
  });
  values.swap(items);
}

// The call of pairs has counted the copy.
void IteratorState::endLoan() {
  WorkMeter uncounted;
  copyItems(Heap::of(table), uncounted, 0);
  position = 0;
  returnParts();
}

void IteratorState::loseItems() noexcept {
  hasLost = true;
  returnParts();
}

void IteratorState::returnParts() noexcept {
  Table* const lender = std::exchange(table, nullptr);
  lender->takeParts(parts);
  drop(Value(lender));
}

namespace {

// So many elements and entries are copied in some microseconds.
constexpr std::uint64_t kCopiedAtOnce = kElementsPerStep * kStepsPerPiece;

}  // namespace

// The call counts the copy, whether it will be needed or not. In a supervised run a long one has to
// be made here, where the run can end in the middle of it.
IteratorState* IteratorState::createPairs(Heap& heap, Table& table, Site site) {
  table.fetchBack();
  OwnedValue iterator(Value(new (heap.allocate(sizeof(IteratorState)))
                                IteratorState(Kind::Pairs, ValueList(heap))));
  IteratorState& state = *iterator.get().iterator;
  const std::uint64_t places = std::uint64_t{table.arraySize()} + table.entryCount();
  if (heap.meter().isSupervised() && places > kCopiedAtOnce) {
    state.parts.takeParts(table);
    state.copyItems(heap, heap.meter(), site);
  } else if (places > 0) {
    heap.meter().spend(places / kElementsPerStep, site);
    ++table.count;
    state.table = &table;
    table.lendTo(state);
  }
  return iterator.take().iterator;
}

IteratorState* IteratorState::createIpairs(Heap& heap, Table& table) {
  auto* const iterator =
      new (heap.allocate(sizeof(IteratorState))) IteratorState(Kind::Ipairs, ValueList(heap));
  ++table.count;
  iterator->table = &table;
  iterator->limit = static_cast<std::uint64_t>(table.length());
  return iterator;
}

IteratorState* IteratorState::createGmatch(Heap& heap, ValueList&& values, Step step) {
  auto* const iterator =
      new (heap.allocate(sizeof(IteratorState))) IteratorState(Kind::Gmatch, std::move(values));
  iterator->step = step;
  return iterator;
}

}  // namespace tarvel::lua::internal
