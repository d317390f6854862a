# SPDX-License-Identifier: Apache-2.0
# Takes CXX, SOURCE. What a user includes must stay light: no heavy header reachable, and few lines in all.
set(umbrella ${SOURCE}/foundation/corvane/common.hpp)

# Line markers, for a list of dependencies may name headers whose existence was only asked for.
execute_process(COMMAND ${CXX} -std=c++20 -E -x c++ -I ${SOURCE} ${umbrella}
  OUTPUT_VARIABLE text COMMAND_ERROR_IS_FATAL ANY)
string(REGEX MATCHALL "\n# [0-9]+ \"[^\"]+\"" headers "${text}")
if(NOT headers MATCHES "boost/uuid/uuid.hpp")
  message(FATAL_ERROR "the compiler did not list the headers")
endif()
foreach(heavy IN ITEMS boost/log/ boost/json boost/random/ /tbb/ foundation/json foundation/log)
  if(headers MATCHES "${heavy}")
    message(SEND_ERROR "${heavy} is reachable from foundation/corvane/common.hpp")
  endif()
endforeach()

# The standard and Boost headers that the signatures name are 60,500 lines of GCC 12; with another compiler the figure
# means nothing.
execute_process(COMMAND ${CXX} -dM -E -x c++ /dev/null OUTPUT_VARIABLE macros COMMAND_ERROR_IS_FATAL ANY)
if(macros MATCHES "define __GNUC__ 12\n" AND NOT macros MATCHES "__clang__")
  execute_process(COMMAND ${CXX} -std=c++20 -E -P -x c++ -I ${SOURCE} ${umbrella}
    OUTPUT_VARIABLE text COMMAND_ERROR_IS_FATAL ANY)
  string(REGEX REPLACE "[^\n]" "" line_ends "${text}")
  string(LENGTH "${line_ends}" lines)
  message(STATUS "foundation/corvane/common.hpp: ${lines} lines after preprocessing")
  if(lines GREATER 63000)
    message(SEND_ERROR "more than 63000")
  endif()
endif()
