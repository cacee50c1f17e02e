#pragma once

#include <cstddef>

// What our own program needs of the library beyond the public header.

namespace tarvel::lua {

// Whether a script left a file open whose text could not be stored in the end.
bool fileTextWasLost() noexcept;

// The objects of all interpreters of the process that nothing had released when their interpreter
// ended: circles of scripts, or a fault of ours. Counted in checked builds only; 0 otherwise.
std::size_t abandonedObjectCount() noexcept;

}  // namespace tarvel::lua
