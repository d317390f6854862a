# SPDX-License-Identifier: Apache-2.0
# Packs the archive, unpacks it, moves it, and uses it there: nothing in it may know where it was made.
# Takes CPACK, BUILD, SOURCE, BINARY, CXX.
file(REMOVE_RECURSE ${BINARY})
file(MAKE_DIRECTORY ${BINARY})
execute_process(COMMAND ${CPACK} --config ${BUILD}/CPackConfig.cmake -B ${BINARY}/made
  OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
file(GLOB archive ${BINARY}/made/corvane_common-*.tar.gz)
file(ARCHIVE_EXTRACT INPUT ${archive} DESTINATION ${BINARY}/unpacked)
file(GLOB unpacked ${BINARY}/unpacked/*)
set(prefix "${BINARY}/some where else")
file(RENAME ${unpacked} ${prefix})
file(REMOVE_RECURSE ${BINARY}/made ${BINARY}/unpacked)

file(GLOB_RECURSE files ${prefix}/*)
list(LENGTH files count)
if(count LESS 60)
  message(SEND_ERROR "the archive has ${count} files and no more")
endif()
foreach(file IN LISTS files)
  if(file MATCHES "/share/gdb/")
    message(SEND_ERROR "gdb will never look for ${file}")
  endif()
  if(file MATCHES "\\.(hpp|cmake|pc|py|json)$")
    file(READ ${file} text)
    foreach(place IN ITEMS ${BUILD} ${SOURCE} ${BINARY})
      string(FIND "${text}" "${place}" found)
      if(NOT found EQUAL -1)
        message(SEND_ERROR "${file} knows of ${place}")
      endif()
    endforeach()
  endif()
endforeach()

unset(ENV{LD_LIBRARY_PATH})
execute_process(COMMAND ${prefix}/bin/corvane-negotiate --version COMMAND_ERROR_IS_FATAL ANY)

execute_process(
  COMMAND ${CMAKE_COMMAND} -S ${SOURCE}/tests/package/find_package -B ${BINARY}/find_package -G Ninja
    -DCMAKE_CXX_COMPILER=${CXX} -DCMAKE_PREFIX_PATH=${prefix}
  OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
execute_process(COMMAND ${CMAKE_COMMAND} --build ${BINARY}/find_package --target consumer
  OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
execute_process(COMMAND ${BINARY}/find_package/consumer COMMAND_ERROR_IS_FATAL ANY)

find_program(pkg_config pkg-config REQUIRED)
file(GLOB pkgconfig ${prefix}/lib*/pkgconfig ${prefix}/lib/*/pkgconfig)
set(ENV{PKG_CONFIG_PATH} ${pkgconfig})
execute_process(COMMAND ${pkg_config} --cflags --libs corvane_common
  OUTPUT_VARIABLE flags OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
separate_arguments(flags UNIX_COMMAND "${flags}")
cmake_path(GET pkgconfig PARENT_PATH libdir)
execute_process(
  COMMAND ${CXX} -std=c++20 ${SOURCE}/tests/package/main.cpp -o ${BINARY}/main ${flags} "-Wl,-rpath,${libdir}"
  COMMAND_ERROR_IS_FATAL ANY)
execute_process(COMMAND ${BINARY}/main COMMAND_ERROR_IS_FATAL ANY)
