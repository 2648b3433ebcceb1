#ifndef MDF_READER_COLUMNS_QUERY_H_
#define MDF_READER_COLUMNS_QUERY_H_

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace mdf_reader {

/// Which samples are wanted, and how.
struct Query {
  std::vector<std::string> channels;  ///< patterns as for file names; none for all channels
  std::string group;           ///< its number or a pattern of its name; "" for all channel groups
  std::optional<double> from;  ///< limits of the master channel's values
  std::optional<double> to;
  bool raw = false;                ///< values as they are stored, without conversions
  bool numbers = false;            ///< where a conversion gives a text, the number that is stored
  std::size_t batch_rows = 65536;  ///< the most rows of a batch
};

}  // namespace mdf_reader

#endif  // MDF_READER_COLUMNS_QUERY_H_
