#ifndef MDF_TOOLS_PRINTING_STYLE_H_
#define MDF_TOOLS_PRINTING_STYLE_H_

#include <ostream>

namespace mdf_tools {

/// How what follows is shown by a terminal that shows colours. Nothing that has a style says
/// anything by it alone: other outputs get the same texts without.
enum class Style {
  plain,
  strong,   ///< titles, and what the eye looks for
  faint,    ///< what mostly is passed over
  error,    ///< red
  warning,  ///< yellow
  note,     ///< blue
};

std::ostream& operator<<(std::ostream& os, Style style);

}  // namespace mdf_tools

#endif  // MDF_TOOLS_PRINTING_STYLE_H_
