#ifndef MDF_FRAMEWORK_DUMP_H_
#define MDF_FRAMEWORK_DUMP_H_

#include <cstddef>
#include <ostream>
#include <type_traits>
#include <vector>

#include "types.h"

namespace mdf_v4_10::detail {

/// The form that all dumps share: a banner with the class name, one labelled value per line, an end
/// banner. A banner is inserted whole, so that a width set on the stream pads all of it. Every line
/// end flushes the stream. Labels carry their separator; values are shown as the stream's format
/// flags say, but an 8-bit value is always shown as a number.
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

  /// Characters, embedded zero bytes included.
  void line(const char* label, const char* text, std::size_t count);

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
  void banner(const char* before_name);

  std::ostream& os_;
  const char* name_;
};

}  // namespace mdf_v4_10::detail

#endif  // MDF_FRAMEWORK_DUMP_H_
