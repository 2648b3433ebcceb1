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
