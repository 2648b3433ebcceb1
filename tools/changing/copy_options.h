#ifndef MDF_TOOLS_CHANGING_COPY_OPTIONS_H_
#define MDF_TOOLS_CHANGING_COPY_OPTIONS_H_

#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "data_writer.h"
#include "reader/columns/query.h"

namespace mdf_tools {

using namespace mdf_reader;

/// What a copy is to be like.
struct CopyOptions {
  bool hasLimits() const { return limits.from || limits.to || limits.first || limits.last; }

  std::optional<DataForm> form;       ///< none: data stays in the blocks that it is in
  bool sorts = false;                 ///< each channel group gets a data group of its own
  std::vector<std::string> channels;  ///< patterns of their names; none for all channels
  std::string group;         ///< its number or a pattern of its name; "" for all channel groups
  bool drops_empty = false;  ///< channel groups without records are left out
  std::vector<double> reductions;  ///< intervals in seconds that records are condensed over, too
  std::set<std::string> without;   ///< letters of blocks that are left out
  Query limits;                    ///< of the records: from, to, first, last
  std::uint64_t time = 0;          ///< of the entry in the history: nanoseconds since 1970
  std::string history;             ///< what was done
  std::string version;             ///< of the program
};

}  // namespace mdf_tools

#endif  // MDF_TOOLS_CHANGING_COPY_OPTIONS_H_
