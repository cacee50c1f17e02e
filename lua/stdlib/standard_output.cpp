#include "lua/stdlib/standard_output.h"

#include <cstdio>

namespace tarvel::lua::internal {

bool writeStandardOutput(std::string_view text) noexcept {
  return std::fwrite(text.data(), 1, text.size(), stdout) == text.size();
}

}  // namespace tarvel::lua::internal
