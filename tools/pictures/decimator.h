#ifndef MDF_TOOLS_PICTURES_DECIMATOR_H_
#define MDF_TOOLS_PICTURES_DECIMATOR_H_

#include <array>
#include <cstddef>
#include <vector>

namespace mdf_tools {

struct Point {
  double x = 0;
  double y = 0;  ///< not a number where the line has a gap
};

/// The x of points that follow one another. It is looked at once, however many curves share it.
class Abscissa {
 public:
  /// @param x so many numbers, which must outlast this object.
  Abscissa(const double* x, std::size_t count);

  /// So many are looked at together; the last ones, where they are fewer, are not.
  static constexpr std::size_t at_once = 128;

  std::size_t size() const { return count_; }
  double operator[](std::size_t index) const { return x_[index]; }
  /// Whether all of those at once, from an index on, are between two numbers. In doubt they are
  /// not.
  bool areBetween(double from, double to, std::size_t index) const {
    const std::size_t piece = index / at_once;
    return piece < pieces_.size() && from < pieces_[piece][0] && pieces_[piece][1] < to;
  }

 private:
  const double* x_;
  std::size_t count_;
  std::vector<std::array<double, 2>> pieces_;  ///< the lowest and the highest of each
};

/// Keeps as much of a curve as a picture shows, however many points it has: the first, the lowest,
/// the highest and the last point of each column of the picture. The columns widen as the curve
/// goes on; a curve of few points is kept as it is.
class Decimator {
 public:
  explicit Decimator(std::size_t columns) : column_count_(columns) {}

  /// Adds a point. Where the curve has no value, or one beyond what can be drawn, there is a gap.
  void add(double x, double y);
  /// Adds points that follow one another; y is of any type that a column's numbers have.
  template <class Number>
  void add(const Abscissa& x, const Number* y);

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
    template <class Number>
    bool addPiece(const Abscissa& x, std::size_t begin, const Number* y);
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
