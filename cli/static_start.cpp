// Part of programs that are linked statically. Their start-up code registers the tables that
// exceptions are unwound with, one by one, and then the unwinder no longer uses the sorted index
// that the linker makes of them: each error of a script would take half as long again. The linker
// puts these functions in the place of those that register (cmake/TarvelProgram.cmake).

extern "C" {
void __wrap___register_frame_info(const void*, void*) {}               // NOLINT: the linker's names
void* __wrap___deregister_frame_info(const void*) { return nullptr; }  // NOLINT
}
