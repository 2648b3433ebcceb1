#ifndef MDF_READER_DATA_RECORD_FORMAT_H_
#define MDF_READER_DATA_RECORD_FORMAT_H_

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "../model/description.h"
#include "data_stream.h"
#include "framework/wire.h"

namespace mdf_reader {

/// A record in the data of a data group, or why there is none.
struct Record {
  enum Kind {
    whole,
    end,         ///< the data has ended
    unknown_id,  ///< no channel group has the record id
    torn,        ///< the data ends before the record does
    past_end,    ///< the same, by the length that a record of variable length states
  };
  Kind kind = end;
  const ChannelGroup* group = nullptr;  ///< of a whole one
  std::string_view bytes;               ///< without record id, and without its length
  std::uint64_t next = 0;               ///< where the next one begins
  std::uint64_t number = 0;  ///< the unknown id, the bytes that there should be, or the length
  std::size_t index = 0;     ///< of the group of a whole one, among those of its data group
  bool has_length = false;   ///< a whole one is a value of variable length
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

  /// The record that some bytes of the data begin with, where all of it is in them; one without a
  /// group for others.
  /// @param position of the bytes in the data.
  Record wholeIn(std::string_view bytes, std::uint64_t position) const {
    const Frame& frame = bytes.size() < id_bytes_ ? none_ : frameOf(loadId(bytes.data()));
    std::size_t head = id_bytes_;
    std::uint64_t length = frame.bytes;
    if (frame.has_length) {
      head += length_bytes;
      length = bytes.size() < head ? 0 : lengthIn(bytes.data());
    }
    if (frame.group == nullptr || bytes.size() < head || bytes.size() - head < length) {
      return {};
    }
    return {Record::whole,
            frame.group,
            bytes.substr(head, static_cast<std::size_t>(length)),
            position + head + length,
            0,
            frame.index,
            frame.has_length};
  }

  /// How many bytes the record has that some bytes begin with.
  struct Size {
    bool is_known;        ///< else no channel group has its id, or the bytes are too few to tell
    std::uint64_t bytes;  ///< more than there are where they are too few; 0 for an unknown id
  };
  Size sizeIn(std::string_view bytes) const {
    if (bytes.size() < id_bytes_) {
      return {false, id_bytes_};
    }
    const Frame& frame = frameOf(loadId(bytes.data()));
    const std::uint64_t head = id_bytes_ + std::uint64_t{frame.has_length ? length_bytes : 0};
    if (frame.group == nullptr || bytes.size() < head) {
      return {false, frame.group == nullptr ? 0 : head};
    }
    return {true, head + (frame.has_length ? lengthIn(bytes.data()) : frame.bytes)};
  }

 private:
  static constexpr std::size_t length_bytes = 4;

  /// What a record id says of the record.
  struct Frame {
    const ChannelGroup* group = nullptr;
    std::uint64_t bytes = 0;  ///< after the id, unless it has a length
    std::size_t index = 0;    ///< of the group
    bool has_length = false;
  };
  Record fixed(DataStream& data, std::uint64_t position, const Frame& frame) const;
  Record variable(DataStream& data, std::uint64_t position, const Frame& frame) const;
  std::uint64_t loadId(const char* bytes) const {
    std::uint64_t id = 0;
    for (std::size_t i = id_bytes_; i-- > 0;) {
      id = (id << 8U) | static_cast<unsigned char>(bytes[i]);
    }
    return id;
  }
  std::uint64_t lengthIn(const char* record) const {
    return mdf_v4_10::detail::loadLe<std::uint32_t>(record + id_bytes_);
  }
  const Frame& frameOf(std::uint64_t id) const {
    if (only_.group != nullptr) {
      return only_;
    }
    return id < small_ids_.size() ? small_ids_[static_cast<std::size_t>(id)] : frameOfLarge(id);
  }
  const Frame& frameOfLarge(std::uint64_t id) const;

  unsigned id_bytes_;
  Frame only_;  ///< of all records without ids
  Frame none_;  ///< of unknown ids
  std::vector<Frame> small_ids_;
  std::unordered_map<std::uint64_t, Frame> large_ids_;
};

/// Bytes of the record ids of a data group. Of those that its code may stand for they are the ones
/// that its data is made of or, where none fits, that more of it can be read with; the first where
/// the data does not decide. Of a code that is not known it is 0.
/// @param has_counts the cycle counts of the groups are final.
unsigned recordIdBytes(const DataGroup& data_group, DataStream& data, bool has_counts);

}  // namespace mdf_reader

#endif  // MDF_READER_DATA_RECORD_FORMAT_H_
