#include "lua/program_support.h"

#include "lua/failure_report.h"
#include "lua/frontend/syntax_tree.h"
#include "lua/lua_vm_impl.h"
#include "lua/run_scope.h"
#include "lua/stdlib/files/buffered_file.h"
#include "lua/value/heap.h"

namespace tarvel::lua {

LuaOutcome<void> checkScript(LuaVM& vm, const std::string& source, const std::string& chunkName) {
  const internal::RunScope scope(LuaVM::Impl::of(vm));
  try {
    scope.interpreter().readScript(source, chunkName);
    return {};
  } catch (...) {
    return internal::FailureReport(scope.interpreter()).error();
  }
}

bool fileTextWasLost() noexcept { return internal::BufferedFile::textWasLost(); }

std::size_t abandonedObjectCount() noexcept { return internal::Heap::abandonedBlocks(); }

}  // namespace tarvel::lua
