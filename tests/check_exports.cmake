# Fails unless every dynamic symbol the library defines belongs to scl::regex.
execute_process(COMMAND nm -D --defined-only -C ${LIBRARY}
  OUTPUT_VARIABLE symbols RESULT_VARIABLE rc)
if(NOT rc EQUAL 0)
  message(FATAL_ERROR "nm failed on ${LIBRARY}")
endif()
string(REPLACE "\n" ";" lines "${symbols}")
set(count 0)
foreach(line IN LISTS lines)
  # Skip blank lines and the symbol-version node itself ("<address> A SCL_REGEX_1").
  if(line STREQUAL "" OR line MATCHES "^[0-9a-fA-F]+ A SCL_REGEX_[0-9]+$")
    continue()
  endif()
  # "<address> <type> <name>"; the name may contain blanks.
  string(REGEX REPLACE "^[0-9a-fA-F]* *[A-Za-z] " "" name "${line}")
  if(NOT name MATCHES "scl::regex::")
    message(SEND_ERROR "exported symbol outside scl::regex: ${name}")
  endif()
  math(EXPR count "${count} + 1")
endforeach()
if(count EQUAL 0)
  message(FATAL_ERROR "no exported symbols found in ${LIBRARY}")
endif()
message(STATUS "${count} exported symbols, all in scl::regex")
