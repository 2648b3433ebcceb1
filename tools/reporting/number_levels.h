#ifndef MDF_TOOLS_REPORTING_NUMBER_LEVELS_H_
#define MDF_TOOLS_REPORTING_NUMBER_LEVELS_H_

#include <cstdint>

#include "levels.h"
#include "viewing/extent.h"

namespace mdf_tools {

/// The samples of the channels of a table that are numbers: each of them, or what so many that
/// follow one another are like.
class NumberLevels : public Levels {
 public:
  /// So many of the smallest groups that take the place of samples.
  static constexpr std::size_t first_width = 8;
  /// Fewer samples or groups do not remain.
  static constexpr std::size_t least = 256;

  explicit NumberLevels(std::size_t channels) : channels_(channels) {}

  /// Adds the next records. A number that is not finite is a gap.
  /// @param times do not fall, nor from one call to the next.
  /// @param numbers as many for each channel.
  void add(const std::vector<double>& times, const std::vector<std::vector<double>>& numbers);

  std::uint64_t records() const { return records_; }
  /// How many records a group has; the last one may have fewer.
  std::uint64_t width() const { return width_; }

  std::size_t size() const override;
  bool canCoarsen() const override;
  void coarsen() override;
  /// The times, and the numbers of each channel; of groups the times of the first and of the last
  /// record, and for each channel minimum, maximum, first, last, mean, squares, values and gaps of
  /// each.
  std::vector<PackedNumbers> pack() const override;

 private:
  struct Channel {
    std::vector<double> numbers;  ///< as long as there are no groups
    std::vector<Extent> groups;
  };

  void addGroups(const std::vector<double>& times, const std::vector<std::vector<double>>& numbers);
  void groupSamples();
  void joinGroups();

  std::uint64_t records_ = 0;
  std::uint64_t width_ = 1;
  std::vector<double> begins_;
  std::vector<double> ends_;  ///< of groups
  std::vector<Channel> channels_;
};

}  // namespace mdf_tools

#endif  // MDF_TOOLS_REPORTING_NUMBER_LEVELS_H_
