#ifndef MDF_TOOLS_READING_BLOCK_TYPES_H_
#define MDF_TOOLS_READING_BLOCK_TYPES_H_

#include <cstdint>
#include <istream>
#include <ostream>
#include <string_view>

namespace mdf_tools {

/// Constructs a block of the library's class from a stream and writes its dump. Without a whole
/// block nothing is written, and the result is false.
using DumpFromStream = bool (*)(std::istream& is, std::ostream& os);

/// What a reading program needs to know about a block type that the library has a class for.
struct BlockType {
  /// The number of bytes of a type whose class reads as many by its length says.
  static constexpr std::uint64_t by_length = 0;

  std::string_view letters;
  /// The bytes that the class reads whatever the block's length says, or by_length.
  std::uint64_t fixed_size;
  DumpFromStream dump;
};

/// The type with these two letters; null for one that the library has no class for.
const BlockType* findBlockType(std::string_view letters);

template <class Block>
bool dumpFromStream(std::istream& is, std::ostream& os) {
  const Block block(is);
  if (!is.good()) {
    return false;
  }
  block.print(os);
  return true;
}

}  // namespace mdf_tools

#endif  // MDF_TOOLS_READING_BLOCK_TYPES_H_
