# Libraries that the reader stands on and that bring no CMake package of their own.

# Finds a library by a header of it and its name, as an imported target.
function(mdf_find_library target header name)
  if(TARGET ${target})
    return()
  endif()
  string(MAKE_C_IDENTIFIER "MDF_${name}" variable)
  find_path(${variable}_INCLUDE_DIR ${header} REQUIRED)
  find_library(${variable}_LIBRARY ${name} REQUIRED)
  mark_as_advanced(${variable}_INCLUDE_DIR ${variable}_LIBRARY)
  add_library(${target} UNKNOWN IMPORTED GLOBAL)
  set_target_properties(${target} PROPERTIES
    IMPORTED_LOCATION ${${variable}_LIBRARY}
    INTERFACE_INCLUDE_DIRECTORIES ${${variable}_INCLUDE_DIR})
endfunction()

mdf_find_library(deflate::deflate libdeflate.h deflate)
mdf_find_library(muparser::muparser muParser.h muparser)
mdf_find_library(md::md md5.h md)
