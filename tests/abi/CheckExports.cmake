cmake_minimum_required(VERSION 3.22...3.31)
# Compares what LIBRARY exports with the sorted list EXPECTED, and looks at its name.
execute_process(COMMAND ${NM} -D -C --defined-only ${LIBRARY}
  OUTPUT_VARIABLE symbols COMMAND_ERROR_IS_FATAL ANY)
string(REGEX REPLACE "(^|\n)[0-9a-f]* *[A-Za-z] " "\\1" names "${symbols}")
file(STRINGS ${EXPECTED} expected)
# The same list for every standard library.
string(REPLACE "std::__cxx11::basic_string<char, std::char_traits<char>, std::allocator<char> >"
  "std::string" names "${names}")
string(REPLACE "[abi:cxx11]" "" names "${names}")
string(STRIP "${names}" names)
string(REPLACE "\n" ";" names "${names}")
list(SORT names)
list(REMOVE_DUPLICATES names)  # a constructor has two names that read the same

foreach(name ${names})
  if(NOT name IN_LIST expected)
    message(SEND_ERROR "exported, but not listed in ${EXPECTED}: ${name}")
  endif()
endforeach()
foreach(name ${expected})
  if(NOT name IN_LIST names)
    message(SEND_ERROR "listed in ${EXPECTED}, but not exported: ${name}")
  endif()
endforeach()
if(NOT names STREQUAL expected)
  message(SEND_ERROR "${EXPECTED} is not sorted, or a name occurs twice")
endif()

execute_process(COMMAND ${READELF} -d ${LIBRARY}
  OUTPUT_VARIABLE dynamic COMMAND_ERROR_IS_FATAL ANY)
string(FIND "${dynamic}" "[${SONAME}]" named)
if(named EQUAL -1)
  message(SEND_ERROR "${LIBRARY} does not call itself ${SONAME}")
endif()
