# Read by ctest: adds the test suites of the program `program`, which is `file`.
if(NOT EXISTS ${file})
  add_test(${program}.is-not-built ${file}) # fails, so that it is noticed
  return()
endif()

execute_process(COMMAND ${file} --gtest_list_tests
  OUTPUT_VARIABLE list RESULT_VARIABLE result ERROR_VARIABLE errors)
if(NOT result EQUAL 0)
  message(FATAL_ERROR "${file} cannot list its tests:\n${errors}")
endif()

# A suite's line starts at the margin and ends with a dot, after which a type may be named.
string(REGEX MATCHALL "(^|\n)[A-Za-z0-9_/]+\\." suites "${list}")
list(TRANSFORM suites STRIP)
foreach(suite IN LISTS suites)
  string(REGEX REPLACE "\\.$" "" name ${suite})
  add_test(${name} ${file} --gtest_filter=${suite}* --gtest_brief=1)
  set_tests_properties(${name} PROPERTIES TIMEOUT 600)
  if(name MATCHES "^(Jpeg|Names|Page|Scenarios/Faults|Scenarios/Changing)$") # the longest begin first
    set_tests_properties(${name} PROPERTIES COST 100)
  endif()
endforeach()
