#include "mat_library.h"

#include <dlfcn.h>

#include <cstdint>
#include <string>

namespace mdf_tools {

namespace {

template <class Function>
void find(void* library, const char* name, Function*& function) {
  function = reinterpret_cast<Function*>(dlsym(library, name));
  if (function == nullptr) {
    throw NoMatLibrary(std::string("the library " MDF_MATIO " has no function ") + name);
  }
}

/// HDF5, on which libmatio stands, prints where in it something goes wrong, and crashes at the end
/// of the program when a file could not be closed, as on a full disk. It is told to do neither.
void quietenHdf5(void* library) {
  using Call = int (*)();
  using SetPrinter = int (*)(std::int64_t stack, void* print, void* data);
  const auto leave_exit_alone = reinterpret_cast<Call>(dlsym(library, "H5dont_atexit"));
  const auto set_printer = reinterpret_cast<SetPrinter>(dlsym(library, "H5Eset_auto2"));
  if (leave_exit_alone != nullptr && set_printer != nullptr) {
    leave_exit_alone();
    set_printer(0, nullptr, nullptr);
  }
}

}  // namespace

const MatLibrary& MatLibrary::get() {
  static const MatLibrary library;
  return library;
}

MatLibrary::MatLibrary() {
  void* const library = dlopen(MDF_MATIO, RTLD_NOW | RTLD_LOCAL);
  if (library == nullptr) {
    throw NoMatLibrary("MATLAB files are written by the library " MDF_MATIO
                       ", which is not installed here");
  }
  find(library, "Mat_CreateVer", create);
  find(library, "Mat_Open", open);
  find(library, "Mat_Close", close);
  find(library, "Mat_VarCreate", createVariable);
  find(library, "Mat_VarCreateStruct", createStructure);
  find(library, "Mat_VarSetStructFieldByIndex", setField);
  find(library, "Mat_VarFree", free);
  find(library, "Mat_VarReadNext", readNext);
  find(library, "Mat_VarWrite", write);
  quietenHdf5(library);
}

}  // namespace mdf_tools
