#include "value_check.h"

#include <array>
#include <string>
#include <utility>

#include "framework/wire.h"

namespace mdf_tools {

using mdf_v4_10::detail::loadLe;

namespace {

constexpr std::size_t length_bytes = 4;

}  // namespace

ValueCheck::ValueCheck(const Subject& subject, const VariableChannel& channel, std::uint64_t bytes,
                       std::vector<std::uint64_t> blocks)
    : subject_(subject),
      channel_(channel),
      bytes_(bytes),
      blocks_(std::move(blocks)),
      reader_(subject, blocks_) {}

void ValueCheck::take(std::string_view record) {
  const std::uint64_t offset = offsetIn(record);
  if (!isInvalid(record) && !isThere(offset)) {
    if (missing_ == 0) {
      first_missing_ = records_;
      missing_offset_ = offset;
    }
    ++missing_;
  }
  ++records_;
}

bool ValueCheck::isInvalid(std::string_view record) const {
  const std::uint64_t at = channel_.invalidation_bit / 8;
  if (at >= record.size()) {
    return false;
  }
  const std::uint64_t byte = static_cast<unsigned char>(record[static_cast<std::size_t>(at)]);
  return ((byte >> (channel_.invalidation_bit % 8)) & 1U) != 0;
}

std::uint64_t ValueCheck::offsetIn(std::string_view record) const {
  std::array<char, sizeof(std::uint64_t)> bytes{};
  record.copy(bytes.data(), static_cast<std::size_t>(channel_.bytes()),
              static_cast<std::size_t>(channel_.first_byte));
  const std::uint64_t number = loadLe<std::uint64_t>(bytes.data()) >> channel_.bit_offset;
  return channel_.bit_count < 64 ? number & ((std::uint64_t{1} << channel_.bit_count) - 1) : number;
}

bool ValueCheck::isThere(std::uint64_t offset) {
  if (bytes_ < length_bytes || offset > bytes_ - length_bytes) {
    return false;
  }
  if (offset != latest_ && offset >= reader_.position()) {
    latest_ = offset;
    is_latest_whole_ = isWhole(offset);
  }
  return offset != latest_ || is_latest_whole_;
}

/// Whether a value ends before the data does. Data that cannot be read is not the channel's fault.
bool ValueCheck::isWhole(std::uint64_t offset) {
  std::array<char, length_bytes> bytes{};
  if (!reader_.skip(offset - reader_.position()) || !reader_.read(bytes.data(), bytes.size())) {
    return true;
  }
  return loadLe<std::uint32_t>(bytes.data()) <= bytes_ - length_bytes - offset;
}

void ValueCheck::report() const {
  if (missing_ > 0) {
    subject_.report(Code::value_outside_signal_data, channel_.index,
                    "expected a value of each record in the " + std::to_string(bytes_) +
                        " bytes of signal data, found " + std::to_string(missing_) +
                        " outside, first that of record " + std::to_string(first_missing_) +
                        " at byte " + std::to_string(missing_offset_));
  }
}

}  // namespace mdf_tools
