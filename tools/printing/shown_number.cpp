#include "shown_number.h"

#include "formatted.h"

namespace mdf_tools {

std::string shownNumber(double number) { return formatted("%.6g", number); }

}  // namespace mdf_tools
