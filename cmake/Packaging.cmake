# SPDX-License-Identifier: Apache-2.0
# The archives, as the targets package and package_source.
set(CPACK_VERBATIM_VARIABLES ON)
set(CPACK_GENERATOR TGZ)
set(CPACK_SOURCE_GENERATOR TGZ)
set(CPACK_PACKAGE_CHECKSUM SHA256)
set(CPACK_PACKAGE_VENDOR "The Corvane Common maintainers")
set(CPACK_RESOURCE_FILE_LICENSE ${PROJECT_SOURCE_DIR}/LICENSE)
set(CPACK_PACKAGE_FILE_NAME ${PROJECT_NAME}-${PROJECT_VERSION}-${CMAKE_SYSTEM_NAME}-${CMAKE_SYSTEM_PROCESSOR})
set(CPACK_SOURCE_PACKAGE_FILE_NAME ${PROJECT_NAME}-${PROJECT_VERSION})

# gdb's own folder repeats the path of the library, which of an archive nobody knows.
set(CPACK_CORVANE_GDB_FOLDER ${CMAKE_INSTALL_DATADIR}/gdb)
set(CPACK_PRE_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/packaging/archive.cmake)

# Regular expressions on whole paths. There is a tests/build, too.
string(REGEX REPLACE "([][+.*()^$?|\\\\])" "\\\\\\1" source_regex "${PROJECT_SOURCE_DIR}")
string(REGEX REPLACE "([][+.*()^$?|\\\\])" "\\\\\\1" binary_regex "${PROJECT_BINARY_DIR}")
set(CPACK_SOURCE_IGNORE_FILES
  "^${binary_regex}/"
  "^${source_regex}/(build|\\.git|\\.cache)(/|$)"
  "^${source_regex}/(CMakeUserPresets|compile_commands)\\.json$"
  "/__pycache__/")
include(CPack)
