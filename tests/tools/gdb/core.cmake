# SPDX-License-Identifier: Apache-2.0
# gdb prints the event log of the crash example from a core file of another machine. scripts/platforms runs this.
# Takes GDB, VIEW (the script), SYSROOT (the folder with the other machine's files), PROGRAM and CORE.
include(${CMAKE_CURRENT_LIST_DIR}/../../package/expect_log.cmake)
execute_process(COMMAND ${GDB} -q -batch -iex "set sysroot ${SYSROOT}" -ex "source ${VIEW}" -ex "corvane fastlog"
  ${PROGRAM} ${CORE} OUTPUT_VARIABLE text ERROR_VARIABLE errors)
expect_log("a core of another machine" "${text}${errors}")
message(STATUS "${GDB} printed the event log of ${CORE}")
