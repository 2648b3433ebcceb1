#include "complete_file.h"

#include <filesystem>

namespace mdf_tools {

using mdf_writer::Existing;

CompleteFile::CompleteFile(const std::string& path, bool replaces)
    : FileOutput(path, replaces ? Existing::replace : Existing::keep), path_(path) {
  std::error_code none;
  if (!isOpen()) {
    const bool is_there = !replaces && std::filesystem::exists(path, none) &&
                          !std::filesystem::is_directory(path, none);
    problem_ = "cannot write " + path + ": " + cause() + (is_there ? "; --force replaces it" : "");
  } else if (!isSeekable()) {
    problem_ = "cannot write " + path + ": it is no file that can be completed";
  }
}

bool CompleteFile::appear() {
  if (!FileOutput::publish()) {
    problem_ = "cannot write " + path_ + ": " + cause();
    return false;
  }
  return true;
}

}  // namespace mdf_tools
