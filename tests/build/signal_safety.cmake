# SPDX-License-Identifier: Apache-2.0
# Takes NM, OBJECTS. What dumpFastLog is made of calls nothing but system calls and functions that a signal handler may
# call: the object files name nothing else.
set(allowed
  write read pipe2 close getpid process_vm_readv syscall pthread_setcancelstate  # system calls
  memchr memcpy memset memmove strlen __errno_location __stack_chk_fail _GLOBAL_OFFSET_TABLE_
  __udivdi3 __umoddi3  # division where a register has 32 bits
  # The pieces of the dump themselves, and the pointer to the log.
  "_ZN10foundation7corvane6common7logging12MemoryReader.*" "_ZN10foundation7corvane6common7logging13processLoggerE"
  # Checks of a debug build that end the process, and what cannot happen in noexcept code.
  "_ZSt21__glibcxx_assert_failPKciS0_S0_" "__cxa_.*" "_Unwind_Resume" "__gxx_personality_v0" "_ZSt9terminatev")
string(REPLACE ";" "|" allowed "${allowed}")
set(looked_at 0)
foreach(object IN LISTS OBJECTS)
  if(NOT object MATCHES "/(dumpFastLog|MemoryReader)\\.cpp\\.o$")
    continue()
  endif()
  math(EXPR looked_at "${looked_at} + 1")
  execute_process(COMMAND ${NM} -u ${object} OUTPUT_VARIABLE undefined COMMAND_ERROR_IS_FATAL ANY)
  string(REGEX MATCHALL "[Uvw] [^\n]+" names "${undefined}")
  foreach(name IN LISTS names)
    string(SUBSTRING "${name}" 2 -1 name)
    if(NOT name MATCHES "^(${allowed})$")
      message(SEND_ERROR "${object} calls ${name}")
    endif()
  endforeach()
endforeach()
if(NOT looked_at EQUAL 2)
  message(FATAL_ERROR "the objects were not found")
endif()
