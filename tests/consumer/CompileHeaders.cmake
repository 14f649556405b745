# Compiles what a program of somebody else sees, all headers in INCLUDES, with every usual warning as an error,
# by the command CXX in every language standard of STANDARDS.
cmake_minimum_required(VERSION 3.22...3.31)

file(GLOB_RECURSE headers RELATIVE ${INCLUDES} ${INCLUDES}/*.h)
list(LENGTH headers count)
if(count LESS 20)
  message(FATAL_ERROR "only ${count} headers in ${INCLUDES}")
endif()
string(REGEX REPLACE "([^;]+);?" "#include <\\1>\n" text "${headers}")
file(WRITE ${SOURCE} "${text}int main() {}\n")

foreach(standard ${STANDARDS})
  execute_process(COMMAND ${CXX} -std=${standard} -fsyntax-only -Wall -Wextra -Wpedantic -Wshadow -Wconversion
      -Wnon-virtual-dtor -Wold-style-cast -Werror -I${INCLUDES} ${SOURCE}
    COMMAND_ERROR_IS_FATAL ANY)
endforeach()
