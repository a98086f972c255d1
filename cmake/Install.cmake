# What `cmake --install` lays down, below any prefix and in any library folder: the library, its headers,
# the tool with its man pages and shell completions, what find_package(Quillon) and pkg-config read, and the
# notices of what is linked in. A program that links the library includes <quillon/Quillon.h>. All of it
# finds its parts by their places relative to each other, so that the folder can be moved.
include(CMakePackageConfigHelpers)

set(quillon_package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/Quillon)

install(TARGETS Quillon EXPORT QuillonTargets LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
if(TARGET quillon)
  install(TARGETS quillon RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
endif()

# The guides are made of what the tool says of itself, for which it must run.
find_program(QUILLON_HELP2MAN help2man)
if(TARGET quillon AND QUILLON_HELP2MAN AND NOT CMAKE_CROSSCOMPILING AND NOT QUILLON_SANITIZE)
  set(guides ${PROJECT_BINARY_DIR}/guides)
  set(guides_make ${PROJECT_SOURCE_DIR}/host/guides/make)
  add_custom_command(OUTPUT ${guides}/quillon.fish  # the last file that is made
    COMMAND ${CMAKE_COMMAND} -E rm -rf ${guides}
    COMMAND ${guides_make} ${guides} $<TARGET_FILE:quillon>
    DEPENDS quillon Quillon ${guides_make} VERBATIM)
  add_custom_target(guides ALL DEPENDS ${guides}/quillon.fish)
  install(DIRECTORY ${guides}/man/ DESTINATION ${CMAKE_INSTALL_MANDIR})
  set(share ${CMAKE_INSTALL_DATADIR})
  install(FILES ${guides}/quillon.bash DESTINATION ${share}/bash-completion/completions RENAME quillon)
  install(FILES ${guides}/quillon.zsh DESTINATION ${share}/zsh/site-functions RENAME _quillon)
  install(FILES ${guides}/quillon.fish DESTINATION ${share}/fish/vendor_completions.d)
endif()

# The interface and the headers with the statuses that it refers to.
install(FILES src/export/Quillon.h src/mesh/VemoOps.h src/tiff/TiffOps.h src/psd/PsdOps.h src/bmp/BmpOps.h
  src/encoders/TargaOps.h src/encoders/JpegOps.h src/encoders/ExrRange.h src/encoders/exr/ExrLoader.h
  DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/quillon)
install(EXPORT QuillonTargets NAMESPACE Quillon:: FILE QuillonConfig.cmake
  DESTINATION ${quillon_package_dir})

# A version is compatible while its first number, the one that the export Version gives, is the same.
write_basic_package_version_file(${PROJECT_BINARY_DIR}/QuillonConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/QuillonConfigVersion.cmake DESTINATION ${quillon_package_dir})

# The same for pkg-config, which says where the file is. What a packager names absolutely stays so.
if(NOT APPLE)  # there the plug-in has no name that a linker looks for
  set(pc_prefix ${CMAKE_INSTALL_PREFIX})
  if(NOT IS_ABSOLUTE "${CMAKE_INSTALL_LIBDIR}")
    file(RELATIVE_PATH up ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
    string(REGEX REPLACE "/$" "" pc_prefix "\${pcfiledir}/${up}")
  endif()
  foreach(place lib include)
    string(TOUPPER ${place} name)
    set(pc_${place}dir "\${prefix}")
    cmake_path(APPEND pc_${place}dir ${CMAKE_INSTALL_${name}DIR})
  endforeach()
  configure_file(cmake/quillon.pc.in ${PROJECT_BINARY_DIR}/quillon.pc @ONLY)
  install(FILES ${PROJECT_BINARY_DIR}/quillon.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
endif()

# The notices of others' code in what is installed: of the archives that are linked in and of the headers
# that have code. A shared library comes with its own. The test package.notices reads from the links what
# is needed.
set(notices tinyexr)
if(LIBDEFLATE_LIBRARY MATCHES "\\.a$")
  list(APPEND notices libdeflate)
endif()
set(wheel_notices ${notices} zlib)
if(TARGET quillon)
  list(APPEND notices CLI11 Imath OpenEXR nlohmann-json tinyobjloader)
endif()
foreach(list notices wheel_notices)
  list(TRANSFORM ${list} REPLACE "(.+)" "${PROJECT_SOURCE_DIR}/licences/\\1.txt")
endforeach()
set(quillon_notices_dir ${CMAKE_INSTALL_DATADIR}/doc/quillon/licences)
install(FILES ${notices} DESTINATION ${quillon_notices_dir} COMPONENT notices)

# What a wheel for Linux has beside the Python files: cmake --install BUILD --component wheel.
if(TARGET quillon_wheel)
  install(TARGETS quillon_wheel LIBRARY DESTINATION quillon COMPONENT wheel EXCLUDE_FROM_ALL)
  install(FILES ${wheel_notices} DESTINATION licences COMPONENT wheel EXCLUDE_FROM_ALL)
endif()
