#ifndef MDF_FILEBLOCKS_EVBLOCK_H_
#define MDF_FILEBLOCKS_EVBLOCK_H_

#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <string>
#include <vector>

#include "../framework/bits.h"
#include "../framework/export.h"
#include "../framework/general_block.h"
#include "../framework/types.h"

namespace mdf_v4_10 {

/// An event block: something that happened during a measurement, such as a trigger or a marker. It
/// says when in terms of a synchronisation domain, whether it is a point or one end of a range, and
/// what caused it.
///
/// The five fixed links stand in `links`; the event's scope (the channels or channel groups that it
/// applies to) and its attachments are kept apart and joined to them in the file only.
class MDF_EXPORT EVBLOCK : public GENERALBLOCK {
 public:
  /// Size without scope and attachments.
  static constexpr std::size_t EVBLOCK_CONSTANT_SIZE = 96;
  static constexpr std::uint16_t MDF_EV_ID = 0x5645;

  enum MDF_EV_TYPE_t : int {
    EV_TYPE_RECORDING = 0,
    EV_TYPE_RECORDING_INTERRUPT = 1,
    EV_TYPE_ACQUISITION_INTERRUPT = 2,
    EV_TYPE_START_RECORDING_TRIGGER = 3,
    EV_TYPE_STOP_RECORDING_TRIGGER = 4,
    EV_TYPE_TRIGGER = 5,
    EV_TYPE_MARKER = 6
  };

  /// The synchronisation domain and its unit.
  enum MDF_EV_SYNCTYPE_t : int {
    EV_SYNCTYPE_SECONDS = 1,
    EV_SYNCTYPE_RADIANS = 2,
    EV_SYNCTYPE_METERS = 3,
    EV_SYNCTYPE_RECORD_INDEX = 4
  };

  enum MDF_EV_RANGETYPE_t : int {
    EV_RANGETYPE_POINT = 0,
    EV_RANGETYPE_BEGIN = 1,
    EV_RANGETYPE_END = 2
  };

  enum MDF_EV_CAUSETYPE_t : int {
    EV_CAUSETYPE_OTHER = 0,
    EV_CAUSETYPE_ERROR = 1,
    EV_CAUSETYPE_TOOL = 2,
    EV_CAUSETYPE_SCRIPT = 3,
    EV_CAUSETYPE_USER = 4
  };

  /// Bits of `ev_flags`.
  enum EV_FLAGS_t : int {
    post_processing = 1  ///< the event was added after the measurement
  };

  /// The five fixed links.
  enum MDF_EV_BLOCK_LINKS {
    ev_ev_next = 0,    ///< next event
    ev_ev_parent = 1,  ///< parent event
    ev_ev_range = 2,   ///< the event that begins the range that this one ends
    ev_tx_name = 3,    ///< text block with the name
    ev_md_comment = 4  ///< comment, a text or metadata block
  };

  /// A block for writing. Its synchronisation factor is 0 until the caller sets a real one.
  EVBLOCK(MDF_EV_TYPE_t type, MDF_EV_SYNCTYPE_t syncType, MDF_EV_RANGETYPE_t rangeType,
          MDF_EV_CAUSETYPE_t causeType);

  /// Reads the block at the stream's position. The five fixed links are nil afterwards. With s and
  /// a the counts in the file, `ev_scope` holds the first s of the file's links, which start with
  /// the fixed ones, and `ev_at_reference` the next a. A short stream keeps its own end-of-file and
  /// fail bits and leaves five nil links, the lists empty and the fields zero.
  explicit EVBLOCK(std::istream& is);

  void setNextEVBlock(LINK link) { setLinkAt(ev_ev_next, link); }
  LINK getNextEVBlock() const { return linkAt(ev_ev_next); }
  LINK seekgNextEVBlock(std::ifstream& ifs) const { return seekg(ifs, getNextEVBlock()); }

  void setParentEVBlock(LINK link) { setLinkAt(ev_ev_parent, link); }
  LINK getParentEVBlock() const { return linkAt(ev_ev_parent); }
  LINK seekgParentEVBlock(std::ifstream& ifs) const { return seekg(ifs, getParentEVBlock()); }

  void setEVRangeBlock(LINK link) { setLinkAt(ev_ev_range, link); }
  LINK getEVRangeBlock() const { return linkAt(ev_ev_range); }
  LINK seekgEVRangeBlock(std::ifstream& ifs) const { return seekg(ifs, getEVRangeBlock()); }

  void setTXNameBlock(LINK link) { setLinkAt(ev_tx_name, link); }
  LINK getTXNameBlock() const { return linkAt(ev_tx_name); }
  LINK seekgTXNameBlock(std::ifstream& ifs) const { return seekg(ifs, getTXNameBlock()); }

  void setMDBlock(LINK link) { setLinkAt(ev_md_comment, link); }
  LINK getMDBlock() const { return linkAt(ev_md_comment); }
  LINK seekgMDBlock(std::ifstream& ifs) const { return seekg(ifs, getMDBlock()); }

  MDF_EV_TYPE_t getType() const { return static_cast<MDF_EV_TYPE_t>(ev_type); }
  void setType(MDF_EV_TYPE_t type) { ev_type = static_cast<UINT8>(type); }

  MDF_EV_SYNCTYPE_t getSyncType() const { return static_cast<MDF_EV_SYNCTYPE_t>(ev_sync_type); }
  void setSyncType(MDF_EV_SYNCTYPE_t type) { ev_sync_type = static_cast<UINT8>(type); }

  MDF_EV_RANGETYPE_t getRangeType() const { return static_cast<MDF_EV_RANGETYPE_t>(ev_range_type); }
  void setRangeType(MDF_EV_RANGETYPE_t type) { ev_range_type = static_cast<UINT8>(type); }

  MDF_EV_CAUSETYPE_t getCause() const { return static_cast<MDF_EV_CAUSETYPE_t>(ev_cause); }
  void setCause(MDF_EV_CAUSETYPE_t cause) { ev_cause = static_cast<UINT8>(cause); }

  void setPostProcessedFlag(bool set) { detail::setBit(ev_flags, post_processing, set); }
  bool isPostProcessed() const { return detail::hasBit(ev_flags, post_processing); }

  UINT16 getCreatorIndex() const { return ev_creator_index; }
  void setCreatorIndex(UINT16 index) { ev_creator_index = index; }

  INT64 getSyncBaseValue() const { return ev_sync_base_value; }
  void setSyncBaseValue(INT64 value) { ev_sync_base_value = value; }

  REAL getSyncBaseFactor() const { return ev_sync_factor; }
  void setSyncBaseFactor(REAL factor) { ev_sync_factor = factor; }

  UINT32 getScopeCount() const { return static_cast<UINT32>(ev_scope.size()); }
  void addScope(LINK link) { ev_scope.push_back(link); }
  /// The link at an index; 0 when there is none.
  LINK getScopeAt(UINT32 scopeIndex) const { return entryAt(ev_scope, scopeIndex); }
  /// Removes the link at an index; does nothing when there is none.
  void removeScopeAt(UINT32 scopeIndex) { removeEntryAt(ev_scope, scopeIndex); }
  /// Positions the stream at the link at an index; 0 and no move when there is none.
  LINK seekgScopeAt(std::ifstream& ifs, UINT32 scopeIndex) const {
    return seekgEntryAt(ifs, ev_scope, scopeIndex);
  }

  /// Modulo 65,536, as in the file.
  UINT16 getAttachmentCount() const { return static_cast<UINT16>(ev_at_reference.size()); }
  void addAttachment(LINK link) { ev_at_reference.push_back(link); }
  /// The link at an index; 0 when there is none.
  LINK getAttachmentAt(UINT16 attachmentIndex) const {
    return entryAt(ev_at_reference, attachmentIndex);
  }
  /// Removes the link at an index; does nothing when there is none.
  void removeAttachmentAt(UINT16 attachmentIndex) {
    removeEntryAt(ev_at_reference, attachmentIndex);
  }
  /// Positions the stream at the link at an index; 0 and no move when there is none.
  LINK seekgAttachmentAt(std::ifstream& ifs, UINT16 attachmentIndex) const {
    return seekgEntryAt(ifs, ev_at_reference, attachmentIndex);
  }

  /// Bytes that the writer writes.
  std::uint64_t getSize() const;

  /// The XML schema that the comment follows.
  std::string getValidMDXMLSchemaName() const { return "ev_comment.xsd"; }

  void print(std::ostream& os) const;

  UINT8 ev_type = 0;        ///< an MDF_EV_TYPE_t
  UINT8 ev_sync_type = 0;   ///< an MDF_EV_SYNCTYPE_t
  UINT8 ev_range_type = 0;  ///< an MDF_EV_RANGETYPE_t
  UINT8 ev_cause = 0;       ///< an MDF_EV_CAUSETYPE_t
  UINT8 ev_flags = 0;
  detail::Array<UINT8, 3> ev_reserved{};
  UINT16 ev_creator_index = 0;   ///< of the file history entry of the tool that made the event
  INT64 ev_sync_base_value = 0;  ///< times the factor: where in its domain the event happened
  REAL ev_sync_factor = 0;
  std::vector<LINK> ev_scope;
  std::vector<LINK> ev_at_reference;

 private:
  explicit EVBLOCK(UINT64 length);
};

/// Writes the block; length and link count in the file follow from its lists.
MDF_EXPORT std::ostream& operator<<(std::ostream& os, const EVBLOCK& evb);

}  // namespace mdf_v4_10

#endif  // MDF_FILEBLOCKS_EVBLOCK_H_
