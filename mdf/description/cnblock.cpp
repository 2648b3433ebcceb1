#include "cnblock.h"

#include "../framework/block_reader.h"
#include "../framework/block_writer.h"
#include "../framework/dump.h"
#include "layouts.h"

namespace mdf_v4_10 {

namespace {

constexpr std::size_t fixed_link_count = detail::cnblock_links.size();

/// The links to the default X axis, after all others.
constexpr auto x_axis_links =
    detail::fieldList(detail::field<&CNBLOCK::cn_default_x_dgblock>("cn_default_x_dgblock"),
                      detail::field<&CNBLOCK::cn_default_x_cgblock>("cn_default_x_cgblock"),
                      detail::field<&CNBLOCK::cn_default_x_cnblock>("cn_default_x_cnblock"));
constexpr std::size_t x_axis_link_count = x_axis_links.width() / sizeof(LINK);

/// Links that are not among the fixed ones: attachments and default X axis.
std::size_t additionalLinkCount(const CNBLOCK& cnb) {
  return cnb.cc_attachements.size() + (cnb.isDefaultXAxis() ? x_axis_link_count : 0);
}

void printRange(detail::Dump& dump, const char* label, REAL min, REAL max) {
  dump.part(label, min);
  dump.line(" max = ", max);
}

}  // namespace

CNBLOCK::CNBLOCK() : GENERALBLOCK(MDF_CN_ID, CNBLOCK_CONSTANT_SIZE, fixed_link_count) {}

CNBLOCK::CNBLOCK(MDF_CN_CHANNELTYPE_t _channelType, MDF_CN_SYNCTYPE_t _syncType,
                 MDF_CN_DATATYPES_t _dataType, LINK _nextCnblock, LINK _nameTxblock,
                 LINK _datablock)
    : CNBLOCK() {
  setChannelType(_channelType);
  setSyncType(_syncType);
  setDataType(_dataType);
  setNextCnblock(_nextCnblock);
  setNameTxblock(_nameTxblock);
  setDatablock(_datablock);
}

CNBLOCK::CNBLOCK(std::istream& is) : CNBLOCK() {
  detail::BlockBody body(is, *this, detail::cnblock_fields.takenWidth(), detail::BodyForm::low_32);
  if (!body.isReadable()) {
    return;
  }
  const auto [attachment_count] = detail::cnblock_fields.take(body.in.position(), *this);
  // The list starts at the file's first link, not after its fixed ones, and takes one entry more
  // than the count. Both are deliberate.
  body.links.appendPartTo(cc_attachements, 0, detail::hostSize(attachment_count) + 1);
  if (isDefaultXAxis()) {
    cn_default_x_dgblock = body.links.fromEnd(3);
    cn_default_x_cgblock = body.links.fromEnd(2);
    cn_default_x_cnblock = body.links.fromEnd(1);
  }
}

void CNBLOCK::setup(MDF_CN_CHANNELTYPE_t _channelType, MDF_CN_SYNCTYPE_t _syncType,
                    MDF_CN_DATATYPES_t _dataType, LINK _nextCnblock, LINK _nameTxblock,
                    LINK _compositionblock, LINK _datablock, LINK _sourceSiblock,
                    LINK _conversionCcbblock, LINK _unitblock, LINK _commentblock, UINT8 _bitOffset,
                    UINT32 _byteOffset, UINT32 _bitCount, bool _invalid, bool _invalidationBitValid,
                    bool _precisionValid, bool _valueRangeValid, bool _limitRangeValid,
                    bool _extendedLimitRangeValid, bool _discreteValue, bool _calibration,
                    bool _calculated, bool _virtual, bool _busEvent, bool _monotonous,
                    bool _defaultXAxis, UINT8 _precision, REAL _val_range_min, REAL _val_range_max,
                    REAL _limit_min, REAL _limit_max, REAL _limit_ext_min, REAL _limit_ext_max) {
  setChannelType(_channelType);
  setSyncType(_syncType);
  setDataType(_dataType);

  setNextCnblock(_nextCnblock);
  setNameTxblock(_nameTxblock);
  setCompositionblock(_compositionblock);
  setDatablock(_datablock);
  setSourceSiblock(_sourceSiblock);
  setConversionCcblock(_conversionCcbblock);
  setUnitblock(_unitblock);
  setCommentblock(_commentblock);

  setBitOffset(_bitOffset);
  setByteOffset(_byteOffset);
  setBitCount(_bitCount);
  setInvalidBitPos(0);

  setInvalidFlag(_invalid);
  setInvalidationBitFlag(_invalidationBitValid);
  setPrecisionValidFlag(_precisionValid);
  setValueRangeValidFlag(_valueRangeValid);
  setLimitRangeValidFlag(_limitRangeValid);
  setExtendedLimitRangeValidFlag(_extendedLimitRangeValid);
  setDiscreteValueFlag(_discreteValue);
  setCalibrationFlag(_calibration);
  setCalculatedFlag(_calculated);
  setVirtualFlag(_virtual);
  setBusEventFlag(_busEvent);
  setMonotonousFlag(_monotonous);
  setDefaultXAxisFlag(_defaultXAxis);

  setPrecision(_precision);
  setValueRangeMin(_val_range_min);
  setValueRangeMax(_val_range_max);
  setLimitMin(_limit_min);
  setLimitMax(_limit_max);
  setLimitExtendedMin(_limit_ext_min);
  setLimitExtendedMax(_limit_ext_max);
}

void CNBLOCK::setupDefaultXAxis(LINK _dgblock, LINK _cgblock, LINK _cnblock) {
  cn_default_x_dgblock = _dgblock;
  cn_default_x_cgblock = _cgblock;
  cn_default_x_cnblock = _cnblock;
  setDefaultXAxisFlag(true);
}

std::uint64_t CNBLOCK::getSize() const {
  return CNBLOCK_CONSTANT_SIZE + sizeof(LINK) * std::uint64_t{additionalLinkCount(*this)};
}

void CNBLOCK::print(std::ostream& os) const {
  detail::Dump dump(os, "CNBLOCK");
  dump.line("block size = ", getSize());
  dump.line("next channel block = ", getNextCnblock());
  dump.line("composition block = ", getCompositionblock());
  dump.line("name tx block = ", getNameTxblock());
  dump.line("source si block = ", getSourceSiblock());
  dump.line("channel conversion block = ", getConversionCcblock());
  dump.line("data block = ", getDatablock());
  dump.line("unit block = ", getUnitblock());
  dump.line("comment block = ", getCommentblock());
  dump.line("channel type = ", cn_type);
  dump.line("sync type = ", cn_sync_type);
  dump.line("data type = ", cn_data_type);
  dump.line("bit offset = ", cn_bit_offset);
  dump.line("byte offset = ", cn_byte_offset);
  dump.line("bit count = ", cn_bit_count);
  printFlags(dump);
  dump.line("invalid bit pos = ", cn_inval_bit_pos);
  dump.line("precision = ", cn_precision);
  printRange(dump, "value range min = ", cn_val_range_min, cn_val_range_max);
  printRange(dump, "limit min = ", cn_limit_min, cn_limit_max);
  printRange(dump, "limit extended range min = ", cn_limit_ext_min, cn_limit_ext_max);
  dump.line("attachements : ", cc_attachements.size());
  for (const LINK attachment : cc_attachements) {
    dump.line("attachement:", attachment);
  }
  if (isDefaultXAxis()) {
    dump.line("defaultXAxis DG : ", cn_default_x_dgblock);
    dump.line("defaultXAxis CG : ", cn_default_x_cgblock);
    dump.line("defaultXAxis CN : ", cn_default_x_cnblock);
  }
  dump.end();
}

void CNBLOCK::printFlags(detail::Dump& dump) const {
  dump.part("flags: invalid(", isInvalid());
  dump.part("), invalidationBit(", isInvalidationBit());
  dump.part("), precisionValid(", isPrecisionValid());
  dump.part("), valueRangeValid(", isValueRangeValid());
  dump.part("), limitRangeValid(", isLimitRangeValid());
  dump.part(")");
  dump.endLine();
  dump.part("flags 2: extendedLimitRangeValid(", isExtendedLimitRangeValid());
  dump.part("), discreteValue(", isDiscreteValue());
  dump.part("), calibration(", isCalibration());
  dump.part("), calculated(", isCalculated());
  dump.part("), virtual(", isVirtual());
  dump.part(")");
  dump.endLine();
  dump.part("flags 3: busEvent(", isBusEvent());
  dump.part("), monotonous(", isMonotonous());
  // This line has no closing parenthesis, unlike the two above; deliberate.
  dump.line("), defaultXAxis(", isDefaultXAxis());
}

std::ostream& operator<<(std::ostream& os, const CNBLOCK& cnb) {
  detail::Frame frame;
  detail::BlockWriter out(os, frame);
  const std::size_t link_count = fixed_link_count + additionalLinkCount(cnb);
  out.header(cnb.header, detail::sizeWithLinks(link_count, detail::cnblock_fields), link_count);
  out.numbers(cnb.links);
  out.numbers(cnb.cc_attachements);
  if (cnb.isDefaultXAxis()) {
    out.fields(x_axis_links, cnb);
  }
  out.fields(detail::cnblock_fields, cnb);
  return out.finish();
}

}  // namespace mdf_v4_10
