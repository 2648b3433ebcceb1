#ifndef MDF_READER_MODEL_DESCRIPTION_H_
#define MDF_READER_MODEL_DESCRIPTION_H_

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "../blocks/finding.h"
#include "../blocks/identification.h"
#include "texts.h"

namespace mdf_reader {

class BlockFields;
class InputFile;

/// What the header block says.
struct Header {
  std::uint64_t start_time = 0;  ///< as stored: nanoseconds since 1970, some writers store seconds
  int zone_minutes = 0;
  int daylight_minutes = 0;
  unsigned time_flags = 0;
  unsigned time_class = 0;
  unsigned flags = 0;
  double start_angle = 0;     ///< rad
  double start_distance = 0;  ///< m
  std::uint64_t first_history = 0;
  std::uint64_t first_hierarchy = 0;
  std::uint64_t first_attachment = 0;
  std::uint64_t first_event = 0;
  std::uint64_t comment_block = 0;
  std::string_view comment;

  enum TimeFlag : unsigned { is_local_time = 1, offsets_valid = 2 };
  enum Flag : unsigned { start_angle_valid = 1, start_distance_valid = 2 };
};

/// The elements of a channel that is an array, as far as they stand in its records.
struct ArrayShape {
  std::uint64_t offset = 0;  ///< of the array's block
  std::vector<std::uint64_t> dimensions;
  std::int64_t byte_step = 0;           ///< bytes from one element to the next
  std::uint64_t invalidation_step = 0;  ///< invalidation bits from one element to the next
  bool in_records = true;               ///< false: each element has records of its own
  bool is_column_oriented = false;
  std::vector<ArrayShape> inner;  ///< of arrays that the elements are, level by level
};

struct Channel {
  enum Type : unsigned {
    fixed_length = 0,
    variable_length = 1,
    master = 2,
    virtual_master = 3,
    synchronization = 4,
    maximum_length = 5,
    virtual_data = 6,
  };
  enum DataType : unsigned {
    unsigned_le = 0,
    unsigned_be = 1,
    signed_le = 2,
    signed_be = 3,
    real_le = 4,
    real_be = 5,
    string_latin1 = 6,
    string_utf8 = 7,
    string_utf16_le = 8,
    string_utf16_be = 9,
    byte_array = 10,
    mime_sample = 11,
    mime_stream = 12,
    canopen_date = 13,
    canopen_time = 14,
  };
  enum Flag : unsigned { all_invalid = 1, has_invalidation_bit = 2, has_precision = 4 };

  std::uint64_t offset = 0;
  std::size_t depth = 0;  ///< 0 for a channel of the group's own list, 1 for a member of one, ...
  std::string_view name;
  std::string_view unit;  ///< the channel's own or, failing that, its conversion's
  std::string_view comment;
  unsigned type = 0;
  unsigned sync_type = 0;
  unsigned data_type = 0;
  unsigned bit_offset = 0;
  std::uint32_t byte_offset = 0;
  std::uint32_t bit_count = 0;
  std::uint32_t flags = 0;
  std::uint32_t invalidation_bit = 0;
  unsigned precision = 0;
  std::uint64_t source = 0;  ///< offsets of blocks, 0 for none
  std::uint64_t conversion = 0;
  std::uint64_t data = 0;
  bool is_structure = false;  ///< its members follow, one level deeper; those of each element
  ArrayShape array;           ///< without dimensions for a channel that is none

  bool isMaster() const { return type == master || type == virtual_master; }
  /// Whether this is a master channel and a better axis than another, which may be null: time is
  /// better than angle, and then come distance and index.
  bool isBetterMasterThan(const Channel* other) const {
    return isMaster() && (other == nullptr || sync_type < other->sync_type);
  }
  bool isVirtual() const { return type == virtual_master || type == virtual_data; }
};

/// The channels of a group, each followed by its members. Copies have them in common: the groups of
/// an array's elements are laid out alike.
class Channels {
 public:
  auto begin() const { return list_->begin(); }
  auto end() const { return list_->end(); }
  std::size_t size() const { return list_->size(); }
  bool empty() const { return list_->empty(); }
  const Channel& operator[](std::size_t index) const { return (*list_)[index]; }
  const Channel& at(std::size_t index) const { return list_->at(index); }
  const Channel& back() const { return list_->back(); }

  /// Adds a channel, to all copies.
  void push_back(Channel channel) { list_->push_back(std::move(channel)); }

 private:
  std::shared_ptr<std::vector<Channel>> list_ = std::make_shared<std::vector<Channel>>();
};

struct ChannelGroup {
  enum Flag : unsigned {
    is_variable_length = 1,  ///< its records are the values of a variable-length channel
    is_bus_event = 2,
    is_plain_bus_event = 4,
    has_remote_master = 8,  ///< its master is that of another group, since version 4.2
  };

  std::uint64_t offset = 0;
  std::size_t index = 0;  ///< among all channel groups of the file, from 0 on
  std::string_view name;  ///< the acquisition's
  std::string_view comment;
  std::uint64_t source = 0;
  std::string_view source_name;
  std::uint64_t record_id = 0;
  std::uint64_t cycles = 0;
  unsigned flags = 0;
  std::uint32_t data_bytes = 0;  ///< of a record; for variable-length data see lengthOfAll()
  std::uint32_t invalidation_bytes = 0;  ///< of a record, after the data bytes
  std::uint64_t first_reduction = 0;
  std::uint64_t master_group = 0;  ///< offset of the group with the remote master
  /// The element that its records are of, where an array has its elements in records of their own.
  std::optional<std::size_t> element;
  Channels channels;  ///< as far as they are kept

  /// The acquisition's name or, where it has none, its source's.
  std::string_view shownName() const { return name.empty() ? source_name : name; }

  bool holdsVariableLength() const { return (flags & is_variable_length) != 0; }

  bool hasRemoteMaster() const { return (flags & has_remote_master) != 0; }

  /// Bytes of a record without its record id.
  std::uint64_t recordBytes() const { return std::uint64_t{data_bytes} + invalidation_bytes; }

  /// For variable-length data the two fields together are the length of all values.
  std::uint64_t lengthOfAll() const {
    return (std::uint64_t{invalidation_bytes} << 32U) | data_bytes;
  }

  /// The channel that is the axis of the others. Null when there is none.
  const Channel* masterChannel() const;
};

struct DataGroup {
  std::uint64_t offset = 0;
  std::size_t index = 0;
  unsigned record_id_code = 0;  ///< as stored: a byte count, or 3 and 4 for 4 and 8 bytes
  std::uint64_t data = 0;
  std::string_view comment;
  std::vector<ChannelGroup> groups;
};

/// The description of a measurement: all that a file has, except its data.
struct Description {
  Identification identification;
  Header header;
  std::vector<DataGroup> data_groups;
  std::unique_ptr<Texts> texts;  ///< owns what the views of texts point to
};

/// Reads the description. Reports what is wrong in it, and leaves out the rest of that chain.
/// Memory and time are proportional to the number of blocks, whatever they say: no block is read in
/// twice.
Description readDescription(InputFile& file, const FindingSink& report);

/// Takes the channels of a file one by one, members after their structure. The group comes without
/// its channels.
using ChannelVisitor = std::function<void(const ChannelGroup& group, const Channel& channel)>;

/// The same without keeping the channels, of which files may have millions, but for arrays whose
/// elements have records of their own.
Description readDescription(InputFile& file, const FindingSink& report,
                            const ChannelVisitor& visit);

/// Visits the blocks of one type that a chain leads through, first to last, by their link 0. A link
/// that leads elsewhere, or back to a block of the chain, is reported and ends the chain.
void forEachInChain(InputFile& file, std::uint64_t first, std::string_view letters,
                    const FindingSink& report,
                    const std::function<void(const BlockFields& block)>& visit);

/// The numbers of bytes that a data group's record ids may have by its code; none for a code that
/// is not known. Most writers store the number. Others store 3 for four bytes and 4 for eight, so
/// that a 4 leaves both: four bytes, as the format has it, come first.
std::vector<unsigned> recordIdBytesFor(std::uint64_t code);

/// A source block's texts.
struct Source {
  std::string_view name;
  std::string_view path;
  unsigned type = 0;
  unsigned bus_type = 0;
  bool is_simulated = false;
};
Source readSource(InputFile& file, std::uint64_t offset, Texts& texts);

}  // namespace mdf_reader

#endif  // MDF_READER_MODEL_DESCRIPTION_H_
