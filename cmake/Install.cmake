# What `cmake --install` lays down: the library, its header, the tool with its man pages and shell
# completions, what find_package(Quillon) reads, and the notices of what is linked in. A program that links the library includes
# <quillon/Quillon.h>.
include(CMakePackageConfigHelpers)

set(quillon_package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/Quillon)

install(TARGETS Quillon EXPORT QuillonTargets LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
if(TARGET quillon)
  install(TARGETS quillon RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
endif()

# The guides are made of what the tool says of itself when it is installed, for which it must run.
find_program(QUILLON_HELP2MAN help2man)
if(TARGET quillon AND QUILLON_HELP2MAN AND NOT CMAKE_CROSSCOMPILING)
  set(guides ${PROJECT_BINARY_DIR}/guides)
  install(CODE "execute_process(COMMAND \"${PROJECT_SOURCE_DIR}/host/guides/make\" \"${guides}\"
    \"$<TARGET_FILE:quillon>\" COMMAND_ERROR_IS_FATAL ANY)")
  install(DIRECTORY ${guides}/man/ DESTINATION ${CMAKE_INSTALL_MANDIR})
  set(share ${CMAKE_INSTALL_DATADIR})
  install(FILES ${guides}/quillon.bash DESTINATION ${share}/bash-completion/completions RENAME quillon)
  install(FILES ${guides}/quillon.zsh DESTINATION ${share}/zsh/site-functions RENAME _quillon)
  install(FILES ${guides}/quillon.fish DESTINATION ${share}/fish/vendor_completions.d)
endif()
install(FILES src/export/Quillon.h DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/quillon)
install(EXPORT QuillonTargets NAMESPACE Quillon:: FILE QuillonConfig.cmake
  DESTINATION ${quillon_package_dir})

# A version is compatible while its first number, the one that the export Version gives, is the same.
write_basic_package_version_file(${PROJECT_BINARY_DIR}/QuillonConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/QuillonConfigVersion.cmake DESTINATION ${quillon_package_dir})

# The notices of others' code in what is installed: of the archives that are linked in and of the headers
# that have code. A shared library comes with its own. The test package.notices reads from the links what
# is needed.
set(notices tinyexr)
if(LIBDEFLATE_LIBRARY MATCHES "\\.a$")
  list(APPEND notices libdeflate)
endif()
if(TARGET quillon)
  list(APPEND notices CLI11 Imath OpenEXR nlohmann-json tinyobjloader)
endif()
list(TRANSFORM notices REPLACE "(.+)" "${PROJECT_SOURCE_DIR}/licences/\\1.txt")
set(quillon_notices_dir ${CMAKE_INSTALL_DATADIR}/doc/quillon/licences)
install(FILES ${notices} DESTINATION ${quillon_notices_dir} COMPONENT notices)
