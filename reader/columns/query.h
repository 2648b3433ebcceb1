#ifndef MDF_READER_COLUMNS_QUERY_H_
#define MDF_READER_COLUMNS_QUERY_H_

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace mdf_reader {

/// Which samples are wanted, and how.
struct Query {
  std::vector<std::string> channels;  ///< patterns as for file names; none for all channels
  std::string group;  ///< its number or a pattern of its name; "" for all channel groups
  /// Limits of the master channel's values. Records side by side are looked up by bisection, for
  /// times that grow; where those looked at do not, all records are gone through.
  std::optional<double> from;
  std::optional<double> to;
  bool raw = false;  ///< values as they are stored, without conversions
  /// Where a conversion gives a text, the number that is stored; or what the conversion makes of
  /// other numbers, if that is one more conversion.
  bool numbers = false;
  std::uint64_t skip = 0;  ///< so many records of each group are left out at its beginning
  std::optional<std::uint64_t> first =
      std::nullopt;  ///< so many records of the others, the first ones
  std::optional<std::uint64_t> last = std::nullopt;  ///< the same of the last ones
  std::uint64_t stride = 1;        ///< of those, the first one and each so many-th after it
  std::size_t batch_rows = 65536;  ///< the most rows of a batch
  std::size_t threads = 0;         ///< that unzip data; 0 for as many as there are cores
  /// Of arrays whose elements have records of their own, this one, counted from 0, and no other
  /// channel groups.
  std::optional<std::uint64_t> element = std::nullopt;
};

}  // namespace mdf_reader

#endif  // MDF_READER_COLUMNS_QUERY_H_
