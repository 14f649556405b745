cmake_minimum_required(VERSION 3.22...3.31)
# Builds SOURCE with the command CXX and the flags that pkg-config names for MODULE, and runs it: what it
# prints matches EXPECTED.
set(ENV{PKG_CONFIG_PATH} ${LIBDIR}/pkgconfig)

function(ask_pkg_config result)
  execute_process(COMMAND ${PKG_CONFIG} ${ARGN} ${MODULE}
    OUTPUT_VARIABLE answer OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
  set(${result} "${answer}" PARENT_SCOPE)
endfunction()

ask_pkg_config(version --modversion)
if(NOT version STREQUAL VERSION)
  message(FATAL_ERROR "the pkg-config module says version ${version}, not ${VERSION}")
endif()

ask_pkg_config(flags --cflags --libs)
separate_arguments(flags UNIX_COMMAND "${flags}")
execute_process(COMMAND ${CXX} ${SOURCE} -o ${PROGRAM} ${flags} -Wl,-rpath,${LIBDIR}
  COMMAND_ERROR_IS_FATAL ANY)
execute_process(COMMAND ${PROGRAM} OUTPUT_VARIABLE output COMMAND_ERROR_IS_FATAL ANY)
if(NOT output MATCHES "${EXPECTED}")
  message(FATAL_ERROR "unexpected output: ${output}")
endif()
