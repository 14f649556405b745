cmake_minimum_required(VERSION 3.22...3.31)
# Installs BUILD into FIRST and moves that to PREFIX: nothing installed may remember where it was.
file(REMOVE_RECURSE ${FIRST} ${PREFIX})
execute_process(COMMAND ${CMAKE_COMMAND} --install ${BUILD} --config ${CONFIG} --prefix ${FIRST}
  OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
file(RENAME ${FIRST} ${PREFIX})
