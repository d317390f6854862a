# SPDX-License-Identifier: Apache-2.0
# Takes GDB, VIEW (the script), PROGRAM. Stops in the program and compares what gdb prints of each variable.
set(names id uuidOf version noVersion handling status noStatus domain request config resolution *registry *protocols *log
  value nothing)
set(commands -ex "source ${VIEW}" -ex "break stopHere" -ex run -ex up)
foreach(name IN LISTS names)
  list(APPEND commands -ex "printf \"${name} is \"" -ex "output ${name}" -ex "echo \\n")
endforeach()
set(tables foundation::corvane::common::serialization::Registry::Tables)
# In quotes the name is found in a library without debug information, too.
execute_process(COMMAND ${GDB} -q -batch ${commands}
  -ex "call (void)'foundation::corvane::common::logging::dumpGlobalFastLog()'()"
  -ex "set $copiedUuid = uuidOf" -ex "print $copiedUuid" -ex "set $copiedValue = value" -ex "print $copiedValue"
  -ex "set $copiedRegistry = *registry" -ex "print $copiedRegistry"
  -ex "ptype ${tables}" ${PROGRAM}
  OUTPUT_VARIABLE text ERROR_VARIABLE text)

function(expect)
  foreach(line IN LISTS ARGN)
    string(FIND "${text}" "${line}" position)
    if(position EQUAL -1)
      message(SEND_ERROR "gdb did not print: ${line}")
      set(failed TRUE PARENT_SCOPE)
    endif()
  endforeach()
endfunction()

expect(
  "id is 0xff 0x10\n"
  "uuidOf is 0f1e2d3c-4b5a-4978-8695-a4b3c2d1e0ff\n"
  "version is 2.1\n"
  "noVersion is undefinedVersion\n"
  "handling is preferred\n"
  "status is unsupported_warning\n"
  "noStatus is 77, which has no name\n"
  "domain is StreamDomain\n"
  "request is request = {name = \"compression\", value = \"lz4\", handling = required}\n"
  "config is config = {name = \"Telemetry\", version = 2.1, features = "
  "resolution is resolution = {name = \"Telemetry\", version = 2.0, resolutions = "
  "message = \"lz4\", status = success}"
  "*log is log of 1 events, 1 recorded\n"
  "value is JSON object = {object = "
  "JSON array = {array = std::vector of length 5, capacity 5 = {1, 2.5, \"text\", null, true}}"
  "nothing is null\n"
  # A copy in gdb has no address in the program.
  "$1 = 0f1e2d3c-4b5a-4978-8695-a4b3c2d1e0ff\n"
  "$2 = JSON object"
  "$3 = Registry of \"client\", closed"
  # A debugger may also call the library's own dump, by the name that nobody else uses.
  "Global FastLog:\nLog size = 0\n\n")
# What the sources of the library define is known where these were built with debug information.
if(text MATCHES "Tables {[^}]*serializersByTag")
  expect(
    "*registry is Registry of \"client\", closed = {protocols = std::vector of length 1, capacity 10 = {\"Telemetry\"}, "
    "installations = std::unordered_map with 1 element = {[\"Telemetry\"] = {version = 2.0, configuration = "
    "serializers by tag = "
    "*protocols is ProtocolRegistry of \"server\" \"2.1\" = {protocols = ")
else()
  expect(
    "*registry is Registry of \"client\", closed; what it has, only the library's debug information tells\n"
    "*protocols is ProtocolRegistry; what it has, only the library's debug information tells\n")
endif()
if(text MATCHES "Python Exception")
  message(SEND_ERROR "a printer failed")
  set(failed TRUE)
endif()
if(failed)
  message(STATUS "${text}")
endif()
