# What this cpack cannot say in a package: which packages of several architectures can be installed
# together, and that dpkg is to run ldconfig once at the end, in place of a script of each package.
foreach(package IN LISTS CPACK_PACKAGE_FILES)
  set(unpacked ${package}.unpacked)
  execute_process(COMMAND dpkg-deb --raw-extract ${package} ${unpacked} COMMAND_ERROR_IS_FATAL ANY)

  set(multi_arch foreign)
  if(package MATCHES "/lib[^/]*$")
    set(multi_arch same)
  endif()
  file(READ ${unpacked}/DEBIAN/control control)
  string(STRIP "${control}" control)
  file(WRITE ${unpacked}/DEBIAN/control "${control}\nMulti-Arch: ${multi_arch}\n")

  if(EXISTS ${unpacked}/DEBIAN/shlibs)
    file(REMOVE ${unpacked}/DEBIAN/postinst ${unpacked}/DEBIAN/postrm)
    file(WRITE ${unpacked}/DEBIAN/triggers "activate-noawait ldconfig\n")
  endif()
  execute_process(COMMAND dpkg-deb --root-owner-group --build ${unpacked} ${package}
    OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
  file(REMOVE_RECURSE ${unpacked})
endforeach()
