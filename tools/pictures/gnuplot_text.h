#ifndef MDF_TOOLS_PICTURES_GNUPLOT_TEXT_H_
#define MDF_TOOLS_PICTURES_GNUPLOT_TEXT_H_

#include <cstddef>
#include <string>

namespace mdf_tools {

/// Bytes of a text that a picture shows, unless said otherwise.
constexpr std::size_t longest_text = 60;

/// A text in UTF-8, cut with "..." to so many bytes.
std::string shortened(const std::string& text, std::size_t longest = longest_text);

/// A text for gnuplot: cut, in quotes, and with codes for all characters that have a meaning there,
/// so that nothing in it is carried out.
std::string quoted(const std::string& text, std::size_t longest = longest_text);

/// The shortest form of a number.
std::string numberText(double number);

}  // namespace mdf_tools

#endif  // MDF_TOOLS_PICTURES_GNUPLOT_TEXT_H_
