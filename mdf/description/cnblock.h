#ifndef MDF_DESCRIPTION_CNBLOCK_H_
#define MDF_DESCRIPTION_CNBLOCK_H_

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

namespace detail {
class Dump;
}

/// A channel block: one signal in the records of a channel group. It says where the signal's bits
/// lie in a record and how they are coded, what role the channel plays, and which ranges its values
/// have.
///
/// The eight fixed links stand in `links`; the links to attachments and, with the `default_x_axis`
/// flag, the three links of the default X axis are kept apart and joined to them in the file only.
class MDF_EXPORT CNBLOCK : public GENERALBLOCK {
 public:
  /// Size without attachments and default X axis.
  static constexpr std::size_t CNBLOCK_CONSTANT_SIZE = 160;
  static constexpr std::uint16_t MDF_CN_ID = 0x4E43;

  enum MDF_CN_CHANNELTYPE_t : int {
    CN_CHANNELTYPE_FIXEDLENGTH = 0,
    CN_CHANNELTYPE_VARLENGTH = 1,
    CN_CHANNELTYPE_MASTER = 2,
    CN_CHANNELTYPE_VIRTUALMASTER = 3,
    CN_CHANNELTYPE_SYNCHRONIZATION = 4,
    CN_CHANNELTYPE_MAXIMUM_DATACHANNEL = 5,
    CN_CHANNELTYPE_VIRTUAL_DATACHANNEL = 6
  };

  enum MDF_CN_SYNCTYPE_t : int {
    CN_SYNCTYPE_NONE = 0,
    CN_SYNCTYPE_TIME = 1,
    CN_SYNCTYPE_ANGLE = 2,
    CN_SYNCTYPE_DISTANCE = 3,
    CN_SYNCTYPE_INDEX = 4
  };

  enum MDF_CN_DATATYPES_t : int {
    CN_DATATYPE_UINT_LE = 0,
    CN_DATATYPE_UINT_BE = 1,
    CN_DATATYPE_INT_LE = 2,
    CN_DATATYPE_INT_BE = 3,
    CN_DATATYPE_FLOAT_LE = 4,
    CN_DATATYPE_FLOAT_BE = 5,
    CN_DATATYPE_STRING_ISO8859 = 6,
    CN_DATATYPE_STRING_UTF8 = 7,
    CN_DATATYPE_STRING_UTF16_LE = 8,
    CN_DATATYPE_STRING_UTF16_BE = 9,
    CN_DATATYPE_BYTEARRAY = 10,
    CN_DATATYPE_MIME_SAMPLE = 11,
    CN_DATATYPE_MIME_STREAM = 12,
    CN_DATATYPE_CANOPEN_DATE = 13,
    CN_DATATYPE_CANOPEN_TIME = 14
  };

  /// The eight fixed links.
  enum MDF_CN_BLOCK_LINKS {
    cn_cn_next = 0,        ///< next channel of the channel group
    cn_composition = 1,    ///< first channel or channel array of a composition
    cn_tx_name = 2,        ///< text block with the channel's name
    cn_si_source = 3,      ///< source information block
    cn_cc_conversion = 4,  ///< conversion block
    cn_data = 5,           ///< signal data: signal data block, data list, channel group, attachment
    cn_md_unit = 6,        ///< unit, a text or metadata block
    cn_md_comment = 7      ///< comment, a text or metadata block
  };

  /// Bits of `cn_flags`.
  enum CN_FLAGS_t : int {
    all_values_invalid = 1,
    invalidation_bit_valid = 2,
    precision_valid = 4,
    value_range_valid = 8,
    limit_range_valid = 16,
    extended_limit_range_valid = 32,
    discrete_value = 64,
    calibration = 128,
    calculated = 256,
    virtual_ = 512,
    bus_event = 1024,
    monotonous = 2048,
    default_x_axis = 4096
  };

  CNBLOCK(MDF_CN_CHANNELTYPE_t _channelType, MDF_CN_SYNCTYPE_t _syncType,
          MDF_CN_DATATYPES_t _dataType, LINK _nextCnblock, LINK _nameTxblock, LINK _datablock);

  /// Reads the block at the stream's position. The eight fixed links are nil afterwards. With n the
  /// attachment count in the file, `cc_attachements` holds the first n + 1 of the file's links,
  /// which start with the fixed ones. The default X axis is taken from the last three links.
  /// A short stream keeps its own end-of-file and fail bits and leaves eight nil links.
  explicit CNBLOCK(std::istream& is);

  /// Sets everything but the header, the attachments and the links of the default X axis. The
  /// invalidation bit position becomes 0; flags above `default_x_axis` stay. Mind that the links
  /// come in another order than in the block.
  void setup(MDF_CN_CHANNELTYPE_t _channelType, MDF_CN_SYNCTYPE_t _syncType,
             MDF_CN_DATATYPES_t _dataType, LINK _nextCnblock, LINK _nameTxblock,
             LINK _compositionblock, LINK _datablock, LINK _sourceSiblock, LINK _conversionCcbblock,
             LINK _unitblock, LINK _commentblock, UINT8 _bitOffset, UINT32 _byteOffset,
             UINT32 _bitCount, bool _invalid, bool _invalidationBitValid, bool _precisionValid,
             bool _valueRangeValid, bool _limitRangeValid, bool _extendedLimitRangeValid,
             bool _discreteValue, bool _calibration, bool _calculated, bool _virtual,
             bool _busEvent, bool _monotonous, bool _defaultXAxis, UINT8 _precision,
             REAL _val_range_min, REAL _val_range_max, REAL _limit_min, REAL _limit_max,
             REAL _limit_ext_min, REAL _limit_ext_max);

  /// Stores the data group, channel group and channel of the default X axis and sets its flag.
  void setupDefaultXAxis(LINK _dgblock, LINK _cgblock, LINK _cnblock);

  void setNextCnblock(LINK link) { setLinkAt(cn_cn_next, link); }
  LINK getNextCnblock() const { return linkAt(cn_cn_next); }
  LINK seekgNextCnblock(std::ifstream& ifs) const { return seekg(ifs, getNextCnblock()); }

  void setCompositionblock(LINK link) { setLinkAt(cn_composition, link); }
  LINK getCompositionblock() const { return linkAt(cn_composition); }
  LINK seekgCompositionblock(std::ifstream& ifs) const { return seekg(ifs, getCompositionblock()); }

  void setNameTxblock(LINK link) { setLinkAt(cn_tx_name, link); }
  LINK getNameTxblock() const { return linkAt(cn_tx_name); }
  LINK seekgNameTxblock(std::ifstream& ifs) const { return seekg(ifs, getNameTxblock()); }

  void setSourceSiblock(LINK link) { setLinkAt(cn_si_source, link); }
  LINK getSourceSiblock() const { return linkAt(cn_si_source); }
  LINK seekgSourceSiblock(std::ifstream& ifs) const { return seekg(ifs, getSourceSiblock()); }

  void setConversionCcblock(LINK link) { setLinkAt(cn_cc_conversion, link); }
  LINK getConversionCcblock() const { return linkAt(cn_cc_conversion); }
  LINK seekgConversionCcblock(std::ifstream& ifs) const {
    return seekg(ifs, getConversionCcblock());
  }

  void setDatablock(LINK link) { setLinkAt(cn_data, link); }
  LINK getDatablock() const { return linkAt(cn_data); }
  LINK seekgDatablock(std::ifstream& ifs) const { return seekg(ifs, getDatablock()); }

  void setUnitblock(LINK link) { setLinkAt(cn_md_unit, link); }
  LINK getUnitblock() const { return linkAt(cn_md_unit); }
  LINK seekgUnitblock(std::ifstream& ifs) const { return seekg(ifs, getUnitblock()); }

  void setCommentblock(LINK link) { setLinkAt(cn_md_comment, link); }
  LINK getCommentblock() const { return linkAt(cn_md_comment); }
  LINK seekgCommentblock(std::ifstream& ifs) const { return seekg(ifs, getCommentblock()); }

  LINK getDefaultXAxisdgblock() const { return cn_default_x_dgblock; }
  LINK seekgDefaultXAxisdgblock(std::ifstream& ifs) const {
    return seekg(ifs, cn_default_x_dgblock);
  }
  LINK getDefaultXAxiscgblock() const { return cn_default_x_cgblock; }
  LINK seekgDefaultXAxiscgblock(std::ifstream& ifs) const {
    return seekg(ifs, cn_default_x_cgblock);
  }
  LINK getDefaultXAxiscnblock() const { return cn_default_x_cnblock; }
  LINK seekgDefaultXAxiscnblock(std::ifstream& ifs) const {
    return seekg(ifs, cn_default_x_cnblock);
  }

  UINT16 getAttachementCount() const { return static_cast<UINT16>(cc_attachements.size()); }
  void addAttachement(LINK link) { cc_attachements.push_back(link); }
  /// The link at an index; 0 when there is none.
  LINK getAttachementAt(UINT16 _index) const { return entryAt(cc_attachements, _index); }
  /// Removes the link at an index; does nothing when there is none.
  void removeAttachementeAt(UINT16 _index) { removeEntryAt(cc_attachements, _index); }
  /// Positions the stream at the link at an index; 0 and no move when there is none.
  LINK seekgAttachementAt(std::ifstream& ifs, UINT16 _index) const {
    return seekgEntryAt(ifs, cc_attachements, _index);
  }

  MDF_CN_CHANNELTYPE_t getChannelType() const { return static_cast<MDF_CN_CHANNELTYPE_t>(cn_type); }
  void setChannelType(MDF_CN_CHANNELTYPE_t type) { cn_type = static_cast<UINT8>(type); }

  MDF_CN_SYNCTYPE_t getSyncType() const { return static_cast<MDF_CN_SYNCTYPE_t>(cn_sync_type); }
  void setSyncType(MDF_CN_SYNCTYPE_t type) { cn_sync_type = static_cast<UINT8>(type); }

  MDF_CN_DATATYPES_t getDataType() const { return static_cast<MDF_CN_DATATYPES_t>(cn_data_type); }
  void setDataType(MDF_CN_DATATYPES_t type) { cn_data_type = static_cast<UINT8>(type); }

  UINT8 getBitOffset() const { return cn_bit_offset; }
  void setBitOffset(UINT8 offset) { cn_bit_offset = offset; }

  UINT32 getByteOffset() const { return cn_byte_offset; }
  void setByteOffset(UINT32 offset) { cn_byte_offset = offset; }

  UINT32 getBitCount() const { return cn_bit_count; }
  void setBitCount(UINT32 count) { cn_bit_count = count; }

  UINT32 getInvalidBitPos() const { return cn_inval_bit_pos; }
  void setInvalidBitPos(UINT32 position) { cn_inval_bit_pos = position; }

  UINT8 getPrecision() const { return cn_precision; }
  void setPrecision(UINT8 precision) { cn_precision = precision; }

  REAL getValueRangeMin() const { return cn_val_range_min; }
  void setValueRangeMin(REAL value) { cn_val_range_min = value; }
  REAL getValueRangeMax() const { return cn_val_range_max; }
  void setValueRangeMax(REAL value) { cn_val_range_max = value; }
  REAL getLimitMin() const { return cn_limit_min; }
  void setLimitMin(REAL value) { cn_limit_min = value; }
  REAL getLimitMax() const { return cn_limit_max; }
  void setLimitMax(REAL value) { cn_limit_max = value; }
  REAL getLimitExtendedMin() const { return cn_limit_ext_min; }
  void setLimitExtendedMin(REAL value) { cn_limit_ext_min = value; }
  REAL getLimitExtendedMax() const { return cn_limit_ext_max; }
  void setLimitExtendedMax(REAL value) { cn_limit_ext_max = value; }

  void setInvalidFlag(bool set) { detail::setBit(cn_flags, all_values_invalid, set); }
  bool isInvalid() const { return detail::hasBit(cn_flags, all_values_invalid); }
  void setInvalidationBitFlag(bool set) { detail::setBit(cn_flags, invalidation_bit_valid, set); }
  bool isInvalidationBit() const { return detail::hasBit(cn_flags, invalidation_bit_valid); }
  void setPrecisionValidFlag(bool set) { detail::setBit(cn_flags, precision_valid, set); }
  bool isPrecisionValid() const { return detail::hasBit(cn_flags, precision_valid); }
  void setValueRangeValidFlag(bool set) { detail::setBit(cn_flags, value_range_valid, set); }
  bool isValueRangeValid() const { return detail::hasBit(cn_flags, value_range_valid); }
  void setLimitRangeValidFlag(bool set) { detail::setBit(cn_flags, limit_range_valid, set); }
  bool isLimitRangeValid() const { return detail::hasBit(cn_flags, limit_range_valid); }
  void setExtendedLimitRangeValidFlag(bool set) {
    detail::setBit(cn_flags, extended_limit_range_valid, set);
  }
  bool isExtendedLimitRangeValid() const {
    return detail::hasBit(cn_flags, extended_limit_range_valid);
  }
  void setDiscreteValueFlag(bool set) { detail::setBit(cn_flags, discrete_value, set); }
  bool isDiscreteValue() const { return detail::hasBit(cn_flags, discrete_value); }
  void setCalibrationFlag(bool set) { detail::setBit(cn_flags, calibration, set); }
  bool isCalibration() const { return detail::hasBit(cn_flags, calibration); }
  void setCalculatedFlag(bool set) { detail::setBit(cn_flags, calculated, set); }
  bool isCalculated() const { return detail::hasBit(cn_flags, calculated); }
  void setVirtualFlag(bool set) { detail::setBit(cn_flags, virtual_, set); }
  bool isVirtual() const { return detail::hasBit(cn_flags, virtual_); }
  void setBusEventFlag(bool set) { detail::setBit(cn_flags, bus_event, set); }
  bool isBusEvent() const { return detail::hasBit(cn_flags, bus_event); }
  void setMonotonousFlag(bool set) { detail::setBit(cn_flags, monotonous, set); }
  bool isMonotonous() const { return detail::hasBit(cn_flags, monotonous); }
  void setDefaultXAxisFlag(bool set) { detail::setBit(cn_flags, default_x_axis, set); }
  bool isDefaultXAxis() const { return detail::hasBit(cn_flags, default_x_axis); }

  /// Bytes that the writer writes.
  std::uint64_t getSize() const;

  /// The XML schema that the comment follows.
  std::string getValidMDXMLSchemaName() const { return "cn_comment.xsd"; }
  /// The XML schema that the unit follows.
  std::string getValidUnitXMLSchemaName() const { return "cn_unit.xsd"; }

  void print(std::ostream& os) const;

  UINT8 cn_type = 0;          ///< an MDF_CN_CHANNELTYPE_t
  UINT8 cn_sync_type = 0;     ///< an MDF_CN_SYNCTYPE_t
  UINT8 cn_data_type = 0;     ///< an MDF_CN_DATATYPES_t
  UINT8 cn_bit_offset = 0;    ///< of the value in its first byte
  UINT32 cn_byte_offset = 0;  ///< of the value in the record's data bytes
  UINT32 cn_bit_count = 0;
  UINT32 cn_flags = 0;
  UINT32 cn_inval_bit_pos = 0;
  UINT8 cn_precision = 255;  ///< decimal places to show
  UINT8 cn_reserved = 0;
  REAL cn_val_range_min = 0;
  REAL cn_val_range_max = 0;
  REAL cn_limit_min = 0;
  REAL cn_limit_max = 0;
  REAL cn_limit_ext_min = 0;
  REAL cn_limit_ext_max = 0;
  std::vector<LINK> cc_attachements;
  LINK cn_default_x_dgblock = 0;
  LINK cn_default_x_cgblock = 0;
  LINK cn_default_x_cnblock = 0;

 private:
  CNBLOCK();
  void printFlags(detail::Dump& dump) const;
};

/// Writes the block; length and link count in the file follow from its lists.
MDF_EXPORT std::ostream& operator<<(std::ostream& os, const CNBLOCK& cnb);

}  // namespace mdf_v4_10

#endif  // MDF_DESCRIPTION_CNBLOCK_H_
