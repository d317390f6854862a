# SPDX-License-Identifier: Apache-2.0
# Gets the event log out of the crash example, as its README says: from a core file that gdb made, from one of the
# kernel's where this machine writes them beside the program, and from a live process; with the library as it is
# installed, and stripped. Takes SOURCE (the example), PREFIX, LIBDIR, BINARY, CXX, GDB, STRIP, PYTHON.
file(REMOVE_RECURSE ${BINARY})
file(MAKE_DIRECTORY ${BINARY})
include(${CMAKE_CURRENT_LIST_DIR}/expect_log.cmake)
set(truncate_core ${CMAKE_CURRENT_LIST_DIR}/truncate_core.py)
set(view "source ${PREFIX}/share/corvane_common/corvane-gdb.py")

function(run)
  cmake_parse_arguments(PARSE_ARGV 0 arg "" "OUTPUT;RESULT" "COMMAND")
  execute_process(COMMAND ${arg_COMMAND} WORKING_DIRECTORY ${BINARY} OUTPUT_VARIABLE output RESULT_VARIABLE result
    ERROR_VARIABLE errors)
  if(NOT arg_RESULT AND NOT result EQUAL 0)
    message(FATAL_ERROR "${arg_COMMAND} failed: ${output}${errors}")
  endif()
  if(arg_OUTPUT)
    set(${arg_OUTPUT} "${output}" PARENT_SCOPE)
  endif()
endfunction()

run(COMMAND ${CMAKE_COMMAND} -S ${SOURCE} -B build -G Ninja -DCMAKE_CXX_COMPILER=${CXX} -DCMAKE_PREFIX_PATH=${PREFIX})
run(COMMAND ${CMAKE_COMMAND} --build build)

# What the program's own handler writes is what gdb reads from the core later.
execute_process(COMMAND build/crash WORKING_DIRECTORY ${BINARY} ERROR_VARIABLE dumped)
expect_log("the handler" "\n${dumped}")

function(look_into_cores which)
  run(COMMAND ${GDB} -q -batch -ex run -ex "generate-core-file build/crash.core" build/crash RESULT any)
  if(NOT EXISTS ${BINARY}/build/crash.core)
    message(FATAL_ERROR "gdb made no core file: may it not run programs here?")
  endif()
  run(COMMAND ${GDB} -q -batch -ex ${view} -ex "corvane fastlog" build/crash build/crash.core OUTPUT text)
  expect_log("gdb's core, ${which}" "${text}")

  run(COMMAND ${GDB} -q -batch -ex ${view} -ex "corvane fastlog --json" build/crash build/crash.core OUTPUT text)
  string(REGEX MATCH "{\"recorded\": .*}" document "${text}")
  string(JSON recorded GET "${document}" recorded)
  string(JSON events LENGTH "${document}" events)
  string(JSON last GET "${document}" events 1023 texts)
  string(REGEX REPLACE "[ \n]" "" last "${last}")
  if(NOT recorded EQUAL 2401 OR NOT events EQUAL 1024 OR NOT last STREQUAL "[\"main\",\"abouttofail\",null,\"now\"]")
    message(SEND_ERROR "as JSON, ${which}: recorded ${recorded}, events ${events}, last ${last}")
  endif()

  # A truncated core gives a part of the log, or one line that says why there is none.
  foreach(percent IN ITEMS 0 50 99)
    run(COMMAND ${PYTHON} ${truncate_core} build/crash.core ${percent} build/truncated.core)
    execute_process(COMMAND ${GDB} -q -batch -ex ${view} -ex "echo \nlooking\n" -ex "corvane fastlog"
      build/crash build/truncated.core WORKING_DIRECTORY ${BINARY} OUTPUT_VARIABLE text ERROR_VARIABLE text)
    if(NOT text MATCHES "\nlooking\n(no descriptor of the log found[^\n]*|the [^\n]*truncated[^\n]*|.*Log size = .*)\n$"
        OR text MATCHES "Python|Traceback")
      message(SEND_ERROR "${percent} % of a core, ${which}: ${text}")
    endif()
  endforeach()
  file(REMOVE ${BINARY}/build/truncated.core)

  # A kernel core only where the kernel writes it where the program runs, and not to a service.
  file(READ /proc/sys/kernel/core_pattern pattern)
  string(STRIP "${pattern}" pattern)
  if(pattern MATCHES "^[^|/]+$")
    run(COMMAND sh -c "ulimit -c unlimited && exec build/crash" RESULT any)
    file(GLOB cores ${BINARY}/core*)
    if(cores)
      list(GET cores 0 core)
      run(COMMAND ${GDB} -q -batch -ex ${view} -ex "corvane fastlog" build/crash ${core} OUTPUT text)
      expect_log("the kernel's core, ${which}" "${text}")
      file(REMOVE ${cores})
      message(STATUS "the kernel's core was looked into, ${which}")
    else()
      message(STATUS "the kernel wrote no core")
    endif()
  else()
    message(STATUS "the kernel hands cores to ${pattern}")
  endif()

  # A live process, which goes on living: it is ended by the shell.
  file(WRITE ${BINARY}/live.sh "
    build/crash wait > id & process=$!
    while ! [ -s id ]; do :; done
    '${GDB}' -q -batch -p \"$(cat id)\" -ex '${view}' -ex 'corvane fastlog'
    kill -0 $process && kill -9 $process
    rm id
  ")
  run(COMMAND sh live.sh OUTPUT text)
  expect_log("a live process, ${which}" "${text}")
endfunction()

look_into_cores("as installed")

# Stripped of everything that a program does not need to run.
file(MAKE_DIRECTORY ${BINARY}/stripped)
file(GLOB libraries ${LIBDIR}/libcorvane_common.so.1 ${LIBDIR}/libfoundation.so.1)
foreach(library IN LISTS libraries)
  get_filename_component(name ${library} NAME)
  run(COMMAND ${STRIP} --strip-all -o stripped/${name} ${library})
endforeach()
set(ENV{LD_LIBRARY_PATH} ${BINARY}/stripped)
run(COMMAND ${STRIP} --strip-all build/crash)
look_into_cores("stripped")
unset(ENV{LD_LIBRARY_PATH})

# Where there is nothing to print, gdb says why.
execute_process(COMMAND ${GDB} -q -batch -ex ${view} -ex "corvane fastlog" build/crash WORKING_DIRECTORY ${BINARY}
  OUTPUT_VARIABLE text ERROR_VARIABLE text)
if(NOT text MATCHES "no descriptor of the log found")
  message(SEND_ERROR "without a process: ${text}")
endif()
execute_process(COMMAND ${GDB} -q -batch -ex ${view} -ex "catch load libcorvane_common" -ex run -ex "corvane fastlog"
  build/crash WORKING_DIRECTORY ${BINARY} OUTPUT_VARIABLE text ERROR_VARIABLE text)
if(NOT text MATCHES "the descriptor of the log is damaged, or not relocated yet|the process has no log")
  message(SEND_ERROR "before there is a log: ${text}")
endif()
