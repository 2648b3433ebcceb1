# What is installed of the reader library: the shared one (component reader_runtime), and what
# programs are built with (component reader): the static one, the header for C and those that
# mdf_reader/mdf_reader.h includes, and what CMake and pkg-config need to know.
install(TARGETS mdf_reader EXPORT mdf-reader-targets ARCHIVE COMPONENT reader)
if(MDF_BUILD_SHARED_READER)
  install(TARGETS mdf_reader_shared EXPORT mdf-reader-targets
    LIBRARY COMPONENT reader_runtime NAMELINK_COMPONENT reader)
endif()
set(mdf_reader_headers
  mdf_reader.h c_api.h
  blocks/codes.h blocks/finding.h blocks/identification.h blocks/unreadable.h
  bytes/printable.h
  columns/batch.h columns/column_data.h columns/query.h
  data/record_count.h
  decoding/decoded.h
  measurement/measurement.h
  model/attachments.h model/description.h model/events.h model/hierarchy.h model/history.h model/texts.h)
foreach(header IN LISTS mdf_reader_headers)
  get_filename_component(folder ${header} DIRECTORY)
  install(FILES ${PROJECT_SOURCE_DIR}/reader/${header}
    DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/mdf_reader/${folder} COMPONENT reader)
endforeach()

set(mdf_package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/mdf)
install(EXPORT mdf-reader-targets NAMESPACE mdf:: DESTINATION ${mdf_package_dir} COMPONENT reader)
install(FILES ${PROJECT_SOURCE_DIR}/cmake/find_libraries.cmake DESTINATION ${mdf_package_dir}
  COMPONENT reader)

set(mdf_pkgconfig_dir ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
file(RELATIVE_PATH mdf_prefix_from_pkgconfig /prefix/${mdf_pkgconfig_dir} /prefix)
configure_file(${PROJECT_SOURCE_DIR}/cmake/mdf_reader.pc.in mdf_reader.pc @ONLY)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/mdf_reader.pc DESTINATION ${mdf_pkgconfig_dir} COMPONENT reader)
