set(QUILLON_MACOS_PROCESSOR arm64)
include(${CMAKE_CURRENT_LIST_DIR}/toolchain.cmake)
