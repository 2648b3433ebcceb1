# 32-bit little-endian ARM with hardware floating point, run under emulation.
set(mdf_architecture armhf)
set(mdf_triplet arm-linux-gnueabihf)
set(mdf_processor arm)
include(${CMAKE_CURRENT_LIST_DIR}/debian_cross.cmake)

# GCC's notes that a calling convention changed in GCC 7.
set(CMAKE_CXX_FLAGS_INIT -Wno-psabi)
