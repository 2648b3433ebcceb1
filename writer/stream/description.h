#ifndef MDF_WRITER_STREAM_DESCRIPTION_H_
#define MDF_WRITER_STREAM_DESCRIPTION_H_

#include <cstdint>
#include <string>
#include <vector>

#include "../plan/plan.h"
#include "blocks.h"

namespace mdf_writer {

/// How the groups of a file lie.
enum class Layout {
  apart,     ///< each in a data group of its own
  together,  ///< all in one data group, their records marked by record ids
  open_end   ///< so, too, and the data follows as the last block, whose length is not known
};

/// Where a file holds what is written in place while it grows. 0 stands for nothing.
struct GroupPlaces {
  std::uint64_t data_link = 0;  ///< to the records
  std::uint64_t block = 0;      ///< no place in it, but that of the group
  std::uint64_t cycle_count = 0;
  std::uint64_t record_id = 0;     ///< no place, but the number itself
  std::uint64_t master_flags = 0;  ///< with the flag for the range, which then follows
  std::uint32_t flags_with_range = 0;
  std::uint64_t master_range = 0;

  /// Of values of variable length, by channels that have them.
  struct Values {
    std::size_t channel;
    std::uint64_t data_link = 0;  ///< to signal data
    std::uint64_t record_id = 0;  ///< of a group of values in the same data group
    std::uint64_t group = 0;      ///< and its link
    std::uint64_t cycle_count = 0;
    std::uint64_t total_bytes = 0;
  };
  std::vector<Values> values;

  /// Of the sample reductions, as in the plan.
  struct Reduction {
    std::uint64_t data_link = 0;
    std::uint64_t cycle_count = 0;
  };
  std::vector<Reduction> reductions;

  Values* valuesOf(std::size_t channel) {
    for (Values& each : values) {
      if (each.channel == channel) {
        return &each;
      }
    }
    return nullptr;
  }
};

/// Everything in a file before its data, and how it says that it is unfinished.
struct Description {
  std::string bytes;
  std::string finished_identification;
  unsigned record_id_bytes = 0;
  std::vector<GroupPlaces> groups;    ///< as in the plan
  std::uint64_t group_link = 0;       ///< where the link to a data group after all others stands
  std::uint64_t event_link = 0;       ///< where the link to the first event stands
  std::uint64_t attachment_link = 0;  ///< and to the first attachment after those of the plan
};

/// The blocks that say what a plan says. Text that occurs again is stored once.
Description describe(const Plan& plan, Layout layout);

/// The blocks of a group in a data group of its own, which comes last and is placed last.
struct GroupDescription {
  Blocks blocks;
  mdf_v4_10::LINK data_group;
  GroupPlaces places;
};

/// The blocks of a group that is not described yet, from a place in the file on.
GroupDescription describe(const Plan& plan, std::size_t group, std::uint64_t at);

}  // namespace mdf_writer

#endif  // MDF_WRITER_STREAM_DESCRIPTION_H_
