// How the objects that scripts share are made. How they end: destroyObject.

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
  if (table != nullptr) drop(Value(table));
}

IteratorState* IteratorState::createPairs(Heap& heap, Table& table, Site site) {
  ValueList items(heap, 2 * (std::size_t{table.arraySize()} + table.liveEntries()));
  const auto forEachIndex = [&](std::size_t count, const auto& visit) {
    inPieces(heap.meter(), count, kElementsPerStep, site, [&](std::size_t first, std::size_t some) {
      for (std::size_t i = first; i < first + some; ++i) visit(static_cast<std::uint32_t>(i));
    });
  };
  forEachIndex(table.arraySize(), [&](std::uint32_t i) {
    if (table.element(i).isNil()) return;
    items.add(Value(static_cast<std::int64_t>(i) + 1));
    items.add(retain(table.element(i)));
  });
  forEachIndex(table.entryCount(), [&](std::uint32_t i) {
    if (table.entryValue(i).isNil()) return;
    items.add(retain(table.entryKey(i).toValue()));
    items.add(retain(table.entryValue(i)));
  });
  return new (heap.allocate(sizeof(IteratorState))) IteratorState(Kind::Pairs, std::move(items));
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
