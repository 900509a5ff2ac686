# The programs some tests run that a machine may lack, each with the Debian
# package that has it. A missing one fails where REQUIRE_TOOLS is on (CI:
# SCL_REGEX_REQUIRE_TOOLS); otherwise the tests that run it are skipped, and
# say which package to install.

# What a skipped test prints: the SKIP_REGULAR_EXPRESSION of such tests.
set(scl_skipped_tool_pattern "skipped: [^\n]* not found")

# Sets `out` to what to say of a missing `name`.
function(scl_missing_tool name package out)
  set(${out} "${name} not found; it is in the Debian package ${package} (install it with \
sudo apt-get install ${package}, or run scripts/test, which installs every tool)" PARENT_SCOPE)
endfunction()

# In a test script: sets `var` to the path of `name`; if it is missing, fails
# with REQUIRE_TOOLS, or says the test is skipped and ends the script.
macro(scl_find_tool var name package)
  find_program(${var} ${name})
  if(NOT ${var})
    scl_missing_tool(${name} ${package} _scl_missing)
    if(REQUIRE_TOOLS)
      message(FATAL_ERROR "${_scl_missing}")
    endif()
    message("skipped: ${_scl_missing}")
    return()
  endif()
endmacro()

# When configuring: fails if `name` is missing and REQUIRE_TOOLS is on, or
# says that the tests that run it will be skipped.
function(scl_check_tool name package)
  unset(found)
  find_program(found ${name} NO_CACHE)  # looked for anew at each configuration
  if(NOT found)
    scl_missing_tool(${name} ${package} missing)
    if(REQUIRE_TOOLS)
      message(FATAL_ERROR "${missing}")
    endif()
    message(STATUS "${missing}: the tests that run it are skipped")
  endif()
endfunction()
