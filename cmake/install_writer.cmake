# What is installed of the writer library: its headers, and what CMake and pkg-config need to know.
# It is a part of the component development, as the blocks are.
install(TARGETS mdf_writer EXPORT mdf-targets ARCHIVE COMPONENT development)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/writer/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/mdf_writer
  COMPONENT development FILES_MATCHING PATTERN *.h)

set(mdf_pkgconfig_dir ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
file(RELATIVE_PATH mdf_prefix_from_pkgconfig /prefix/${mdf_pkgconfig_dir} /prefix)
configure_file(${PROJECT_SOURCE_DIR}/cmake/mdf_writer.pc.in mdf_writer.pc @ONLY)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/mdf_writer.pc DESTINATION ${mdf_pkgconfig_dir}
  COMPONENT development)
