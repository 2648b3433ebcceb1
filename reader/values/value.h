#ifndef MDF_READER_VALUES_VALUE_H_
#define MDF_READER_VALUES_VALUE_H_

#include <cstdint>
#include <optional>
#include <string>
#include <variant>

namespace mdf_reader {

/// Bytes that are neither a number nor text.
struct ByteString {
  std::string bytes;
};

inline bool operator==(const ByteString& left, const ByteString& right) {
  return left.bytes == right.bytes;
}

/// One value of a channel; std::monostate where there is none, as for an invalid sample. Text is
/// UTF-8 without zero bytes.
using Value =
    std::variant<std::monostate, std::uint64_t, std::int64_t, double, std::string, ByteString>;

inline bool isNone(const Value& value) { return std::holds_alternative<std::monostate>(value); }

/// A number, as a double's nearest value; nothing for what is not a number.
std::optional<double> numberOf(const Value& value);

/// The value as it is printed: the shortest digits that read back to the same number, "nan",
/// "inf", "-inf"; text as it is; two hexadecimal digits for each byte; "" for none.
void appendText(const Value& value, std::string& text);

}  // namespace mdf_reader

#endif  // MDF_READER_VALUES_VALUE_H_
