#ifndef MDF_TOOLS_PICTURES_DOT_TEXT_H_
#define MDF_TOOLS_PICTURES_DOT_TEXT_H_

#include <cstddef>
#include <string>
#include <string_view>

namespace mdf_tools {

/// How the lines of a label are aligned.
enum class DotLines { centred, left, right };

/// A text as a quoted string of the DOT language that shows every character as it is; line feeds
/// begin new lines. The text is UTF-8 without other control characters; see printable().
std::string dotString(std::string_view text, DotLines lines = DotLines::centred);

/// Breaks a line of more than `width` characters into several, at blanks if there are any.
std::string wrapped(std::string_view line, std::size_t width);

}  // namespace mdf_tools

#endif  // MDF_TOOLS_PICTURES_DOT_TEXT_H_
