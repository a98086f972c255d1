# What `cmake --install` lays down: the library, its header, the tool with its man pages and shell
# completions, and what find_package(Quillon) reads. A program that links the library includes
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
