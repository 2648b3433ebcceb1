#ifndef MDF_TOOLS_PICTURES_ENGINEERING_UNIT_H_
#define MDF_TOOLS_PICTURES_ENGINEERING_UNIT_H_

#include <string>

namespace mdf_tools {

/// The unit that an axis shows in place of a channel's.
struct AxisUnit {
  double factor = 1;  ///< a value times this is what the axis shows
  std::string unit;   ///< "GB"; "10⁶ rpm" where the unit takes no prefix
  bool has_prefix =
      false;  ///< whether it is one of those that do, so that it can follow each number
};

/// The unit in which the largest values of an axis have one to three digits before the point, as
/// far as there is one: by a prefix ("25 GB" of 25000000 KiB), or for units that take none, by a
/// power of ten.
/// @param largest of the magnitudes of the values.
AxisUnit axisUnitFor(const std::string& unit, double largest);

/// The unit of an axis of powers of ten, whose numbers get prefixes of their own: "B" for "KiB".
AxisUnit baseUnitFor(const std::string& unit);

/// The least of 1, 2 and 5 times a power of ten that is not below a number above 0.
double roundStep(double least);

}  // namespace mdf_tools

#endif  // MDF_TOOLS_PICTURES_ENGINEERING_UNIT_H_
