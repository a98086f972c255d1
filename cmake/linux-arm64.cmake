# Builds for ARM64 Linux on another processor, with Debian's cross compiler and the arm64 packages
# that scripts/install-packages puts beside the machine's own; what is built runs in QEMU.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR aarch64)
set(CMAKE_C_COMPILER aarch64-linux-gnu-gcc)
set(CMAKE_CXX_COMPILER aarch64-linux-gnu-g++)
set(CMAKE_LIBRARY_ARCHITECTURE aarch64-linux-gnu)

find_program(QUILLON_QEMU qemu-aarch64 REQUIRED)
set(CMAKE_CROSSCOMPILING_EMULATOR ${QUILLON_QEMU})

# Packages that cannot be installed for two processors at once lie unpacked here. Their libraries need
# each other, so a program's own search path must hold for those, too, which DT_RUNPATH does not.
list(APPEND CMAKE_PREFIX_PATH ${CMAKE_CURRENT_LIST_DIR}/../build/arm64-packages/usr)
set(CMAKE_EXE_LINKER_FLAGS_INIT -Wl,--disable-new-dtags)
