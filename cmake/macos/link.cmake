# How toolchain.cmake links: straight through the linker, since the compiler's own ignores the list of
# exported symbols. Options meant for the linker reach it bare. The C++ library comes from archives
# beside the compiler, the system's libraries are stubs that only name what they hold.
set(CMAKE_CXX_LINKER_WRAPPER_FLAG "")
file(GLOB runtime ${QUILLON_TOOLCHAIN}/runtime/${QUILLON_MACOS_PROCESSOR}/*.a)
string(JOIN " " CMAKE_CXX_CREATE_SHARED_LIBRARY
  "${QUILLON_LD64} -dylib -arch ${QUILLON_MACOS_PROCESSOR} -platform_version macos 11.0 11.0"
  "-install_name <TARGET_INSTALLNAME_DIR><TARGET_SONAME> -headerpad_max_install_names"
  "-dead_strip -S -x <LINK_FLAGS> -o <TARGET> <OBJECTS>"
  "-F ${CMAKE_CURRENT_LIST_DIR}/stubs -L ${CMAKE_CURRENT_LIST_DIR}/stubs <LINK_LIBRARIES>"
  ${runtime} "-L ${QUILLON_TOOLCHAIN}/stubs -lSystem")
