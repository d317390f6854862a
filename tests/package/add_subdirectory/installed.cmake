# SPDX-License-Identifier: Apache-2.0
# Installs the consumer and looks at what is there. Without our install rules, nothing but the consumer's own PROGRAM;
# with them, the consumer's library and ours, which the project SOURCE finds, builds against and runs. Takes BINARY
# (the consumer's build), WITH_CORVANE, PROGRAM, SOURCE, CXX, BUILD_TYPE.
set(prefix ${BINARY}/prefix)
file(REMOVE_RECURSE ${prefix} ${BINARY}/user)
execute_process(COMMAND ${CMAKE_COMMAND} --install ${BINARY} --prefix ${prefix} COMMAND_ERROR_IS_FATAL ANY)

if(NOT WITH_CORVANE)
  file(GLOB_RECURSE files RELATIVE ${prefix} ${prefix}/*)
  if(NOT files STREQUAL PROGRAM)
    message(FATAL_ERROR "installed are ${files}; wanted is nothing but ${PROGRAM}")
  endif()
  return()
endif()

execute_process(
  COMMAND ${CMAKE_CTEST_COMMAND} --build-and-test ${SOURCE} ${BINARY}/user
    --build-generator Ninja
    --build-options -DCMAKE_CXX_COMPILER=${CXX} -DCMAKE_BUILD_TYPE=${BUILD_TYPE} -DCMAKE_PREFIX_PATH=${prefix}
    --test-command ${CMAKE_CTEST_COMMAND} --output-on-failure --no-tests=error
  COMMAND_ERROR_IS_FATAL ANY)
