# SPDX-License-Identifier: Apache-2.0
# Builds and runs the consumer with nothing but a compiler and pkg-config. Takes CXX, PREFIX, LIBDIR, SOURCE, BINARY.
set(ENV{PKG_CONFIG_PATH} ${LIBDIR}/pkgconfig)
file(MAKE_DIRECTORY ${BINARY})
function(build_and_run package program)
  execute_process(COMMAND pkg-config --cflags --libs ${package}
    OUTPUT_VARIABLE flags OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
  separate_arguments(flags UNIX_COMMAND "${flags}")
  execute_process(
    COMMAND ${CXX} -std=c++20 ${SOURCE}/${program}.cpp -o ${BINARY}/${program} ${flags} -Wl,-rpath,${LIBDIR}
    COMMAND_ERROR_IS_FATAL ANY)
  execute_process(COMMAND ${BINARY}/${program} COMMAND_ERROR_IS_FATAL ANY)
endfunction()
build_and_run(corvane_common main)
build_and_run(corvane_inspect inspector)
