# SPDX-License-Identifier: Apache-2.0
# Nobody has run this port here, because we have no vcpkg.
#
# It builds the tree that it lies in. In a registry of ports, vcpkg_from_git replaces the next line.
cmake_path(SET SOURCE_PATH NORMALIZE "${CURRENT_PORT_DIR}/../../../..")

vcpkg_cmake_configure(SOURCE_PATH "${SOURCE_PATH}" OPTIONS -DBUILD_TESTING=OFF)
vcpkg_cmake_install()
vcpkg_cmake_config_fixup(PACKAGE_NAME corvane_common CONFIG_PATH lib/cmake/corvane_common)
vcpkg_fixup_pkgconfig()
vcpkg_copy_tools(TOOL_NAMES corvane-negotiate AUTO_CLEAN)

# One set of headers and data is enough, and gdb's folder names the folder of the build.
file(REMOVE_RECURSE
  "${CURRENT_PACKAGES_DIR}/debug/include"
  "${CURRENT_PACKAGES_DIR}/debug/share"
  "${CURRENT_PACKAGES_DIR}/share/gdb")

file(INSTALL "${CMAKE_CURRENT_LIST_DIR}/usage" DESTINATION "${CURRENT_PACKAGES_DIR}/share/${PORT}")
vcpkg_install_copyright(FILE_LIST "${SOURCE_PATH}/LICENSE")
