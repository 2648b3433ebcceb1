# The standard is said for every target, so that tools which read the compile commands hear of it.
set(CMAKE_CXX_STANDARD 17)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_C_STANDARD 99)
set(CMAKE_C_STANDARD_REQUIRED ON)
set(CMAKE_C_EXTENSIONS OFF)

# What our own targets are compiled with; nothing of it reaches the targets of a project that uses
# the library.
add_library(mdf_compile_options INTERFACE)
target_compile_options(mdf_compile_options INTERFACE
  -Wall -Wextra -Wpedantic -Wconversion -Wsign-conversion -Wshadow -Wnull-dereference
  $<$<BOOL:${MDF_WARNINGS_AS_ERRORS}>:-Werror>)
if(MDF_COVERAGE)
  # Paths relative to the build folder, so that ccache finds the objects of any clone.
  set(mdf_coverage_options -fprofile-instr-generate -fcoverage-mapping -fcoverage-compilation-dir=.)
  add_compile_options(${mdf_coverage_options})
  add_link_options(-fprofile-instr-generate)
endif()
if(MDF_SANITIZE)
  target_compile_options(mdf_compile_options INTERFACE
    -fsanitize=${MDF_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(mdf_compile_options INTERFACE -fsanitize=${MDF_SANITIZE})
endif()
