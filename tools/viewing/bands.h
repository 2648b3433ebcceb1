#ifndef MDF_TOOLS_VIEWING_BANDS_H_
#define MDF_TOOLS_VIEWING_BANDS_H_

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace mdf_tools {

/// A text channel as bands: from one change of its text to the next.
class Bands {
 public:
  static constexpr std::uint32_t no_text = UINT32_MAX;      ///< invalid, or out of order
  static constexpr std::uint32_t several = UINT32_MAX - 1;  ///< more than can be told apart
  static constexpr std::size_t most_runs = std::size_t{1} << 21U;
  static constexpr std::size_t most_texts = std::size_t{1} << 16U;
  static constexpr std::size_t longest_text = 200;  ///< bytes; more are cut off

  /// A text from a time up to that of the next run.
  struct Run {
    double time = 0;
    std::uint32_t code = no_text;

    bool operator==(const Run& other) const { return time == other.time && code == other.code; }
  };

  /// The code of a text.
  std::uint32_t codeOf(std::string_view text);
  /// Adds the next sample; times do not fall.
  void add(double time, std::uint32_t code);

  /// How many runs there are.
  std::size_t runs() const { return runs_.size(); }
  /// Those with the same codes of texts, and no runs yet.
  Bands withoutRuns() const;
  /// Forgets all runs but so many; not their texts.
  void cut(std::size_t runs) { runs_.resize(std::min(runs, runs_.size())); }

  const std::string& text(std::uint32_t code) const { return texts_[code]; }
  std::size_t texts() const { return texts_.size(); }

  /// The runs from the one at a time up to another time, thinned out to so many columns of a
  /// picture: where one has several texts, it says so.
  std::vector<Run> runs(double from, double to, std::size_t columns) const;
  /// The code at a time.
  std::uint32_t at(double time) const;

  /// Bytes of memory.
  std::size_t size() const;

 private:
  friend class OutlineFile;

  std::size_t indexAt(double time) const;

  std::vector<Run> runs_;
  std::vector<std::string> texts_;
  std::unordered_map<std::string, std::uint32_t> codes_;
  std::size_t text_bytes_ = 0;
};

}  // namespace mdf_tools

#endif  // MDF_TOOLS_VIEWING_BANDS_H_
