include(${CMAKE_CURRENT_LIST_DIR}/FloatingPoint.cmake)

# What every target of this project is compiled with.
#
# Floating-point results are part of the library's contract, so multiply-adds are never contracted
# and compiler extensions are off, here and in the code that inlines the library's arithmetic.
function(tessary_target target)
  target_compile_features(${target} PUBLIC cxx_std_17)
  set_target_properties(${target} PROPERTIES
    CXX_EXTENSIONS OFF
    CXX_VISIBILITY_PRESET hidden
    VISIBILITY_INLINES_HIDDEN ON)
  target_compile_options(${target} PRIVATE ${TESSARY_FLOAT_OPTIONS}
    $<$<CXX_COMPILER_ID:GNU,Clang,AppleClang>:-ffp-contract=off -ffile-prefix-map=${PROJECT_SOURCE_DIR}/= -Wall -Wextra -Wshadow>
    $<$<CXX_COMPILER_ID:MSVC>:/fp:precise /W4>)
endfunction()

# Keeps inline functions of other libraries out of the exported names. Only what is marked for
# export is visible in the first place; the map narrows that to the library's own namespace.
function(tessary_export_only target map)
  if(CMAKE_SYSTEM_NAME STREQUAL "Linux")
    target_link_options(${target} PRIVATE LINKER:--version-script=${map})
    set_property(TARGET ${target} APPEND PROPERTY LINK_DEPENDS ${map})
  endif()
endfunction()
