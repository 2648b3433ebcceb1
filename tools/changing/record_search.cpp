#include "record_search.h"

#include <algorithm>
#include <string_view>

namespace mdf_tools {

using namespace mdf_reader;

namespace {

constexpr std::size_t part_bytes = std::size_t{1} << 20U;

/// A run of records from a place on: how many there are, up to the most that is told apart, and
/// what comes after the last one.
constexpr std::uint8_t count_bits = 0x3f;
constexpr std::uint8_t ends_with_data = 0x80;
constexpr std::uint8_t is_open = 0x40;  ///< a torn record, or more than is looked at

constexpr std::uint8_t some_records = 3;
constexpr std::uint8_t many_records = 32;

std::uint8_t oneMore(std::uint8_t run) {
  return (run & count_bits) == count_bits ? run : static_cast<std::uint8_t>(run + 1);
}

}  // namespace

RecordSearch::RecordSearch(const DataGroup& data_group, const RecordFormat& format,
                           DataStream& data)
    : format_(format), data_(data) {
  for (const ChannelGroup& group : data_group.groups) {
    const std::uint64_t size = format.idBytes() + group.recordBytes();
    if (!group.holdsVariableLength() && size < part_bytes) {
      sizes_.push_back(size);
    }
  }
  std::sort(sizes_.begin(), sizes_.end());
}

std::optional<std::uint64_t> RecordSearch::after(std::uint64_t position) {
  const bool is_id_unknown = format_.at(data_, position).kind == Record::unknown_id;
  for (const std::uint64_t size : is_id_unknown ? sizes_ : std::vector<std::uint64_t>()) {
    if (isBeginning(position + size, is_id_unknown)) {
      return position + size;
    }
  }
  while (data_.reaches(++position + 1)) {
    if (isBeginning(position, is_id_unknown)) {
      return position;
    }
  }
  return std::nullopt;
}

bool RecordSearch::isBeginning(std::uint64_t position, bool is_id_unknown) {
  const Part& part = partWith(position);
  const std::uint64_t index = position - part.begin;
  const std::uint8_t run =
      index < part.runs.size() ? part.runs[static_cast<std::size_t>(index)] : std::uint8_t{0};
  const unsigned count = run & count_bits;
  return count >= many_records || (count >= some_records && (run & ~count_bits) != 0) ||
         (count > 0 && is_id_unknown && (run & ends_with_data) != 0);
}

/// The last two parts stay: who looks ahead of a place comes back to it.
const RecordSearch::Part& RecordSearch::partWith(std::uint64_t position) {
  const std::uint64_t begin = position - position % part_bytes;
  for (const Part& part : parts_) {
    if (part.begin == begin) {
      return part;
    }
  }
  Part& oldest = parts_[0].begin == UINT64_MAX ||
                         (parts_[1].begin != UINT64_MAX && parts_[0].begin < parts_[1].begin)
                     ? parts_[0]
                     : parts_[1];
  oldest.begin = begin;
  look(oldest);
  return oldest;
}

/// From the last place to the first, so that of each place all is known that comes after it.
void RecordSearch::look(Part& part) {
  const std::string_view bytes = data_.at(part.begin, 2 * part_bytes);
  const bool is_end = !data_.reaches(part.begin + bytes.size() + 1);
  part.runs.assign(bytes.size(), 0);
  for (std::size_t at = bytes.size(); at-- > 0;) {
    const std::string_view rest = bytes.substr(at);
    const RecordFormat::Size size = format_.sizeIn(rest);
    std::uint8_t& run = part.runs[at];
    if (size.bytes < rest.size()) {
      run = size.is_known ? oneMore(part.runs[at + static_cast<std::size_t>(size.bytes)]) : 0;
    } else if (size.is_known && size.bytes == rest.size()) {
      run = is_end ? ends_with_data | 1U : is_open | 1U;
    } else {
      run = size.is_known || size.bytes > rest.size() ? is_open : 0;
    }
  }
}

}  // namespace mdf_tools
