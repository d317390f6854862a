# SPDX-License-Identifier: Apache-2.0
# Builds and runs the consumer with nothing but a compiler and pkg-config. Takes CXX, PREFIX, LIBDIR, SOURCE, BINARY.
set(ENV{PKG_CONFIG_PATH} ${LIBDIR}/pkgconfig)
execute_process(COMMAND pkg-config --cflags --libs corvane_common
  OUTPUT_VARIABLE flags OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
separate_arguments(flags UNIX_COMMAND "${flags}")
file(MAKE_DIRECTORY ${BINARY})
execute_process(
  COMMAND ${CXX} -std=c++20 ${SOURCE}/main.cpp -o ${BINARY}/consumer ${flags} -Wl,-rpath,${LIBDIR}
  COMMAND_ERROR_IS_FATAL ANY)
execute_process(COMMAND ${BINARY}/consumer COMMAND_ERROR_IS_FATAL ANY)
