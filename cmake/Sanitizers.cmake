# QUILLON_SANITIZE: a list for -fsanitize (the preset "asan" sets it), or empty.
set(QUILLON_SANITIZE "" CACHE STRING "Sanitizers to build with, as -fsanitize takes them")
if(QUILLON_SANITIZE)
  add_compile_options(-fsanitize=${QUILLON_SANITIZE} -fno-sanitize-recover=all
                      -fno-omit-frame-pointer)
  add_compile_definitions(_GLIBCXX_ASSERTIONS)
  add_link_options(-fsanitize=${QUILLON_SANITIZE})
endif()
