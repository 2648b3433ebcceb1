#ifndef MDF_TOOLS_COMMANDS_TABLE_EXPORT_H_
#define MDF_TOOLS_COMMANDS_TABLE_EXPORT_H_

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "decoding_option.h"
#include "reader/columns/joined_table.h"
#include "reader/columns/query.h"

namespace mdf_tools {

using namespace mdf_reader;

/// Which tables are written, and where.
struct TableRequest {
  std::shared_ptr<std::vector<std::string>> paths;
  std::shared_ptr<Query> query = std::make_shared<Query>();
  std::shared_ptr<DecodingRequest> decoding = std::make_shared<DecodingRequest>();
  std::string output;
  std::string format;
  bool with_empty = false;
  int digits = 0;
  std::string time = "seconds";
  std::optional<TimeBase> on_time;
  bool is_linear = false;

  bool isToFolder() const {
    return !output.empty() && (output.back() == '/' || std::filesystem::is_directory(output));
  }
  bool isToFile() const { return !output.empty() && output != "-" && !isToFolder(); }
  bool isMat() const { return format == "mat"; }
};

/// Writes the tables of all files; returns the exit code. A format that is not stated follows from
/// the output's name.
int exportTables(TableRequest& request);

}  // namespace mdf_tools

#endif  // MDF_TOOLS_COMMANDS_TABLE_EXPORT_H_
