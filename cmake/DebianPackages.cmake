# Debian packages: which component goes into which, and what CPack writes about them. What is made for them
# beforehand, changelogs and the like, packaging/debian/prepare.sh puts into a folder of the build.
set(tessary_debian ${PROJECT_BINARY_DIR}/debian)
set(tessary_debian_revision 1)
set(tessary_debian_version ${PROJECT_VERSION}-${tessary_debian_revision})

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME tessary)
set(CPACK_PACKAGE_VENDOR Tessary)
set(CPACK_PACKAGE_DIRECTORY ${PROJECT_BINARY_DIR}/packages)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
set(CPACK_DEBIAN_PACKAGE_MAINTAINER "Tessary maintainers <maintainers@tessary.invalid>")
set(CPACK_DEBIAN_PACKAGE_RELEASE ${tessary_debian_revision})
set(CPACK_DEBIAN_PACKAGE_SOURCE tessary)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")
# Our own libraries belong to no installed package: those dependencies are written below.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS
  ${PROJECT_BINARY_DIR} ${PROJECT_BINARY_DIR}/embedded ${PROJECT_BINARY_DIR}/mesh)

# tessary_debian_package(COMPONENT NAME SECTION SUMMARY TEXT [SHLIBS] [ALL] [DEPENDS ...]
#                        [RECOMMENDS ...] [SUGGESTS ...] [CONTROL files of control.tar ...])
# Lines of TEXT have at most 79 characters.
function(tessary_debian_package component name section summary text)
  cmake_parse_arguments(arg "SHLIBS;ALL" "" "DEPENDS;RECOMMENDS;SUGGESTS;CONTROL" ${ARGN})
  string(TOUPPER ${component} key)
  macro(tessary_set suffix value)
    set(CPACK_${suffix} "${value}" PARENT_SCOPE)
  endmacro()
  tessary_set(COMPONENT_${key}_DESCRIPTION "${summary}\n${text}")
  tessary_set(DEBIAN_${key}_PACKAGE_NAME ${name})
  tessary_set(DEBIAN_${key}_PACKAGE_SECTION ${section})
  tessary_set(DEBIAN_${key}_PACKAGE_SHLIBDEPS ${arg_SHLIBS})
  foreach(relation DEPENDS RECOMMENDS SUGGESTS)
    list(JOIN arg_${relation} ", " packages)
    tessary_set(DEBIAN_${key}_PACKAGE_${relation} "${packages}")
  endforeach()
  list(TRANSFORM arg_CONTROL PREPEND ${tessary_debian}/${name}/)
  tessary_set(DEBIAN_${key}_PACKAGE_CONTROL_EXTRA "${arg_CONTROL}")
  if(arg_ALL)
    tessary_set(DEBIAN_${key}_PACKAGE_ARCHITECTURE all)
  endif()
  set(CPACK_COMPONENTS_ALL ${CPACK_COMPONENTS_ALL} ${component} PARENT_SCOPE)
  install(DIRECTORY ${tessary_debian}/${name}/doc/ DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${name}
    COMPONENT ${component})
  install(DIRECTORY ${tessary_debian}/${name}/share/ DESTINATION ${CMAKE_INSTALL_DATADIR}
    COMPONENT ${component})
endfunction()

set(tessary_kernels_text "The kernels triangulate polygons, make tables of edges and neighbours, sample
surfaces, enclose points, and take colliders apart, with the same bits for any
number of threads.")
set(same_version "(= ${tessary_debian_version})")
set(this_version "(>= ${PROJECT_VERSION})")

tessary_debian_package(host libkorvane-embedded2 libs
  "Embedded host of the geometry kernels of Tessary"
  "Objects, arrays and properties that kernels of Tessary take and hand back, for
programs that have no host of their own."
  SHLIBS CONTROL symbols triggers)
tessary_debian_package(kernels libtessary2 libs
  "Geometry kernels for polygon meshes" "${tessary_kernels_text}"
  SHLIBS CONTROL symbols triggers DEPENDS "libkorvane-embedded2 ${this_version}")
tessary_debian_package(mesh libtessary-mesh2 libs
  "Whole meshes for the geometry kernels of Tessary"
  "Reads, checks and writes mesh files, and runs the kernels on meshes with every
attribute carried along."
  SHLIBS CONTROL symbols triggers
  DEPENDS "libtessary2 ${this_version}" "libkorvane-embedded2 ${this_version}")
tessary_debian_package(development libtessary-dev libdevel
  "Geometry kernels for polygon meshes - development files"
  "${tessary_kernels_text}
.
This package holds the headers of the kernels, of the mesh library and of the
embedded host, for CMake and pkg-config."
  DEPENDS "libtessary2 ${same_version}" "libtessary-mesh2 ${same_version}"
    "libkorvane-embedded2 ${same_version}" libtbb-dev
  SUGGESTS tessary-doc)
tessary_debian_package(program tessary graphics
  "Geometry processing of mesh files on the command line"
  "Tells what is in a mesh file and what is wrong with it, triangulates, cuts into
quads, samples, converts, and shows meshes in a browser. Reads and writes OBJ,
PLY, STL, OFF, glTF and NPZ, with every attribute kept."
  SHLIBS
  DEPENDS "libtessary-mesh2 ${this_version}" "libtessary2 ${this_version}"
    "libkorvane-embedded2 ${this_version}"
  SUGGESTS tessary-doc)
if(TARGET tessary_python)
  math(EXPR next_minor "${Python_VERSION_MINOR} + 1")
  tessary_debian_package(python python3-tessary python
    "Geometry processing of meshes for NumPy arrays"
    "Takes meshes of NumPy arrays without a copy: files, checks, triangles, quads,
samples, neighbours, pages for a browser."
    SHLIBS
    DEPENDS "python3 (>= ${Python_VERSION_MAJOR}.${Python_VERSION_MINOR})"
      "python3 (<< ${Python_VERSION_MAJOR}.${next_minor})" python3-numpy
      "libtessary-mesh2 ${this_version}" "libtessary2 ${this_version}"
      "libkorvane-embedded2 ${this_version}"
    RECOMMENDS python3-matplotlib
    SUGGESTS python3-dask python3-distributed tessary-doc
    CONTROL postinst prerm)
endif()
tessary_debian_package(documentation tessary-doc doc
  "Geometry kernels for polygon meshes - documentation"
  "Guides by task, the reference of C++ and Python, and examples, to be read in a
browser without a network."
  ALL)

include(CPack)
