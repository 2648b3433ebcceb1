#ifndef MDF_FRAMEWORK_BLOCK_ID_H_
#define MDF_FRAMEWORK_BLOCK_ID_H_

#include <cstdint>
#include <iosfwd>

#include "export.h"

namespace mdf_v4_10 {

/// The four bytes that say what a block is: "##" and the block type's two letters.
class MDF_EXPORT MDF_Block_ID {
 public:
  /// The characters "##" as a little-endian number.
  static constexpr std::uint16_t constantPart = 0x2323;

  /// Takes the two type letters as a little-endian number, the first letter in the low byte.
  constexpr MDF_Block_ID(std::uint16_t id)
      : idInternal((static_cast<std::uint32_t>(id) << 16U) | constantPart) {}

  /// The four bytes as one little-endian number.
  std::uint32_t idInternal;
};

/// Writes the four identifier bytes.
MDF_EXPORT std::ostream& operator<<(std::ostream& os, const MDF_Block_ID& id);

}  // namespace mdf_v4_10

#endif  // MDF_FRAMEWORK_BLOCK_ID_H_
