#ifndef MDF_FILEBLOCKS_FHBLOCK_H_
#define MDF_FILEBLOCKS_FHBLOCK_H_

#include <cstddef>
#include <cstdint>
#include <ctime>
#include <iosfwd>
#include <string>

#include "../framework/export.h"
#include "../framework/general_block.h"
#include "../framework/types.h"

namespace mdf_v4_10 {

/// A file history block: one change of the file, when it happened and, in the linked comment, what
/// tool did what.
class MDF_EXPORT FHBLOCK : public GENERALBLOCK {
 public:
  static constexpr std::size_t FHBLOCK_SIZE = 56;
  static constexpr std::uint16_t MDF_FH_ID = 0x4846;

  enum MDF_FH_BLOCK_LINKS {
    fh_fh_next = 0,     ///< next file history block
    fh_md_comment = 1,  ///< metadata block that describes the change
    FH_BLOCK_LINKS_NUM = 2
  };

  /// A block for writing. Mind the order of the links: comment first, next block last. The offsets
  /// are marked valid and the time as UTC.
  FHBLOCK(LINK _mdBlock, std::uint64_t _ts, std::int16_t _utcOffset, LINK _nextFHBlock);

  /// Reads the block at the stream's position. A short stream keeps its own end-of-file and fail
  /// bits and leaves the block without links, its fields zero.
  explicit FHBLOCK(std::istream& is);

  void setNextFHBlock(LINK link) { setLinkAt(fh_fh_next, link); }
  LINK getNextFHBlock() const { return linkAt(fh_fh_next); }
  LINK seekgNextFHBlock(std::ifstream& ifs) const { return seekg(ifs, getNextFHBlock()); }

  void setMDBlock(LINK link) { setLinkAt(fh_md_comment, link); }
  LINK getMDBlock() const { return linkAt(fh_md_comment); }
  LINK seekgMDBlock(std::ifstream& ifs) const { return seekg(ifs, getMDBlock()); }

  /// The time operations do what those of the header block do: see HDBLOCK.
  void setTimestamp(std::uint64_t time) { fh_time_ns = time; }
  void setDST(bool isDST);
  void setDateAndTime(std::tm _t);
  void getDateAndTime(std::tm& _t) const;

  UINT64 getTime() const { return fh_time_ns; }
  /// Minutes.
  std::int16_t getUtcOffset() const { return fh_tz_offset_min; }
  std::uint64_t getSize() const { return FHBLOCK_SIZE; }

  /// The XML schema that the comment follows.
  std::string getValidMDXMLSchemaName() const { return "fh_comment.xsd"; }

  void print(std::ostream& os) const;

  UINT64 fh_time_ns = 0;
  INT16 fh_tz_offset_min = 0;
  INT16 fh_dst_offset_min = 0;
  UINT8 fh_time_flags = 0;  ///< bit 0: local time; bit 1: the two offsets are valid
  detail::Array<UINT8, 3> fh_reserved{};
};

/// Writes the header and the links as they are stored, then the data section.
MDF_EXPORT std::ostream& operator<<(std::ostream& os, const FHBLOCK& fhb);

}  // namespace mdf_v4_10

#endif  // MDF_FILEBLOCKS_FHBLOCK_H_
