#ifndef MDF_DESCRIPTION_CCBLOCK_H_
#define MDF_DESCRIPTION_CCBLOCK_H_

#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "../framework/bits.h"
#include "../framework/export.h"
#include "../framework/general_block.h"
#include "../framework/types.h"

namespace mdf_v4_10 {

/// A conversion block: how a channel's raw value becomes its physical value. The block carries the
/// parameters of a conversion; it does not evaluate them.
///
/// The four fixed links stand in `links`; the references that a conversion type needs are kept
/// apart in `cc_refs` and joined to them in the file only. Length, link count and the two counts in
/// the file always follow from the lists; the header in memory does not.
class MDF_EXPORT CCBLOCK : public GENERALBLOCK {
 public:
  /// Size without references and values.
  static constexpr std::size_t CCBLOCK_CONSTANT_SIZE = 80;
  static constexpr std::uint16_t MDF_CC_ID = 0x4343;

  enum MDF_CC_TYPE_t : int {
    CC_CONVTYPE_EQUAL = 0,
    CC_CONVTYPE_LINEAR = 1,
    CC_CONVTYPE_RATIONAL = 2,
    CC_CONVTYPE_ALGEBRAIC = 3,
    CC_CONVTYPE_V2VTAB_INTERPOL = 4,
    CC_CONVTYPE_V2VTAB_NOINTERPOL = 5,
    CC_CONVTYPE_VRANGE2VTAB = 6,
    CC_CONVTYPE_V2TEXT_SCALETAB = 7,
    CC_CONVTYPE_VRANGE2TEXT_SCALETAB = 8,
    CC_CONVTYPE_TEXT2VTAB = 9,
    CC_CONVTYPE_TEXT2TEXTTAB = 10
  };

  /// The four fixed links.
  enum MDF_CC_BLOCK_LINKS {
    cc_tx_name = 0,     ///< text block with the conversion's name
    cc_md_unit = 1,     ///< physical unit, a text or metadata block
    cc_md_comment = 2,  ///< comment, a text or metadata block
    cc_cc_inverse = 3   ///< conversion block of the inverse conversion
  };

  /// Bits of `cc_flags`.
  enum CC_FLAGS_t : int { precision_valid = 1, phys_value_range_valid = 2, status_string = 4 };

  /// A block without references and values; a set-up or the list operations fill it.
  explicit CCBLOCK(MDF_CC_TYPE_t _type);

  /// Reads the block at the stream's position. Exactly four links stand in `links` afterwards, nil
  /// where the file has fewer; those after them that the reference count covers stand in
  /// `cc_refs`, others are dropped. Values that the block's bytes do not hold are missing. Length
  /// and link count stay as found. A short stream keeps its own end-of-file and fail bits and
  /// leaves the block without links, its fields as a block for writing starts with them.
  explicit CCBLOCK(std::istream& is);

  // A set-up gives the block a conversion type and its parameters: it sets `cc_type`, empties
  // `cc_refs` and `cc_vals` and fills them in the order that the type prescribes, tables in
  // ascending order of their keys and the default last. Everything else stays, and nothing is
  // checked. Texts are links to text blocks; a table keyed by texts is ordered by the links, not by
  // the texts.

  /// The physical value is the raw value.
  void setupEqualConversion();

  /// The physical value is _p1 + _p2 * raw.
  void setupLinearConversion(REAL _p1, REAL _p2);

  /// The physical value is (_p1 * raw^2 + _p2 * raw + _p3) / (_p4 * raw^2 + _p5 * raw + _p6).
  void setupRationalConversion(REAL _p1, REAL _p2, REAL _p3, REAL _p4, REAL _p5, REAL _p6);

  /// A formula, as text.
  void setupAlgebraicConversion(LINK _algebraicTxblock);

  /// Raw values to physical values, with interpolation between the entries or without.
  void setupV2VTABConversion(bool _withInterpolation, const std::map<REAL, REAL>& _keyValuePairs);

  /// Ranges of raw values, minimum and maximum, to physical values.
  void setupVRANGE2VTABConversion(const std::map<std::pair<REAL, REAL>, REAL>& _rangeValuePairs,
                                  REAL _defaultValue);

  /// Raw values to texts or further conversions.
  void setupV2TEXT_SCALETABConversion(const std::map<REAL, LINK>& _keyLinkPairs, LINK _defaultLink);

  /// Ranges of raw values, minimum and maximum, to texts or further conversions.
  void setupVRANGE2TEXT_SCALETABConversion(
      const std::map<std::pair<REAL, REAL>, LINK>& _rangeLinkPairs, LINK _defaultLink);

  /// Texts to physical values.
  void setupTEXT2VTABConversion(const std::map<LINK, REAL>& _keyLinkPairs, REAL _defaultValue);

  /// Texts to texts.
  void setupTEXT2TEXTTABConversion(const std::map<LINK, LINK>& _keyLinkPairs, LINK _defaultLink);

  void setNameTxblock(LINK link) { setLinkAt(cc_tx_name, link); }
  LINK getNameTxblock() const { return linkAt(cc_tx_name); }
  LINK seekgNameTxblock(std::ifstream& ifs) const { return seekg(ifs, getNameTxblock()); }

  void setUnitblock(LINK link) { setLinkAt(cc_md_unit, link); }
  LINK getUnitblock() const { return linkAt(cc_md_unit); }
  LINK seekgUnitblock(std::ifstream& ifs) const { return seekg(ifs, getUnitblock()); }

  void setCommentblock(LINK link) { setLinkAt(cc_md_comment, link); }
  LINK getCommentblock() const { return linkAt(cc_md_comment); }
  LINK seekgCommentblock(std::ifstream& ifs) const { return seekg(ifs, getCommentblock()); }

  void setInverseCcblock(LINK link) { setLinkAt(cc_cc_inverse, link); }
  LINK getInverseCcblock() const { return linkAt(cc_cc_inverse); }
  LINK seekgInverseCcblock(std::ifstream& ifs) const { return seekg(ifs, getInverseCcblock()); }

  void addReference(LINK link) { cc_refs.push_back(link); }
  /// Stores the reference at an index in `link`; false, and `link` untouched, when there is none.
  bool getReferenceAtIndex(UINT16 index, LINK& link) const {
    return copyEntryAt(cc_refs, index, link);
  }
  /// Removes the reference at an index; does nothing when there is none.
  void removeReferenceAtIndex(UINT16 index) { removeEntryAt(cc_refs, index); }
  /// Positions the stream at the reference at an index; 0 and no move when there is none.
  LINK seekgReferenceAt(std::ifstream& ifs, UINT16 index) const {
    return seekgEntryAt(ifs, cc_refs, index);
  }

  void addValue(REAL value) { cc_vals.push_back(value); }
  /// Stores the value at an index in `value`; false, and `value` untouched, when there is none.
  bool getValueAtIndex(UINT16 index, REAL& value) const {
    return copyEntryAt(cc_vals, index, value);
  }
  /// Removes the value at an index; does nothing when there is none.
  void removeValueAtIndex(UINT16 index) { removeEntryAt(cc_vals, index); }

  /// Leaves the references and values alone, unlike a set-up.
  void setConversionType(MDF_CC_TYPE_t type) { cc_type = static_cast<UINT8>(type); }
  MDF_CC_TYPE_t getConversionType() const { return static_cast<MDF_CC_TYPE_t>(cc_type); }

  UINT8 getPrecision() const { return cc_precision; }
  void setPrecision(UINT8 precision) { cc_precision = precision; }

  void setPrecisionValidFlag(bool set) { detail::setBit(cc_flags, precision_valid, set); }
  bool isPrecisionValid() const { return detail::hasBit(cc_flags, precision_valid); }
  void setPhysicalValueRangeValidFlag(bool set) {
    detail::setBit(cc_flags, phys_value_range_valid, set);
  }
  bool isPhysicalValueRangeValid() const {
    return detail::hasBit(cc_flags, phys_value_range_valid);
  }
  void setStatusStringFlag(bool set) { detail::setBit(cc_flags, status_string, set); }
  bool isStatusString() const { return detail::hasBit(cc_flags, status_string); }

  REAL getPhysicalValueRangeMin() const { return cc_phy_range_min; }
  void setPhysicalValueRangeMin(REAL value) { cc_phy_range_min = value; }
  REAL getPhysicalValueRangeMax() const { return cc_phy_range_max; }
  void setPhysicalValueRangeMax(REAL value) { cc_phy_range_max = value; }

  /// Bytes that the writer writes when `links` holds the four fixed links.
  std::uint64_t getSize() const;

  /// The XML schema that the comment follows.
  std::string getValidMDXMLSchemaName() const { return "cc_comment.xsd"; }
  /// The XML schema that the unit follows.
  std::string getValidUnitXMLSchemaName() const { return "cc_unit.xsd"; }

  void print(std::ostream& os) const;

  UINT8 cc_type = CC_CONVTYPE_EQUAL;  ///< an MDF_CC_TYPE_t
  UINT8 cc_precision = 255;           ///< decimal places to show; 255 means not set
  UINT16 cc_flags = 0;
  REAL cc_phy_range_min = 0;
  REAL cc_phy_range_max = 0;
  std::vector<LINK> cc_refs;
  std::vector<REAL> cc_vals;

 private:
  CCBLOCK();
  void startSetup(MDF_CC_TYPE_t type);
  /// Links in the file, references included.
  std::size_t getLinkCount() const { return cc_cc_inverse + 1 + cc_refs.size(); }
  friend std::ostream& operator<<(std::ostream& os, const CCBLOCK& ccb);
};

/// Writes the block; length, link count and the two counts in the file follow from its lists. The
/// counts are 16 bits wide: of longer lists all entries are written, and the counts are cut.
MDF_EXPORT std::ostream& operator<<(std::ostream& os, const CCBLOCK& ccb);

}  // namespace mdf_v4_10

#endif  // MDF_DESCRIPTION_CCBLOCK_H_
