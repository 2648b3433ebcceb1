#include "outline.h"

#include <algorithm>
#include <string>
#include <utility>

namespace mdf_tools {

void Outline::add(const std::vector<double>& times, const ColumnData& values) {
  if (isNumber(values.type())) {
    addNumbers(times, values.reals());
  } else {
    addTexts(times, values);
  }
}

void Outline::addNumbers(const std::vector<double>& times, std::vector<double> numbers) {
  for (std::size_t row = 0; row < times.size();) {
    const std::size_t count = std::min(axis_.room(), times.size() - row);
    const std::size_t end = row + count;
    if (!axis_.addInOrder(&times[row], count)) {
      for (std::size_t i = row; i < end; ++i) {
        numbers[i] = axis_.add(times[i]) ? numbers[i] : Extent::none;
      }
    }
    pyramid_.add(&numbers[row], count);
    row = end;
  }
}

void Outline::addTexts(const std::vector<double>& times, const ColumnData& values) {
  std::string text;
  for (std::size_t row = 0; row < times.size(); ++row) {
    if (axis_.room() == Pyramid::bucket_size) {
      runs_before_ = bands_.runs();
    }
    double code = Extent::none;
    if (axis_.add(times[row])) {
      std::uint32_t number = Bands::no_text;
      if (values.isValid(row)) {
        text.clear();
        values.print(row, text);
        number = bands_.codeOf(text);
        code = number;
      }
      bands_.add(times[row], number);
    }
    pyramid_.add(&code, 1);
  }
}

void Outline::reopen() {
  if (axis_.records() % Pyramid::bucket_size != 0) {
    bands_.cut(runs_before_);
  }
  axis_.reopen();
  pyramid_.reopen();
}

Outline Outline::from(std::size_t bucket) const {
  Outline outline;
  outline.axis_ = Axis(axis_.begin(bucket));
  outline.bands_ = bands_.withoutRuns();
  return outline;
}

bool Outline::agrees(std::size_t bucket, const Outline& again) const {
  const std::size_t count = again.fullBuckets();
  if (again.axis_.records() % Pyramid::bucket_size != 0 || count == 0 ||
      axis_.end(bucket + count - 1) != again.axis_.last()) {
    return false;
  }
  for (std::size_t i = 0; i < count; ++i) {
    if (axis_.begin(bucket + i) != again.axis_.begin(i) ||
        !(pyramid_.bucket(bucket + i) == again.pyramid_.bucket(i))) {
      return false;
    }
  }
  return true;
}

}  // namespace mdf_tools
