#ifndef MDF_TOOLS_PRINTING_SHOWN_NUMBER_H_
#define MDF_TOOLS_PRINTING_SHOWN_NUMBER_H_

#include <string>

namespace mdf_tools {

/// A number for people, with six digits.
std::string shownNumber(double number);

}  // namespace mdf_tools

#endif  // MDF_TOOLS_PRINTING_SHOWN_NUMBER_H_
