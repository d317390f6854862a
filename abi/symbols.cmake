# SPDX-License-Identifier: Apache-2.0
# Takes NM, LIBRARY, LIST, and RECORD to write the list anew. The library exports what its list says, name by name.
# Weak functions are not listed: they are instances of inline functions and templates that a compiler did not inline,
# and nobody links against them.
execute_process(COMMAND ${NM} -D -C --defined-only ${LIBRARY} OUTPUT_VARIABLE text COMMAND_ERROR_IS_FATAL ANY)
string(REPLACE ";" "," text "${text}")
string(REGEX REPLACE "\n$" "" text "${text}")
string(REPLACE "\n" ";" lines "${text}")
set(exported "")
foreach(line IN LISTS lines)
  if(line MATCHES "^[0-9a-f]+ [TDBRV] (.*)$")
    list(APPEND exported "${CMAKE_MATCH_1}")
  endif()
endforeach()
list(SORT exported)
list(REMOVE_DUPLICATES exported)  # constructors and destructors have several symbols of one name

if(RECORD)
  list(JOIN exported "\n" text)
  file(WRITE ${LIST} "# SPDX-License-Identifier: Apache-2.0\n${text}\n")
  return()
endif()

file(STRINGS ${LIST} listed REGEX "^[^#]")
set(missing ${listed})
list(REMOVE_ITEM missing ${exported})
set(added ${exported})
list(REMOVE_ITEM added ${listed})
foreach(name IN LISTS missing)
  message(SEND_ERROR "no longer exported: ${name}")
endforeach()
foreach(name IN LISTS added)
  message(SEND_ERROR "exported, and not listed: ${name}")
endforeach()
if(missing OR added)
  message(FATAL_ERROR "${LIBRARY} differs from ${LIST}; docs/compatibility.md says what to do")
endif()
