#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "lua/lua_vm_impl.h"
#include "lua/stdlib/arguments.h"
#include "lua/stdlib/library.h"
#include "lua/stdlib/patterns/match_iterator.h"
#include "lua/stdlib/patterns/searcher.h"
#include "lua/stdlib/results.h"
#include "lua/stdlib/text_builder.h"

// string.find, string.match, string.gmatch, string.gsub.

namespace tarvel::lua::internal {

namespace {

// Positions before the subject are its start; they do not count from the end, unlike in string.sub.
std::size_t requireInit(const char* name, ValueSpan args, std::size_t index, Site site) {
  if (!isGiven(args, index)) return 0;
  const std::int64_t init = requireInteger(name, args, index, site);
  return static_cast<std::size_t>(std::max<std::int64_t>(init, 1) - 1);
}

Value positionValue(std::size_t position) { return Value(static_cast<std::int64_t>(position)); }

}  // namespace

Value stringFind(LuaVM::Impl& interpreter, Value* frame, std::uint32_t count, Site site) {
  const ValueSpan args(frame + 1, count);
  requireArgumentCount("string.find", args.size(), 2, 4);
  const StringObject& subject = requireString("string.find", args, 0, site);
  StringObject& pattern = requireString("string.find", args, 1, site);
  const std::size_t init = requireInit("string.find", args, 2, site);
  const bool plain = isGiven(args, 3) && args[3].isTruthy();
  PatternMatch match;
  if (!findPattern(*interpreter.patterns, subject.view(), pattern, init, plain, match, site)) {
    return Value();
  }
  Results results(interpreter.stack, interpreter.heap.meter(), site);
  results.push(positionValue(match.start + 1));
  results.push(positionValue(match.end));
  for (const std::string_view capture : match.captures) {
    results.push(makeText(interpreter.strings, capture, site));
  }
  return results.take();
}

Value stringMatch(LuaVM::Impl& interpreter, Value* frame, std::uint32_t count, Site site) {
  const ValueSpan args(frame + 1, count);
  requireArgumentCount("string.match", args.size(), 2, 3);
  const StringObject& subject = requireString("string.match", args, 0, site);
  StringObject& pattern = requireString("string.match", args, 1, site);
  const std::size_t init = requireInit("string.match", args, 2, site);
  PatternMatch match;
  if (!findPattern(*interpreter.patterns, subject.view(), pattern, init, false, match, site)) {
    return Value();
  }
  if (match.captures.empty()) return makeText(interpreter.strings, match.text, site);
  Results results(interpreter.stack, interpreter.heap.meter(), site);
  for (const std::string_view capture : match.captures) {
    results.push(makeText(interpreter.strings, capture, site));
  }
  return results.take();
}

Value stringGmatch(LuaVM& vm, ValueSpan args, Site site) {
  requireArgumentCount("string.gmatch", args.size(), 2, 2);
  requireString("string.gmatch", args, 0, site);
  requireString("string.gmatch", args, 1, site);
  LuaVM::Impl& interpreter = LuaVM::Impl::of(vm);
  return Value(createMatchIterator(interpreter, args[0], args[1], site));
}

// The replacement goes in as it is: nothing in it is expanded, and a function or table is not asked
// but rendered.
Value stringGsub(LuaVM::Impl& interpreter, Value* frame, std::uint32_t count, Site site) {
  const ValueSpan args(frame + 1, count);
  requireArgumentCount("string.gsub", args.size(), 3, 3);
  const std::string_view subject = requireString("string.gsub", args, 0, site).view();
  StringObject& pattern = requireString("string.gsub", args, 1, site);
  const PatternSearcher searcher(*interpreter.patterns, pattern, site);
  const PrintableText replacement(args[2]);
  std::optional<TextBuilder> text;
  std::size_t copied = 0;  // bytes of the subject
  std::int64_t replaced = 0;
  forEachMatch(interpreter.heap.meter(), searcher, subject, site, [&](const PatternMatch& match) {
    if (!text) text.emplace(interpreter.heap, subject.size(), site);
    text->append(subject.substr(copied, match.start - copied));
    text->append(replacement.view());
    copied = match.end;
    ++replaced;
  });
  if (text) text->append(subject.substr(copied));
  Results results(interpreter.stack, interpreter.heap.meter(), site);
  results.push(text ? text->take() : retain(args[0]));
  results.push(Value(replaced));
  return results.take();
}

}  // namespace tarvel::lua::internal
