# What this build is: VersionValues.h in the build folder, for whoever prints it.
#
# The values come from the git checkout, and the build date is that of its commit, so that a build of
# the same sources is the same build. Where there is no checkout, or to say something else, they are
# given: -DTESSARY_COMMIT=... and so on. The file is written only when a value changes.
set(TESSARY_BUILD_DATE "" CACHE STRING
  "Build date of the version banner; empty for the date of the commit")
set(TESSARY_BUILD_NUMBER "" CACHE STRING
  "Build number of the version banner; empty for the count of commits")
set(TESSARY_COMMIT "" CACHE STRING "Commit of the version banner; empty for that of the checkout")
set(TESSARY_BRANCH "" CACHE STRING "Branch of the version banner; empty for that of the checkout")

# Sets `result` to the first of: the given value, what git answers, `otherwise`.
function(tessary_version_value result given otherwise)
  set(value "${given}")
  if(value STREQUAL "" AND tessary_is_checkout)
    execute_process(COMMAND ${CMAKE_COMMAND} -E env TZ=UTC LC_ALL=C ${GIT_EXECUTABLE} ${ARGN}
      WORKING_DIRECTORY ${PROJECT_SOURCE_DIR} RESULT_VARIABLE failure
      OUTPUT_VARIABLE value OUTPUT_STRIP_TRAILING_WHITESPACE ERROR_QUIET)
    if(failure)
      set(value "")
    endif()
  endif()
  if(value STREQUAL "")
    set(value "${otherwise}")
  endif()
  string(REGEX REPLACE "[\"\\]" "_" value "${value}")
  set(${result} "${value}" PARENT_SCOPE)
endfunction()

# A copy of the sources inside another project's checkout is none of its own.
find_package(Git QUIET)
set(tessary_is_checkout OFF)
if(GIT_FOUND)
  execute_process(COMMAND ${GIT_EXECUTABLE} rev-parse --show-prefix --git-path logs/HEAD
    WORKING_DIRECTORY ${PROJECT_SOURCE_DIR} RESULT_VARIABLE failure
    OUTPUT_VARIABLE answer ERROR_QUIET)
  if(NOT failure AND answer MATCHES "^\n([^\n]+)\n")
    set(tessary_is_checkout ON)
    # Every commit and every change of branch is a line of that file.
    cmake_path(ABSOLUTE_PATH CMAKE_MATCH_1 BASE_DIRECTORY ${PROJECT_SOURCE_DIR})
    if(EXISTS ${CMAKE_MATCH_1})
      set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${CMAKE_MATCH_1})
    endif()
  endif()
endif()

set(tessary_date_format "%a %m/%d/%Y, %Y%m%d%H%M")
tessary_version_value(tessary_commit "${TESSARY_COMMIT}"
  0000000000000000000000000000000000000000 rev-parse HEAD)
tessary_version_value(tessary_branch "${TESSARY_BRANCH}" unknown branch --show-current)
tessary_version_value(tessary_build_number "${TESSARY_BUILD_NUMBER}" 0 rev-list --count HEAD)
tessary_version_value(tessary_build_date "${TESSARY_BUILD_DATE}" ""
  log -1 --format=%cd "--date=format-local:${tessary_date_format}")
if(tessary_build_date STREQUAL "")
  # Kept: another configuration of the same folder is not another build.
  if(NOT DEFINED CACHE{TESSARY_CONFIGURED})
    string(TIMESTAMP now "${tessary_date_format}" UTC)
    set(TESSARY_CONFIGURED "${now}" CACHE INTERNAL "When this folder was configured first")
  endif()
  set(tessary_build_date "${TESSARY_CONFIGURED}")
endif()

configure_file(${CMAKE_CURRENT_LIST_DIR}/VersionValues.h.in
  ${PROJECT_BINARY_DIR}/version/VersionValues.h @ONLY)
