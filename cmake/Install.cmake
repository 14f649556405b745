# Install rules: a prefix that can be moved as a whole, with one CMake package for the libraries, one
# for the embedded host, and pkg-config modules. Components are what packages hold: host, kernels, mesh,
# development, program, python.
include(CMakePackageConfigHelpers)

set(tessary_package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/Tessary)
set(tessary_host_dir ${CMAKE_INSTALL_LIBDIR}/cmake/KorvaneEmbedded)

# Where programs and libraries look for the libraries beside them.
function(tessary_install_rpath target directory)
  file(RELATIVE_PATH to_libraries ${directory} ${CMAKE_INSTALL_FULL_LIBDIR})
  if(CMAKE_SYSTEM_NAME STREQUAL "Linux")
    string(REGEX REPLACE "/$" "" rpath "$ORIGIN/${to_libraries}")
    set_target_properties(${target} PROPERTIES INSTALL_RPATH "${rpath}")
  endif()
endfunction()

# Installs a library as `component`, but what only a compiler asks for as "development".
function(tessary_install_library target component export)
  tessary_install_rpath(${target} ${CMAKE_INSTALL_FULL_LIBDIR})
  install(TARGETS ${target} EXPORT ${export}
    LIBRARY COMPONENT ${component} NAMELINK_COMPONENT development
    RUNTIME COMPONENT ${component}
    ARCHIVE COMPONENT development)
endfunction()

# Installs the CMake package `package` with the targets of its export set, under `namespace`.
function(tessary_install_package package namespace directory)
  configure_package_config_file(cmake/${package}Config.cmake.in
    ${PROJECT_BINARY_DIR}/cmake/${package}Config.cmake INSTALL_DESTINATION ${directory})
  write_basic_package_version_file(${PROJECT_BINARY_DIR}/cmake/${package}ConfigVersion.cmake
    COMPATIBILITY SameMajorVersion)
  install(EXPORT ${package}Targets NAMESPACE ${namespace} DESTINATION ${directory}
    COMPONENT development)
  install(FILES
    ${PROJECT_BINARY_DIR}/cmake/${package}Config.cmake
    ${PROJECT_BINARY_DIR}/cmake/${package}ConfigVersion.cmake
    DESTINATION ${directory} COMPONENT development)
endfunction()

tessary_install_library(tessary kernels TessaryTargets)
install(DIRECTORY include/Tessary DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT development)

# A component of the package, with an export set of its own: who wants the kernels alone need not have
# it.
if(TARGET tessary_mesh)
  tessary_install_library(tessary_mesh mesh TessaryMeshTargets)
  install(EXPORT TessaryMeshTargets NAMESPACE Tessary:: DESTINATION ${tessary_package_dir}
    COMPONENT development)
  install(DIRECTORY mesh/include/TessaryMesh DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}
    COMPONENT development)
endif()

if(TESSARY_HOST_PACKAGE)
  set(tessary_host_package ${TESSARY_HOST_PACKAGE})
else()
  set(tessary_host_package KorvaneEmbedded)
  tessary_install_library(korvane_embedded host KorvaneEmbeddedTargets)
  install(DIRECTORY embedded/include/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT development)
  tessary_install_package(KorvaneEmbedded Korvane:: ${tessary_host_dir})

  # Which libraries another host consists of, only its CMake package says.
  file(RELATIVE_PATH tessary_prefix_from_pkgconfig
    ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
  set(tessary_pc_libdir "\${prefix}")
  set(tessary_pc_includedir "\${prefix}")
  cmake_path(APPEND tessary_pc_libdir ${CMAKE_INSTALL_LIBDIR})
  cmake_path(APPEND tessary_pc_includedir ${CMAKE_INSTALL_INCLUDEDIR})
  set(tessary_modules tessary)
  if(TARGET tessary_mesh)
    list(APPEND tessary_modules tessary-mesh)
  endif()
  foreach(module ${tessary_modules})
    configure_file(cmake/${module}.pc.in ${PROJECT_BINARY_DIR}/cmake/${module}.pc @ONLY)
    install(FILES ${PROJECT_BINARY_DIR}/cmake/${module}.pc
      DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT development)
  endforeach()
endif()
tessary_install_package(Tessary Tessary:: ${tessary_package_dir})

if(TESSARY_BUILD_PROGRAM)
  tessary_install_rpath(tessary_program ${CMAKE_INSTALL_FULL_BINDIR})
  install(TARGETS tessary_program RUNTIME COMPONENT program)
  install(DIRECTORY cli/schemas DESTINATION ${CMAKE_INSTALL_DATADIR}/tessary COMPONENT program)
endif()
if(TESSARY_BUILD_PROGRAM AND NOT CMAKE_CROSSCOMPILING)
  set(tessary_shell ${PROJECT_BINARY_DIR}/cli/shell)
  set(tessary_zsh_dir site-functions)
  if(CMAKE_INSTALL_PREFIX STREQUAL "/usr" AND EXISTS /etc/debian_version)
    set(tessary_zsh_dir vendor-completions)
  endif()
  if(NOT TESSARY_DEBIAN_PACKAGES)
    install(FILES ${tessary_shell}/tessary.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT program)
  endif()
  install(FILES ${tessary_shell}/tessary
    DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions COMPONENT program)
  install(FILES ${tessary_shell}/_tessary
    DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/${tessary_zsh_dir} COMPONENT program)
  install(FILES ${tessary_shell}/tessary.fish
    DESTINATION ${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d COMPONENT program)
endif()

# Where Python looks: in Debian's prefixes, and in any other.
if(TARGET tessary_python)
  set(tessary_python_dir lib/python${Python_VERSION_MAJOR}.${Python_VERSION_MINOR}/site-packages)
  if(CMAKE_INSTALL_PREFIX STREQUAL "/usr" AND EXISTS /etc/debian_version)
    set(tessary_python_dir lib/python3/dist-packages)
  elseif(CMAKE_INSTALL_PREFIX STREQUAL "/usr/local" AND EXISTS /etc/debian_version)
    set(tessary_python_dir lib/python${Python_VERSION_MAJOR}.${Python_VERSION_MINOR}/dist-packages)
  endif()
  set(TESSARY_PYTHON_INSTALL_DIR ${tessary_python_dir} CACHE STRING
    "Where the Python package goes, below the prefix")
  tessary_install_rpath(tessary_python
    ${CMAKE_INSTALL_PREFIX}/${TESSARY_PYTHON_INSTALL_DIR}/tessary)
  set_property(TARGET tessary_python APPEND PROPERTY INSTALL_RPATH "$ORIGIN")
  install(TARGETS tessary_python DESTINATION ${TESSARY_PYTHON_INSTALL_DIR}/tessary COMPONENT python)
  list(TRANSFORM tessary_package_files PREPEND python/tessary/ OUTPUT_VARIABLE tessary_package)
  install(FILES ${tessary_package} DESTINATION ${TESSARY_PYTHON_INSTALL_DIR}/tessary
    COMPONENT python)

  # What a wheel holds: the libraries lie beside the module, TBB and minizip too, which other systems have elsewhere.
  install(TARGETS tessary_python tessary tessary_mesh korvane_embedded
    LIBRARY DESTINATION . NAMELINK_SKIP COMPONENT wheel EXCLUDE_FROM_ALL)
  install(FILES $<TARGET_FILE:TBB::tbb> DESTINATION . RENAME $<TARGET_SONAME_FILE_NAME:TBB::tbb>
    COMPONENT wheel EXCLUDE_FROM_ALL)
  list(GET MINIZIP_LINK_LIBRARIES 0 minizip)
  file(REAL_PATH ${minizip} minizip)
  string(REGEX MATCH "libminizip\\.so\\.[0-9]+" minizip_soname ${minizip})
  if(minizip_soname)
    install(FILES ${minizip} DESTINATION . RENAME ${minizip_soname}
      COMPONENT wheel EXCLUDE_FROM_ALL)
  endif()
endif()
