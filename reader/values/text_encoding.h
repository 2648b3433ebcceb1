#ifndef MDF_READER_VALUES_TEXT_ENCODING_H_
#define MDF_READER_VALUES_TEXT_ENCODING_H_

#include <string>
#include <string_view>

namespace mdf_reader {

/// Each gives text up to its first zero character as UTF-8. Bytes that are not a character of the
/// encoding become U+FFFD.
std::string fromLatin1(std::string_view bytes);
std::string fromWindows1252(std::string_view bytes);
std::string fromUtf8(std::string_view bytes);
std::string fromUtf16(std::string_view bytes, bool is_big_endian);

/// Whether all bytes are characters of UTF-8.
bool isUtf8(std::string_view bytes);

}  // namespace mdf_reader

#endif  // MDF_READER_VALUES_TEXT_ENCODING_H_
