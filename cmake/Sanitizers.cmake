# QUILLON_SANITIZE: a list for -fsanitize (the preset "asan" sets it), or empty.
set(QUILLON_SANITIZE "" CACHE STRING "Sanitizers to build with, as -fsanitize takes them")
if(QUILLON_SANITIZE)
  add_compile_options(-fsanitize=${QUILLON_SANITIZE} -fno-sanitize-recover=all
                      -fno-omit-frame-pointer)
  add_compile_definitions(_GLIBCXX_ASSERTIONS)
  add_link_options(-fsanitize=${QUILLON_SANITIZE})
  # GCC loses track of sizes in code that it has added checks to, and warns of what is not there. The
  # plain build keeps these warnings.
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    add_compile_options(-Wno-stringop-overflow -Wno-array-bounds -Wno-maybe-uninitialized)
  endif()
endif()

# QUILLON_FUZZ: build for libFuzzer, which is Clang's (the preset "fuzz" sets it). Without trace-cmp:
# a call for each comparison takes more time than the hints are worth beside the dictionaries.
option(QUILLON_FUZZ "Instrument for libFuzzer and build quillon_fuzz" OFF)
if(QUILLON_FUZZ)
  add_compile_options(-fsanitize=fuzzer-no-link -fno-sanitize-coverage=trace-cmp)
  add_compile_definitions(QUILLON_PIECE_BYTES=4096)
endif()
