# Runs PLAIN and OTHER, which must print the same.
foreach(program PLAIN OTHER)
  execute_process(COMMAND ${${program}} OUTPUT_VARIABLE ${program}_OUTPUT COMMAND_ERROR_IS_FATAL ANY)
endforeach()
if(PLAIN_OUTPUT STREQUAL "" OR NOT PLAIN_OUTPUT STREQUAL OTHER_OUTPUT)
  message(FATAL_ERROR "${PLAIN} printed\n${PLAIN_OUTPUT}\n${OTHER} printed\n${OTHER_OUTPUT}")
endif()
