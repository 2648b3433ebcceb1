#ifndef MDF_DESCRIPTION_DGBLOCK_H_
#define MDF_DESCRIPTION_DGBLOCK_H_

#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <string>

#include "../framework/export.h"
#include "../framework/general_block.h"
#include "../framework/types.h"

namespace mdf_v4_10 {

/// A data group block: one link in the chain of data groups. It leads to the group's first channel
/// group and to its data, and says how many bytes of record id each record starts with.
class MDF_EXPORT DGBLOCK : public GENERALBLOCK {
 public:
  static constexpr std::size_t DGBLOCK_SIZE = 64;
  static constexpr std::uint16_t MDF_DG_ID = 0x4744;

  /// The record id size. The file holds this code, deliberately not a byte count: a 64-bit record
  /// id is 4. A file from another writer gives the raw byte.
  enum MDF_DG_REC_ID_SIZE_t : int {
    DG_WITHOUT = 0,
    DG_UINT8 = 1,
    DG_UINT16_LE = 2,
    DG_UINT32_LE = 3,
    DG_UINT64_LE = 4
  };

  enum MDF_DG_BLOCK_LINKS {
    dg_dg_next = 0,     ///< next data group block
    dg_cg_first = 1,    ///< first channel group block of this group
    dg_data = 2,        ///< data block, data list or zipped data of the group
    dg_md_comment = 3,  ///< comment, a text or metadata block
    DG_BLOCK_LINKS_NUM = 4
  };

  DGBLOCK(LINK _nextdgblock, LINK _cgblock, LINK _data, MDF_DG_REC_ID_SIZE_t _id);

  /// Reads the block at the stream's position. The links read stand in `links` from index 4 on,
  /// after four nil links: the link accessors, the dump and the writer see the nil ones. A short
  /// stream becomes bad and leaves four nil links and fields of zero.
  explicit DGBLOCK(std::istream& is);

  void setNextDgblock(LINK link) { setLinkAt(dg_dg_next, link); }
  LINK getNextDgblock() const { return linkAt(dg_dg_next); }
  LINK seekgNextDgblock(std::ifstream& ifs) const { return seekg(ifs, getNextDgblock()); }

  void setFirstCgblock(LINK link) { setLinkAt(dg_cg_first, link); }
  LINK getFirstCgblock() const { return linkAt(dg_cg_first); }
  LINK seekgFirstCgblock(std::ifstream& ifs) const { return seekg(ifs, getFirstCgblock()); }

  void setDatablock(LINK link) { setLinkAt(dg_data, link); }
  LINK getDatablock() const { return linkAt(dg_data); }
  LINK seekgData(std::ifstream& ifs) const { return seekg(ifs, getDatablock()); }

  void setComment(LINK link) { setLinkAt(dg_md_comment, link); }
  LINK getComment() const { return linkAt(dg_md_comment); }
  LINK seekgComment(std::ifstream& ifs) const { return seekg(ifs, getComment()); }

  void setRecordIdSize(MDF_DG_REC_ID_SIZE_t size) { dg_rec_id_size = static_cast<UINT8>(size); }
  MDF_DG_REC_ID_SIZE_t getRecordIdSize() const {
    return static_cast<MDF_DG_REC_ID_SIZE_t>(dg_rec_id_size);
  }

  std::uint64_t getSize() const { return DGBLOCK_SIZE; }

  /// The XML schema that the comment follows.
  std::string getValidMDXMLSchemaName() const { return "dg_comment.xsd"; }

  void print(std::ostream& os) const;

  UINT8 dg_rec_id_size = 0;  ///< an MDF_DG_REC_ID_SIZE_t
  detail::Array<UINT8, 7> dg_reserved{};
};

/// Writes the header and the links as they are stored, then the data section. A block that was
/// read writes its nil links as well.
MDF_EXPORT std::ostream& operator<<(std::ostream& os, const DGBLOCK& dgb);

}  // namespace mdf_v4_10

#endif  // MDF_DESCRIPTION_DGBLOCK_H_
