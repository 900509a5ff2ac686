# Configures tests/subproject (which pulls this checkout in with add_subdirectory),
# builds and runs its consumer without installing anything, and checks that the
# parent got no install rules, no tests and no build type from this library.
file(REMOVE_RECURSE ${WORK_DIR})

include(${CMAKE_CURRENT_LIST_DIR}/../support/run.cmake)

run(${CMAKE_COMMAND} -S ${SOURCE_DIR}/tests/subproject -B ${WORK_DIR}/build
    -DSCL_REGEX_SOURCE_DIR=${SOURCE_DIR} -DCMAKE_CXX_COMPILER=${CXX})
file(READ ${WORK_DIR}/build/seen.txt seen)
if(NOT seen STREQUAL "build_type=\ntests=OFF\ninstall=OFF\n")
  message(FATAL_ERROR "the parent saw settings it did not ask for:\n${seen}")
endif()
run(${CMAKE_COMMAND} --build ${WORK_DIR}/build --target consumer -j 2)
run(${WORK_DIR}/build/consumer)
if(NOT last_output MATCHES "consumer ok")
  message(FATAL_ERROR "consumer printed: ${last_output}")
endif()
if(EXISTS ${WORK_DIR}/build/scl_regex/tests)
  message(FATAL_ERROR "the library's tests were configured in the parent's build")
endif()
# Installing the parent installs nothing of this library.
run(${CMAKE_COMMAND} --install ${WORK_DIR}/build --prefix ${WORK_DIR}/prefix)
file(GLOB_RECURSE installed ${WORK_DIR}/prefix/*)
if(installed)
  message(FATAL_ERROR "installing the parent installed: ${installed}")
endif()
message(STATUS "add_subdirectory consumer builds and runs; no install rules, tests or build type leak")
