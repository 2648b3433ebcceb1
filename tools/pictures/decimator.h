#ifndef MDF_TOOLS_PICTURES_DECIMATOR_H_
#define MDF_TOOLS_PICTURES_DECIMATOR_H_

#include <cstddef>
#include <vector>

namespace mdf_tools {

struct Point {
  double x = 0;
  double y = 0;  ///< not a number where the line has a gap
};

/// Keeps as much of a curve as a picture shows, however many points it has: the first, the lowest,
/// the highest and the last point of each column of the picture. The columns widen as the curve
/// goes on; a curve of few points is kept as it is.
class Decimator {
 public:
  explicit Decimator(std::size_t columns) : column_count_(columns) {}

  /// Adds a point. Where the curve has no value, or one beyond what can be drawn, there is a gap.
  void add(double x, double y);
  /// Adds points that follow one another.
  void add(const double* x, const double* y, std::size_t count);

  /// The curve; from left to right if it was thinned out.
  std::vector<Point> points() const;

 private:
  struct Column {
    Point first;
    Point lowest;
    Point highest;
    Point last;
    bool is_empty = true;
    bool ends_in_gap = false;

    void add(const Point& point);
    void add(const double* x, const double* y, std::size_t count);
    void append(const Column& right);
  };

  void addGap(double x);
  void makeColumns();
  void addToColumn(const Point& point);
  void widen(bool to_the_left);
  std::size_t columnOf(double x) const;

  std::size_t column_count_;
  std::vector<Point> points_;  ///< as long as they are few
  std::vector<Column> columns_;
  double begin_ = 0;
  double width_ = 0;
  std::size_t last_column_ = 0;
  double inside_from_ = 1;  ///< from here to there, points are in the last column for certain
  double inside_to_ = 0;
};

}  // namespace mdf_tools

#endif  // MDF_TOOLS_PICTURES_DECIMATOR_H_
