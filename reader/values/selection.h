#ifndef MDF_READER_VALUES_SELECTION_H_
#define MDF_READER_VALUES_SELECTION_H_

#include <optional>
#include <string>
#include <vector>

namespace mdf_reader {

/// Which samples are wanted, and how.
struct Selection {
  std::vector<std::string> channels;  ///< patterns as for file names; none for all channels
  std::string group;           ///< its number or a pattern of its name; "" for all channel groups
  std::optional<double> from;  ///< limits of the master channel's values
  std::optional<double> to;
  bool is_raw = false;  ///< values as they are stored, without conversions
};

}  // namespace mdf_reader

#endif  // MDF_READER_VALUES_SELECTION_H_
