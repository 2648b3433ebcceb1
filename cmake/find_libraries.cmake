# Libraries that the reader stands on and that bring no CMake package of their own.
include(${CMAKE_CURRENT_LIST_DIR}/find_library.cmake)

mdf_find_library(deflate::deflate libdeflate.h deflate)
mdf_find_library(muparser::muparser muParser.h muparser)
mdf_find_library(md::md md5.h md)
