# What `cmake --install` puts under the prefix, and what find_package(KELXStStorage) and pkg-config
# read there. Nothing in it names the prefix, so that the whole tree can be moved.
include(CMakePackageConfigHelpers)

# One name on every system keeps `-L<prefix>/lib` true; below /usr the system's own name counts.
if(PROJECT_IS_TOP_LEVEL AND NOT CMAKE_INSTALL_PREFIX STREQUAL "/usr")
  set(CMAKE_INSTALL_LIBDIR lib CACHE STRING "Folder of the libraries under the prefix")
endif()
include(GNUInstallDirs)

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/KELXStStorage)
set(header_dir ${CMAKE_INSTALL_INCLUDEDIR}/KELXStStorage)

install(
  TARGETS KELXBase KELXStStorage
  EXPORT KELXStStorageTargets
  LIBRARY COMPONENT runtime NAMELINK_COMPONENT development
  FILE_SET HEADERS DESTINATION ${header_dir} COMPONENT development)
install(
  EXPORT KELXStStorageTargets
  NAMESPACE KELX::
  FILE KELXStStorageConfig.cmake
  DESTINATION ${package_dir}
  COMPONENT development)

write_basic_package_version_file(
  ${PROJECT_BINARY_DIR}/KELXStStorageConfigVersion.cmake COMPATIBILITY ${KELX_COMPATIBILITY})
install(
  FILES ${PROJECT_BINARY_DIR}/KELXStStorageConfigVersion.cmake
  DESTINATION ${package_dir}
  COMPONENT development)

set(pc_to_prefix ${CMAKE_INSTALL_PREFIX})
cmake_path(RELATIVE_PATH pc_to_prefix BASE_DIRECTORY ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig)
foreach(library IN ITEMS KELXBase KELXStStorage)
  configure_file(cmake/${library}.pc.in ${library}.pc @ONLY)
  install(
    FILES ${PROJECT_BINARY_DIR}/${library}.pc
    DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig
    COMPONENT development)
endforeach()
