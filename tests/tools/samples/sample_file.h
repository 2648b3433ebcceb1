#ifndef MDF_TESTS_TOOLS_SAMPLES_SAMPLE_FILE_H_
#define MDF_TESTS_TOOLS_SAMPLES_SAMPLE_FILE_H_

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "sample.h"
#include "tools/support/file_builder.h"

namespace mdf_tests {

/// A measurement file in the making that has what each needs: a start time, and a file history.
class SampleFile : public FileBuilder {
 public:
  explicit SampleFile(const std::string& file_word = "MDF     ", unsigned version = 410);

  /// A file that was not closed, by its standard and custom flags.
  static SampleFile unfinished(std::uint16_t standard_flags, std::uint16_t custom_flags = 0);

  std::uint64_t history() const { return history_; }

 private:
  std::uint64_t history_;
};

/// A sample without complaints.
Sample sampleOf(const std::string& name, const std::string& shows, const FileBuilder& file,
                const std::vector<ValueTable>& tables);

/// Bytes from pairs of hexadecimal digits, with blanks where they help.
std::string hex(const std::string& digits);

/// A channel "v" of fixed length.
ChannelSpec stored(unsigned data_type, std::uint32_t bit_count, unsigned bit_offset = 0);

/// An unsigned channel at a byte of the record.
ChannelSpec part(const std::string& name, std::uint32_t byte_offset, std::uint32_t bit_count = 8,
                 unsigned bit_offset = 0);

/// A master channel "t" over time in front of a record: a real number of eight bytes, in seconds.
ChannelSpec timeMaster();

/// The time of a record: half a second each.
double timeOf(std::size_t index);
std::string timeCell(std::size_t index);

/// A raw value of the channel "v", as it is stored and as it is exported.
struct StoredValue {
  std::string digits;  ///< hexadecimal
  std::string cell;
};

/// A sample with one channel beside the time, which has a record for each of the values.
Sample valueSample(const std::string& name, const std::string& shows, SampleFile file,
                   ChannelSpec channel, const std::vector<StoredValue>& values);
Sample valueSample(const std::string& name, const std::string& shows, const ChannelSpec& channel,
                   const std::vector<StoredValue>& values);

/// Records of ten bytes: the time, and a number "v" of 16 bits that goes up by 7.
std::string countingRecords(std::size_t count);
std::vector<ChannelSpec> countingChannels();
GroupSpec countingGroup(std::size_t count);
ValueTable countingTable(std::size_t count);

}  // namespace mdf_tests

#endif  // MDF_TESTS_TOOLS_SAMPLES_SAMPLE_FILE_H_
