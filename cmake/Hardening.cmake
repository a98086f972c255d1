# What is shipped defends itself where a mistake would otherwise corrupt the host's memory: checked
# library calls, guarded stack frames and, on Linux, relocations that are read-only once done. The
# sanitizers of the other builds see more and do not mix with it.
if(NOT QUILLON_SANITIZE)
  add_compile_options(-fstack-protector-strong
                      $<$<CONFIG:Release>:-U_FORTIFY_SOURCE> $<$<CONFIG:Release>:-D_FORTIFY_SOURCE=3>)
  if(NOT APPLE)
    add_link_options(LINKER:-z,relro LINKER:-z,now)
  endif()
endif()
