#include "mat_output.h"

#include <filesystem>
#include <system_error>

namespace mdf_tools {

namespace {

namespace fs = std::filesystem;

/// Where a path leads: a symbolic link stays, and the file that it points to is replaced.
fs::path placeOf(const std::string& path) {
  (void)MatLibrary::get();  // before a file is made
  std::error_code none;
  const fs::path there = fs::canonical(path, none);
  return none ? fs::path(path) : there;
}

std::string folderOf(const fs::path& path) {
  const std::string folder = path.parent_path().string();
  return folder.empty() ? "." : folder;
}

}  // namespace

MatOutput::MatOutput(const std::string& path, const ValueForm& form, const NoteSink& note)
    : form_(form),
      note_(note),
      new_file_(folderOf(placeOf(path)), placeOf(path).filename().string()),
      file_(new_file_.temporaryPath(), path) {}

void MatOutput::write(const MatTable& table) {
  for (const std::string& channel : table.rounded()) {
    note_("some values of " + channel +
          " are rounded: integers beside missing values become doubles");
  }
  file_.add(table.structure(names_.add(table.name())));
}

void MatOutput::complete() {
  file_.close();
  new_file_.complete(true);
}

}  // namespace mdf_tools
