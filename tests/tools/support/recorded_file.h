#ifndef MDF_TESTS_TOOLS_SUPPORT_RECORDED_FILE_H_
#define MDF_TESTS_TOOLS_SUPPORT_RECORDED_FILE_H_

#include <cstdint>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

namespace mdf_tests {

/// A block as its bytes say.
struct RecordedBlock {
  std::uint64_t position = 0;
  std::uint64_t length = 0;
  std::string type;  ///< "##HD" and so on
  std::vector<std::uint64_t> links;
  std::string data;  ///< all after the links
};

struct RecordedChannel {
  std::string name;
  std::string unit;
  unsigned type = 0;
  unsigned sync_type = 0;
  unsigned data_type = 0;
  std::uint32_t byte_offset = 0;
  std::uint32_t bit_count = 0;
  std::vector<double> values;
};

/// A recorded file, taken apart from its bytes alone, with nothing of the library. What is wrong
/// with its structure becomes a test failure.
class RecordedFile {
 public:
  explicit RecordedFile(const std::filesystem::path& path);

  const std::string& bytes() const { return bytes_; }

  /// The number of `width` bytes at an offset of the file.
  std::uint64_t numberAt(std::uint64_t offset, unsigned width) const;

  /// Every block that links lead to from the header block, by position.
  const std::map<std::uint64_t, RecordedBlock>& blocks() const { return blocks_; }

  /// The block at a position; an empty one, and a test failure, when there is none of that type.
  const RecordedBlock& block(std::uint64_t position, const std::string& type) const;

  const RecordedBlock& header() const { return block(64, "##HD"); }
  const RecordedBlock& dataGroup() const { return block(header().links.at(0), "##DG"); }
  const RecordedBlock& channelGroup() const { return block(dataGroup().links.at(1), "##CG"); }
  const RecordedBlock& data() const { return block(dataGroup().links.at(2), "##DT"); }

  /// A text or XML block without its terminating zero; empty for a nil link.
  std::string text(std::uint64_t position, const std::string& type) const;

  /// The channels in the order of their chain, with their values in all records.
  std::vector<RecordedChannel> channels() const;

  std::uint64_t cycleCount() const;
  std::uint32_t recordBytes() const;

  /// Expects what holds for every finished recording: the identification, blocks on multiples of 8
  /// that fill the file but for fewer than 8 zeros between two, one data group with one channel
  /// group, channels that tile the records, as many records as the cycle count says.
  void expectComplete() const;

 private:
  void collect(std::uint64_t position);
  void expectNoGaps() const;
  void expectChannelsTileRecords() const;
  double valueOf(const RecordedChannel& channel, std::uint64_t record) const;

  std::string bytes_;
  std::map<std::uint64_t, RecordedBlock> blocks_;
};

}  // namespace mdf_tests

#endif  // MDF_TESTS_TOOLS_SUPPORT_RECORDED_FILE_H_
