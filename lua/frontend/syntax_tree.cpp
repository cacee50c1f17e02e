#include "lua/frontend/syntax_tree.h"

#include "lua/value/string_object.h"

namespace tarvel::lua::internal {

void ResolvedChunk::close() noexcept {
  for (StringObject* text : strings) drop(Value(text));
  strings = std::vector<StringObject*>();
  arena.clear();
  sites.clear();
}

StringObject* ResolvedChunk::own(StringObject* text) {
  OwnedValue guard{Value(text)};
  strings.push_back(text);
  guard.take();
  return text;
}

}  // namespace tarvel::lua::internal
