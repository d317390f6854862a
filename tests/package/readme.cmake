# SPDX-License-Identifier: Apache-2.0
# Takes the first program out of the README, builds it as the README says, and compares what it prints.
# Takes CXX, README, BINARY, LIBDIR.
file(READ ${README} readme)

# A fenced block is found by its first line; brackets and semicolons in it must survive CMake's lists, so no regex.
function(fenced_block opening result)
  string(FIND "${readme}" "${opening}" begin)
  if(begin EQUAL -1)
    message(FATAL_ERROR "the README has no block that begins with ${opening}")
  endif()
  string(LENGTH "${opening}" length)
  math(EXPR begin "${begin} + ${length}")
  string(SUBSTRING "${readme}" ${begin} -1 rest)
  string(FIND "${rest}" "\n```" end)
  math(EXPR end "${end} + 1")
  string(SUBSTRING "${rest}" 0 ${end} block)
  set(${result} "${block}" PARENT_SCOPE)
endfunction()

fenced_block("```cpp\n" program)
fenced_block("It prints\n\n```\n" expected)

file(WRITE ${BINARY}/first.cpp "${program}")
set(ENV{PKG_CONFIG_PATH} ${LIBDIR}/pkgconfig)
execute_process(COMMAND pkg-config --cflags --libs corvane_common
  OUTPUT_VARIABLE flags OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
separate_arguments(flags UNIX_COMMAND "${flags}")
execute_process(
  COMMAND ${CXX} -std=c++20 -Wall -Wextra -Werror first.cpp -o first ${flags} -Wl,-rpath,${LIBDIR}
  WORKING_DIRECTORY ${BINARY} COMMAND_ERROR_IS_FATAL ANY)
execute_process(COMMAND ./first WORKING_DIRECTORY ${BINARY} OUTPUT_VARIABLE printed COMMAND_ERROR_IS_FATAL ANY)
if(NOT printed STREQUAL expected)
  message(FATAL_ERROR "the program prints\n${printed}but the README says\n${expected}")
endif()
