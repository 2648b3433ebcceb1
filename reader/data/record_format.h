#ifndef MDF_READER_DATA_RECORD_FORMAT_H_
#define MDF_READER_DATA_RECORD_FORMAT_H_

#include <cstdint>
#include <string_view>
#include <unordered_map>

#include "../model/description.h"
#include "data_stream.h"

namespace mdf_reader {

/// A record in the data of a data group.
struct Record {
  const ChannelGroup* group = nullptr;  ///< null where there is none
  std::string_view bytes;               ///< without record id, and without its length
  std::uint64_t next = 0;               ///< where the next one begins
  std::uint64_t unknown_id = 0;         ///< with no group: a record id that no group has, or
  bool is_end = true;                   ///< that the data has ended
};

/// How the records of one data group tell which channel group each belongs to.
class RecordFormat {
 public:
  /// @param id_bytes bytes of the record id in front of each record.
  RecordFormat(const DataGroup& data_group, unsigned id_bytes);

  unsigned idBytes() const { return id_bytes_; }

  /// The record that begins at a position of the data. Its bytes are valid until the stream is read
  /// again.
  Record at(DataStream& data, std::uint64_t position) const;

 private:
  Record fixed(DataStream& data, std::uint64_t position, const ChannelGroup& group) const;
  Record variable(DataStream& data, std::uint64_t position, const ChannelGroup& group) const;

  unsigned id_bytes_;
  std::unordered_map<std::uint64_t, const ChannelGroup*> groups_;
};

/// Bytes of the record ids: of the sizes that a data group's code may stand for, the one that fits
/// the data; the first where the data does not decide.
/// @param has_counts the cycle counts of the groups are final.
unsigned recordIdBytes(const DataGroup& data_group, DataStream& data, bool has_counts,
                       const FindingSink& report);

}  // namespace mdf_reader

#endif  // MDF_READER_DATA_RECORD_FORMAT_H_
