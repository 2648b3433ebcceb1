#ifndef MDF_TOOLS_EXTRACTING_NEW_FILE_H_
#define MDF_TOOLS_EXTRACTING_NEW_FILE_H_

#include <stdexcept>
#include <string>
#include <string_view>

#include "reader/bytes/descriptor.h"

namespace mdf_tools {

using namespace mdf_reader;

/// A file that cannot be written; what() is one sentence that names it.
class Unwritable : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// The same, before anything was written.
class Uncreatable : public Unwritable {
 public:
  using Unwritable::Unwritable;
};

/// A file in a folder that appears there under its name when it is complete, and never otherwise.
/// Links that stand in the folder under that name are not followed.
class NewFile {
 public:
  /// @throws Uncreatable
  NewFile(const std::string& folder, const std::string& name);
  ~NewFile();
  NewFile(const NewFile&) = delete;
  NewFile& operator=(const NewFile&) = delete;

  /// @throws Unwritable
  void write(std::string_view bytes);

  /// Where the file is until it is complete, for whoever writes it by its path.
  const std::string& temporaryPath() const { return temporary_path_; }

  /// Gives the file its name. An existing one is replaced or, unless `replaces`, left alone.
  /// @return false when there was one, which has been left alone.
  /// @throws Unwritable
  bool complete(bool replaces);

 private:
  [[noreturn]] void fail(const std::string& what) const;

  std::string name_;
  std::string shown_path_;
  Descriptor folder_;
  std::string temporary_name_;
  std::string temporary_path_;
  Descriptor file_;
};

}  // namespace mdf_tools

#endif  // MDF_TOOLS_EXTRACTING_NEW_FILE_H_
