# Configures this checkout the ways a packager or a parent project does, and
# checks which configure the test suite: CMake's standard BUILD_TESTING at top
# level (on unless turned off), SCL_REGEX_BUILD_TESTS over it, and nothing as
# a subproject unless asked. Configuring only: nothing is built.
file(REMOVE_RECURSE ${WORK_DIR})

include(${CMAKE_CURRENT_LIST_DIR}/../support/run.cmake)

# Configures `source` into WORK_DIR/<name> with the given arguments, and
# expects the library's tests to be configured (`want` ON) or not, at `tests`
# in that build directory.
function(expect_tests name want source tests)
  set(build ${WORK_DIR}/${name})
  run(${CMAKE_COMMAND} -S ${source} -B ${build} -DCMAKE_CXX_COMPILER=${CXX}
      -DSCL_REGEX_BUILD_EXAMPLES=OFF -DSCL_REGEX_SOURCE_DIR=${SOURCE_DIR} ${ARGN})
  set(configured OFF)
  if(EXISTS ${build}/${tests}/CTestTestfile.cmake)
    file(READ ${build}/${tests}/CTestTestfile.cmake testfile)
    if(testfile MATCHES "scl_regex_tests")
      set(configured ON)
    endif()
  endif()
  if(NOT configured STREQUAL want)
    string(REPLACE ";" " " arguments "${ARGN}")
    message(FATAL_ERROR "${name} (${arguments}): the test suite configured: ${configured}, "
                        "expected ${want}")
  endif()
  message(STATUS "${name}: the test suite configured: ${configured}, as expected")
endfunction()

# Top level.
expect_tests(top_level ON ${SOURCE_DIR} tests)
expect_tests(build_testing_off OFF ${SOURCE_DIR} tests -DBUILD_TESTING=OFF)
expect_tests(build_testing_off_tests_on ON ${SOURCE_DIR} tests
             -DBUILD_TESTING=OFF -DSCL_REGEX_BUILD_TESTS=ON)
# A subproject, whose parent builds its own tests (BUILD_TESTING on).
expect_tests(subproject OFF ${SOURCE_DIR}/tests/subproject scl_regex/tests -DBUILD_TESTING=ON)
expect_tests(subproject_tests_on ON ${SOURCE_DIR}/tests/subproject scl_regex/tests
             -DSCL_REGEX_BUILD_TESTS=ON)
