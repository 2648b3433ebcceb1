#ifndef MDF_READER_BYTES_PRINTABLE_H_
#define MDF_READER_BYTES_PRINTABLE_H_

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace mdf_reader {

/// Which characters of a text do no harm.
enum class Harmless {
  ascii,  ///< letters, digits and signs
  utf8  ///< these, and characters of UTF-8 that neither control a terminal nor break or turn a line
};

/// A text of a file, whatever is in it, on one line that is safe to print: bytes of other
/// characters become "\x1b". Of more than so many characters the first ones and "..." remain.
std::string printable(std::string_view text, Harmless harmless = Harmless::ascii,
                      std::size_t most = SIZE_MAX);

/// The same in ASCII and quotation marks.
std::string quoted(std::string_view bytes);

/// A text without the blanks at its end, with which writers fill fields of a fixed length.
std::string withoutTrailingBlanks(const std::string& text);

}  // namespace mdf_reader

#endif  // MDF_READER_BYTES_PRINTABLE_H_
