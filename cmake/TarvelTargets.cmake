# What every target of this project is compiled with.

# A checked heap has no free lists, which would hide leaks and use after release, and counts its objects.
if(TARVELLUA_COUNT_OBJECTS OR TARVELLUA_SANITIZE)
  set(tarvelCheckedHeap ON)
else()
  set(tarvelCheckedHeap OFF)
endif()

set(tarvelSanitizeOptions "")
if(TARVELLUA_SANITIZE)
  set(tarvelSanitizeOptions -fsanitize=${TARVELLUA_SANITIZE} -fno-sanitize-recover=all
                            -fno-omit-frame-pointer -g)
endif()

set(tarvelWarningOptions -Wall -Wextra -Wpedantic -Wshadow -Wconversion)
if(TARVELLUA_WERROR)
  list(APPEND tarvelWarningOptions -Werror)
endif()
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
  # These versions see overlapping copies in a literal + std::string, inside the C++ library.
  list(APPEND tarvelWarningOptions -Wno-restrict)
endif()
if(TARVELLUA_SANITIZE AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  # GCC's flow analysis runs after the instrumentation and then misjudges std::function and std::regex.
  list(APPEND tarvelWarningOptions -Wno-maybe-uninitialized)
endif()

# Every float operation is rounded on its own: the number model's tests for whole results rely on it, also where the
# processor could fuse a multiplication with what follows.
set(tarvelFloatOptions -ffp-contract=off)

# Settings of one of our own targets. Sources include each other by their path from the repository's root.
function(tarvel_configure_target target)
  target_compile_features(${target} PUBLIC cxx_std_20)
  target_compile_options(${target} PRIVATE ${tarvelWarningOptions} ${tarvelFloatOptions})
  target_include_directories(${target} PRIVATE ${PROJECT_SOURCE_DIR})
  set_target_properties(${target} PROPERTIES
    CXX_STANDARD 20
    CXX_STANDARD_REQUIRED ON
    CXX_EXTENSIONS OFF
    CXX_VISIBILITY_PRESET hidden
    VISIBILITY_INLINES_HIDDEN ON)
endfunction()
