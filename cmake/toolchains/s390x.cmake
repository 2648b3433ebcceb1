# 64-bit big-endian, run under emulation.
set(mdf_architecture s390x)
set(mdf_triplet s390x-linux-gnu)
set(mdf_processor s390x)
include(${CMAKE_CURRENT_LIST_DIR}/debian_cross.cmake)
