# What is shipped defends itself where a mistake would otherwise corrupt the host's memory: checked
# library calls, guarded stack frames and, on Linux, a stack without code, relocations that are read-only
# once done, and a landing instruction wherever a pointer to a function may lead. The sanitizers of the
# other builds see more and do not mix with it.
#
# The note that says that shadow stacks may be on is forced: Debian's start files lack it, though they
# only call and return. The note about landing instructions is not: in Debian's libdeflate, which is
# linked in, they are missing, and a system that believed the note would end the host there.
if(NOT QUILLON_SANITIZE)
  add_compile_options(-fstack-protector-strong
                      $<$<CONFIG:Release>:-U_FORTIFY_SOURCE> $<$<CONFIG:Release>:-D_FORTIFY_SOURCE=3>)
  if(NOT APPLE)
    add_link_options(LINKER:-z,relro LINKER:-z,now LINKER:-z,noexecstack)
    if(CMAKE_SYSTEM_PROCESSOR STREQUAL x86_64)
      add_compile_options(-fcf-protection=full)
      add_link_options(LINKER:-z,shstk)
    endif()
  endif()
endif()
