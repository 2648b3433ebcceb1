#ifndef MDF_READER_BYTES_NUMBER_TEXTS_H_
#define MDF_READER_BYTES_NUMBER_TEXTS_H_

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace mdf_reader {

/// Up to 8 bytes as the unsigned number that they store.
std::uint64_t unsignedNumber(std::string_view bytes);

/// 1 to 8 bytes as the signed number that they store.
std::int64_t signedNumber(std::string_view bytes);

/// Appends an unsigned number in decimal digits, with zeros in front up to so many.
void addDigits(std::uint64_t number, std::size_t least, std::string& text);

/// The same in hexadecimal digits, with capitals: "01F".
void addHexDigits(std::uint64_t number, std::size_t least, std::string& text);

/// "1f", without a prefix.
std::string hexDigits(std::uint64_t number);

/// "00 ff 12".
std::string hexBytes(std::string_view bytes);

/// The fewest digits that read back as the same number.
std::string shortestReal(double number);

}  // namespace mdf_reader

#endif  // MDF_READER_BYTES_NUMBER_TEXTS_H_
