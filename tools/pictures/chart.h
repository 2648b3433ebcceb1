#ifndef MDF_TOOLS_PICTURES_CHART_H_
#define MDF_TOOLS_PICTURES_CHART_H_

#include <cstddef>
#include <string>
#include <vector>

#include "decimator.h"
#include "reader/columns/batch.h"

namespace mdf_tools {

using namespace mdf_reader;

/// A curve of a chart.
struct Curve {
  std::string name;
  std::string unit;
  std::string x_label;  ///< its horizontal axis: "time [s]"
  Decimator points;
  std::string file{};     ///< where it is from
  std::string channel{};  ///< its name there
};

/// Collects the curves of a chart from tables.
class CurveCollector {
 public:
  /// @param columns of the picture.
  /// @param prefix stands in front of the curves' names.
  CurveCollector(std::vector<Curve>& curves, std::size_t columns, std::string prefix,
                 std::string file = {})
      : curves_(curves), columns_(columns), prefix_(std::move(prefix)), file_(std::move(file)) {}

  /// Begins a table. Its batches come next.
  void begin(const TableHead& table);
  /// Says whether it wants more.
  bool take(const Batch& batch);

  /// More curves than this are left out.
  static constexpr std::size_t most_curves = 64;

  /// Curves that were left out.
  std::size_t leftOut() const { return left_out_; }

 private:
  std::vector<Curve>& curves_;
  std::size_t columns_;
  std::string prefix_;
  std::string file_;
  std::size_t first_ = 0;  ///< the table's first curve
  std::size_t left_out_ = 0;
};

/// How a chart is to be drawn.
struct ChartForm {
  enum class Kind { svg, png, ascii };

  Kind kind = Kind::svg;
  std::string title;
  std::size_t width = 1200;  ///< pixels, or characters
  std::size_t height = 0;    ///< the same; 0 for what the panels need
};

/// Commands for gnuplot that draw a chart to its standard output: a panel for each unit, one below
/// another. Texts of the file are quoted so that gnuplot carries out nothing in them.
std::string gnuplotScript(const std::vector<Curve>& curves, const ChartForm& form);

}  // namespace mdf_tools

#endif  // MDF_TOOLS_PICTURES_CHART_H_
