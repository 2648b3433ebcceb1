#ifndef MDF_DATABLOCKS_SRBLOCK_H_
#define MDF_DATABLOCKS_SRBLOCK_H_

#include <cstddef>
#include <cstdint>
#include <iosfwd>

#include "../framework/bits.h"
#include "../framework/export.h"
#include "../framework/general_block.h"
#include "../framework/types.h"

namespace mdf_v4_10 {

/// A sample reduction block: describes a condensed copy of a channel group's signals, one record
/// per interval of time, angle, distance or record index. The blocks of one group form a chain.
class MDF_EXPORT SRBLOCK : public GENERALBLOCK {
 public:
  static constexpr std::size_t SRBLOCK_SIZE = 64;
  static constexpr std::uint16_t MDF_SR_ID = 0x5253;

  /// What the interval is measured in.
  enum MDF_SR_SYNCTYPE_t : int {
    SR_SYNCTYPE_TIME_SECONDS = 1,
    SR_SYNCTYPE_ANGLE_RADIANS = 2,
    SR_SYNCTYPE_DISTANCE_METER = 3,
    SR_SYNCTYPE_INDEX_RECORDINDEX = 4
  };

  /// The name is the source information block's, deliberately.
  enum MDF_SI_BLOCK_LINKS {
    sr_sr_next = 0,  ///< next sample reduction block
    sr_data = 1,     ///< reduction data block, zipped data, data list or header list
    SR_BLOCK_LINKS_NUM = 2
  };

  /// Bits of `sr_flags`.
  enum SR_FLAGS_t : int {
    invalidation_bytes = 1  ///< the reduced records carry invalidation bytes
  };

  /// Mind that the links come in another order than in the block.
  SRBLOCK(UINT64 _cycleCount, REAL _interval, MDF_SR_SYNCTYPE_t _syncType, LINK _datablock,
          LINK _nextSrblock);

  /// Reads the block at the stream's position. The links read stand in `links` from index 2 on,
  /// after two nil links: the link accessors, the dump and the writer see the nil ones. A short
  /// stream keeps its own end-of-file and fail bits and leaves two nil links and fields of zero.
  explicit SRBLOCK(std::istream& is);

  void setNextSrblock(LINK _srblock) { setLinkAt(sr_sr_next, _srblock); }
  LINK getNextSrblock() const { return linkAt(sr_sr_next); }
  LINK seekgNextSrblock(std::ifstream& ifs) const { return seekg(ifs, getNextSrblock()); }

  void setDatablock(LINK _rd_dz_dl_hl_mdblock) { setLinkAt(sr_data, _rd_dz_dl_hl_mdblock); }
  LINK getDatablock() const { return linkAt(sr_data); }
  LINK seekgDatablock(std::ifstream& ifs) const { return seekg(ifs, getDatablock()); }

  UINT64 getCycleCount() const { return sr_cycle_count; }
  void setCycleCount(UINT64 count) { sr_cycle_count = count; }

  REAL getInterval() const { return sr_interval; }
  void setInterval(REAL interval) { sr_interval = interval; }

  MDF_SR_SYNCTYPE_t getSyncType() const { return static_cast<MDF_SR_SYNCTYPE_t>(sr_sync_type); }
  void setSyncType(MDF_SR_SYNCTYPE_t type) { sr_sync_type = static_cast<UINT8>(type); }

  /// The flag of the invalidation bytes; the operations' names say otherwise on purpose.
  void setValidationBytesFlag(bool set) { detail::setBit(sr_flags, invalidation_bytes, set); }
  bool isValidationBytesFlag() const { return detail::hasBit(sr_flags, invalidation_bytes); }

  std::uint64_t getSize() const { return SRBLOCK_SIZE; }

  void print(std::ostream& os) const;

  UINT64 sr_cycle_count = 0;  ///< records in the reduction data
  REAL sr_interval = 0;       ///< in the unit that the sync type gives
  UINT8 sr_sync_type = 0;     ///< an MDF_SR_SYNCTYPE_t
  UINT8 sr_flags = 0;
  detail::Array<UINT8, 6> sr_reserved{};
};

/// Writes the header and the links as they are stored, then the data section. A block that was
/// read writes its nil links as well.
MDF_EXPORT std::ostream& operator<<(std::ostream& os, const SRBLOCK& srb);

}  // namespace mdf_v4_10

#endif  // MDF_DATABLOCKS_SRBLOCK_H_
