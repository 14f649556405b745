# An overlay port that builds the checkout which it lies in:
#   vcpkg install tessary[mesh] --overlay-ports=CHECKOUT/packaging/vcpkg
# The feature "mesh" needs three.min.js of three.js r111, which vcpkg has not: the environment variable
# TESSARY_THREE_JS names it.
get_filename_component(SOURCE_PATH "${CMAKE_CURRENT_LIST_DIR}/../.." ABSOLUTE)

vcpkg_check_linkage(ONLY_DYNAMIC_LIBRARY)
vcpkg_check_features(OUT_FEATURE_OPTIONS FEATURE_OPTIONS
  FEATURES
    mesh TESSARY_BUILD_MESH
    program TESSARY_BUILD_PROGRAM)
if("mesh" IN_LIST FEATURES)
  if("$ENV{TESSARY_THREE_JS}" STREQUAL "")
    message(FATAL_ERROR "tessary[mesh] needs TESSARY_THREE_JS, the path of three.min.js of three.js r111")
  endif()
  list(APPEND FEATURE_OPTIONS "-DTESSARY_THREE_JS=$ENV{TESSARY_THREE_JS}")
  vcpkg_find_acquire_program(PKGCONFIG)
  list(APPEND FEATURE_OPTIONS "-DPKG_CONFIG_EXECUTABLE=${PKGCONFIG}")
endif()

vcpkg_cmake_configure(
  SOURCE_PATH "${SOURCE_PATH}"
  OPTIONS
    ${FEATURE_OPTIONS}
    -DTESSARY_BUILD_PYTHON=OFF
    -DTESSARY_BUILD_TESTS=OFF
    -DTESSARY_WITH_ASSIMP=OFF)
vcpkg_cmake_install()
vcpkg_cmake_config_fixup(PACKAGE_NAME Tessary CONFIG_PATH lib/cmake/Tessary DO_NOT_DELETE_PARENT_CONFIG_PATH)
vcpkg_cmake_config_fixup(PACKAGE_NAME KorvaneEmbedded CONFIG_PATH lib/cmake/KorvaneEmbedded)
vcpkg_fixup_pkgconfig()
if("program" IN_LIST FEATURES)
  vcpkg_copy_tools(TOOL_NAMES tessary AUTO_CLEAN)
endif()
file(REMOVE_RECURSE "${CURRENT_PACKAGES_DIR}/debug/include" "${CURRENT_PACKAGES_DIR}/debug/share")
file(INSTALL "${CMAKE_CURRENT_LIST_DIR}/usage" DESTINATION "${CURRENT_PACKAGES_DIR}/share/${PORT}")
vcpkg_install_copyright(FILE_LIST "${SOURCE_PATH}/packaging/debian/copyright")
