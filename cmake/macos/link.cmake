# How toolchain.cmake links: straight through the linker, since the compiler's own ignores the list of
# exported symbols. Options meant for the linker reach it bare. The system's libraries are stubs that name
# what the plug-in imports and nothing else: what it has come to import anew does not link until somebody
# has added it there, knowing that macOS 11.0 has it. Nothing of the compiler's own libraries is linked in.
#
# The C++ library, too, is the system's, the one that the host has: what the plug-in throws has there the
# type that the host catches.
#
# The names of the object files go into the UUID: without the folder of the build and its times.
set(CMAKE_CXX_LINKER_WRAPPER_FLAG "")
string(JOIN " " CMAKE_CXX_CREATE_SHARED_LIBRARY
  "${CMAKE_COMMAND} -E env ZERO_AR_DATE=1 ${QUILLON_LD64} -oso_prefix ."
  "-dylib -arch ${QUILLON_MACOS_PROCESSOR} -platform_version macos 11.0 11.0"
  "-install_name <TARGET_INSTALLNAME_DIR><TARGET_SONAME> -headerpad_max_install_names"
  "-adhoc_codesign <LINK_FLAGS> -o <TARGET> <OBJECTS>"
  "-F ${CMAKE_CURRENT_LIST_DIR}/stubs -L ${CMAKE_CURRENT_LIST_DIR}/stubs <LINK_LIBRARIES>"
  "-lc++ -lSystem")
