# quillon_discover_suites(PROGRAM): ctest runs every test suite of a GoogleTest program in a process of
# its own, under the suite's name. A process for every test would take longer to start, under the
# sanitizers, than most tests take. ctest asks the program for its suites, so writing a TEST registers it.
function(quillon_discover_suites program)
  set(script ${CMAKE_CURRENT_BINARY_DIR}/${program}.suites.cmake)
  file(GENERATE OUTPUT ${script} CONTENT
    "set(program ${program})\nset(file \"$<TARGET_FILE:${program}>\")\ninclude(\"${CMAKE_CURRENT_FUNCTION_LIST_DIR}/AddSuites.cmake\")\n")
  set_property(DIRECTORY APPEND PROPERTY TEST_INCLUDE_FILES ${script})
endfunction()
