#include "lua/program_support.h"

#include <tarvel/lua/lua_vm.h>

#include "lua/frontend/syntax_tree.h"
#include "lua/lua_vm_impl.h"
#include "lua/stdlib/files/buffered_file.h"

namespace tarvel::lua {

void checkScript(const std::string& source, const std::string& chunkName) {
  LuaVM vm;
  LuaVM::Impl::of(vm).parseScript(source, chunkName);
}

bool fileTextWasLost() noexcept { return internal::BufferedFile::textWasLost(); }

std::size_t abandonedObjectCount() noexcept { return internal::Heap::abandonedBlocks(); }

}  // namespace tarvel::lua
