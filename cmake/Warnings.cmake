# Every target of the project compiles without a warning, on GCC and on Clang.
add_compile_options(-Wall -Wextra -Wpedantic -Wconversion -Wshadow -Wmissing-declarations -Werror)

# A multiply and an add stay two roundings, so that both processors give the same bytes.
add_compile_options(-ffp-contract=off)
