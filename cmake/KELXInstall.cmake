# What `cmake --install` puts under the prefix, and what find_package(KELXStStorage) reads there.
include(CMakePackageConfigHelpers)

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/KELXStStorage)

install(
  TARGETS KELXBase KELXStStorage
  EXPORT KELXStStorageTargets
  FILE_SET HEADERS DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/KELXStStorage)
install(
  EXPORT KELXStStorageTargets
  NAMESPACE KELX::
  FILE KELXStStorageConfig.cmake
  DESTINATION ${package_dir})

# Before 1.0 a minor version may change the interface.
write_basic_package_version_file(
  ${PROJECT_BINARY_DIR}/KELXStStorageConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/KELXStStorageConfigVersion.cmake DESTINATION ${package_dir})
