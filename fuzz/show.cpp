#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <ostream>
#include <stdexcept>
#include <string>

#include "extracting/extract.h"
#include "memory_file.h"
#include "output_check.h"
#include "printing/info.h"
#include "printing/listing.h"
#include "reader/summary/file_json.h"
#include "reader/summary/json.h"
#include "targets.h"

namespace mdf_fuzz {

namespace {

using mdf_reader::FindingSink;
using mdf_reader::InputFile;

/// A folder that is gone with the process.
class Folder {
 public:
  Folder() : path_((std::filesystem::temp_directory_path() / "mdf-XXXXXX").string()) {
    if (mkdtemp(path_.data()) == nullptr) {
      throw std::runtime_error("a folder");
    }
    std::filesystem::create_directory(inner());
  }
  ~Folder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  Folder(const Folder&) = delete;
  Folder& operator=(const Folder&) = delete;

  /// The only place where files may appear.
  std::string inner() const { return path_ + "/inner"; }

  void expectFilesAndEmpty() const {
    for (const auto& entry : std::filesystem::directory_iterator(inner())) {
      expect(entry.is_regular_file(), "files alone to be made");
      std::filesystem::remove(entry.path());
    }
    for (const auto& entry : std::filesystem::directory_iterator(path_)) {
      expect(entry.path().filename() == "inner", "nothing to be made outside the folder");
    }
  }

 private:
  std::string path_;
};

void tryInfo(const std::string& path) {
  constexpr std::uint64_t some = 1000;  // types of blocks
  const std::uint64_t most = some + mostLinks(static_cast<std::size_t>(InputFile(path).size()));
  tryWriting(path, Lines::Kind::printed, most,
             [](InputFile& file, std::ostream& os, const FindingSink& report) {
               mdf_tools::printInfo(file, mdf_tools::Depth::records, os, report);
             });
  tryWriting(
      path, Lines::Kind::json, 1, [](InputFile& file, std::ostream& os, const FindingSink& report) {
        os << mdf_tools::jsonLine(mdf_reader::fileAsJson(file, mdf_reader::Depth::records, report))
           << '\n';
      });
}

template <class List>
void tryList(const std::string& path, const List& list) {
  const std::uint64_t most = mostLinks(static_cast<std::size_t>(InputFile(path).size()));
  for (const bool as_json : {false, true}) {
    mdf_tools::ListOptions options;
    options.as_json = as_json;
    tryWriting(path, as_json ? Lines::Kind::json : Lines::Kind::printed, most,
               [&](InputFile& file, std::ostream& os, const FindingSink& report) {
                 list(file, options, os, report);
               });
  }
}

void tryExtracting(const std::string& path) {
  static const Folder folder;
  mdf_tools::ExtractOptions options;
  options.folder = folder.inner();
  options.as_json = true;
  const std::uint64_t most = mostLinks(static_cast<std::size_t>(InputFile(path).size()));
  tryWriting(path, Lines::Kind::json, most,
             [&](InputFile& file, std::ostream& os, const FindingSink& report) {
               mdf_tools::extractAttachments(file, options, os, report);
             });
  folder.expectFilesAndEmpty();
}

}  // namespace

std::string tryShow(std::string_view input) {
  static const MemoryFile memory;
  memory.hold(input);
  const std::string path = memory.path();
  tryInfo(path);
  tryList(path, mdf_tools::listChannels);
  tryList(path, mdf_tools::listBlocks);
  tryList(path, mdf_tools::listAttachments);
  tryList(path, mdf_tools::listEvents);
  tryExtracting(path);
  return "shown";
}

}  // namespace mdf_fuzz
