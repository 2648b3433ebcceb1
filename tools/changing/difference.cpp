#include "difference.h"

#include <algorithm>
#include <cmath>

namespace mdf_tools {

bool Tolerance::allows(double a, double b) const {
  const double difference = std::fabs(a - b);
  return std::isfinite(difference) &&
         (difference <= absolute || difference <= relative * std::max(std::fabs(a), std::fabs(b)));
}

void DiffSummary::add(const Difference& difference) {
  switch (difference.kind) {
    case Difference::Kind::member:
      ++members;
      break;
    case Difference::Kind::only:
      ++things;
      break;
    case Difference::Kind::records:
      lone_records += difference.count;
      break;
    case Difference::Kind::values:
      different_values += difference.count;
      break;
  }
}

}  // namespace mdf_tools
