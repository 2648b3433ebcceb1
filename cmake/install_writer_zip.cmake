# What is installed of the writer's zipping. It is a part of the component development, but a
# component of its own of the CMake package, as it needs libdeflate.
install(TARGETS mdf_writer_zip EXPORT mdf-writer-zip-targets ARCHIVE COMPONENT development)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/writer_zip/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/mdf_writer_zip
  COMPONENT development FILES_MATCHING PATTERN zipper.h)

set(mdf_package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/mdf)
install(EXPORT mdf-writer-zip-targets NAMESPACE mdf:: DESTINATION ${mdf_package_dir} COMPONENT development)

set(mdf_pkgconfig_dir ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
file(RELATIVE_PATH mdf_prefix_from_pkgconfig /prefix/${mdf_pkgconfig_dir} /prefix)
configure_file(${PROJECT_SOURCE_DIR}/cmake/mdf_writer_zip.pc.in mdf_writer_zip.pc @ONLY)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/mdf_writer_zip.pc DESTINATION ${mdf_pkgconfig_dir}
  COMPONENT development)
