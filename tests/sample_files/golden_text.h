#ifndef MDF_TESTS_SAMPLE_FILES_GOLDEN_TEXT_H_
#define MDF_TESTS_SAMPLE_FILES_GOLDEN_TEXT_H_

#include <string>
#include <utility>
#include <vector>

namespace mdf_tests {

/// Names, each with its text of whole lines.
using Sections = std::vector<std::pair<std::string, std::string>>;

/// Sections as one text in which little stands twice. Headings that follow one another have the
/// text below them in common. A section that differs little from an earlier one says so in its
/// heading, and then what differs:
///
///     == first
///     a
///     b
///     c
///     == second like first
///     1|A         instead of line 1
///     2+|x        after line 2
///     |y
///     3 gone
///
/// Throws std::invalid_argument when a line could be taken for a heading.
std::string goldenText(const Sections& sections);

/// The sections of such a text. Throws std::invalid_argument when there is a mistake in it.
Sections goldenSections(const std::string& text);

/// A text about a file, freed of what follows from the file's name and bytes: the name is written
/// FILE, and the place "CN 408 (0x198)" of the second channel block in the file CN#2.
std::string withoutPlaces(std::string text, const std::string& file_name, const std::string& bytes);

/// The other way round.
std::string withPlaces(std::string text, const std::string& file_name, const std::string& bytes);

}  // namespace mdf_tests

#endif  // MDF_TESTS_SAMPLE_FILES_GOLDEN_TEXT_H_
