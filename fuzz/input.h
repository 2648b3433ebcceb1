#ifndef MDF_FUZZ_INPUT_H_
#define MDF_FUZZ_INPUT_H_

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <string>
#include <string_view>
#include <type_traits>

namespace mdf_fuzz {

/// An input as a sequence of values. When the bytes run out the values are zero.
class Input {
 public:
  explicit Input(std::string_view bytes) : bytes_(bytes) {}

  bool empty() const { return bytes_.empty(); }

  /// A number from as many bytes as it has, or an enumerator from one byte.
  template <class Value>
  Value take() {
    if constexpr (std::is_enum_v<Value>) {
      return static_cast<Value>(take<unsigned char>());
    } else if constexpr (std::is_same_v<Value, bool>) {
      return take<unsigned char>() % 2 != 0;
    } else {
      const std::string_view bytes = takeBytes(sizeof(Value));
      Value value{};
      std::memcpy(&value, bytes.data(), bytes.size());
      return value;
    }
  }

  /// Some bytes, once or several times in a row: up to 2,040 bytes.
  std::string takeText() {
    const std::string_view bytes = takeBytes(take<unsigned char>());
    std::string text;
    for (int i = take<unsigned char>() % 8; i >= 0; --i) {
      text += bytes;
    }
    return text;
  }

 private:
  std::string_view takeBytes(std::size_t count) {
    const std::string_view taken = bytes_.substr(0, count);
    bytes_.remove_prefix(taken.size());
    return taken;
  }

  std::string_view bytes_;
};

}  // namespace mdf_fuzz

#endif  // MDF_FUZZ_INPUT_H_
