#ifndef MDF_TOOLS_PICTURES_CURVE_H_
#define MDF_TOOLS_PICTURES_CURVE_H_

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "decimator.h"
#include "reader/columns/batch.h"
#include "time_axis.h"

namespace mdf_tools {

using namespace mdf_reader;

/// A curve of a chart.
struct Curve {
  std::string name;
  std::string unit;
  std::string x_label;  ///< its horizontal axis: "time [s]"
  Decimator points;
  std::string file{};                ///< where it is from
  std::string channel{};             ///< its name there
  std::string group{};               ///< the channel group's name, if it has one
  std::string group_number{};        ///< "4", or "4.1" for an element of an array
  unsigned axis = 0;                 ///< the horizontal axis as a synchronisation type; 0: unknown
  std::optional<WallClock> clock{};  ///< that the horizontal axis shows in place of times
  bool is_state = false;             ///< whole numbers without a unit: states, counts, identifiers
};

/// What a file's curves have in common.
struct CurveSource {
  std::string prefix{};              ///< stands in front of their names
  std::string file{};                ///< see Curve
  std::optional<WallClock> clock{};  ///< of the curves over time
};

/// Collects the curves of a chart from tables.
class CurveCollector {
 public:
  /// @param columns of the picture.
  /// @param is_logarithmic whether the values are to stand on an axis that begins above 0.
  CurveCollector(std::vector<Curve>& curves, std::size_t columns, CurveSource source = {},
                 bool is_logarithmic = false)
      : curves_(curves),
        columns_(columns),
        source_(std::move(source)),
        is_logarithmic_(is_logarithmic) {}

  /// Begins a table. Its batches come next.
  void begin(const TableHead& table);
  /// Says whether it wants more.
  bool take(const Batch& batch);

  /// More curves than this are left out.
  static constexpr std::size_t most_curves = 64;

  /// Curves that were left out.
  std::size_t leftOut() const { return left_out_; }

  /// Values that are gaps because they are not above 0, of a logarithmic chart.
  std::uint64_t notAboveZero() const { return not_above_zero_; }

 private:
  void addAboveZero(Curve& curve, const Abscissa& x, std::vector<double> values);

  std::vector<Curve>& curves_;
  std::size_t columns_;
  CurveSource source_;
  bool is_logarithmic_;
  std::size_t first_ = 0;  ///< the table's first curve
  std::size_t left_out_ = 0;
  std::uint64_t not_above_zero_ = 0;
};

/// Whether a curve has a point to draw.
bool hasNumbers(const Curve& curve);

/// Puts the channel groups in front of the names that channels of several groups have: "engine.n",
/// or "4.n" where the group has no name of its own.
void tellApart(std::vector<Curve>& curves);

}  // namespace mdf_tools

#endif  // MDF_TOOLS_PICTURES_CURVE_H_
