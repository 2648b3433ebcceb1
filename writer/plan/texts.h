#ifndef MDF_WRITER_PLAN_TEXTS_H_
#define MDF_WRITER_PLAN_TEXTS_H_

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace mdf_writer {

/// Bytes of the character at the front of a text that is not empty; 0 where no character of UTF-8
/// begins there, or one that neither a text block nor XML can hold.
std::size_t characterLength(std::string_view text);

/// Whether a text can stand in a text block.
bool isUtf8(std::string_view text);

/// The longest part from the front that has at most `bytes` bytes and ends with a whole character.
std::string_view upTo(std::string_view text, std::size_t bytes);

/// A text as it may stand in an XML document in UTF-8: markup characters are escaped; what no XML
/// document can hold is left out.
std::string xmlText(std::string_view text);

/// A text between the tags of a name.
std::string xmlElement(std::string_view name, std::string_view text);

using Properties = std::vector<std::pair<std::string, std::string>>;

/// Named properties in XML; empty when there are none.
std::string xmlProperties(const Properties& properties);

/// The comment of a block in XML, such as HDcomment, around its content.
std::string xmlComment(std::string_view name, std::string_view content);

}  // namespace mdf_writer

#endif  // MDF_WRITER_PLAN_TEXTS_H_
