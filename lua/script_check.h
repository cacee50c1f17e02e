#pragma once

#include <string>

namespace tarvel::lua {

// Parses `source` as a chunk without running any of it; `chunkName` only labels messages. Throws
// std::runtime_error "chunkName:line:column: message" when it is no valid chunk.
void checkScript(const std::string& source, const std::string& chunkName);

}  // namespace tarvel::lua
