#ifndef MDF_FRAMEWORK_DUMP_H_
#define MDF_FRAMEWORK_DUMP_H_

#include <array>
#include <cstddef>
#include <ostream>
#include <type_traits>
#include <vector>

#include "types.h"

namespace mdf_v4_10 {

/// Bytes per row for callers who lay out a dump of data bytes in rows.
inline constexpr std::size_t HEXDUMP_DEFAULT_ROWSIZE = 16;

namespace detail {

/// The form that all dumps share: a banner with the class name, one labelled value per line, an end
/// banner. Every line end flushes the stream. Labels carry their separator; values are shown as the
/// stream's format flags say, but an 8-bit value is always shown as a number.
class Dump {
 public:
  /// Writes the banner.
  Dump(std::ostream& os, const char* name);

  /// Writes the end banner.
  void end();

  template <class Value>
  void line(const char* label, Value value) {
    part(label, value);
    endLine();
  }

  /// Characters, exactly as many as the array holds, embedded zero bytes included.
  template <std::size_t Count>
  void line(const char* label, const std::array<char, Count>& text) {
    part(label);
    os_.write(text.data(), Count);
    endLine();
  }

  /// A piece of a line that is put together by hand and ended with endLine().
  void part(const char* text);

  template <class Value>
  void part(const char* label, Value value) {
    part(label);
    if constexpr (std::is_same_v<Value, UINT8>) {
      os_ << static_cast<unsigned>(value);
    } else {
      os_ << value;
    }
  }

  void endLine();

  /// Bytes as the characters they are, without any line end.
  void raw(const UINT8* bytes, std::size_t count);

  /// "data hex dump: " and the bytes as the characters they are; no line end follows. With at least
  /// one byte the stream is left in hexadecimal mode, which does not change how characters come
  /// out, but does change the numbers that the caller writes to the stream afterwards.
  void hexDump(const std::vector<UINT8>& bytes);

 private:
  std::ostream& os_;
  const char* name_;
};

}  // namespace detail
}  // namespace mdf_v4_10

#endif  // MDF_FRAMEWORK_DUMP_H_
