# A test whose program is missing is skipped, naming the Debian package to
# install, unless REQUIRE_TOOLS (CI) makes it fail.
include(${CMAKE_CURRENT_LIST_DIR}/../support/tools.cmake)

function(probe require out_rc out_output)
  execute_process(
    COMMAND ${CMAKE_COMMAND} -DREQUIRE_TOOLS=${require}
      -P ${CMAKE_CURRENT_LIST_DIR}/missing_tool_probe.cmake
    RESULT_VARIABLE rc OUTPUT_VARIABLE output ERROR_VARIABLE output)
  set(${out_rc} ${rc} PARENT_SCOPE)
  set(${out_output} "${output}" PARENT_SCOPE)
endfunction()

probe(OFF rc output)
if(NOT rc EQUAL 0 OR NOT output MATCHES "${scl_skipped_tool_pattern}"
   OR NOT output MATCHES "Debian package scl-regex-no-such-package"
   OR output MATCHES "went on")
  message(FATAL_ERROR "a missing tool did not skip the test (${rc}):\n${output}")
endif()
probe(ON rc output)
if(rc EQUAL 0 OR output MATCHES "skipped:" OR NOT output MATCHES "scl-regex-no-such-package"
   OR output MATCHES "went on")
  message(FATAL_ERROR "a missing tool did not fail the test with REQUIRE_TOOLS (${rc}):\n${output}")
endif()
message(STATUS "a missing tool skips its test, or fails it with REQUIRE_TOOLS")
