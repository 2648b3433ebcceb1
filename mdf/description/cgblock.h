#ifndef MDF_DESCRIPTION_CGBLOCK_H_
#define MDF_DESCRIPTION_CGBLOCK_H_

#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <string>

#include "../framework/bits.h"
#include "../framework/export.h"
#include "../framework/general_block.h"
#include "../framework/types.h"

namespace mdf_v4_10 {

/// A channel group block: one kind of record in a data group, how many of them there are and how
/// many data and invalidation bytes each has. It leads to the record's channels.
class MDF_EXPORT CGBLOCK : public GENERALBLOCK {
 public:
  static constexpr std::size_t CGBLOCK_SIZE = 104;
  static constexpr std::uint16_t MDF_CG_ID = 0x4743;

  /// Bits of `cg_flags`.
  enum CG_FLAGS_t : int {
    no_flag = 0,
    vlsd_channel_group = 1,            ///< the records hold variable-length signal data
    bus_event_group = 2,               ///< the records hold bus events
    plain_bus_event_channel_group = 4  ///< a bus event group of plain bus event channels only
  };

  /// The character that separates the parts of a name.
  enum CG_PATHSEPARATOR_t : int {
    CG_PATHSEPARATOR_NONE = 0,
    CG_PATHSEPARATOR_POINT = 46,
    CG_PATHSEPARATOR_SLASH = 47
  };

  enum MDF_CG_BLOCK_LINKS {
    cg_cg_next = 0,        ///< next channel group of the same data group
    cg_cn_first = 1,       ///< first channel of the group
    cg_tx_acq_name = 2,    ///< text block with the acquisition name
    cg_si_acq_source = 3,  ///< source information block of the acquisition source
    cg_sr_first = 4,       ///< first sample reduction block
    cg_md_comment = 5,     ///< comment, a text or metadata block
    CG_BLOCK_LINKS_NUM = 6
  };

  CGBLOCK();

  CGBLOCK(LINK _nextCgblock, CG_FLAGS_t _groupType, UINT64 _recordId, LINK _firstCnblock,
          LINK _acqNameTxblock, LINK _acqSourceSiblock, LINK _firstSrblock, UINT64 _cycleCount,
          CG_PATHSEPARATOR_t _pathSeparator, UINT32 _dataBytes, UINT32 _invalidBytes);

  /// Reads the block at the stream's position. The links read stand in `links` from index 6 on,
  /// after six nil links: the link accessors, the dump and the writer see the nil ones. A short
  /// stream becomes bad and leaves six nil links and fields of zero.
  explicit CGBLOCK(std::istream& is);

  /// Sets everything but the header and the comment link.
  void setup(LINK _nextCgblock, CG_FLAGS_t _groupType, UINT64 _recordId, LINK _firstCnblock,
             LINK _acqNameTxblock, LINK _acqSourceSiblock, LINK _firstSrblock, UINT64 _cycleCount,
             CG_PATHSEPARATOR_t _pathSeparator, UINT32 _dataBytes, UINT32 _invalidBytes);

  void setNextCgblock(LINK link) { setLinkAt(cg_cg_next, link); }
  LINK getNextCgblock() const { return linkAt(cg_cg_next); }
  LINK seekgNextCgblock(std::ifstream& ifs) const { return seekg(ifs, getNextCgblock()); }

  void setFirstCnblock(LINK link) { setLinkAt(cg_cn_first, link); }
  LINK getFirstCnblock() const { return linkAt(cg_cn_first); }
  LINK seekgFirstCnblock(std::ifstream& ifs) const { return seekg(ifs, getFirstCnblock()); }

  void setAcqTxNameblock(LINK link) { setLinkAt(cg_tx_acq_name, link); }
  LINK getAcqTxNameblock() const { return linkAt(cg_tx_acq_name); }
  LINK seekgAcqNameTxblock(std::ifstream& ifs) const { return seekg(ifs, getAcqTxNameblock()); }

  void setAcqSourceSiblock(LINK link) { setLinkAt(cg_si_acq_source, link); }
  LINK getAcqSourceSiblock() const { return linkAt(cg_si_acq_source); }
  LINK seekgAcqSourceSiblock(std::ifstream& ifs) const { return seekg(ifs, getAcqSourceSiblock()); }

  void setFirstSrblock(LINK link) { setLinkAt(cg_sr_first, link); }
  LINK getFirstSrblock() const { return linkAt(cg_sr_first); }
  LINK seekgFirstSrblock(std::ifstream& ifs) const { return seekg(ifs, getFirstSrblock()); }

  void setComment(LINK link) { setLinkAt(cg_md_comment, link); }
  LINK getComment() const { return linkAt(cg_md_comment); }
  LINK seekgCommentblock(std::ifstream& ifs) const { return seekg(ifs, getComment()); }

  UINT64 getRecordId() const { return cg_record_id; }
  void setRecordId(UINT64 id) { cg_record_id = id; }

  /// Number of records.
  UINT64 getCycleCount() const { return cg_cycle_count; }
  void setCycleCount(UINT64 count) { cg_cycle_count = count; }
  /// To be called once for each record written.
  void incCycleCount() { ++cg_cycle_count; }

  CG_PATHSEPARATOR_t getPathSeparator() const {
    return static_cast<CG_PATHSEPARATOR_t>(cg_path_separator);
  }
  void setPathSeparator(CG_PATHSEPARATOR_t separator) {
    cg_path_separator = static_cast<UINT16>(separator);
  }

  /// Data bytes in each record, the record id and the invalidation bytes not counted.
  UINT32 getDataBytes() const { return cg_data_bytes; }
  void setDataBytes(UINT32 bytes) { cg_data_bytes = bytes; }

  /// Invalidation bytes in each record.
  UINT32 getInvalidBytes() const { return cg_inval_bytes; }
  void setInvalidBytes(UINT32 bytes) { cg_inval_bytes = bytes; }

  void setVLSDChannelGroup(bool set) { detail::setBit(cg_flags, vlsd_channel_group, set); }
  bool isVLSDChannelGroup() const { return detail::hasBit(cg_flags, vlsd_channel_group); }

  void setBusEventGroup(bool set) { detail::setBit(cg_flags, bus_event_group, set); }
  bool isBusEventGroup() const { return detail::hasBit(cg_flags, bus_event_group); }

  void setPlainBusEventChannelGroup(bool set) {
    detail::setBit(cg_flags, plain_bus_event_channel_group, set);
  }
  bool isPlainBusEventChannelGroup() const {
    return detail::hasBit(cg_flags, plain_bus_event_channel_group);
  }

  std::uint64_t getSize() const { return CGBLOCK_SIZE; }

  /// The XML schema that the comment follows.
  std::string getValidMDXMLSchemaName() const { return "cg_comment.xsd"; }

  void print(std::ostream& os) const;

  UINT64 cg_record_id = 0;
  UINT64 cg_cycle_count = 0;
  UINT16 cg_flags = 0;
  UINT16 cg_path_separator = 0;  ///< a CG_PATHSEPARATOR_t
  detail::Array<UINT8, 4> cg_reserved{};
  UINT32 cg_data_bytes = 0;
  UINT32 cg_inval_bytes = 0;
};

/// Writes the header and the links as they are stored, then the data section. A block that was
/// read writes its nil links as well.
MDF_EXPORT std::ostream& operator<<(std::ostream& os, const CGBLOCK& cgb);

}  // namespace mdf_v4_10

#endif  // MDF_DESCRIPTION_CGBLOCK_H_
