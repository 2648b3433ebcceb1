#ifndef MDF_TOOLS_MATLAB_MAT_FILE_H_
#define MDF_TOOLS_MATLAB_MAT_FILE_H_

#include <cstdint>
#include <memory>
#include <string>

#include "mat_variable.h"

namespace mdf_tools {

/// A MATLAB file that is written: of version 5, compressed, unless a variable is too large for it.
/// Then the file becomes one of version 7.3. Errors are thrown as Unwritable.
class MatFile {
 public:
  /// Bytes of a variable that version 5 holds, without compression.
  static constexpr std::uint64_t version_5_limit = 0x7FFFFFFF;

  /// @param path where the file is written.
  /// @param shown_path what messages call it.
  MatFile(std::string path, std::string shown_path, std::uint64_t limit = version_5_limit);

  void add(const MatVariable& variable);
  void close();

 private:
  struct Closer {
    void operator()(mat_t* file) const { (void)MatLibrary::get().close(file); }
  };
  using File = std::unique_ptr<mat_t, Closer>;

  [[noreturn]] void fail() const;
  void create(mat_ft version);
  void becomeVersion73();
  template <class Call>
  void check(const Call& call);

  std::string path_;
  std::string shown_path_;
  std::uint64_t limit_;
  mat_ft version_ = MAT_FT_MAT5;
  File file_;
};

}  // namespace mdf_tools

#endif  // MDF_TOOLS_MATLAB_MAT_FILE_H_
