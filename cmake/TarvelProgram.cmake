# How the program is linked. Without shared libraries it starts sooner, takes half of the memory, and runs on machines
# with an older or no C++ runtime; what nobody refers to is left out.

include(CheckCXXSourceCompiles)
include(CheckCXXSourceRuns)

set(tarvelSectionOptions "")
set(tarvelProgramLinkOptions -static-libstdc++ -static-libgcc)
if(TARVELLUA_SANITIZE)
  set(tarvelProgramLinkOptions "")  # sanitizers bring runtimes of their own
else()
  set(CMAKE_REQUIRED_LINK_OPTIONS -Wl,--gc-sections)
  check_cxx_source_compiles("int main() {}" TARVELLUA_LINKS_USED_SECTIONS)
  if(TARVELLUA_LINKS_USED_SECTIONS)
    set(tarvelSectionOptions -ffunction-sections -fdata-sections)
    list(APPEND tarvelProgramLinkOptions -Wl,--gc-sections)
  endif()
  # Only where exceptions are found by the linker's index of their tables, see cli/static_start.cpp, and not with older
  # C libraries, in which static programs lack parts of the thread support that the C++ library takes for granted.
  set(staticOptions -static -Wl,--eh-frame-hdr -Wl,--wrap=__register_frame_info -Wl,--wrap=__deregister_frame_info)
  set(CMAKE_REQUIRED_LINK_OPTIONS ${staticOptions})
  set(CMAKE_REQUIRED_LIBRARIES Threads::Threads)
  if(NOT CMAKE_CROSSCOMPILING)
    check_cxx_source_runs("
      #include <pthread.h>
      #include <stdexcept>
      #ifdef __GLIBC__
      #if !__GLIBC_PREREQ(2, 34)
      #error too old
      #endif
      #endif
      extern \"C\" void __wrap___register_frame_info(const void*, void*) {}
      extern \"C\" void* __wrap___deregister_frame_info(const void*) { return nullptr; }
      void* run(void* caught) {
        try { throw std::runtime_error(\"\"); } catch (const std::exception&) { *static_cast<bool*>(caught) = true; }
        return nullptr;
      }
      int main() {
        bool caught = false;
        pthread_t thread;
        if (pthread_create(&thread, nullptr, run, &caught) != 0) return 1;
        pthread_join(thread, nullptr);
        return caught ? 0 : 1;
      }" TARVELLUA_LINKS_STATICALLY)
  endif()
  unset(CMAKE_REQUIRED_LINK_OPTIONS)
  unset(CMAKE_REQUIRED_LIBRARIES)
  if(TARVELLUA_LINKS_STATICALLY)
    list(APPEND tarvelProgramLinkOptions ${staticOptions})
  endif()
endif()
