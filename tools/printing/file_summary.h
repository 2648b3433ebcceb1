#ifndef MDF_TOOLS_PRINTING_FILE_SUMMARY_H_
#define MDF_TOOLS_PRINTING_FILE_SUMMARY_H_

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "reader/blocks/finding.h"
#include "reader/data/record_facts.h"
#include "reader/model/description.h"

namespace mdf_reader {
class InputFile;
}  // namespace mdf_reader

namespace mdf_tools {

using namespace mdf_reader;

/// Blocks of one type.
struct TypeCount {
  std::uint64_t blocks = 0;
  std::uint64_t bytes = 0;  ///< as their lengths say, as far as the file reaches
};

/// What is known of a channel group without its data, and how many records it has.
struct GroupSummary {
  const DataGroup* data_group;
  const ChannelGroup* group;
  RecordCount records;
  std::string name;  ///< of the acquisition; failing that, of its source
  std::string source;
  /// From the first record to the last, in the unit of the master channel; nothing when no block
  /// states it.
  std::optional<double> extent;
  std::optional<double> rate;  ///< records for each unit of the master channel
  std::string master_unit;
  std::size_t channel_count = 0;
};

struct FileSummary {
  Description description;
  std::vector<GroupSummary> groups;
  std::size_t channel_count = 0;
  std::size_t history_count = 0;
  std::size_t hierarchy_count = 0;
  std::size_t attachment_count = 0;
  std::size_t event_count = 0;
  std::optional<double> duration;           ///< s; the longest of the groups over time
  std::map<std::string, TypeCount> blocks;  ///< by the two letters, identification not included
  std::uint64_t block_bytes = 0;            ///< of all blocks, and the identification

  /// Bytes of the file that belong to no block, as far as blocks do not overlap.
  std::uint64_t gap_bytes = 0;
};

/// Reads everything but data, and that only to count records where the file leaves their number
/// open.
FileSummary summarise(InputFile& file, const FindingSink& report);

}  // namespace mdf_tools

#endif  // MDF_TOOLS_PRINTING_FILE_SUMMARY_H_
