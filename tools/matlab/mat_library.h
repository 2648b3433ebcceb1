#ifndef MDF_TOOLS_MATLAB_MAT_LIBRARY_H_
#define MDF_TOOLS_MATLAB_MAT_LIBRARY_H_

#include <matio.h>

#include <stdexcept>

namespace mdf_tools {

/// There is no libmatio; what() is one sentence.
class NoMatLibrary : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// The functions of libmatio. It is loaded when a MATLAB file is wanted, as it brings some forty
/// libraries with it, which would take longer to load than most commands take.
class MatLibrary {
 public:
  /// @throws NoMatLibrary
  static const MatLibrary& get();

  decltype(&Mat_CreateVer) create;
  decltype(&Mat_Open) open;
  decltype(&Mat_Close) close;
  decltype(&Mat_VarCreate) createVariable;
  decltype(&Mat_VarCreateStruct) createStructure;
  decltype(&Mat_VarSetStructFieldByIndex) setField;
  decltype(&Mat_VarFree) free;
  decltype(&Mat_VarReadNext) readNext;
  decltype(&Mat_VarWrite) write;

 private:
  MatLibrary();
};

}  // namespace mdf_tools

#endif  // MDF_TOOLS_MATLAB_MAT_LIBRARY_H_
