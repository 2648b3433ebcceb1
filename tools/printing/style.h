#ifndef MDF_TOOLS_PRINTING_STYLE_H_
#define MDF_TOOLS_PRINTING_STYLE_H_

#include <ostream>

namespace mdf_tools {

/// How a terminal with colours shows what follows. A style never carries meaning alone: other
/// outputs get the same texts without it.
enum class Style {
  plain,
  strong,   ///< titles, and what the eye looks for
  faint,    ///< what readers mostly skip
  error,    ///< red
  warning,  ///< yellow
  note,     ///< blue
};

std::ostream& operator<<(std::ostream& os, Style style);

}  // namespace mdf_tools

#endif  // MDF_TOOLS_PRINTING_STYLE_H_
