#ifndef MDF_TOOLS_CHECKING_VALUE_CHECK_H_
#define MDF_TOOLS_CHECKING_VALUE_CHECK_H_

#include <cstdint>
#include <string_view>
#include <vector>

#include "record_data.h"
#include "subject.h"

namespace mdf_tools {

/// A channel whose records hold the offsets of values that stand elsewhere.
struct VariableChannel {
  std::uint32_t index;
  std::uint64_t values;  ///< link to signal data, or to a channel group whose records are values
  std::uint64_t first_byte;  ///< of the offset in a record
  std::uint64_t bit_offset;
  std::uint64_t bit_count;
  std::uint64_t invalidation_bit;  ///< counted from the record's first one on; or none

  static constexpr std::uint64_t none = UINT64_MAX;

  /// Bytes of a record that the offset has bits in.
  std::uint64_t bytes() const { return (bit_offset + bit_count + 7) / 8; }
};

/// Checks that such a channel's values are where its records say, each after its length in four
/// bytes.
///
/// The values are read once, from the first to the last, so that no zipped block is unzipped twice
/// however the offsets jump. Of a value that stands before the latest one only the offset is
/// checked: its length must be there, and may say anything.
class ValueCheck {
 public:
  /// @param bytes of all values with their lengths
  /// @param blocks with the values; none if lengths are not to be checked
  ValueCheck(const Subject& subject, const VariableChannel& channel, std::uint64_t bytes,
             std::vector<std::uint64_t> blocks);
  ~ValueCheck() = default;
  ValueCheck(const ValueCheck&) = delete;
  ValueCheck& operator=(const ValueCheck&) = delete;

  /// Takes the next record, which has all bytes of the offset.
  void take(std::string_view record);

  /// Reports how many records have no value, if any.
  void report() const;

 private:
  bool isInvalid(std::string_view record) const;
  std::uint64_t offsetIn(std::string_view record) const;
  bool isThere(std::uint64_t offset);
  bool isWhole(std::uint64_t offset);

  const Subject& subject_;
  VariableChannel channel_;
  std::uint64_t bytes_;
  std::vector<std::uint64_t> blocks_;
  DataReader reader_;
  std::uint64_t latest_ = UINT64_MAX;  ///< offset of the latest value that was read
  bool is_latest_whole_ = true;
  std::uint64_t records_ = 0;
  std::uint64_t missing_ = 0;
  std::uint64_t first_missing_ = 0;  ///< number of the first record without a value
  std::uint64_t missing_offset_ = 0;
};

}  // namespace mdf_tools

#endif  // MDF_TOOLS_CHECKING_VALUE_CHECK_H_
