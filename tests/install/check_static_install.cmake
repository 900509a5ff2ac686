# Builds this checkout as a static library into a scratch prefix, then builds and
# runs the consumer against it through find_package and through pkg-config --static.
include(${CMAKE_CURRENT_LIST_DIR}/../support/tools.cmake)
scl_find_tool(PKG_CONFIG pkg-config pkg-config)

file(REMOVE_RECURSE ${WORK_DIR})
set(prefix ${WORK_DIR}/prefix)

include(${CMAKE_CURRENT_LIST_DIR}/../support/run.cmake)

run(${CMAKE_COMMAND} -S ${SOURCE_DIR} -B ${WORK_DIR}/library -DBUILD_SHARED_LIBS=OFF
    -DCMAKE_BUILD_TYPE=Release -DCMAKE_CXX_COMPILER=${CXX}
    -DSCL_REGEX_BUILD_TESTS=OFF -DSCL_REGEX_BUILD_EXAMPLES=OFF)
run(${CMAKE_COMMAND} --build ${WORK_DIR}/library -j 2)
run(${CMAKE_COMMAND} --install ${WORK_DIR}/library --prefix ${prefix})
file(GLOB_RECURSE archives ${prefix}/*/libscl_regex.a)
file(GLOB_RECURSE shared ${prefix}/*/libscl_regex.so*)
if(NOT archives OR shared)
  message(FATAL_ERROR "expected libscl_regex.a and no shared library, found: ${archives} ${shared}")
endif()

# 1. CMake package: the config finds ICU for the static library's link.
run(${CMAKE_COMMAND} -S ${CONSUMER_DIR} -B ${WORK_DIR}/cmake_build
    -DCMAKE_PREFIX_PATH=${prefix} -DCMAKE_CXX_COMPILER=${CXX} -DCMAKE_BUILD_TYPE=Release)
run(${CMAKE_COMMAND} --build ${WORK_DIR}/cmake_build)
foreach(program consumer icu_engine_consumer)
  run(${WORK_DIR}/cmake_build/${program})
  if(NOT last_output MATCHES "ok")
    message(FATAL_ERROR "${program} printed: ${last_output}")
  endif()
endforeach()

# 2. pkg-config --static brings ICU through Requires.private.
file(GLOB_RECURSE pc_files ${prefix}/*/scl_regex.pc)
get_filename_component(pc_dir ${pc_files} DIRECTORY)
set(ENV{PKG_CONFIG_PATH} ${pc_dir})
run(${PKG_CONFIG} --print-requires-private scl_regex)
if(NOT last_output MATCHES "icu-uc" OR NOT last_output MATCHES "icu-i18n")
  message(FATAL_ERROR "scl_regex.pc does not require ICU privately: ${last_output}")
endif()
run(${PKG_CONFIG} --static --cflags --libs scl_regex)
string(STRIP "${last_output}" flags)
separate_arguments(flags UNIX_COMMAND "${flags}")
run(${CXX} -std=c++17 ${CONSUMER_DIR}/main.cpp ${flags} -o ${WORK_DIR}/pkgconfig_consumer)
run(${WORK_DIR}/pkgconfig_consumer)
if(NOT last_output MATCHES "consumer ok")
  message(FATAL_ERROR "pkg-config consumer printed: ${last_output}")
endif()
message(STATUS "static package works through find_package and pkg-config --static")
