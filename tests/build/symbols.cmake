# SPDX-License-Identifier: Apache-2.0
# Takes NM, LIBRARY. The library exports what it means to and nothing else, starts no thread, asks for no environment
# variable.
execute_process(COMMAND ${NM} -D --defined-only ${LIBRARY} OUTPUT_VARIABLE defined COMMAND_ERROR_IS_FATAL ANY)
string(REPLACE "\n" ";" defined "${defined}")
set(count 0)
foreach(line IN LISTS defined)
  if(line MATCHES "^[0-9a-f]+ [A-Za-z] ([^@]+)")
    math(EXPR count "${count} + 1")
    # Functions, data and members of namespace foundation, its type information and virtual tables, hashes of its types.
    if(NOT CMAKE_MATCH_1 MATCHES "^(_ZN10foundation|_ZNK10foundation|_ZT[ISV]N10foundation|_ZNKSt4hashIN10foundation|corvane_)")
      message(SEND_ERROR "exported by accident: ${CMAKE_MATCH_1}")
    endif()
    if(CMAKE_MATCH_1 MATCHES "6detail" AND NOT CMAKE_MATCH_1 MATCHES
        "6detail(20demangle_typeid_name|12parseVersion|12toJsonObject)")
      message(SEND_ERROR "a detail is exported: ${CMAKE_MATCH_1}")
    endif()
  endif()
endforeach()
if(count LESS 2)
  message(SEND_ERROR "hardly any exported symbol was found: ${count}")
endif()

execute_process(COMMAND ${NM} -D --undefined-only ${LIBRARY} OUTPUT_VARIABLE undefined COMMAND_ERROR_IS_FATAL ANY)
if(NOT undefined MATCHES "_ZSt|memcpy")
  message(SEND_ERROR "no undefined symbol was found: the test does not see what it looks for")
endif()

# A static of a function that is initialised dynamically has a guard, which a fork can leave locked.
execute_process(COMMAND ${NM} -C ${LIBRARY} OUTPUT_VARIABLE symbols COMMAND_ERROR_IS_FATAL ANY)
string(REGEX MATCHALL "guard variable for [^\n]+" guards "${symbols}")
foreach(guard IN LISTS guards)
  # uuid.cpp initialises it when the library is loaded.
  if(NOT guard MATCHES "boost::uuids::string_generator")
    message(SEND_ERROR "${LIBRARY}: ${guard}")
  endif()
endforeach()

foreach(name IN ITEMS getenv secure_getenv environ setenv pthread_create _M_start_thread thrd_create clone)
  if(undefined MATCHES "[ _]${name}[@\n]|${name}E")
    message(SEND_ERROR "${LIBRARY} uses ${name}")
  endif()
endforeach()
