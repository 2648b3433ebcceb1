#ifndef MDF_TOOLS_CHANGING_NEW_REDUCTIONS_H_
#define MDF_TOOLS_CHANGING_NEW_REDUCTIONS_H_

#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

#include "block_copy.h"
#include "copy_contents.h"
#include "copy_options.h"
#include "data_writer.h"
#include "reader/columns/tables.h"
#include "reader/model/description.h"
#include "reader/values/conversion.h"

namespace mdf_tools {

using namespace mdf_reader;

/// Makes sample reductions of the records of a copy, in place of those with the same intervals.
class NewReductions {
 public:
  /// @param contents which were chosen, and outlast it.
  NewReductions(BlockCopy& blocks, CopyContents& contents, const CopyOptions& options,
                const FindingSink& report, const NoteSink& note);

  /// Tells the blocks which reductions are left out.
  void plan();

  /// Goes through the records once more, and writes what becomes of them.
  void write(BlockWriter& out);

 private:
  bool isAsked(std::uint32_t block);
  void write(BlockWriter& out, const DataGroup& data_group,
             const std::vector<const ChannelGroup*>& groups);
  void write(BlockWriter& out, Records& records, const ChannelGroup& group);
  void link(BlockWriter& out, const ChannelGroup& group, std::vector<std::string> reductions);

  BlockCopy& blocks_;
  CopyContents& contents_;
  const CopyOptions& options_;
  const NoteSink& note_;
  Conversions conversions_;
  std::vector<std::vector<const ChannelGroup*>> groups_;     ///< to be condensed, by data groups
  std::unordered_map<std::uint32_t, BlockCopy::Link> last_;  ///< reductions of groups that stay
};

}  // namespace mdf_tools

#endif  // MDF_TOOLS_CHANGING_NEW_REDUCTIONS_H_
