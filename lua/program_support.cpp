#include "lua/program_support.h"

#include "lua/stdlib/files/buffered_file.h"
#include "lua/value/heap.h"

namespace tarvel::lua {

bool fileTextWasLost() noexcept { return internal::BufferedFile::textWasLost(); }

std::size_t abandonedObjectCount() noexcept { return internal::Heap::abandonedBlocks(); }

}  // namespace tarvel::lua
