#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "lua/evaluator/frame_planner.h"
#include "lua/evaluator/node_functions.h"
#include "lua/frontend/lexer.h"
#include "lua/frontend/parser.h"
#include "lua/frontend/resolver.h"
#include "lua/frontend/syntax_tree.h"
#include "lua/lua_vm_impl.h"
#include "lua/value/host_stack.h"

// From text to a tree that can run, on one page.

namespace tarvel::lua {

namespace internal {

namespace {

// Far beyond what people write, and small enough that a tree of this height can be walked.
constexpr std::size_t kDeepestNesting = 10000;

std::uint32_t nestingLimit() {
  return static_cast<std::uint32_t>(
      std::min(kDeepestNesting, hostStackRoom() / stack_cost::kParserLevel));
}

void requireParameterNames(std::span<const std::string_view> names, const std::string& chunkName,
                           MemoryCharge& memory) {
  for (const std::string_view name : names) {
    const std::vector<Token> tokens = Lexer(name, chunkName, memory).tokenise();
    if (tokens.size() != 2 || tokens[0].kind != TokenKind::Identifier || tokens[0].text != name) {
      failParse(chunkName, 1, 1, "a parameter cannot be named '" + std::string(name) + "'");
    }
  }
}

}  // namespace

}  // namespace internal

internal::ChunkReference LuaVM::Impl::parseScript(const std::string& source,
                                                  const std::string& chunkName,
                                                  std::span<const std::string_view> parameters) {
  internal::ChunkReference chunk(new internal::ResolvedChunk(heap));
  internal::MemoryCharge tokenMemory(heap);
  internal::requireParameterNames(parameters, chunkName, tokenMemory);
  std::vector<internal::Token> tokens = internal::Lexer(source, chunkName, tokenMemory).tokenise();
  chunk->sites = sites.add(internal::OwnedValue(Value(strings.intern(chunkName))),
                           internal::Places(heap, tokens));
  internal::Parser(std::move(tokens), chunkName, *chunk, strings, internal::nestingLimit())
      .parseChunk(parameters);
  internal::Resolver resolver(*chunk);
  resolver.resolveChunk();
  bindGlobalSlots(resolver.unboundNames());
  stack.announceFrame(internal::FramePlanner(*chunk, heap).planChunk());
  internal::selectNodeFunctions(*this, *chunk);
  return chunk;
}

void LuaVM::Impl::bindGlobalSlots(const std::vector<internal::VariableExpr*>& names) {
  for (internal::VariableExpr* variable : names) {
    variable->cell = &globals.at(resolveGlobalSlot(variable->name->view()));
  }
}

}  // namespace tarvel::lua
