#ifndef MDF_TOOLS_REPORTING_TEXT_LEVELS_H_
#define MDF_TOOLS_REPORTING_TEXT_LEVELS_H_

#include <string_view>

#include "levels.h"
#include "viewing/bands.h"

namespace mdf_tools {

/// The texts of a channel, from one change to the next; where changes are too many, "several"
/// stands for those that are near to one another.
class TextLevels : public Levels {
 public:
  /// Fewer changes do not remain.
  static constexpr std::size_t least = 256;

  /// Adds the next sample; times do not fall. Of long texts the beginning is kept, and "…".
  void add(double time, std::string_view text);
  /// Adds one without a text.
  void addGap(double time);

  std::size_t size() const override { return bands_.size(); }
  bool canCoarsen() const override { return runs_ > 2 * least; }
  void coarsen() override;
  /// The times of the changes, what they change to, and the texts as a list of JSON: a number of
  /// one, -1 for no text, -2 for several.
  std::vector<PackedNumbers> pack() const override;

 private:
  std::vector<Bands::Run> runs(std::size_t columns) const;
  void addCode(double time, std::uint32_t code);

  Bands bands_;
  double first_ = 0;
  double last_ = 0;
  std::uint32_t last_code_ = Bands::no_text;
  std::size_t runs_ = 0;  ///< at most
};

}  // namespace mdf_tools

#endif  // MDF_TOOLS_REPORTING_TEXT_LEVELS_H_
