# What a crash report of macOS is read with: the plug-in goes out without names of its own, and beside it
# stays Quillon.dylib.dSYM, which has a name and a line for each of its addresses. The two belong together
# by their UUID, which the linker makes of what it writes: no path of the machine, no time is part of it.
if(APPLE)
  add_compile_options(-gline-tables-only -ffile-prefix-map=${PROJECT_SOURCE_DIR}=.
                      -ffile-compilation-dir=.)
  find_program(QUILLON_DSYMUTIL NAMES dsymutil dsymutil-19 REQUIRED)
  find_program(QUILLON_STRIP NAMES strip REQUIRED)
endif()

# Takes the symbols out of the linked TARGET and signs it again, which a stripped file needs.
function(quillon_keep_symbols target)
  set(commands COMMAND ${QUILLON_DSYMUTIL} $<TARGET_FILE:${target}>
               COMMAND ${QUILLON_STRIP} -S -x $<TARGET_FILE:${target}>)
  if(NOT CMAKE_CROSSCOMPILING)  # where it is, strip is LLVM's and signs by itself
    list(APPEND commands COMMAND codesign --force --sign - $<TARGET_FILE:${target}>)
  endif()
  add_custom_command(TARGET ${target} POST_BUILD ${commands} VERBATIM
    WORKING_DIRECTORY ${PROJECT_BINARY_DIR})
endfunction()
