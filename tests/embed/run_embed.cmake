# Builds host programs and runs them; what each prints stands in a file NAME.expected beside it. MODE tells where they
# get the library from:
#   installed   an installation made here from BINARY_DIR; takes the programs of examples/embed, too
#   packages    the same from Debian packages made here, unpacked in a folder; BINARY_DIR has a shared library
#   pkg-config  an installation, without CMake: a compiler and the options that pkg-config tells
#   subproject  the sources in SOURCE_DIR, as a part of the hosts' build
# Everything made goes to WORK_DIR.

function(run)
  execute_process(COMMAND ${ARGV} RESULT_VARIABLE status OUTPUT_VARIABLE output ERROR_VARIABLE errors)
  if(NOT status EQUAL 0)
    list(JOIN ARGV " " command)
    message(FATAL_ERROR "status ${status} from: ${command}\n${output}${errors}")
  endif()
  set(output "${output}" PARENT_SCOPE)
endfunction()

# ---- The library ----------------------------------------------------------------------------------------------------

# All but `subproject` begin from scratch, so that a file that is no longer installed is missed.
if(NOT MODE STREQUAL "subproject")
  file(REMOVE_RECURSE ${WORK_DIR})
endif()
set(prefix ${WORK_DIR}/prefix)
if(MODE STREQUAL "packages")
  run(${CMAKE_CPACK_COMMAND} -G DEB -C ${BUILD_TYPE} --config ${BINARY_DIR}/CPackConfig.cmake -B ${WORK_DIR}/packages)
  file(GLOB packages RELATIVE ${WORK_DIR}/packages ${WORK_DIR}/packages/*.deb)
  if(NOT packages MATCHES "^libtarvel-lua-dev_[^;]*;libtarvel-lua1_[^;]*;tarvellua_[^;]*$")
    message(FATAL_ERROR "the packages are: ${packages}")
  endif()
  foreach(package IN LISTS packages)
    run(dpkg-deb -x ${WORK_DIR}/packages/${package} ${WORK_DIR}/unpacked)
  endforeach()
  set(prefix ${WORK_DIR}/unpacked/usr)
  run(${prefix}/bin/tarvellua ${SOURCE_DIR}/examples/hello.lua)
elseif(NOT MODE STREQUAL "subproject")
  run(${CMAKE_COMMAND} --install ${BINARY_DIR} --config ${BUILD_TYPE} --prefix ${prefix})
endif()
file(GLOB_RECURSE sharedLibrary ${prefix}/lib*/libtarvel_lua.so)

if(NOT MODE STREQUAL "subproject")
  file(GLOB_RECURSE headers RELATIVE ${prefix}/include ${prefix}/include/*)
  file(GLOB publicHeaders RELATIVE ${SOURCE_DIR}/lua/include ${SOURCE_DIR}/lua/include/tarvel/lua/*.h)
  if(NOT headers STREQUAL publicHeaders)
    message(FATAL_ERROR "the installed headers are: ${headers}")
  endif()
endif()

# A shared library shows the public classes and nothing of the interpreter or of the C++ library.
if(sharedLibrary)
  run(nm -DC --defined-only ${sharedLibrary})
  string(REGEX MATCHALL "[^\n]+" symbols "${output}")
  set(inside "internal::|LuaVM::Impl::|LuaFunctionHandle::Target::")
  foreach(symbol IN LISTS symbols)
    if(NOT symbol MATCHES " ([a-z ]+ for )?tarvel::lua::" OR symbol MATCHES " tarvel::lua::(${inside})")
      message(FATAL_ERROR "the shared library shows: ${symbol}")
    endif()
  endforeach()
endif()

# ---- The hosts ------------------------------------------------------------------------------------------------------

set(hosts ${CMAKE_CURRENT_LIST_DIR}/quick_start.cpp)
if(MODE MATCHES "^(installed|packages)$")
  file(GLOB examples ${SOURCE_DIR}/examples/embed/*.cpp)
  list(APPEND hosts ${examples})
endif()

if(MODE STREQUAL "pkg-config")
  file(GLOB_RECURSE packageFile ${prefix}/lib*/tarvel_lua.pc)
  get_filename_component(folder ${packageFile} DIRECTORY)
  set(ENV{PKG_CONFIG_PATH} ${folder})
  set(static --static)
  if(sharedLibrary)
    get_filename_component(folder ${sharedLibrary} DIRECTORY)
    set(ENV{LD_LIBRARY_PATH} ${folder})
    unset(static)
  endif()
  run(pkg-config --cflags --libs ${static} tarvel_lua)
  separate_arguments(options UNIX_COMMAND "${output}")
  file(MAKE_DIRECTORY ${WORK_DIR}/build)
  run(${COMPILER} -std=c++20 ${hosts} -o ${WORK_DIR}/build/quick_start ${options})
else()
  list(JOIN hosts "," sources)
  set(configureOptions -G ${GENERATOR} -D CMAKE_MAKE_PROGRAM=${MAKE_PROGRAM} -D CMAKE_CXX_COMPILER=${COMPILER}
                       -D HOSTS=${sources})
  if(MODE STREQUAL "subproject")
    # Unoptimised, because what matters here is that it builds at all; the folder is kept for the next run.
    list(APPEND configureOptions -D TARVELLUA_DIR=${SOURCE_DIR} -D CMAKE_BUILD_TYPE=Debug
                                 -D CMAKE_CXX_FLAGS_DEBUG=-O0)
  else()
    list(APPEND configureOptions -D CMAKE_PREFIX_PATH=${prefix} -D CMAKE_BUILD_TYPE=${BUILD_TYPE})
  endif()
  run(${CMAKE_COMMAND} -S ${CMAKE_CURRENT_LIST_DIR} -B ${WORK_DIR}/build ${configureOptions})
  run(${CMAKE_COMMAND} --build ${WORK_DIR}/build --config ${BUILD_TYPE} --parallel 2)
endif()

foreach(host IN LISTS hosts)
  get_filename_component(name ${host} NAME_WE)
  find_program(program NAMES ${name} PATHS ${WORK_DIR}/build ${WORK_DIR}/build/${BUILD_TYPE}
               NO_DEFAULT_PATH NO_CACHE REQUIRED)
  run(${program})
  string(REGEX REPLACE "cpp$" "expected" expectedFile ${host})
  file(READ ${expectedFile} expected)
  if(NOT output STREQUAL expected)
    message(FATAL_ERROR "${name} prints:\n${output}")
  endif()
  unset(program)
endforeach()

# The README shows the first program in full.
file(READ ${SOURCE_DIR}/README.md readme)
file(READ ${CMAKE_CURRENT_LIST_DIR}/quick_start.cpp quickStart)
string(FIND "${readme}" "${quickStart}" position)
if(position EQUAL -1)
  message(FATAL_ERROR "the README's program is not quick_start.cpp")
endif()
