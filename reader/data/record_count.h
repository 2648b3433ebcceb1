#ifndef MDF_READER_DATA_RECORD_COUNT_H_
#define MDF_READER_DATA_RECORD_COUNT_H_

#include <cstdint>
#include <optional>
#include <ostream>

namespace mdf_reader {

/// How many records a channel group has.
struct RecordCount {
  std::optional<std::uint64_t> records;  ///< nothing where nobody can tell
  bool is_counted = false;               ///< in the data, for the file leaves it open
};

/// Prints the number, or "unknown".
inline std::ostream& operator<<(std::ostream& os, const RecordCount& count) {
  return count.records ? os << *count.records : os << "unknown";
}

}  // namespace mdf_reader

#endif  // MDF_READER_DATA_RECORD_COUNT_H_
