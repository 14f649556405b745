# Runs the port without vcpkg, with stand-ins for its functions: options exist, the build passes with the packages
# of this system, and what the port moves and removes is there. What vcpkg itself does is not tried.
#
# usage: cmake -DWORK=FOLDER [-DFEATURES=mesh] -P try.cmake
cmake_minimum_required(VERSION 3.22...3.31)

set(PORT tessary)
set(CURRENT_PACKAGES_DIR ${WORK}/packages)
file(REMOVE_RECURSE ${CURRENT_PACKAGES_DIR})

function(vcpkg_check_linkage)
endfunction()

function(vcpkg_check_features)
  cmake_parse_arguments(arg "" "OUT_FEATURE_OPTIONS" "FEATURES" ${ARGN})
  set(options)
  while(arg_FEATURES)
    list(POP_FRONT arg_FEATURES feature option)
    set(value OFF)
    if(feature IN_LIST FEATURES)
      set(value ON)
    endif()
    list(APPEND options -D${option}=${value})
  endwhile()
  set(${arg_OUT_FEATURE_OPTIONS} ${options} PARENT_SCOPE)
endfunction()

function(vcpkg_find_acquire_program name)
  find_program(program pkg-config REQUIRED)
  set(${name} ${program} PARENT_SCOPE)
endfunction()

# An option that nothing uses is a mistake.
function(vcpkg_cmake_configure)
  cmake_parse_arguments(arg "" "SOURCE_PATH" "OPTIONS" ${ARGN})
  execute_process(COMMAND ${CMAKE_COMMAND} -S ${arg_SOURCE_PATH} -B ${WORK}/build -G Ninja
      -DCMAKE_BUILD_TYPE=Release -DCMAKE_INSTALL_PREFIX=${CURRENT_PACKAGES_DIR} -DCMAKE_INSTALL_LIBDIR=lib
      ${arg_OPTIONS}
    ERROR_VARIABLE errors COMMAND_ERROR_IS_FATAL ANY)
  if(errors MATCHES "not used by the project")
    message(FATAL_ERROR "${errors}")
  endif()
endfunction()

function(vcpkg_cmake_install)
  execute_process(COMMAND ${CMAKE_COMMAND} --build ${WORK}/build --target install
    COMMAND_ERROR_IS_FATAL ANY)
endfunction()

function(vcpkg_cmake_config_fixup)
  cmake_parse_arguments(arg "DO_NOT_DELETE_PARENT_CONFIG_PATH" "PACKAGE_NAME;CONFIG_PATH" "" ${ARGN})
  file(RENAME ${CURRENT_PACKAGES_DIR}/${arg_CONFIG_PATH} ${CURRENT_PACKAGES_DIR}/share/${arg_PACKAGE_NAME})
endfunction()

function(vcpkg_fixup_pkgconfig)
  if(NOT EXISTS ${CURRENT_PACKAGES_DIR}/lib/pkgconfig/tessary.pc)
    message(FATAL_ERROR "no pkg-config module")
  endif()
endfunction()

function(vcpkg_copy_tools)
  cmake_parse_arguments(arg "AUTO_CLEAN" "" "TOOL_NAMES" ${ARGN})
  file(RENAME ${CURRENT_PACKAGES_DIR}/bin/${arg_TOOL_NAMES} ${CURRENT_PACKAGES_DIR}/${arg_TOOL_NAMES})
endfunction()

function(vcpkg_install_copyright)
  cmake_parse_arguments(arg "" "" "FILE_LIST" ${ARGN})
  file(COPY ${arg_FILE_LIST} DESTINATION ${CURRENT_PACKAGES_DIR}/share/${PORT})
endfunction()

file(MAKE_DIRECTORY ${CURRENT_PACKAGES_DIR}/share)
include(${CMAKE_CURRENT_LIST_DIR}/portfile.cmake)
message(STATUS "the port builds and installs")
