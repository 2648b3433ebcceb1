# What `mdf view` is made with: cpp-httplib, and uPlot, which scripts/bootstrap fetches. Where one of
# them is missing, and for other machines, MDF_HAS_VIEWER is false and the program is built without it.
find_package(PkgConfig QUIET)
if(PKG_CONFIG_FOUND AND NOT CMAKE_CROSSCOMPILING)
  pkg_check_modules(MDF_HTTPLIB QUIET IMPORTED_TARGET cpp-httplib)
endif()
set(MDF_UPLOT_DIR ${PROJECT_SOURCE_DIR}/build/packages/view/node_modules/uplot/dist
    CACHE PATH "The folder with uPlot.esm.js and uPlot.min.css")
set(MDF_HAS_VIEWER FALSE)
if(MDF_HTTPLIB_FOUND AND EXISTS ${MDF_UPLOT_DIR}/uPlot.esm.js AND EXISTS ${MDF_UPLOT_DIR}/uPlot.min.css)
  set(MDF_HAS_VIEWER TRUE)
endif()
