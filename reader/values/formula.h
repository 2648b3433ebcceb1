#ifndef MDF_READER_VALUES_FORMULA_H_
#define MDF_READER_VALUES_FORMULA_H_

#include <memory>
#include <string>

namespace mdf_reader {

/// An algebraic conversion: a formula of the variable X, also called x, X1 or x1.
///
/// It may use + - * / ^, comparisons, && || and ?:, the functions of bits & | << >> XOR, and
/// functions in small or capital letters: sin, cos, tan, asin, acos, atan, arcsin, arccos, arctan,
/// sinh, cosh, tanh, exp, ln, log and log10 (both to the base 10), log2, sqrt, abs, sign, pow, mod,
/// floor, ceil, rint, trunc, min, max, sum, avg; and the constant pi.
class Formula {
 public:
  explicit Formula(const std::string& text);
  ~Formula();
  Formula(const Formula&) = delete;
  Formula& operator=(const Formula&) = delete;

  /// What is wrong with the formula, which then has no values; "" for nothing.
  const std::string& problem() const { return problem_; }

  /// The value at X = x; not a number where there is none.
  double at(double x);

 private:
  struct Parser;
  std::unique_ptr<Parser> parser_;
  std::string problem_;
};

}  // namespace mdf_reader

#endif  // MDF_READER_VALUES_FORMULA_H_
