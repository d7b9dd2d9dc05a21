# The CMake package: find_package(Strandview) from another project.
include(CMakePackageConfigHelpers)

set(package_folder ${CMAKE_INSTALL_LIBDIR}/cmake/Strandview)
configure_package_config_file(
  ${PROJECT_SOURCE_DIR}/cmake/StrandviewConfig.cmake.in
  ${PROJECT_BINARY_DIR}/StrandviewConfig.cmake
  INSTALL_DESTINATION ${package_folder})
write_basic_package_version_file(
  ${PROJECT_BINARY_DIR}/StrandviewConfigVersion.cmake
  COMPATIBILITY SameMinorVersion)
install(FILES
  ${PROJECT_BINARY_DIR}/StrandviewConfig.cmake
  ${PROJECT_BINARY_DIR}/StrandviewConfigVersion.cmake
  DESTINATION ${package_folder})
install(EXPORT StrandviewTargets NAMESPACE Strandview:: DESTINATION ${package_folder})
