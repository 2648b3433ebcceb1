#ifndef MDF_TESTS_TOOLS_SUPPORT_FILE_BUILDER_H_
#define MDF_TESTS_TOOLS_SUPPORT_FILE_BUILDER_H_

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "support/bytes.h"

namespace mdf_tests {

/// A channel block in the making: its fields in nearly the format's order, then its texts and
/// links. Members that are left alone are 0; the channel is then the first byte of a record.
struct ChannelSpec {
  unsigned type = 0;
  unsigned sync_type = 0;
  unsigned data_type = 0;
  unsigned bit_offset = 0;
  std::uint32_t byte_offset = 0;
  std::uint32_t bit_count = 8;
  std::uint32_t flags = 0;
  std::uint32_t invalidation_bit = 0;
  std::uint16_t attachments = 0;
  double range_min = 0;
  double range_max = 0;
  std::string name = "";
  std::string unit = "";
  std::string comment = "";
  std::uint64_t composition = 0;
  std::uint64_t source = 0;
  std::uint64_t conversion = 0;
  std::uint64_t data = 0;

  /// What stands after the links.
  std::string fields() const;
};

/// A channel of so many bits at a byte of the record.
ChannelSpec channelOf(const std::string& name, unsigned data_type, std::uint32_t byte_offset,
                      std::uint32_t bit_count);

/// The first byte of a record.
inline ChannelSpec firstByte(const std::string& name) { return channelOf(name, 0, 0, 8); }

/// A master channel over time of type double, "time" in "s".
ChannelSpec timeChannel(std::uint32_t byte_offset = 0);

/// A channel group block in the making.
struct GroupSpec {
  std::uint64_t cycles = 0;
  std::uint32_t data_bytes = 0;
  std::uint32_t invalidation_bytes = 0;
  std::uint64_t record_id = 0;
  std::uint16_t flags = 0;
  std::string name = "";
  std::string comment = "";
  std::uint64_t source = 0;
  std::uint64_t master = 0;  ///< the group with its master, which takes bit 3 of the flags

  std::string fields() const;
};

/// A conversion block in the making.
struct ConversionSpec {
  unsigned type = 0;
  std::vector<std::uint64_t> refs;
  std::vector<double> values;
  std::string unit = "";
  std::string name = "";
};

/// The fields of a data group.
std::string dataGroupFields(unsigned record_id_size);

/// Puts a file together block by block, with bytes that are written down by hand: it shares nothing
/// with the library and follows the format, so that links stand in front of the fields and nowhere
/// else. Each block is placed at the next 8-byte boundary; links to blocks that come later are set
/// when these are there.
class FileBuilder {
 public:
  /// Identification and header block; the file word may be "UnFinMF ".
  explicit FileBuilder(const std::string& file_word = "MDF     ", unsigned version = 410);

  /// Adds a block and returns its offset, as all that follow do. `contents` stands after the links.
  std::uint64_t add(const std::string& letters, const std::vector<std::uint64_t>& links,
                    const std::string& contents = {});

  /// A text block, or a metadata block, with a zero byte at the end of the text.
  std::uint64_t text(const std::string& text) { return add("TX", {}, terminated(text)); }
  std::uint64_t metadata(const std::string& xml) { return add("MD", {}, terminated(xml)); }

  /// A channel with the texts that it wants, in no group yet.
  std::uint64_t addChannel(const ChannelSpec& spec);

  std::uint64_t addTime(std::uint32_t byte_offset = 0) {
    return addChannel(timeChannel(byte_offset));
  }

  /// A channel group of these channels, which get linked to one another, in no data group yet.
  std::uint64_t addChannelGroup(const GroupSpec& spec,
                                const std::vector<std::uint64_t>& channels = {});

  /// The same with the channels' blocks, which are channels() until the next one.
  std::uint64_t addGroupOf(const GroupSpec& spec, const std::vector<ChannelSpec>& channels);
  const std::vector<std::uint64_t>& channels() const { return channels_; }

  /// A data group of these channel groups, after those that are there.
  std::uint64_t addDataGroup(const std::vector<std::uint64_t>& groups, std::uint64_t data,
                             unsigned record_id_size = 0);

  /// A data group with one channel group, and no record ids.
  std::uint64_t addSortedGroup(const GroupSpec& spec, const std::vector<ChannelSpec>& channels,
                               std::uint64_t data) {
    return addDataGroup({addGroupOf(spec, channels)}, data);
  }

  std::uint64_t addData(const std::string& records) { return add("DT", {}, records); }

  std::uint64_t addConversion(const ConversionSpec& spec);
  std::uint64_t addSource(const std::string& name, const std::string& path, unsigned type,
                          unsigned bus_type);

  /// Sets a link of a block that is there.
  void link(std::uint64_t block, std::size_t index, std::uint64_t target);

  /// Links blocks of one type to a chain by their first links.
  void chain(const std::vector<std::uint64_t>& blocks);

  /// Overwrites bytes.
  void write(std::uint64_t offset, const std::string& bytes);

  /// Bytes outside any block, without filling up to the next boundary.
  void append(const std::string& bytes) { bytes_ += bytes; }

  static constexpr std::uint64_t header = 64;  ///< where the header block is

  const std::string& bytes() const { return bytes_; }

 private:
  static std::string terminated(const std::string& text) { return text + '\0'; }
  std::uint64_t textOrNone(const std::string& text);

  std::string bytes_;
  std::uint64_t last_data_group_ = 0;
  std::vector<std::uint64_t> channels_;
};

}  // namespace mdf_tests

#endif  // MDF_TESTS_TOOLS_SUPPORT_FILE_BUILDER_H_
