#ifndef MDF_TESTS_TOOLS_SUPPORT_MEASUREMENT_BLOCKS_H_
#define MDF_TESTS_TOOLS_SUPPORT_MEASUREMENT_BLOCKS_H_

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "file_builder.h"

namespace mdf_tests {

/// A channel block in the making. Its bytes follow the format; members that are left alone are 0.
struct ChannelSpec {
  std::string name;
  unsigned type = 0;
  unsigned sync_type = 0;
  unsigned data_type = 0;
  std::uint32_t byte_offset = 0;
  std::uint32_t bit_count = 8;
  unsigned bit_offset = 0;
  std::string unit;
  std::uint32_t flags = 0;
  std::uint32_t invalidation_bit = 0;
  std::uint64_t conversion = 0;
  std::uint64_t data = 0;
  std::uint64_t composition = 0;
  std::uint64_t source = 0;
  std::string comment;
  double range_min = 0;
  double range_max = 0;
};

/// A channel group block in the making.
struct GroupSpec {
  std::string name;
  std::uint64_t record_id = 0;
  std::uint64_t cycles = 0;
  std::uint16_t flags = 0;
  std::uint32_t data_bytes = 0;
  std::uint32_t invalidation_bytes = 0;
  std::uint64_t source = 0;
  std::string comment;
  std::uint64_t master = 0;  ///< the group with its master, which takes bit 3 of the flags
};

/// A conversion block in the making.
struct ConversionSpec {
  unsigned type = 0;
  std::vector<std::uint64_t> refs;
  std::vector<double> values;
  std::string unit;
  std::string name;
};

/// Each adds a block with the texts that it wants and returns its offset. Next links are set by the
/// chain functions, or by FileBuilder::link().
std::uint64_t addChannel(FileBuilder& file, const ChannelSpec& spec);
std::uint64_t addChannelGroup(FileBuilder& file, const GroupSpec& spec);
std::uint64_t addDataGroup(FileBuilder& file, std::uint8_t record_id_size, std::uint64_t data);
std::uint64_t addConversion(FileBuilder& file, const ConversionSpec& spec);
std::uint64_t addSource(FileBuilder& file, const std::string& name, const std::string& path,
                        unsigned type, unsigned bus_type);

/// Links blocks to a chain by their link 0.
void chain(FileBuilder& file, const std::vector<std::uint64_t>& blocks);

/// A data group with one channel group and its channels, as the first of the file.
/// @return the channel group
std::uint64_t addGroup(FileBuilder& file, const GroupSpec& group,
                       const std::vector<ChannelSpec>& channels, std::uint64_t data);

}  // namespace mdf_tests

#endif  // MDF_TESTS_TOOLS_SUPPORT_MEASUREMENT_BLOCKS_H_
