#ifndef MDF_TESTS_TOOLS_SUPPORT_RECORDED_FILE_H_
#define MDF_TESTS_TOOLS_SUPPORT_RECORDED_FILE_H_

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace mdf_tests {

struct RecordedChannel {
  std::string name;
  std::string unit;
  unsigned type = 0;
  unsigned sync_type = 0;
  unsigned data_type = 0;
  std::uint32_t bit_count = 0;
  std::vector<double> values;  ///< in all records
};

/// A recording: its first group as the reader gives it, with values from the bytes of its records.
class RecordedFile {
 public:
  explicit RecordedFile(const std::filesystem::path& path);

  const std::string& bytes() const { return bytes_; }
  /// The number of `width` bytes at an offset of the file.
  std::uint64_t numberAt(std::uint64_t offset, unsigned width) const;

  const std::vector<RecordedChannel>& channels() const { return channels_; }
  /// As the group states it.
  std::uint64_t cycleCount() const { return cycles_; }
  std::uint64_t records() const { return records_; }

  /// Expects a finished file that a check finds nothing in, and that states its records.
  void expectComplete() const;

 private:
  std::string bytes_;
  std::vector<RecordedChannel> channels_;
  std::uint64_t cycles_ = 0;
  std::uint64_t records_ = 0;
};

}  // namespace mdf_tests

#endif  // MDF_TESTS_TOOLS_SUPPORT_RECORDED_FILE_H_
