#include "lua/stdlib/patterns/match_iterator.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "lua/lua_vm_impl.h"
#include "lua/stdlib/patterns/searcher.h"
#include "lua/stdlib/text_builder.h"

namespace tarvel::lua::internal {

namespace {

// Writes the texts that textOf(i) gives for the first `given` of `count` slots.
template <class TextOf>
void writeItem(LuaVM::Impl& interpreter, Value* slots, std::uint32_t count, std::size_t given,
               Site site, const TextOf& textOf) {
  for (std::uint32_t i = 0; i < count; ++i)
    slots[i] = i < given ? makeText(interpreter.strings, textOf(i), site) : Value();
}

// ---- Each match when it is asked for ------------------------------------------------------------

// `values` are the subject and the pattern, `position` where the search goes on, behind the subject
// at the end.
bool searchNext(LuaVM::Impl& interpreter, IteratorState& state, Value* slots, std::uint32_t count,
                Site site) {
  const std::string_view subject = state.values[0].string->view();
  if (state.position > subject.size()) return false;
  const PatternSearcher searcher(*interpreter.patterns, *state.values[1].string, site);
  PatternMatch match;
  if (!searcher.find(subject, state.position, match)) {
    state.position = subject.size() + 1;
    return false;
  }
  interpreter.heap.meter().step(site);
  state.position = match.end + (match.text.empty() ? 1 : 0);
  writeItem(
      interpreter, slots, count, std::max<std::size_t>(match.captures.size(), 1), site,
      [&match](std::size_t i) { return match.captures.empty() ? match.text : match.captures[i]; });
  return true;
}

// ---- All matches beforehand ---------------------------------------------------------------------

// A part of the subject; short subjects take the small form.
template <class Number>
struct Part {
  Number start;
  Number length;
};

// `values` are the subject and a string that holds `itemSize` parts for each match; `position` is
// the offset in it.
template <class Number>
bool nextFound(LuaVM::Impl& interpreter, IteratorState& state, Value* slots, std::uint32_t count,
               Site site) {
  const std::string_view subject = state.values[0].string->view();
  const std::string_view found = state.values[1].string->view();
  if (state.position == found.size()) return false;
  const char* const parts = found.data() + state.position;
  state.position += state.itemSize * sizeof(Part<Number>);
  writeItem(interpreter, slots, count, state.itemSize, site, [&](std::size_t i) {
    Part<Number> part;
    std::memcpy(&part, parts + i * sizeof part, sizeof part);
    return subject.substr(part.start, part.length);
  });
  return true;
}

template <class Number>
IteratorState* findAll(LuaVM::Impl& interpreter, const PatternSearcher& searcher,
                       const Value& subject, Site site) {
  TextBuilder found(interpreter.heap, 0, site);
  const std::string_view text = subject.string->view();
  const auto add = [&](std::string_view part) {
    const Part<Number> entry{static_cast<Number>(part.data() - text.data()),
                             static_cast<Number>(part.size())};
    found.append({reinterpret_cast<const char*>(&entry), sizeof entry});
  };
  forEachMatch(interpreter.heap.meter(), searcher, text, site, [&](const PatternMatch& match) {
    if (match.captures.empty()) add(match.text);
    for (const std::string_view capture : match.captures) add(capture);
  });
  ValueList values(interpreter.heap, 2);
  values.push(retain(subject));
  values.push(found.take());
  IteratorState* const iterator =
      IteratorState::createGmatch(interpreter.heap, std::move(values), nextFound<Number>);
  iterator->itemSize = std::max(static_cast<std::uint32_t>(searcher.captureCount()), 1U);
  return iterator;
}

}  // namespace

IteratorState* createMatchIterator(LuaVM::Impl& interpreter, const Value& subject,
                                   const Value& pattern, Site site) {
  const PatternSearcher searcher(*interpreter.patterns, *pattern.string, site);
  if (searcher.isForNow()) {
    return subject.string->length <= UINT32_MAX
               ? findAll<std::uint32_t>(interpreter, searcher, subject, site)
               : findAll<std::uint64_t>(interpreter, searcher, subject, site);
  }
  ValueList values(interpreter.heap, 2);
  values.push(retain(subject));
  values.push(retain(pattern));
  return IteratorState::createGmatch(interpreter.heap, std::move(values), searchNext);
}

}  // namespace tarvel::lua::internal
