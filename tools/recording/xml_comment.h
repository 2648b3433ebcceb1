#ifndef MDF_TOOLS_RECORDING_XML_COMMENT_H_
#define MDF_TOOLS_RECORDING_XML_COMMENT_H_

#include <string>
#include <string_view>

namespace mdf_tools {

/// A text as it may stand in an XML document in UTF-8: markup characters are escaped; control
/// characters and bytes that are not UTF-8, which no XML document can hold, are left out.
std::string xmlText(std::string_view text);

/// The comment of a header block.
std::string headerComment(std::string_view text);

/// The comment of a file history block: what was done, by what version of this program.
std::string historyComment(std::string_view text, std::string_view tool_version);

}  // namespace mdf_tools

#endif  // MDF_TOOLS_RECORDING_XML_COMMENT_H_
