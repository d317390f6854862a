# SPDX-License-Identifier: Apache-2.0
# The package: find_package(corvane_common), and pkg-config for whoever does not use CMake. Relocatable.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/corvane_common)

# An export for each component: the namespaces of their targets differ, and not everyone installs all of them.
install(TARGETS foundation
  EXPORT foundationTargets
  FILE_SET HEADERS DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(EXPORT foundationTargets NAMESPACE foundation:: DESTINATION ${package_dir})
install(TARGETS corvane_common
  EXPORT corvane_commonTargets
  FILE_SET HEADERS DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}
  FILE_SET opt_in DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(EXPORT corvane_commonTargets NAMESPACE corvane:: DESTINATION ${package_dir})
foreach(component IN ITEMS inspect testing)
  install(TARGETS corvane_${component}
    EXPORT corvane_${component}Targets
    FILE_SET HEADERS DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
  install(EXPORT corvane_${component}Targets NAMESPACE corvane:: DESTINATION ${package_dir})
endforeach()

get_target_property(library_type corvane_common TYPE)
configure_package_config_file(cmake/corvane_commonConfig.cmake.in corvane_commonConfig.cmake
  INSTALL_DESTINATION ${package_dir}
  NO_SET_AND_CHECK_MACRO)
write_basic_package_version_file(corvane_commonConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES
    ${CMAKE_CURRENT_BINARY_DIR}/corvane_commonConfig.cmake
    ${CMAKE_CURRENT_BINARY_DIR}/corvane_commonConfigVersion.cmake
  DESTINATION ${package_dir})

# What CMake's users get from Boost::log, pkg-config's get from here.
get_target_property(boost_log_type Boost::log TYPE)
if(boost_log_type STREQUAL "SHARED_LIBRARY")
  set(boost_log_cflags "-DBOOST_LOG_DYN_LINK")
endif()
cmake_path(RELATIVE_PATH CMAKE_INSTALL_PREFIX
  BASE_DIRECTORY ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig
  OUTPUT_VARIABLE pkgconfig_to_prefix)
foreach(name IN ITEMS foundation corvane_common corvane_inspect corvane_testing)
  configure_file(cmake/${name}.pc.in ${name}.pc @ONLY)
  install(FILES ${CMAKE_CURRENT_BINARY_DIR}/${name}.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
endforeach()
