# SPDX-License-Identifier: Apache-2.0
# What every library of this project has in common. Warnings are not here but in CMakePresets.json: a user of the
# libraries must never inherit them.

# corvane_add_library(<target> <alias>) declares the library <target>, known as <alias> here and when installed.
# Shared unless the user says -DBUILD_SHARED_LIBS=OFF.
function(corvane_add_library target alias)
  if(DEFINED BUILD_SHARED_LIBS AND NOT BUILD_SHARED_LIBS)
    add_library(${target} STATIC)
  else()
    add_library(${target} SHARED)
  endif()
  add_library(${alias} ALIAS ${target})
  string(REGEX REPLACE "^.*::" "" export_name ${alias})
  target_compile_features(${target} PUBLIC cxx_std_20)
  set_target_properties(${target} PROPERTIES
    EXPORT_NAME ${export_name}
    VERSION ${PROJECT_VERSION}
    SOVERSION ${PROJECT_VERSION_MAJOR}
    CXX_EXTENSIONS OFF
    CXX_VISIBILITY_PRESET hidden
    VISIBILITY_INLINES_HIDDEN ON
    POSITION_INDEPENDENT_CODE ON
    INSTALL_RPATH $ORIGIN  # the libraries find each other wherever they are installed together
    VERIFY_INTERFACE_HEADER_SETS ${PROJECT_IS_TOP_LEVEL})
  get_target_property(type ${target} TYPE)
  if(type STREQUAL "SHARED_LIBRARY")
    target_link_options(${target} PRIVATE LINKER:--version-script=${PROJECT_SOURCE_DIR}/cmake/exports.map)
    set_target_properties(${target} PROPERTIES LINK_DEPENDS ${PROJECT_SOURCE_DIR}/cmake/exports.map)
  endif()
endfunction()
