# Read by ctest: the tests write their files into memory where there is room for them. A disk makes a
# program wait that writes the same file over and over, as the tests of damaged files do: one of them
# took 40 seconds, of which the processor worked one.
if(NOT DEFINED ENV{TMPDIR} AND IS_DIRECTORY /dev/shm)
  execute_process(COMMAND df -P -m /dev/shm OUTPUT_VARIABLE free ERROR_QUIET)
  if(free MATCHES "\n[^ ]+ +[0-9]+ +[0-9]+ +([0-9]+)" AND CMAKE_MATCH_1 GREATER_EQUAL 2048)
    set(ENV{TMPDIR} /dev/shm)
  endif()
endif()
