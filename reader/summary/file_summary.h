#ifndef MDF_READER_SUMMARY_FILE_SUMMARY_H_
#define MDF_READER_SUMMARY_FILE_SUMMARY_H_

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "../blocks/finding.h"
#include "../columns/axis_spans.h"
#include "../data/record_facts.h"
#include "../model/description.h"
#include "../model/properties.h"

namespace mdf_reader {
class InputFile;

/// Blocks of one type.
struct TypeCount {
  std::uint64_t blocks = 0;
  std::uint64_t bytes = 0;  ///< as their lengths say, as far as the file reaches
};

struct GroupChannels {
  std::size_t count = 0;
  std::optional<Channel> master;
};

/// A channel group's records once more, condensed over intervals.
struct ReductionSummary {
  double interval = 0;     ///< in the unit of its axis
  unsigned sync_type = 0;  ///< of the axis, as channels have it; 4 for records
  std::uint64_t records = 0;

  /// "s", "rad", "m", or "records"; "" for an axis that is not known.
  std::string unit() const;
};

/// What is known of a channel group.
struct GroupSummary {
  const DataGroup* data_group = nullptr;
  const ChannelGroup* group = nullptr;
  GroupChannels channels;  ///< its own; the master may be that of another group
  RecordCount records;
  std::string source;
  std::optional<AxisSpan> span;
  std::vector<ReductionSummary> reductions;

  /// Null for none.
  const Channel* master() const { return channels.master ? &*channels.master : nullptr; }
  /// How far it is from the first record to the last, in the unit of the master channel.
  std::optional<double> extent() const { return span ? span->extent() : std::nullopt; }
  /// The unit of the master channel; "" for none.
  std::string masterUnit() const { return master() == nullptr ? "" : std::string(master()->unit); }
  /// Records for each unit of the master channel.
  std::optional<double> rate() const;
};

struct FileSummary {
  Description description;
  std::vector<Property> properties;  ///< of the header's comment
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

/// How much of a file is read.
enum class Depth {
  headers,
  records,  ///< the first and the last of groups; all, where only that shows them or their number
};

FileSummary summarise(InputFile& file, Depth depth, const FindingSink& report);

}  // namespace mdf_reader

#endif  // MDF_READER_SUMMARY_FILE_SUMMARY_H_
