#ifndef MDF_TOOLS_CHANGING_FILE_JOIN_H_
#define MDF_TOOLS_CHANGING_FILE_JOIN_H_

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "data_writer.h"
#include "file_frame.h"
#include "reader/blocks/finding.h"
#include "reader/columns/tables.h"
#include "writer/files/output.h"

namespace mdf_tools {

using namespace mdf_reader;

/// How files become one.
struct JoinOptions {
  bool side_by_side = false;     ///< channel groups do not go on in those of files before
  bool keeps_order = false;      ///< even if files begin before others that stand in front of them
  std::optional<DataForm> form;  ///< none: data that need not be written anew stays as it is
  NewHistory history;
};

/// One of the files, and what takes the problems that are found in it; neither is null.
struct FileToJoin {
  InputFile* file;
  std::string name;
  const FindingSink* report;
};

/// What came of joining.
struct JoinSummary {
  struct File {
    std::string name;
    double later = 0;  ///< seconds from the start of the joined file to its own
    std::uint64_t records = 0;
    /// Times of its records, from the start of the joined file.
    std::optional<double> first = std::nullopt;
    std::optional<double> last = std::nullopt;
    /// From the last record of the files before to its first one; less than 0 where they overlap.
    std::optional<double> gap = std::nullopt;
  };
  struct Group {
    std::string name;
    std::size_t files = 0;
    std::uint64_t records = 0;
  };
  std::vector<File> files;  ///< in their order in the joined file
  std::vector<Group> groups;
  std::vector<std::string> notes;

  std::uint64_t records() const;
};

/// Writes one measurement file of several. Memory does not grow with the data.
/// @throws CopyFailure
JoinSummary joinFiles(const std::vector<FileToJoin>& files, const JoinOptions& options,
                      mdf_writer::Output& output);

}  // namespace mdf_tools

#endif  // MDF_TOOLS_CHANGING_FILE_JOIN_H_
