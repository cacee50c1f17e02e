#include <algorithm>
#include <exception>
#include <new>
#include <string>
#include <string_view>
#include <utility>

#include "lua/evaluator/execute.h"
#include "lua/lua_vm_impl.h"
#include "lua/stdlib/arguments.h"
#include "lua/stdlib/files/standard_streams.h"
#include "lua/stdlib/library.h"
#include "lua/stdlib/number_text.h"
#include "lua/stdlib/results.h"
#include "lua/stdlib/short_text.h"
#include "lua/stdlib/text_builder.h"
#include "lua/value/completion.h"
#include "lua/value/iterator_state.h"
#include "lua/value/metered_work.h"

// print, tostring, tonumber, type, assert, error, pcall, pairs, ipairs.

namespace tarvel::lua::internal {

// That the process's output cannot take it shows when the stream is closed at the end.
MultiValue basePrint(LuaVM& vm, ValueSpan args, Site site) {
  if (ShortText line; line.addAll(args, '\t') && line.add('\n')) {
    writeToStandard(StandardStream::Output, vm, line.view(), site);
    return MultiValue(Value());
  }
  LuaVM::Impl::of(vm).printValues(args, site, [&vm, site](std::string_view text) {
    writeToStandard(StandardStream::Output, vm, text, site);
  });
  return MultiValue(Value());
}

Value baseToString(LuaVM& vm, ValueSpan args, Site) {
  requireArgumentCount("tostring", args.size(), 1, 1);
  if (args[0].isString()) return retain(args[0]);
  return LuaVM::Impl::of(vm).makeString(args[0].toString());
}

Value baseToNumber(LuaVM& vm, ValueSpan args, Site site) {
  requireArgumentCount("tonumber", args.size(), 1, 2);
  if (args[0].isNumber()) return args[0];
  if (!args[0].isString()) return Value();
  const std::int64_t base = isGiven(args, 1) ? requireInteger("tonumber", args, 1, site) : 10;
  const StringObject& text = *args[0].string;
  WorkMeter& meter = LuaVM::Impl::of(vm).heap.meter();
  if (text.length > kLongestNumberText && meter.isSupervised()) {
    failRuntime(site, "text is too long for a number");
  }
  meter.spend(stepsForNumberText(text.length), site);
  return numberFromText(text, base);
}

Value baseType(LuaVM& vm, ValueSpan args, Site) {
  requireArgumentCount("type", args.size(), 1, 1);
  return baseTypeOfOne(LuaVM::Impl::of(vm), args[0]);
}

Value baseTypeOfOne(LuaVM::Impl& interpreter, Value value) {
  OwnedValue& name = interpreter.standard.typeNames[static_cast<std::size_t>(value.kind())];
  if (name.get().isNil()) [[unlikely]]
    name = OwnedValue(Value(interpreter.strings.intern(describeValueType(value))));
  return retain(name.get());
}

namespace {

// An error carries its text outside the interpreter's memory, and it is copied on the way to
// whoever reports it.
constexpr std::size_t kErrorTextCopies = 4;
// In bytes. Those copies cannot be interrupted.
constexpr std::size_t kLongestSupervisedError = std::size_t{1} << 20;

// The completion of a call that fails with this text.
Value failWithText(LuaVM::Impl& interpreter, const Value& text, Site site) {
  const PrintableText printable(text);
  const std::size_t bytes = kErrorTextCopies * printable.view().size();
  Heap& heap = interpreter.heap;
  heap.meter().spend(stepsForBytes(bytes), site);
  if (bytes > kErrorTextCopies * kLongestSupervisedError && heap.meter().isSupervised()) {
    failRuntime(site, "error message is too long");
  }
  heap.requireRoom(bytes);
  return interpreter.pendingFailure.set(text.isString()
                                            ? OwnedValue::share(text)
                                            : OwnedValue(interpreter.makeString(printable.view())),
                                        site);
}

}  // namespace

// Its results are its arguments, which move down to where the frame of the call starts.
Value baseAssert(LuaVM::Impl& interpreter, Value* frame, std::uint32_t count, Site site) {
  requireArgumentCount("assert", count, 1, kAnyCount);
  if (!frame[1].isTruthy()) {
    if (count == 1) failRuntime(site, "assertion failed!");
    return failWithText(interpreter, frame[2], site);
  }
  interpreter.heap.meter().spend(count / kElementsPerStep, site);
  if (count == 1) return std::exchange(frame[1], Value());
  Results::countMoved(interpreter.heap.meter(), count, site);
  clearSlot(frame[0]);
  std::copy_n(frame + 1, count, frame);
  frame[count] = Value();
  return ReturnSignal::severalValues(frame, count);
}

// The level is accepted and has no effect. An error value is always a string.
Value baseError(LuaVM::Impl& interpreter, Value* frame, std::uint32_t count, Site site) {
  requireArgumentCount("error", count, 0, 2);
  if (count == 0) failRuntime(site, "error");
  return failWithText(interpreter, frame[1], site);
}

namespace {

// The message is a copy as far as counting is concerned, though a text of the script's is shared.
Value failedCall(LuaVM::Impl& interpreter, Value* frame, Site site) {
  Value message = interpreter.pendingFailure.takeText();
  if (message.isNil()) {
    message = makeText(interpreter.strings, interpreter.pendingFailure.message(), site);
  } else {
    OwnedValue kept(message);
    interpreter.heap.meter().spend(stepsForBytes(message.string->length), site);
    kept.take();
  }
  clearSlot(frame[0]);
  frame[0] = Value(false);
  frame[1] = message;
  return ReturnSignal::severalValues(frame, 2);
}

// `true` and what a call from frame[1] on has returned, which stands there if it is several values.
Value succeededCall(LuaVM::Impl& interpreter, Value* frame, Value completion, Site site) {
  std::uint32_t count = 0;
  if (isSingleValue(completion)) {
    frame[1] = completion;
    count = 1;
  } else if (ReturnSignal::isSeveral(completion)) {
    count = ReturnSignal::count(completion);
  }
  if (count == 0) return Value(true);
  // Counting may end the run, whose trace still needs the function in frame[0].
  interpreter.heap.meter().spend(count / kElementsPerStep, site);
  Results::countMoved(interpreter.heap.meter(), count + 1, site);
  clearSlot(frame[0]);
  frame[0] = Value(true);
  return ReturnSignal::severalValues(frame, count + 1);
}

}  // namespace

// The call is made where its function and arguments stand.
Value basePcall(LuaVM::Impl& interpreter, Value* frame, std::uint32_t count, Site site) {
  requireArgumentCount("pcall", count, 1, kAnyCount);
  const Value completion = interpreter.callProtected(frame + 1, count - 1, site);
  return isFailed(completion) ? failedCall(interpreter, frame, site)
                              : succeededCall(interpreter, frame, completion, site);
}

Value basePairs(LuaVM& vm, ValueSpan args, Site site) {
  requireArgumentCount("pairs", args.size(), 1, 1);
  if (!args[0].isTable()) failRuntime(site, "pairs expects a table");
  return Value(IteratorState::createPairs(LuaVM::Impl::of(vm).heap, *args[0].table, site));
}

Value baseIpairs(LuaVM& vm, ValueSpan args, Site site) {
  requireArgumentCount("ipairs", args.size(), 1, 1);
  if (!args[0].isTable()) failRuntime(site, "ipairs expects a table");
  return Value(IteratorState::createIpairs(LuaVM::Impl::of(vm).heap, *args[0].table));
}

}  // namespace tarvel::lua::internal
