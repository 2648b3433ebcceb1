# What is installed of the library: the shared library (component runtime), and everything that
# programs are built with (component development).
include(CMakePackageConfigHelpers)

set(mdf_package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/mdf)
set(mdf_pkgconfig_dir ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

install(TARGETS mdf_static mdf_shared EXPORT mdf-targets
  ARCHIVE COMPONENT development
  LIBRARY COMPONENT runtime NAMELINK_COMPONENT development)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/mdf/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/mdf
  COMPONENT development FILES_MATCHING PATTERN *.h)

# For programs that ask which version they are built with. The library itself does without.
configure_file(${PROJECT_SOURCE_DIR}/cmake/mdf_version.h.in mdf_version.h @ONLY)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/mdf_version.h DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/mdf
  COMPONENT development)

install(EXPORT mdf-targets NAMESPACE mdf:: DESTINATION ${mdf_package_dir} COMPONENT development)
configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/mdf-config.cmake.in mdf-config.cmake
  INSTALL_DESTINATION ${mdf_package_dir} NO_SET_AND_CHECK_MACRO)
write_basic_package_version_file(mdf-config-version.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/mdf-config.cmake ${CMAKE_CURRENT_BINARY_DIR}/mdf-config-version.cmake
  ${PROJECT_SOURCE_DIR}/cmake/find_library.cmake
  DESTINATION ${mdf_package_dir} COMPONENT development)

# The file finds the prefix from where it lies itself.
file(RELATIVE_PATH mdf_prefix_from_pkgconfig /prefix/${mdf_pkgconfig_dir} /prefix)
configure_file(${PROJECT_SOURCE_DIR}/cmake/mdf.pc.in mdf.pc @ONLY)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/mdf.pc DESTINATION ${mdf_pkgconfig_dir} COMPONENT development)
