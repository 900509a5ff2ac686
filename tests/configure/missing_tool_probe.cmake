# A test script that needs a program no machine has (run by check_missing_tool.cmake).
include(${CMAKE_CURRENT_LIST_DIR}/../support/tools.cmake)
scl_find_tool(TOOL scl-regex-no-such-tool scl-regex-no-such-package)
message("the probe went on without its tool")
