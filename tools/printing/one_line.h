#ifndef MDF_TOOLS_PRINTING_ONE_LINE_H_
#define MDF_TOOLS_PRINTING_ONE_LINE_H_

#include <cstddef>
#include <string>
#include <string_view>

namespace mdf_tools {

/// A text of a file, made fit for a line, a picture and XML, whatever its bytes are: characters in
/// UTF-8 stay; other bytes, and characters that control a terminal or the direction of writing,
/// become "\x1b". A text of more characters than `most` is cut and ends in "...".
std::string oneLine(std::string_view text, std::size_t most);

}  // namespace mdf_tools

#endif  // MDF_TOOLS_PRINTING_ONE_LINE_H_
