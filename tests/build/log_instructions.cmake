# SPDX-License-Identifier: Apache-2.0
# Takes CXX, OBJDUMP, SOURCE, INCLUDES (a list), WORK (a folder). What recording an event costs on x86-64: compiled with
# optimisation, each `log` has one locked addition, four plain stores, and neither a fence, nor an exchange, nor a call.
set(logging ${SOURCE}/foundation/corvane/common/logging)
list(TRANSFORM INCLUDES PREPEND -I)
file(MAKE_DIRECTORY ${WORK})
foreach(class IN ITEMS FastLog FastLogger)
  set(object ${WORK}/${class}-O2.o)
  execute_process(COMMAND ${CXX} -std=c++20 -O2 -fPIC -DNDEBUG -I${SOURCE} ${INCLUDES} -c ${logging}/${class}.cpp
    -o ${object} COMMAND_ERROR_IS_FATAL ANY)
  execute_process(COMMAND ${OBJDUMP} -d -C --no-show-raw-insn ${object} OUTPUT_VARIABLE text COMMAND_ERROR_IS_FATAL ANY)
  string(REGEX MATCH "<foundation::corvane::common::logging::${class}::log\\([^\n]*>:\n([^\n]+\n)+" body "${text}")
  if(body STREQUAL "")
    message(FATAL_ERROR "${class}::log was not found in ${object}")
  endif()
  # Some disassemblers give the prefix a line of its own.
  string(REGEX REPLACE "lock[ \t\n0-9a-f:]*xadd" "lock xadd" body "${body}")
  string(REGEX MATCHALL "lock xadd[^\n]*" additions "${body}")
  string(REGEX MATCHALL "\tmov[a-z]*[ \t]+%[a-z0-9]+,[^\n]*\\([^\n]*\\)" stores "${body}")
  list(LENGTH additions addition_count)
  list(LENGTH stores store_count)
  # `xchg %ax,%ax` does nothing: it fills the space behind a function.
  string(REGEX MATCHALL "\t[a-z]*fence[^\n]*|\txchg[a-z]*[ \t]+[^\n]*\\([^\n]*|\tcall[^\n]*|cmpxchg[^\n]*" dear "${body}")
  if(NOT addition_count EQUAL 1 OR NOT store_count EQUAL 4 OR dear)
    message(SEND_ERROR "${class}::log with -O2: ${addition_count} locked additions, ${store_count} stores, "
      "and these: ${dear}\n${body}")
  endif()
endforeach()
