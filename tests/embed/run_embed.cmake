# Builds and runs the host program of this folder. MODE is `installed` (against an installation made here from
# BINARY_DIR) or `subproject` (from the sources in SOURCE_DIR). Everything made goes to WORK_DIR.

function(run)
  execute_process(COMMAND ${ARGV} RESULT_VARIABLE status OUTPUT_VARIABLE output ERROR_VARIABLE output)
  if(NOT status EQUAL 0)
    list(JOIN ARGV " " command)
    message(FATAL_ERROR "status ${status} from: ${command}\n${output}")
  endif()
  set(output "${output}" PARENT_SCOPE)
endfunction()

set(configureOptions -G ${GENERATOR} -D CMAKE_MAKE_PROGRAM=${MAKE_PROGRAM} -D CMAKE_CXX_COMPILER=${COMPILER})

if(MODE STREQUAL "installed")
  # From scratch, so that a file that is no longer installed is missed.
  file(REMOVE_RECURSE ${WORK_DIR})
  run(${CMAKE_COMMAND} --install ${BINARY_DIR} --config ${BUILD_TYPE} --prefix ${WORK_DIR}/prefix)
  list(APPEND configureOptions -D CMAKE_PREFIX_PATH=${WORK_DIR}/prefix -D CMAKE_BUILD_TYPE=${BUILD_TYPE})

  file(GLOB_RECURSE headers RELATIVE ${WORK_DIR}/prefix/include ${WORK_DIR}/prefix/include/*)
  file(GLOB publicHeaders RELATIVE ${SOURCE_DIR}/lua/include ${SOURCE_DIR}/lua/include/tarvel/lua/*.h)
  if(NOT headers STREQUAL publicHeaders)
    message(FATAL_ERROR "the installed headers are: ${headers}")
  endif()
else()
  # Unoptimised, because what matters here is that it builds at all; the folder is kept for the next run.
  list(APPEND configureOptions -D TARVELLUA_DIR=${SOURCE_DIR} -D CMAKE_BUILD_TYPE=Debug
                               -D CMAKE_CXX_FLAGS_DEBUG=-O0)
endif()

run(${CMAKE_COMMAND} -S ${CMAKE_CURRENT_LIST_DIR} -B ${WORK_DIR}/build ${configureOptions})
run(${CMAKE_COMMAND} --build ${WORK_DIR}/build --config ${BUILD_TYPE} --parallel 2)
find_program(program NAMES quick_start PATHS ${WORK_DIR}/build ${WORK_DIR}/build/${BUILD_TYPE}
             NO_DEFAULT_PATH REQUIRED)
run(${program})
if(NOT output STREQUAL "20\n")
  message(FATAL_ERROR "the program says: ${output}")
endif()

# The README shows this program in full.
file(READ ${SOURCE_DIR}/README.md readme)
file(READ ${CMAKE_CURRENT_LIST_DIR}/quick_start.cpp quickStart)
string(FIND "${readme}" "${quickStart}" position)
if(position EQUAL -1)
  message(FATAL_ERROR "the README's program is not quick_start.cpp")
endif()
