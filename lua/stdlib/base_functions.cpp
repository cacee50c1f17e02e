#include <exception>
#include <new>
#include <string>
#include <string_view>

#include "lua/lua_vm_impl.h"
#include "lua/stdlib/arguments.h"
#include "lua/stdlib/files/standard_streams.h"
#include "lua/stdlib/library.h"
#include "lua/stdlib/number_text.h"
#include "lua/stdlib/short_text.h"
#include "lua/stdlib/text_builder.h"
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

MultiValue baseToString(LuaVM& vm, ValueSpan args, Site) {
  requireArgumentCount("tostring", args.size(), 1, 1);
  if (args[0].isString()) return MultiValue(retain(args[0]));
  return MultiValue(LuaVM::Impl::of(vm).makeString(args[0].toString()));
}

MultiValue baseToNumber(LuaVM& vm, ValueSpan args, Site site) {
  requireArgumentCount("tonumber", args.size(), 1, 2);
  if (args[0].isNumber()) return MultiValue(args[0]);
  if (!args[0].isString()) return MultiValue(Value());
  const std::int64_t base = isGiven(args, 1) ? requireInteger("tonumber", args, 1, site) : 10;
  const StringObject& text = *args[0].string;
  WorkMeter& meter = LuaVM::Impl::of(vm).heap.meter();
  if (text.length > kLongestNumberText && meter.isSupervised()) {
    failRuntime(site, "text is too long for a number");
  }
  meter.spend(stepsForNumberText(text.length), site);
  return MultiValue(numberFromText(text, base));
}

MultiValue baseType(LuaVM& vm, ValueSpan args, Site) {
  requireArgumentCount("type", args.size(), 1, 1);
  return MultiValue(Value(LuaVM::Impl::of(vm).strings.intern(describeValueType(args[0]))));
}

namespace {

// An error carries its text outside the interpreter's memory, and it is copied on the way to
// whoever reports it.
constexpr std::size_t kErrorTextCopies = 4;
// In bytes. Those copies cannot be interrupted.
constexpr std::size_t kLongestSupervisedError = std::size_t{1} << 20;

[[noreturn]] void failWithText(LuaVM& vm, const Value& text, Site site) {
  const PrintableText printable(text);
  const std::size_t bytes = kErrorTextCopies * printable.view().size();
  Heap& heap = LuaVM::Impl::of(vm).heap;
  heap.meter().spend(stepsForBytes(bytes), site);
  if (bytes > kErrorTextCopies * kLongestSupervisedError && heap.meter().isSupervised()) {
    failRuntime(site, "error message is too long");
  }
  heap.requireRoom(bytes);
  failRuntime(site, std::string(printable.view()));
}

// A list of values stands outside the interpreter's memory and doubles as it grows.
void requireRoomForValues(LuaVM& vm, std::size_t count, Site site) {
  if (count < kElementsPerStep) return;
  Heap& heap = LuaVM::Impl::of(vm).heap;
  heap.meter().spend(count / kElementsPerStep, site);
  heap.requireRoom(3 * sizeof(Value) * count);
}

}  // namespace

MultiValue baseAssert(LuaVM& vm, ValueSpan args, Site site) {
  requireArgumentCount("assert", args.size(), 1, kAnyCount);
  if (!args[0].isTruthy()) {
    if (args.size() == 1) failRuntime(site, "assertion failed!");
    failWithText(vm, args[1], site);
  }
  requireRoomForValues(vm, args.size(), site);
  MultiValue results;
  for (const Value& argument : args) results.push(retain(argument));
  return results;
}

// The level is accepted and has no effect. An error value is always a string.
MultiValue baseError(LuaVM& vm, ValueSpan args, Site site) {
  requireArgumentCount("error", args.size(), 0, 2);
  if (args.empty()) failRuntime(site, "error");
  failWithText(vm, args[0], site);
}

namespace {

// The error goes no further.
void sweep(LuaVM::Impl& interpreter, const ValueStack::Mark& mark) {
  interpreter.trace.clear();
  interpreter.stack.unwindTo(mark);
}

MultiValue failedCall(LuaVM::Impl& interpreter, const ValueStack::Mark& mark,
                      std::string_view message, Site site) {
  sweep(interpreter, mark);
  return MultiValue{Value(false), makeText(interpreter.strings, message, site)};
}

// There may be no memory for a message either.
MultiValue outOfMemory(LuaVM::Impl& interpreter, const ValueStack::Mark& mark) {
  sweep(interpreter, mark);
  return MultiValue{Value(false), retain(interpreter.standard.outOfMemoryText.get())};
}

}  // namespace

// ExitSignal, StopSignal and what a host throws besides standard exceptions pass through.
MultiValue basePcall(LuaVM& vm, ValueSpan args, Site site) {
  requireArgumentCount("pcall", args.size(), 1, kAnyCount);
  LuaVM::Impl& interpreter = LuaVM::Impl::of(vm);
  const ValueStack::Mark mark = interpreter.stack.mark();
  try {
    const ProtectedCallScope scope;
    const MultiValue returned =
        interpreter.callValue(args[0], ValueSpan(args.begin() + 1, args.size() - 1), site);
    requireRoomForValues(vm, returned.size(), site);
    MultiValue results(Value(true));
    for (const Value& value : returned.span()) results.push(retain(value));
    return results;
  } catch (const ProtectedRuntimeError& error) {
    return failedCall(interpreter, mark, error.message, site);
  } catch (const std::bad_alloc&) {
    return outOfMemory(interpreter, mark);
  } catch (const std::exception& error) {
    return failedCall(interpreter, mark, exceptionText(error), site);
  }
}

MultiValue basePairs(LuaVM& vm, ValueSpan args, Site site) {
  requireArgumentCount("pairs", args.size(), 1, 1);
  if (!args[0].isTable()) failRuntime(site, "pairs expects a table");
  return MultiValue(
      Value(IteratorState::createPairs(LuaVM::Impl::of(vm).heap, *args[0].table, site)));
}

MultiValue baseIpairs(LuaVM& vm, ValueSpan args, Site site) {
  requireArgumentCount("ipairs", args.size(), 1, 1);
  if (!args[0].isTable()) failRuntime(site, "ipairs expects a table");
  return MultiValue(Value(IteratorState::createIpairs(LuaVM::Impl::of(vm).heap, *args[0].table)));
}

}  // namespace tarvel::lua::internal
