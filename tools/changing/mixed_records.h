#ifndef MDF_TOOLS_CHANGING_MIXED_RECORDS_H_
#define MDF_TOOLS_CHANGING_MIXED_RECORDS_H_

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "reader/data/data_stream.h"
#include "reader/data/record_format.h"

namespace mdf_tools {

using namespace mdf_reader;

/// Visits the records of all groups of a data group in the order of the data, as far as they are
/// whole. The visitor takes a record, and how its bytes can be had with what stands in front of it.
template <class Visit>
void forEachMixedRecord(const RecordFormat& format, DataStream& stream, const Visit& visit) {
  std::uint64_t position = 0;
  std::string_view bytes;
  while (true) {
    Record record = format.wholeIn(bytes, position);
    const bool is_in_memory = record.group != nullptr;
    if (!is_in_memory) {
      record = format.at(stream, position);
    }
    if (record.group == nullptr) {
      return;
    }
    const auto length = static_cast<std::size_t>(record.next - position);
    visit(record,
          [&] { return is_in_memory ? bytes.substr(0, length) : stream.at(position, length); });
    bytes = is_in_memory ? bytes.substr(length) : stream.from(record.next, 1, SIZE_MAX);
    position = record.next;
  }
}

}  // namespace mdf_tools

#endif  // MDF_TOOLS_CHANGING_MIXED_RECORDS_H_
