#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "lua/evaluator/frame_planner.h"
#include "lua/evaluator/node_functions.h"
#include "lua/frontend/lexer.h"
#include "lua/frontend/parser.h"
#include "lua/frontend/syntax_tree.h"
#include "lua/lua_vm_impl.h"
#include "lua/value/host_stack.h"

// From text to a tree that can run, on one page.

namespace tarvel::lua {

namespace internal {

namespace {

std::uint32_t nestingLimit() {
  return static_cast<std::uint32_t>(
      std::min(std::size_t{kDeepestNesting}, hostStackRoom() / stack_cost::kParserLevel));
}

void requireParameterNames(std::span<const std::string_view> names, const std::string& chunkName) {
  for (const std::string_view name : names) {
    Lexer lexer(name, chunkName);
    const Token first = lexer.next();
    for (Token token = first; token.kind != TokenKind::EndOfFile;) token = lexer.next();
    if (first.kind != TokenKind::Identifier || first.text != name) {
      failParse(chunkName, {1, 1}, "a parameter cannot be named '" + std::string(name) + "'");
    }
  }
}

}  // namespace

}  // namespace internal

internal::ChunkReference LuaVM::Impl::readScript(const std::string& source,
                                                 const std::string& chunkName,
                                                 std::span<const std::string_view> parameters) {
  internal::ChunkReference chunk(new internal::ResolvedChunk(heap));
  internal::requireParameterNames(parameters, chunkName);
  chunk->sites = sites.add(internal::OwnedValue(Value(strings.intern(chunkName))),
                           internal::Places(heap, source));
  internal::Parser(source, chunkName, *chunk, strings, internal::nestingLimit())
      .parseChunk(parameters);
  return chunk;
}

internal::ChunkReference LuaVM::Impl::parseScript(const std::string& source,
                                                  const std::string& chunkName,
                                                  std::span<const std::string_view> parameters) {
  internal::ChunkReference chunk = readScript(source, chunkName, parameters);
  stack.announceFrame(internal::FramePlanner(*chunk, heap, globals).planChunk());
  internal::selectNodeFunctions(*this, *chunk);
  return chunk;
}

}  // namespace tarvel::lua
