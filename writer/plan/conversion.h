#ifndef MDF_WRITER_PLAN_CONVERSION_H_
#define MDF_WRITER_PLAN_CONVERSION_H_

#include <string>
#include <utility>
#include <vector>

#include "../../mdf/mdf_v4_10.h"

namespace mdf_writer {

/// How a stored value becomes the value that is meant. Made by one of the functions below; one that
/// nothing was done to stands for no conversion.
struct Conversion {
  mdf_v4_10::CCBLOCK::MDF_CC_TYPE_t type = mdf_v4_10::CCBLOCK::CC_CONVTYPE_EQUAL;
  std::vector<double> numbers;     ///< the parameters, in the order in which the block holds them
  std::vector<std::string> texts;  ///< the texts that it refers to, in the block's order
  bool is_stated = false;          ///< false where the channel has none
  std::vector<Conversion> rest{};  ///< at most one: what else becomes of other numbers than those
                                   ///< with texts, in place of the last text
};

/// A range of stored values and what it becomes. Of integers the end belongs to the range, of
/// floating-point numbers it does not.
template <class Value>
struct RangeEntry {
  double first;
  double last;
  Value value;
};

enum class Between { interpolate, nearest };

/// The value is what is stored, and a conversion says so.
Conversion identity();

/// offset + factor * stored
Conversion linear(double offset, double factor);

/// (p1 * x^2 + p2 * x + p3) / (p4 * x^2 + p5 * x + p6), where x is what is stored.
Conversion rational(double p1, double p2, double p3, double p4, double p5, double p6);

/// A formula of X, such as "X * X / 2".
Conversion formula(std::string text);

/// Stored values and what they become, in any order; between them the nearest, or a value on the
/// line between two.
Conversion table(std::vector<std::pair<double, double>> entries, Between between);

/// Ranges that do not overlap, in any order. What lies in none becomes `otherwise`.
Conversion ranges(std::vector<RangeEntry<double>> entries, double otherwise);

/// Texts for stored numbers, in any order. Other numbers become `otherwise`; where that is empty,
/// they stay numbers.
Conversion texts(std::vector<std::pair<double, std::string>> entries, const std::string& otherwise);

/// The same where a conversion without texts says what becomes of other numbers.
Conversion texts(std::vector<std::pair<double, std::string>> entries, Conversion otherwise);

/// Texts for ranges of numbers that do not overlap, in any order; `otherwise` as for texts().
Conversion rangeTexts(std::vector<RangeEntry<std::string>> entries, const std::string& otherwise);

/// Numbers for stored texts.
Conversion textNumbers(const std::vector<std::pair<std::string, double>>& entries,
                       double otherwise);

/// Texts for stored texts. Others become `otherwise`; where that is empty, they stay what they are.
Conversion textTexts(const std::vector<std::pair<std::string, std::string>>& entries,
                     const std::string& otherwise);

/// What is wrong with a conversion, as the end of a sentence, such as "has a range that ends before
/// it begins"; empty for nothing.
std::string faultOf(const Conversion& conversion);

}  // namespace mdf_writer

#endif  // MDF_WRITER_PLAN_CONVERSION_H_
