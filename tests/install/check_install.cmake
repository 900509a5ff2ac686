# Installs the built library into a scratch prefix, then builds the consumer against it
# with find_package and with pkg-config, and runs both programs.
include(${CMAKE_CURRENT_LIST_DIR}/../support/tools.cmake)
scl_find_tool(PKG_CONFIG pkg-config pkg-config)

file(REMOVE_RECURSE ${WORK_DIR})
set(prefix ${WORK_DIR}/prefix)

include(${CMAKE_CURRENT_LIST_DIR}/../support/run.cmake)

set(config_args)
if(CONFIG)
  set(config_args --config ${CONFIG})
endif()
run(${CMAKE_COMMAND} --install ${BUILD_DIR} --prefix ${prefix} ${config_args})

foreach(header scl/regex.h scl/regex/matcher.h scl/regex/exception.h scl/regex/regex_impl_icu.h)
  if(NOT EXISTS ${prefix}/include/${header})
    message(FATAL_ERROR "header not installed: ${header}")
  endif()
endforeach()

# 1. CMake package.
run(${CMAKE_COMMAND} -S ${CONSUMER_DIR} -B ${WORK_DIR}/cmake_build
    -DCMAKE_PREFIX_PATH=${prefix} -DCMAKE_CXX_COMPILER=${CXX} -DCMAKE_BUILD_TYPE=Release)
run(${CMAKE_COMMAND} --build ${WORK_DIR}/cmake_build)
run(${WORK_DIR}/cmake_build/consumer)
if(NOT last_output MATCHES "consumer ok")
  message(FATAL_ERROR "CMake consumer printed: ${last_output}")
endif()
run(${WORK_DIR}/cmake_build/icu_engine_consumer)
if(NOT last_output MATCHES "icu engine consumer ok")
  message(FATAL_ERROR "ICU engine consumer printed: ${last_output}")
endif()

# 2. pkg-config.
file(GLOB_RECURSE pc_files ${prefix}/*/scl_regex.pc)
list(LENGTH pc_files pc_count)
if(NOT pc_count EQUAL 1)
  message(FATAL_ERROR "expected one installed scl_regex.pc, found: ${pc_files}")
endif()
get_filename_component(pc_dir ${pc_files} DIRECTORY)
set(ENV{PKG_CONFIG_PATH} ${pc_dir})
run(${PKG_CONFIG} --cflags --libs scl_regex)
string(STRIP "${last_output}" flags)
separate_arguments(flags UNIX_COMMAND "${flags}")
run(${PKG_CONFIG} --variable=libdir scl_regex)
string(STRIP "${last_output}" libdir)
run(${CXX} -std=c++17 ${CONSUMER_DIR}/main.cpp ${flags} -Wl,-rpath,${libdir}
    -o ${WORK_DIR}/pkgconfig_consumer)
run(${WORK_DIR}/pkgconfig_consumer)
if(NOT last_output MATCHES "consumer ok")
  message(FATAL_ERROR "pkg-config consumer printed: ${last_output}")
endif()
message(STATUS "installed package works through find_package and pkg-config")
