# SPDX-License-Identifier: Apache-2.0
# Packs the sources, and configures what comes out of the archive. Takes CPACK, BUILD, BINARY, CXX.
file(REMOVE_RECURSE ${BINARY})
file(MAKE_DIRECTORY ${BINARY})
execute_process(COMMAND ${CPACK} --config ${BUILD}/CPackSourceConfig.cmake -B ${BINARY}/made
  OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
file(GLOB archive ${BINARY}/made/corvane_common-*.tar.gz)
file(ARCHIVE_EXTRACT INPUT ${archive} DESTINATION ${BINARY}/unpacked)
file(GLOB source ${BINARY}/unpacked/corvane_common-*)
file(REMOVE_RECURSE ${BINARY}/made)

foreach(unwanted IN ITEMS build .git .cache compile_commands.json)
  if(EXISTS ${source}/${unwanted})
    message(SEND_ERROR "${unwanted} is no source")
  endif()
endforeach()
foreach(wanted IN ITEMS LICENSE LICENSES/Apache-2.0.txt README.md scripts/test tests/build/CMakeLists.txt .clang-format)
  if(NOT EXISTS ${source}/${wanted})
    message(SEND_ERROR "${wanted} is missing")
  endif()
endforeach()
execute_process(
  COMMAND ${CMAKE_COMMAND} -S ${source} -B ${BINARY}/configured -G Ninja -DCMAKE_CXX_COMPILER=${CXX} -DBUILD_TESTING=OFF
  OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
