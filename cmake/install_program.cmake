# What is installed of the program (component tools): itself, its man pages, completion for shells.
set(mdf_man_pages ${CMAKE_CURRENT_BINARY_DIR}/man)
set(mdf_packaging ${PROJECT_SOURCE_DIR}/packaging)

# The pages are what the program says, so it runs here, under emulation where it was built for
# another machine.
add_custom_command(OUTPUT ${mdf_man_pages}/mdf.1
  COMMAND ${mdf_packaging}/man_pages ${mdf_man_pages} ${CMAKE_CROSSCOMPILING_EMULATOR} $<TARGET_FILE:mdf>
  DEPENDS mdf ${mdf_packaging}/man_pages ${mdf_packaging}/help_to_man.awk
  COMMENT "Making the man pages" VERBATIM)
add_custom_target(mdf_man_pages ALL DEPENDS ${mdf_man_pages}/mdf.1)

install(TARGETS mdf COMPONENT tools)
install(DIRECTORY ${mdf_man_pages}/ DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT tools
  FILES_MATCHING PATTERN *.1)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/docs/schema DESTINATION ${CMAKE_INSTALL_DATADIR}/mdf
  COMPONENT tools)
install(FILES ${mdf_packaging}/mdf.bash-completion
  DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions COMPONENT tools RENAME mdf)
install(FILES ${mdf_packaging}/_mdf
  DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/vendor-completions COMPONENT tools)
install(FILES ${mdf_packaging}/mdf.fish
  DESTINATION ${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d COMPONENT tools)
