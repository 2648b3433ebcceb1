#include "style.h"

#include <string_view>

#include "output_buffer.h"

namespace mdf_tools {

namespace {

/// The sequences that set how characters are shown ("select graphic rendition" of ECMA-48).
std::string_view sequenceFor(Style style) {
  switch (style) {
    case Style::strong:
      return "\x1b[1m";
    case Style::faint:
      return "\x1b[2m";
    case Style::error:
      return "\x1b[1;31m";
    case Style::warning:
      return "\x1b[1;33m";
    case Style::note:
      return "\x1b[1;34m";
    case Style::plain:
      break;
  }
  return "\x1b[0m";
}

}  // namespace

std::ostream& operator<<(std::ostream& os, Style style) {
  if (auto* const output = dynamic_cast<OutputBuffer*>(os.rdbuf())) {
    output->command(sequenceFor(style));
  }
  return os;
}

}  // namespace mdf_tools
