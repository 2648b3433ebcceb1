#include "text_faults.h"

#include <algorithm>
#include <utility>

namespace mdf_reader {

void TextFaults::add(TextFault fault) {
  if (faults_.size() < most) {
    faults_.push_back(std::move(fault));
  } else if (++others_ == 1) {
    first_other_ = std::move(fault);
  }
}

void TextFaults::report(const TextFaultSink& sink) && {
  std::stable_sort(faults_.begin(), faults_.end(),
                   [](const TextFault& left, const TextFault& right) {
                     return std::pair(left.line, left.column) < std::pair(right.line, right.column);
                   });
  if (others_ > 0) {
    first_other_.sentence = "expected at most " + std::to_string(most) + " faults, found " +
                            std::to_string(most + others_);
    faults_.push_back(std::move(first_other_));
  }
  for (const TextFault& fault : faults_) {
    sink(fault);
  }
}

}  // namespace mdf_reader
