# Every target of the project compiles without a warning, on GCC 12 and Clang 14. The presets and
# scripts/build-macos make warnings errors; a packager's newer compiler may warn of more.
add_compile_options(-Wall -Wextra -Wpedantic -Wconversion -Wshadow -Wmissing-declarations)

# A multiply and an add stay two roundings, so that both processors give the same bytes.
add_compile_options(-ffp-contract=off)
