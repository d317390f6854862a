# SPDX-License-Identifier: Apache-2.0
# gdb prints the event log of a program for another processor, from the program's file: nothing has to run it.
# Takes GDB, VIEW (the script), CXX and FLAGS (the compiler for that processor), BINARY (a folder for the programs).
file(MAKE_DIRECTORY ${BINARY})
separate_arguments(flags UNIX_COMMAND "${FLAGS}")
list(APPEND flags -std=c++20 -ffreestanding -fno-pie -nostdlib -static)

# build(PROGRAM DEFINITION...)
function(build program)
  list(TRANSFORM ARGN PREPEND -D)
  execute_process(COMMAND ${CXX} ${flags} ${ARGN} ${CMAKE_CURRENT_LIST_DIR}/freestanding.cpp -o ${BINARY}/${program}
    RESULT_VARIABLE result ERROR_VARIABLE errors)
  if(NOT result EQUAL 0)
    message(FATAL_ERROR "${CXX} ${FLAGS} builds no such program: ${errors}")
  endif()
endfunction()

# look(PROGRAM COMMAND...): leaves in `text` what gdb prints.
function(look program)
  list(TRANSFORM ARGN PREPEND "-ex;")
  execute_process(COMMAND ${GDB} -q -batch -ex "source ${VIEW}" ${ARGN} ${BINARY}/${program}
    OUTPUT_VARIABLE text ERROR_VARIABLE text)
  set(text "${text}" PARENT_SCOPE)
endfunction()

function(expect what expected)
  if(NOT text STREQUAL expected)
    message(SEND_ERROR "${what}: gdb printed\n${text}\ninstead of\n${expected}")
  endif()
endfunction()

build(small)
set(lines
  "Log size = 3\n"
  "   0  (3): worker    <null>       receive         1002   x  \n"
  "   1  (1): émetteur 8-bit: \\xe9                  <unreadable> <null> \n"
  "   2  (2): main      <null>       about to fail   now    y  \n")
list(JOIN lines "" lines)
look(small "corvane fastlog")
expect("the lines" "${lines}")
look(small "set language ada" "corvane fastlog" "show language")
expect("a program in another language" "${lines}The current source language is \"ada\".\n")
look(small "corvane fastlog --json")
string(CONCAT document "{\"recorded\": 4000003, \"events\": ["
  "{\"slot\": 3, \"texts\": [\"worker\", null, \"receive\", \"1002\", \"x\"]}, "
  "{\"slot\": 1, \"texts\": [\"émetteur\", \"8-bit: \\\\xe9\", \"\", {\"unreadable\": true}, null]}, "
  "{\"slot\": 2, \"texts\": [\"main\", null, \"about to fail\", \"now\", \"y\"]}]}\n")
expect("as JSON" "${document}")

# Numbers of events and of slots have no limit of 16 bits, and the count has none of 32.
build(large RECORDS=70000)
look(large "corvane fastlog")
string(REGEX REPLACE "^(Log[^\n]*\n[^\n]*\n).*\n([^\n]*\n[^\n]*\n)$" "\\1\\2" text "${text}")
string(CONCAT ends
  "Log size = 69999\n"
  "   0  (3): worker    <null>       receive         1002   x  \n"
  "69997  (1): émetteur 8-bit: \\xe9                  <unreadable> <null> \n"
  "69998  (2): main      <null>       about to fail   now    y  \n")
expect("a large ring" "${ends}")

# One gdb looks at all damaged programs.
set(names)
set(commands)
set(expected)
foreach(damage IN ITEMS "MAGIC=\"corvane.fastlag\"" POINTER_SIZE=2 RECORD_COUNT=0 RECORD_COUNT=0x7FFFFFFF RECORD_SIZE=1
    TEXT_COUNT=0 TEXT_COUNT=0x7FFFFFFF WRITTEN_TEXT=5 LOGGER=nullptr VERSION=3)
  string(MAKE_C_IDENTIFIER "${damage}" name)
  build(${name} "${damage}")
  list(APPEND commands "echo ${name}:" "file ${BINARY}/${name}" "corvane fastlog")
  if(damage STREQUAL "VERSION=3")
    set(message "the log is of version 3, and this script knows 2")
  else()
    set(message "the descriptor of the log is damaged, or not relocated yet: has the process started?")
  endif()
  string(APPEND expected "${name}:${message}\n")
endforeach()
look(small ${commands})
expect("damaged descriptors" "${expected}")
