# SPDX-License-Identifier: Apache-2.0
# gdb finds its view by the absolute path of the library, whatever form the prefix has. Takes PROJECT (the build), LIBDIR,
# DATADIR, VERSION, BINARY.
set(library libcorvane_common.so.${VERSION})

# expect_view(<prefix as the user writes it> <root that stands for /, or empty> <absolute prefix>)
function(expect_view prefix root absolute)
  set(ENV{DESTDIR} "${root}")
  file(REMOVE_RECURSE ${BINARY})
  file(MAKE_DIRECTORY ${BINARY}/here)
  execute_process(COMMAND ${CMAKE_COMMAND} --install ${PROJECT} --prefix ${prefix} WORKING_DIRECTORY ${BINARY}/here
    OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
  file(GLOB_RECURSE libraries ${BINARY}/${library})
  set(installed ${root}${absolute}/${LIBDIR}/${library})
  if(NOT libraries STREQUAL installed)
    message(SEND_ERROR "prefix ${prefix}: the library is ${libraries}, not ${installed}")
  endif()
  file(GLOB_RECURSE views ${BINARY}/${library}-gdb.py)
  set(wanted ${root}${absolute}/${DATADIR}/gdb/auto-load${absolute}/${LIBDIR}/${library}-gdb.py)
  if(NOT views STREQUAL wanted)
    message(SEND_ERROR "prefix ${prefix}: gdb's view is ${views}, not ${wanted}")
  endif()
endfunction()

expect_view(${BINARY}/absolute "" ${BINARY}/absolute)
expect_view(relative "" ${BINARY}/here/relative)
expect_view(./relative/deep/ "" ${BINARY}/here/relative/deep)
expect_view(../beside "" ${BINARY}/beside)
expect_view(/opt/absolute ${BINARY}/root /opt/absolute)
expect_view(relative ${BINARY}/root ${BINARY}/here/relative)
