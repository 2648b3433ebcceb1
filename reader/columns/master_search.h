#ifndef MDF_READER_COLUMNS_MASTER_SEARCH_H_
#define MDF_READER_COLUMNS_MASTER_SEARCH_H_

#include <cstdint>
#include <functional>
#include <map>

namespace mdf_reader {

/// Looks for the record from which on the values of a master channel reach a limit. Values that
/// grow evenly are found at once, others by bisection: each one asked for may cost a block that is
/// unzipped.
class MasterSearch {
 public:
  /// Gives the master's value of a record; NaN where it cannot be had alone.
  using MasterAt = std::function<double(std::uint64_t number)>;

  /// @param begin,end the first record and the one after the last; there is at least one.
  MasterSearch(std::uint64_t begin, std::uint64_t end, MasterAt master);

  /// The first record whose value is at least the limit; the end for none.
  std::uint64_t firstFrom(double limit);
  /// The first record whose value is greater than the limit; the end for none.
  std::uint64_t firstAfter(double limit);

  /// Looks at some more values, here and there, which tells more of times that begin anew.
  void look();

  /// Whether the values looked at grow, or stay. Only then is what was found true.
  bool isGrowing() const;

 private:
  template <class IsReached>
  std::uint64_t first(double limit, const IsReached& is_reached);
  double value(std::uint64_t number);

  std::uint64_t begin_;
  std::uint64_t end_;
  MasterAt master_;
  std::map<std::uint64_t, double> seen_;
};

}  // namespace mdf_reader

#endif  // MDF_READER_COLUMNS_MASTER_SEARCH_H_
