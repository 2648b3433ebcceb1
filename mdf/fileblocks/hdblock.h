#ifndef MDF_FILEBLOCKS_HDBLOCK_H_
#define MDF_FILEBLOCKS_HDBLOCK_H_

#include <cstddef>
#include <cstdint>
#include <ctime>
#include <iosfwd>
#include <string>

#include "../framework/export.h"
#include "../framework/general_block.h"
#include "../framework/types.h"

namespace mdf_v4_10 {

/// The header block, at file offset 64: the root of the file's blocks. It says when the recording
/// started and, optionally, at what angle and distance.
class MDF_EXPORT HDBLOCK : public GENERALBLOCK {
 public:
  static constexpr std::size_t HDBLOCK_SIZE = 104;
  static constexpr std::uint16_t MDF_HD_ID = 0x4448;

  enum MDF_HD_BLOCK_LINKS {
    hd_dg_first = 0,    ///< first data group
    hd_fh_first = 1,    ///< first file history block
    hd_ch_first = 2,    ///< first channel hierarchy block
    hd_at_first = 3,    ///< first attachment
    hd_ev_first = 4,    ///< first event
    hd_md_comment = 5,  ///< file comment, a text or metadata block
    HD_BLOCK_LINKS_NUM = 6
  };

  /// Where the time stamp comes from.
  enum MDF_HD_TIME_QUALITY_t : int {
    TIME_LOCAL_PC = 0,            ///< the local computer's clock
    TIME_EXT_SOURCE = 10,         ///< an external time source
    TIME_EXT_ABSOLUTE_SYNC = 16,  ///< an external absolute, synchronised time source
  };

  /// A block for writing. Mind the order of the links: file history first, data group second. The
  /// offsets are marked valid and the time as UTC. Start angle and start distance are deliberately
  /// ignored, as `hd_flags` marks neither valid: both fields are 0.
  HDBLOCK(LINK _fhFirstBlock, LINK _dgFirstBlock, std::uint64_t _ts, std::int16_t _utcOffset,
          MDF_HD_TIME_QUALITY_t _tq, REAL start_angle_rad, REAL start_distance_m);

  /// Reads the block at the stream's position. A short stream keeps its own end-of-file and fail
  /// bits and leaves the block without links, its fields zero.
  explicit HDBLOCK(std::istream& is);

  void setDGFirstblock(LINK link) { setLinkAt(hd_dg_first, link); }
  LINK getDGFirstblock() const { return linkAt(hd_dg_first); }
  LINK seekgFirstDGBlock(std::ifstream& ifs) const { return seekg(ifs, getDGFirstblock()); }

  void setFHFirstblock(LINK link) { setLinkAt(hd_fh_first, link); }
  LINK getFHFirstblock() const { return linkAt(hd_fh_first); }
  LINK seekgFirstFHBlock(std::ifstream& ifs) const { return seekg(ifs, getFHFirstblock()); }

  void setCHFirstblock(LINK link) { setLinkAt(hd_ch_first, link); }
  LINK getCHFirstblock() const { return linkAt(hd_ch_first); }
  LINK seekgFirstCHBlock(std::ifstream& ifs) const { return seekg(ifs, getCHFirstblock()); }

  void setATFirstblock(LINK link) { setLinkAt(hd_at_first, link); }
  LINK getATFirstblock() const { return linkAt(hd_at_first); }
  LINK seekgFirstATBlock(std::ifstream& ifs) const { return seekg(ifs, getATFirstblock()); }

  void setEVFirstblock(LINK link) { setLinkAt(hd_ev_first, link); }
  LINK getEVFirstblock() const { return linkAt(hd_ev_first); }
  LINK seekgFirstEVBlock(std::ifstream& ifs) const { return seekg(ifs, getEVFirstblock()); }

  void setMDCommentblock(LINK link) { setLinkAt(hd_md_comment, link); }
  LINK getMDCommentblock() const { return linkAt(hd_md_comment); }
  LINK seekgMDCommentBlock(std::ifstream& ifs) const { return seekg(ifs, getMDCommentblock()); }

  /// Stores a time stamp as it is; the format's unit is nanoseconds since 1970-01-01 UTC.
  void setTimestamp(std::uint64_t time) { hd_start_time_ns = time; }

  /// Sets the daylight-saving offset to 60 minutes or 0.
  void setDST(bool isDST);

  /// Stores a local calendar time in seconds, deliberately not in nanoseconds, and the
  /// daylight-saving offset that the process's time zone has then. A time outside the signed 32-bit
  /// seconds, or none, stores -1. Time-zone offset and time flags stay.
  void setDateAndTime(std::tm _t);

  /// The inverse: takes the low 32 bits of the time stamp as signed seconds and converts them in
  /// the process's time zone, not in the stored one.
  void getDateAndTime(std::tm& _t) const;

  UINT64 getStartTime() const { return hd_start_time_ns; }
  std::uint64_t getTimeStamp() const { return hd_start_time_ns; }
  /// Minutes.
  std::int16_t getUtcOffset() const { return hd_tz_offset_min; }
  MDF_HD_TIME_QUALITY_t getTimeQuality() const {
    return static_cast<MDF_HD_TIME_QUALITY_t>(hd_time_class);
  }
  std::uint64_t getSize() const { return HDBLOCK_SIZE; }

  /// The XML schema that the file comment follows.
  std::string getValidMDXMLSchemaName() const { return "hd_comment.xsd"; }

  void print(std::ostream& os) const;

  UINT64 hd_start_time_ns = 0;
  INT16 hd_tz_offset_min = 0;
  INT16 hd_dst_offset_min = 0;
  UINT8 hd_time_flags = 0;  ///< bit 0: local time; bit 1: the two offsets are valid
  UINT8 hd_time_class = 0;  ///< an MDF_HD_TIME_QUALITY_t
  UINT8 hd_flags = 0;       ///< bit 0: start angle valid; bit 1: start distance valid
  UINT8 hd_reserved = 0;
  REAL hd_start_angle_rad = 0;
  REAL hd_start_distance_m = 0;
};

/// Writes the header and the links as they are stored, then the data section.
MDF_EXPORT std::ostream& operator<<(std::ostream& os, const HDBLOCK& hdb);

}  // namespace mdf_v4_10

#endif  // MDF_FILEBLOCKS_HDBLOCK_H_
