#ifndef MDF_DATABLOCKS_HLBLOCK_H_
#define MDF_DATABLOCKS_HLBLOCK_H_

#include <cstddef>
#include <cstdint>
#include <iosfwd>

#include "../framework/bits.h"
#include "../framework/export.h"
#include "../framework/general_block.h"
#include "../framework/types.h"
#include "dzblock.h"

namespace mdf_v4_10 {

/// A header list block: heads a chain of data lists whose blocks are zipped, and says how.
class MDF_EXPORT HLBLOCK : public GENERALBLOCK {
 public:
  static constexpr std::size_t HLBLOCK_SIZE = 40;
  static constexpr std::uint16_t MDF_HL_ID = 0x4C48;

  enum MDF_HL_BLOCK_LINKS {
    hl_dl_first = 0,  ///< first data list block of the chain
    HL_BLOCK_LINKS_NUM = 1
  };

  /// Bits of `hl_flags`.
  enum HL_FLAGS_t : int {
    equal_length = 1  ///< the data lists have equal length
  };

  HLBLOCK(LINK _dl_first, bool _equalLength, DZBLOCK::DZ_ZIPTYPE_t _zipType);

  /// Reads 40 bytes at the stream's position, with as many links as the link count says. A block
  /// that announces one link is read as it was meant. The writer deliberately announces none:
  /// what it has written is read back with no links, flags and zip type from the link's bytes.
  /// A short stream keeps its own end-of-file and fail bits and leaves a block without links.
  explicit HLBLOCK(std::istream& is);

  void setFirstDlblock(LINK _firstDlblock) { setLinkAt(hl_dl_first, _firstDlblock); }
  LINK getFirstDlblock() const { return linkAt(hl_dl_first); }
  LINK seekgFirstDlblock(std::ifstream& ifs) const { return seekg(ifs, getFirstDlblock()); }

  void setEqualLengthFlag(bool set) { detail::setBit(hl_flags, equal_length, set); }
  bool isEqualLengthFlag() const { return detail::hasBit(hl_flags, equal_length); }

  /// How the zipped blocks under this one are compressed.
  DZBLOCK::DZ_ZIPTYPE_t getZipType() const {
    return static_cast<DZBLOCK::DZ_ZIPTYPE_t>(hl_zip_type);
  }
  void setZipType(DZBLOCK::DZ_ZIPTYPE_t type) { hl_zip_type = static_cast<UINT8>(type); }

  std::uint64_t getSize() const { return HLBLOCK_SIZE; }

  void print(std::ostream& os) const;

  UINT16 hl_flags = 0;
  UINT8 hl_zip_type = 0;  ///< a DZBLOCK::DZ_ZIPTYPE_t
  detail::Array<UINT8, 5> hl_reserved{};
};

/// Writes the block with its links, but a link count of 0.
MDF_EXPORT std::ostream& operator<<(std::ostream& os, const HLBLOCK& hlb);

}  // namespace mdf_v4_10

#endif  // MDF_DATABLOCKS_HLBLOCK_H_
