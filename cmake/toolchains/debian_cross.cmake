# What the toolchain files share: Debian's cross compiler and qemu for the named architecture, and
# the libraries that scripts/bootstrap fetches to build/packages.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR ${mdf_processor})
set(CMAKE_C_COMPILER ${mdf_triplet}-gcc)
set(CMAKE_CXX_COMPILER ${mdf_triplet}-g++)
set(CMAKE_LIBRARY_ARCHITECTURE ${mdf_triplet})
# Tests run programs with another PATH.
find_program(MDF_QEMU_${mdf_processor} qemu-${mdf_processor} REQUIRED)
set(CMAKE_CROSSCOMPILING_EMULATOR ${MDF_QEMU_${mdf_processor}} -L /usr/${mdf_triplet})

get_filename_component(packages ${CMAKE_CURRENT_LIST_DIR}/../../build/packages/${mdf_architecture} ABSOLUTE)
set(CMAKE_FIND_ROOT_PATH ${packages})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE BOTH)
