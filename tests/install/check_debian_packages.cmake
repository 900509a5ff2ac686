# Builds the Debian packages in the build directory with CPack, checks their
# names, control fields and file lists, unpacks them into a scratch root and
# builds and runs the consumer against that tree.
include(${CMAKE_CURRENT_LIST_DIR}/../support/tools.cmake)
scl_find_tool(DPKG_DEB dpkg-deb dpkg)
scl_find_tool(DPKG_SHLIBDEPS dpkg-shlibdeps dpkg-dev)  # CPack reads the runtime's dependencies with it

set(runtime_deb ${BUILD_DIR}/libscl-regex${MAJOR}_${VERSION}_${ARCH}.deb)
set(dev_deb ${BUILD_DIR}/libscl-regex-dev_${VERSION}_${ARCH}.deb)
file(REMOVE_RECURSE ${WORK_DIR})
file(REMOVE ${runtime_deb} ${dev_deb})

include(${CMAKE_CURRENT_LIST_DIR}/../support/run.cmake)

function(expect text pattern what)
  if(NOT text MATCHES "${pattern}")
    message(FATAL_ERROR "${what}: expected ${pattern} in:\n${text}")
  endif()
endfunction()

execute_process(COMMAND ${CPACK} -G DEB WORKING_DIRECTORY ${BUILD_DIR}
                RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE err)
if(NOT rc EQUAL 0)
  message(FATAL_ERROR "cpack failed:\n${out}\n${err}")
endif()
foreach(deb ${runtime_deb} ${dev_deb})
  if(NOT EXISTS ${deb})
    message(FATAL_ERROR "not made: ${deb}\n${out}")
  endif()
endforeach()

# Control fields.
run(${DPKG_DEB} -f ${runtime_deb} Package Version Section Depends)
set(fields "${last_output}")
expect("${fields}" "Package: libscl-regex${MAJOR}\n" "runtime package name")
expect("${fields}" "Version: ${VERSION}\n" "runtime version")
expect("${fields}" "Section: libs" "runtime section")
expect("${fields}" "Depends:[^\n]*libicu72" "runtime depends on ICU (from dpkg-shlibdeps)")
run(${DPKG_DEB} -f ${dev_deb} Package Version Section Depends)
set(fields "${last_output}")
expect("${fields}" "Package: libscl-regex-dev\n" "development package name")
expect("${fields}" "Section: libdevel" "development section")
expect("${fields}" "Depends:[^\n]*libscl-regex${MAJOR} \\(= ${VERSION}\\)" "development depends on the runtime")
expect("${fields}" "Depends:[^\n]*libicu-dev" "development depends on libicu-dev")

# File lists: the versioned shared object alone in the runtime, the rest in -dev.
run(${DPKG_DEB} -c ${runtime_deb})
set(files "${last_output}")
expect("${files}" "/usr/lib/libscl_regex\\.so\\.${MAJOR} " "runtime holds the SONAME link")
expect("${files}" "/usr/lib/libscl_regex\\.so\\.${VERSION}\n" "runtime holds the library")
if(files MATCHES "/usr/include/" OR files MATCHES "libscl_regex\\.so -> " OR files MATCHES "\\.pc\n")
  message(FATAL_ERROR "the runtime package holds development files:\n${files}")
endif()
run(${DPKG_DEB} -c ${dev_deb})
set(files "${last_output}")
foreach(path "/usr/include/scl/regex\\.h" "/usr/include/scl/regex/regex_impl_icu\\.h"
             "/usr/lib/libscl_regex\\.so -> " "/usr/lib/cmake/scl_regex/scl_regexConfig\\.cmake"
             "/usr/lib/pkgconfig/scl_regex\\.pc")
  expect("${files}" "${path}" "development package file list")
endforeach()
if(files MATCHES "libscl_regex\\.so\\.${VERSION}")
  message(FATAL_ERROR "the development package holds the library itself:\n${files}")
endif()

# Unpacked together, they serve a consumer.
set(root ${WORK_DIR}/root)
file(MAKE_DIRECTORY ${root})
run(${DPKG_DEB} -x ${runtime_deb} ${root})
run(${DPKG_DEB} -x ${dev_deb} ${root})
run(${CMAKE_COMMAND} -S ${CONSUMER_DIR} -B ${WORK_DIR}/consumer -DCMAKE_PREFIX_PATH=${root}/usr
    -DCMAKE_CXX_COMPILER=${CXX} -DCMAKE_BUILD_TYPE=Release)
run(${CMAKE_COMMAND} --build ${WORK_DIR}/consumer)
set(ENV{LD_LIBRARY_PATH} ${root}/usr/lib)
run(${WORK_DIR}/consumer/consumer)
expect("${last_output}" "consumer ok" "consumer against the unpacked packages")
message(STATUS "libscl-regex${MAJOR} and libscl-regex-dev build, hold what they should and serve a consumer")
