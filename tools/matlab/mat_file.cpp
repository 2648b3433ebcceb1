#include "mat_file.h"

#include <cerrno>
#include <cstdio>
#include <system_error>
#include <utility>

#include "extracting/new_file.h"

namespace mdf_tools {

MatFile::MatFile(std::string path, std::string shown_path, std::uint64_t limit)
    : path_(std::move(path)), shown_path_(std::move(shown_path)), limit_(limit) {
  create(MAT_FT_MAT5);
}

void MatFile::fail() const {
  throw Unwritable(
      "cannot write to " + shown_path_ + ": " +
      (errno == 0 ? "the library says no reason" : std::generic_category().message(errno)));
}

/// Calls a function of the library, which returns 0. In version 5 it does not look whether its
/// writes fail: errno, which nothing sets to 0, tells. HDF5 looks, and leaves errno as it may.
template <class Call>
void MatFile::check(const Call& call) {
  errno = 0;
  if (call() != 0 || (version_ == MAT_FT_MAT5 && errno != 0)) {
    fail();
  }
}

void MatFile::create(mat_ft version) {
  version_ = version;
  const char* const header = version == MAT_FT_MAT5 ? "MATLAB 5.0 MAT-file, written by mdf"
                                                    : "MATLAB 7.3 MAT-file, written by mdf";
  errno = 0;
  file_.reset(MatLibrary::get().create(path_.c_str(), header, version));
  if (file_ == nullptr) {
    fail();
  }
}

void MatFile::add(const MatVariable& variable) {
  if (version_ == MAT_FT_MAT5 && variable.bytes > limit_) {
    becomeVersion73();
  }
  check([&] {
    return MatLibrary::get().write(file_.get(), variable.variable.get(), MAT_COMPRESSION_ZLIB);
  });
}

void MatFile::close() {
  check([&] { return MatLibrary::get().close(file_.release()); });
}

/// Writes all variables again.
void MatFile::becomeVersion73() {
  close();
  const File before(MatLibrary::get().open(path_.c_str(), MAT_ACC_RDONLY));
  // Open, it can do without a name.
  if (before == nullptr || std::remove(path_.c_str()) != 0) {
    fail();
  }
  create(MAT_FT_MAT73);
  while (matvar_t* const next = MatLibrary::get().readNext(before.get())) {
    add({std::unique_ptr<matvar_t, MatVariable::Deleter>(next), 0});
  }
}

}  // namespace mdf_tools
