#ifndef MDF_DATABLOCKS_DLBLOCK_H_
#define MDF_DATABLOCKS_DLBLOCK_H_

#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <utility>
#include <vector>

#include "../framework/bits.h"
#include "../framework/export.h"
#include "../framework/general_block.h"
#include "../framework/types.h"

namespace mdf_v4_10 {

/// A data list block: the blocks, in order, that share one stream of data, each with the offset of
/// its content in the whole stream. Blocks of equal data length share that one length instead.
///
/// The link to the next list stands in `links`; the links to the listed blocks are kept in
/// `dl_data` and joined to it in the file only.
class MDF_EXPORT DLBLOCK : public GENERALBLOCK {
 public:
  /// Size of an empty list without equal length.
  static constexpr std::size_t DLBLOCK_CONSTANT_SIZE = 40;
  static constexpr std::uint16_t MDF_DL_ID = 0x4C44;

  enum MDF_DL_BLOCK_LINKS {
    dl_dl_next = 0  ///< next data list block
  };

  /// Bits of `dl_flags`.
  enum DL_FLAGS_t : int {
    equal_length = 1  ///< the file holds one length for all listed blocks instead of their offsets
  };

  /// An empty list.
  DLBLOCK(bool _equalLength, LINK _dlNext);

  /// Reads the block at the stream's position. The links read stand in `links` from index 1 on,
  /// the next list's first; the next list itself is nil afterwards. The pairs start at the file's
  /// link to the next list, too: the k-th pair has the k-th of all the file's links. With offsets
  /// the last listed block is therefore in no pair, and where the count, the links or the offsets
  /// run out the list ends; with equal length every link read is in a pair, whatever the count.
  /// A short stream keeps its own end-of-file and fail bits and leaves an empty list.
  explicit DLBLOCK(std::istream& is);

  /// Appends a data, signal data, reduction data or zipped data block. A nil link is ignored.
  void addData(LINK _dt_sd_rd_dzblock, UINT64 _offset);

  /// The pair at an index; false, and nothing stored, when there is none.
  bool getDataAtIndex(UINT32 _elementIndex, LINK& _dt_sd_rd_dzblock, UINT64& _offset) const;

  /// Removes the pair at an index; does nothing when there is none.
  void removeDataAtIndex(UINT32 _elementIndex) { removeEntryAt(dl_data, _elementIndex); }

  /// Positions the stream at the block listed at an index; 0 and no move when there is none.
  LINK seekgDataAt(std::ifstream& ifs, UINT32 _elementIndex) const {
    return _elementIndex < dl_data.size() ? seekg(ifs, dl_data[_elementIndex].first) : 0;
  }

  /// The number of pairs.
  UINT32 getDataLength() const { return static_cast<UINT32>(dl_data.size()); }

  UINT64 getEqualLength() const { return dl_equal_length; }
  void setEqualLength(UINT64 length) { dl_equal_length = length; }

  void setEqualLengthFlag(bool set) { detail::setBit(dl_flags, equal_length, set); }
  bool isEqualLengthFlag() const { return detail::hasBit(dl_flags, equal_length); }

  void setNextDlblock(LINK _dlblock) { setLinkAt(dl_dl_next, _dlblock); }
  LINK getNextDlblock() const { return linkAt(dl_dl_next); }
  LINK seekgNextDlblock(std::ifstream& ifs) const { return seekg(ifs, getNextDlblock()); }

  /// Bytes that the block takes in the file. Of a block that was read this leaves out the links
  /// after the first one, as the length that the writer states does.
  std::uint64_t getSize() const;

  void print(std::ostream& os) const;

  UINT8 dl_flags = 0;
  detail::Array<UINT8, 3> dl_reserved{};
  UINT64 dl_equal_length = 0;                    ///< bytes of data, if all blocks have as many
  std::vector<std::pair<LINK, UINT64>> dl_data;  ///< listed blocks and their offsets
};

/// Writes the block; length, link count and entry count in the file follow from the pairs. The link
/// count assumes one link besides theirs: a block that was read writes all of `links`,
/// and so more links than its link count and its length say.
MDF_EXPORT std::ostream& operator<<(std::ostream& os, const DLBLOCK& dlb);

}  // namespace mdf_v4_10

#endif  // MDF_DATABLOCKS_DLBLOCK_H_
