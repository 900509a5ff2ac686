# Compares the built shared library with the ABI recorded in abi/ (abidw's dump
# of the current release), through libabigail's abidiff, over the types of the
# public headers only. Fails on any incompatible change (a removed or changed
# symbol or type); prints additions and passes.
#
# With DOCTOR set, first renames one recorded function symbol in a scratch copy
# of the dump, and expects abidiff to call that incompatible: proof that the
# check can fail.
include(${CMAKE_CURRENT_LIST_DIR}/../support/tools.cmake)
scl_find_tool(ABIDIFF abidiff abigail-tools)

set(dump ${RECORDED})
if(DOCTOR)
  file(READ ${RECORDED} text)
  string(FIND "${text}" "${DOCTOR}" at)
  if(at EQUAL -1)
    message(FATAL_ERROR "the recorded dump has no symbol ${DOCTOR} to doctor")
  endif()
  string(REPLACE "${DOCTOR}" "${DOCTOR}_gone" text "${text}")
  set(dump ${WORK_DIR}/doctored.abi)
  file(WRITE ${dump} "${text}")
endif()

execute_process(
  COMMAND ${ABIDIFF} --headers-dir2 ${HEADERS} ${dump} ${LIBRARY}
  RESULT_VARIABLE rc OUTPUT_VARIABLE report ERROR_VARIABLE errors)
if(NOT rc MATCHES "^[0-9]+$")
  message(FATAL_ERROR "abidiff did not run: ${rc}\n${errors}")
endif()
math(EXPR failed "${rc} & 3")        # ABIDIFF_ERROR | ABIDIFF_USAGE_ERROR
math(EXPR incompatible "${rc} & 8")  # ABIDIFF_ABI_INCOMPATIBLE_CHANGE

if(failed)
  message(FATAL_ERROR "abidiff failed (${rc}):\n${report}\n${errors}")
endif()
if(DOCTOR)
  if(NOT incompatible)
    message(FATAL_ERROR "abidiff did not see the removed symbol (${rc}):\n${report}")
  endif()
  message(STATUS "a removed function fails the ABI check, as it must")
  return()
endif()
if(incompatible)
  message(FATAL_ERROR "incompatible ABI change against ${RECORDED}:\n${report}\n"
                      "For a deliberate break: bump the SONAME (the project's major version) "
                      "and record the new ABI with scripts/record-abi.")
endif()
# Additions are compatible: say so, and pass.
if(rc)
  message(STATUS "compatible ABI additions (record them with scripts/record-abi):\n${report}")
else()
  message(STATUS "the ABI is the recorded one")
endif()
