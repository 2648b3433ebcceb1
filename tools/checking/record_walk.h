#ifndef MDF_TOOLS_CHECKING_RECORD_WALK_H_
#define MDF_TOOLS_CHECKING_RECORD_WALK_H_

#include <cstdint>
#include <memory>
#include <vector>

#include "reader/bytes/allowance.h"
#include "record_data.h"
#include "subject.h"
#include "value_check.h"

namespace mdf_tools {

using namespace mdf_reader;

/// A channel group and its records.
struct RecordGroup {
  std::uint32_t index;
  std::uint64_t record_id;
  std::uint64_t cycles;
  std::uint64_t data_bytes;  ///< of a record
  std::uint64_t invalidation_bytes;
  bool is_variable_length;
  Allowance offset_bytes;  ///< of variable channels that share no bits of the record
  std::vector<VariableChannel> variable_channels{};
  std::vector<std::unique_ptr<ValueCheck>> value_checks{};  ///< each takes every record

  /// Bytes of a record without its record id.
  std::uint64_t recordBytes() const { return data_bytes + invalidation_bytes; }

  // What going through the records has shown.
  std::uint64_t counted = 0;
  std::uint64_t value_bytes = 0;  ///< of records of variable length, each with its length
};

/// The outcome of going through the records of a data group.
struct RecordWalk {
  enum End { fine, unreadable, unknown_id, cut_off } end;
  std::uint64_t position;   ///< of the last record in the data
  std::uint64_t record_id;  ///< of that record
};

/// Goes through the records of groups, which are in the order of their ids. Without ids there is
/// one group.
RecordWalk walkRecords(const Subject& subject, std::vector<RecordGroup>& groups,
                       const DataBlocks& data, std::uint64_t id_bytes);

}  // namespace mdf_tools

#endif  // MDF_TOOLS_CHECKING_RECORD_WALK_H_
