# What `cmake --install` lays down: the library, its header, the tool, and what find_package(Quillon)
# reads. A program that links the library includes <quillon/Quillon.h>.
include(CMakePackageConfigHelpers)

set(quillon_package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/Quillon)

install(TARGETS Quillon EXPORT QuillonTargets LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
if(TARGET quillon)
  install(TARGETS quillon RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
endif()
install(FILES src/export/Quillon.h DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/quillon)
install(EXPORT QuillonTargets NAMESPACE Quillon:: FILE QuillonConfig.cmake
  DESTINATION ${quillon_package_dir})

# A version is compatible while its first number, the one that the export Version gives, is the same.
write_basic_package_version_file(${PROJECT_BINARY_DIR}/QuillonConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/QuillonConfigVersion.cmake DESTINATION ${quillon_package_dir})
