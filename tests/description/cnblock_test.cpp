#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <limits>
#include <sstream>
#include <string>
#include <vector>

#include "description/accessors.h"
#include "mdf_v4_10.h"
#include "support/blocks.h"
#include "support/bytes.h"
#include "support/fields.h"

using namespace mdf_tests;
using mdf_v4_10::CNBLOCK;
using mdf_v4_10::LINK;
using mdf_v4_10::REAL;
using mdf_v4_10::UINT16;
using mdf_v4_10::UINT32;
using mdf_v4_10::UINT8;

namespace {

constexpr UINT32 x_axis = 4096;
constexpr UINT32 distinct_flags = 0xA1B2C3E4;  // without the default X axis

std::string linkBytes(const std::vector<LINK>& links) {
  Bytes bytes;
  for (const LINK link : links) {
    bytes.i64(link);
  }
  return bytes;
}

/// `count` links of different values, counted up from `first`.
std::vector<LINK> linksFrom(LINK first, std::size_t count) {
  std::vector<LINK> links(count);
  for (LINK& link : links) {
    link = first++;
  }
  return links;
}

/// The data section of the block in which every field has a value of its own.
std::string distinctFields(UINT32 flags, UINT8 reserved, UINT16 attachment_count) {
  return Bytes()
      .u8s({5, 4, 13, 7})
      .u32(0x11121314)
      .u32(0x21222324)
      .u32(flags)
      .u32(0x31323334)
      .u8(9)
      .u8(reserved)
      .u16(attachment_count)
      .f64(-1.5)
      .f64(0.1)
      .f64(1e100)
      .f64(1234567)
      .f64(-0.25)
      .f64(1e-7);
}

/// The data section of a block of which only the three types were set.
std::string freshFields(UINT8 type, UINT8 sync_type, UINT8 data_type, UINT16 attachment_count = 0) {
  return Bytes()
      .u8s({type, sync_type, data_type, 0})
      .zeros(16)
      .u8(255)
      .u8(0)
      .u16(attachment_count)
      .zeros(48);
}

CNBLOCK freshBlock() {
  return CNBLOCK(CNBLOCK::CN_CHANNELTYPE_FIXEDLENGTH, CNBLOCK::CN_SYNCTYPE_NONE,
                 CNBLOCK::CN_DATATYPE_UINT_LE, 0, 0, 0);
}

CNBLOCK withAttachments(CNBLOCK block, const std::vector<LINK>& attachments) {
  for (const LINK attachment : attachments) {
    block.addAttachement(attachment);
  }
  return block;
}

void setDistinctFields(CNBLOCK& block) {
  block.cn_type = 5;
  block.cn_sync_type = 4;
  block.cn_data_type = 13;
  block.cn_bit_offset = 7;
  block.cn_byte_offset = 0x11121314;
  block.cn_bit_count = 0x21222324;
  block.cn_flags = distinct_flags;
  block.cn_inval_bit_pos = 0x31323334;
  block.cn_precision = 9;
  block.cn_reserved = 10;
  block.cn_val_range_min = -1.5;
  block.cn_val_range_max = 0.1;
  block.cn_limit_min = 1e100;
  block.cn_limit_max = 1234567;
  block.cn_limit_ext_min = -0.25;
  block.cn_limit_ext_max = 1e-7;
}

/// A block with two attachments and a default X axis.
CNBLOCK distinctBlock() {
  CNBLOCK block = withAttachments(freshBlock(), {901, 902});
  setDistinctFields(block);
  block.setupDefaultXAxis(1001, 1002, 1003);
  setBytes(block.header.reserved, {1, 2, 3, 4});
  block.links = {100, 200, 300, 400, 500, 600, 700, 800};
  return block;
}

std::string distinctBytes() {
  return Bytes()
      .text("##CN")
      .u8s({1, 2, 3, 4})
      .u64(200)
      .u64(13)
      .links({100, 200, 300, 400, 500, 600, 700, 800})
      .links({901, 902})
      .links({1001, 1002, 1003})
      .text(distinctFields(distinct_flags | x_axis, 10, 2));
}

/// What the writer makes of the distinct block after it was read: nil links, and three attachments
/// for two.
std::string distinctBytesWrittenAfterReading() {
  return Bytes()
      .header("CN", 208, 14)
      .zeros(64)
      .links({100, 200, 300})
      .links({1001, 1002, 1003})
      .text(distinctFields(distinct_flags | x_axis, 0, 3));
}

/// What the writer makes of a block that could not be read, whatever its header says.
std::string unreadBytes() {
  return Bytes().header("CN", 160, 8).zeros(64).text(freshFields(0, 0, 0));
}

/// Calls setup() with the given flags and with zero for everything else.
void setupFlags(CNBLOCK& block, UINT32 flags) {
  const auto has = [flags](UINT32 bit) { return (flags & bit) != 0; };
  block.setup(CNBLOCK::CN_CHANNELTYPE_FIXEDLENGTH, CNBLOCK::CN_SYNCTYPE_NONE,
              CNBLOCK::CN_DATATYPE_UINT_LE, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, has(1), has(2), has(4),
              has(8), has(16), has(32), has(64), has(128), has(256), has(512), has(1024), has(2048),
              has(4096), 0, 0, 0, 0, 0, 0, 0);
}

const std::vector<LinkAccessors<CNBLOCK>> link_accessors = {
    {0, &CNBLOCK::setNextCnblock, &CNBLOCK::getNextCnblock, &CNBLOCK::seekgNextCnblock},
    {1, &CNBLOCK::setCompositionblock, &CNBLOCK::getCompositionblock,
     &CNBLOCK::seekgCompositionblock},
    {2, &CNBLOCK::setNameTxblock, &CNBLOCK::getNameTxblock, &CNBLOCK::seekgNameTxblock},
    {3, &CNBLOCK::setSourceSiblock, &CNBLOCK::getSourceSiblock, &CNBLOCK::seekgSourceSiblock},
    {4, &CNBLOCK::setConversionCcblock, &CNBLOCK::getConversionCcblock,
     &CNBLOCK::seekgConversionCcblock},
    {5, &CNBLOCK::setDatablock, &CNBLOCK::getDatablock, &CNBLOCK::seekgDatablock},
    {6, &CNBLOCK::setUnitblock, &CNBLOCK::getUnitblock, &CNBLOCK::seekgUnitblock},
    {7, &CNBLOCK::setCommentblock, &CNBLOCK::getCommentblock, &CNBLOCK::seekgCommentblock}};

const std::vector<FlagAccessors<CNBLOCK, UINT32>> flag_accessors = {
    {1, &CNBLOCK::setInvalidFlag, &CNBLOCK::isInvalid},
    {2, &CNBLOCK::setInvalidationBitFlag, &CNBLOCK::isInvalidationBit},
    {4, &CNBLOCK::setPrecisionValidFlag, &CNBLOCK::isPrecisionValid},
    {8, &CNBLOCK::setValueRangeValidFlag, &CNBLOCK::isValueRangeValid},
    {16, &CNBLOCK::setLimitRangeValidFlag, &CNBLOCK::isLimitRangeValid},
    {32, &CNBLOCK::setExtendedLimitRangeValidFlag, &CNBLOCK::isExtendedLimitRangeValid},
    {64, &CNBLOCK::setDiscreteValueFlag, &CNBLOCK::isDiscreteValue},
    {128, &CNBLOCK::setCalibrationFlag, &CNBLOCK::isCalibration},
    {256, &CNBLOCK::setCalculatedFlag, &CNBLOCK::isCalculated},
    {512, &CNBLOCK::setVirtualFlag, &CNBLOCK::isVirtual},
    {1024, &CNBLOCK::setBusEventFlag, &CNBLOCK::isBusEvent},
    {2048, &CNBLOCK::setMonotonousFlag, &CNBLOCK::isMonotonous},
    {4096, &CNBLOCK::setDefaultXAxisFlag, &CNBLOCK::isDefaultXAxis}};

TEST(CNBLOCK, Constants) {
  EXPECT_EQ(CNBLOCK::CNBLOCK_CONSTANT_SIZE, 160U);
  EXPECT_EQ(CNBLOCK::MDF_CN_ID, 0x4E43);
}

TEST(CNBLOCK, ChannelAndSyncTypeValues) {
  EXPECT_EQ(CNBLOCK::CN_CHANNELTYPE_FIXEDLENGTH, 0);
  EXPECT_EQ(CNBLOCK::CN_CHANNELTYPE_VARLENGTH, 1);
  EXPECT_EQ(CNBLOCK::CN_CHANNELTYPE_MASTER, 2);
  EXPECT_EQ(CNBLOCK::CN_CHANNELTYPE_VIRTUALMASTER, 3);
  EXPECT_EQ(CNBLOCK::CN_CHANNELTYPE_SYNCHRONIZATION, 4);
  EXPECT_EQ(CNBLOCK::CN_CHANNELTYPE_MAXIMUM_DATACHANNEL, 5);
  EXPECT_EQ(CNBLOCK::CN_CHANNELTYPE_VIRTUAL_DATACHANNEL, 6);
  EXPECT_EQ(CNBLOCK::CN_SYNCTYPE_NONE, 0);
  EXPECT_EQ(CNBLOCK::CN_SYNCTYPE_TIME, 1);
  EXPECT_EQ(CNBLOCK::CN_SYNCTYPE_ANGLE, 2);
  EXPECT_EQ(CNBLOCK::CN_SYNCTYPE_DISTANCE, 3);
  EXPECT_EQ(CNBLOCK::CN_SYNCTYPE_INDEX, 4);
}

TEST(CNBLOCK, DataTypeValues) {
  EXPECT_EQ(CNBLOCK::CN_DATATYPE_UINT_LE, 0);
  EXPECT_EQ(CNBLOCK::CN_DATATYPE_UINT_BE, 1);
  EXPECT_EQ(CNBLOCK::CN_DATATYPE_INT_LE, 2);
  EXPECT_EQ(CNBLOCK::CN_DATATYPE_INT_BE, 3);
  EXPECT_EQ(CNBLOCK::CN_DATATYPE_FLOAT_LE, 4);
  EXPECT_EQ(CNBLOCK::CN_DATATYPE_FLOAT_BE, 5);
  EXPECT_EQ(CNBLOCK::CN_DATATYPE_STRING_ISO8859, 6);
  EXPECT_EQ(CNBLOCK::CN_DATATYPE_STRING_UTF8, 7);
  EXPECT_EQ(CNBLOCK::CN_DATATYPE_STRING_UTF16_LE, 8);
  EXPECT_EQ(CNBLOCK::CN_DATATYPE_STRING_UTF16_BE, 9);
  EXPECT_EQ(CNBLOCK::CN_DATATYPE_BYTEARRAY, 10);
  EXPECT_EQ(CNBLOCK::CN_DATATYPE_MIME_SAMPLE, 11);
  EXPECT_EQ(CNBLOCK::CN_DATATYPE_MIME_STREAM, 12);
  EXPECT_EQ(CNBLOCK::CN_DATATYPE_CANOPEN_DATE, 13);
  EXPECT_EQ(CNBLOCK::CN_DATATYPE_CANOPEN_TIME, 14);
}

TEST(CNBLOCK, LinkIndexesAndFlagValues) {
  EXPECT_EQ(CNBLOCK::cn_cn_next, 0);
  EXPECT_EQ(CNBLOCK::cn_composition, 1);
  EXPECT_EQ(CNBLOCK::cn_tx_name, 2);
  EXPECT_EQ(CNBLOCK::cn_si_source, 3);
  EXPECT_EQ(CNBLOCK::cn_cc_conversion, 4);
  EXPECT_EQ(CNBLOCK::cn_data, 5);
  EXPECT_EQ(CNBLOCK::cn_md_unit, 6);
  EXPECT_EQ(CNBLOCK::cn_md_comment, 7);
  EXPECT_EQ(CNBLOCK::all_values_invalid, 1);
  EXPECT_EQ(CNBLOCK::invalidation_bit_valid, 2);
  EXPECT_EQ(CNBLOCK::precision_valid, 4);
  EXPECT_EQ(CNBLOCK::value_range_valid, 8);
  EXPECT_EQ(CNBLOCK::limit_range_valid, 16);
  EXPECT_EQ(CNBLOCK::extended_limit_range_valid, 32);
  EXPECT_EQ(CNBLOCK::discrete_value, 64);
  EXPECT_EQ(CNBLOCK::calibration, 128);
  EXPECT_EQ(CNBLOCK::calculated, 256);
  EXPECT_EQ(CNBLOCK::virtual_, 512);
  EXPECT_EQ(CNBLOCK::bus_event, 1024);
  EXPECT_EQ(CNBLOCK::monotonous, 2048);
  EXPECT_EQ(CNBLOCK::default_x_axis, 4096);
}

TEST(CNBLOCK, FieldsStandWhereTheLayoutSays) {
  EXPECT_EQ(layoutOf(mdf_v4_10::detail::cnblock_fields, 88),
            "88 1 cn_type\n"
            "89 1 cn_sync_type\n"
            "90 1 cn_data_type\n"
            "91 1 cn_bit_offset\n"
            "92 4 cn_byte_offset\n"
            "96 4 cn_bit_count\n"
            "100 4 cn_flags\n"
            "104 4 cn_inval_bit_pos\n"
            "108 1 cn_precision\n"
            "109 1 cn_reserved\n"
            "110 2 cn_attachment_count\n"
            "112 8 cn_val_range_min\n"
            "120 8 cn_val_range_max\n"
            "128 8 cn_limit_min\n"
            "136 8 cn_limit_max\n"
            "144 8 cn_limit_ext_min\n"
            "152 8 cn_limit_ext_max\n");
}

TEST(CNBLOCK, WritesANewBlock) {
  const CNBLOCK block(CNBLOCK::CN_CHANNELTYPE_MASTER, CNBLOCK::CN_SYNCTYPE_TIME,
                      CNBLOCK::CN_DATATYPE_FLOAT_LE, 0, 0, 0);
  EXPECT_BYTES(written(block), Bytes().header("CN", 160, 8).zeros(64).text(freshFields(2, 1, 4)));
}

TEST(CNBLOCK, WritesWhatTheConstructorWasGiven) {
  const CNBLOCK block(CNBLOCK::CN_CHANNELTYPE_VIRTUAL_DATACHANNEL, CNBLOCK::CN_SYNCTYPE_DISTANCE,
                      CNBLOCK::CN_DATATYPE_CANOPEN_TIME, 100, 200, 300);
  EXPECT_BYTES(written(block), Bytes()
                                   .header("CN", 160, 8)
                                   .links({100, 0, 200, 0, 0, 300, 0, 0})
                                   .text(freshFields(6, 3, 14)));
}

TEST(CNBLOCK, ConstructorSetsHeaderAndDefaults) {
  const CNBLOCK block = freshBlock();
  EXPECT_EQ(block.header.length, 160U);
  EXPECT_EQ(block.header.link_count, 8U);
  EXPECT_EQ(block.getPadding(), 0);
  EXPECT_EQ(block.getAttachementCount(), 0);
  EXPECT_EQ(block.getDefaultXAxisdgblock(), 0);
  EXPECT_EQ(block.getDefaultXAxiscgblock(), 0);
  EXPECT_EQ(block.getDefaultXAxiscnblock(), 0);
}

TEST(CNBLOCK, WritesEveryField) { EXPECT_BYTES(written(distinctBlock()), distinctBytes()); }

TEST(CNBLOCK, WritesExtremeValues) {
  CNBLOCK block(static_cast<CNBLOCK::MDF_CN_CHANNELTYPE_t>(0x1FE),
                static_cast<CNBLOCK::MDF_CN_SYNCTYPE_t>(0x2FD),
                static_cast<CNBLOCK::MDF_CN_DATATYPES_t>(0x3FC), INT64_MIN, INT64_MAX, -1);
  block.cn_bit_offset = 255;
  block.cn_byte_offset = block.cn_bit_count = block.cn_flags = block.cn_inval_bit_pos = UINT32_MAX;
  block.cn_reserved = 255;
  block.cn_val_range_min = std::numeric_limits<REAL>::lowest();
  block.cn_val_range_max = std::numeric_limits<REAL>::max();
  block.cn_limit_min = -std::numeric_limits<REAL>::infinity();
  block.cn_limit_max = std::numeric_limits<REAL>::quiet_NaN();
  block.cn_limit_ext_min = -0.0;
  block.cn_limit_ext_max = std::numeric_limits<REAL>::denorm_min();
  block.setupDefaultXAxis(INT64_MAX, INT64_MIN, -1);
  block.addAttachement(INT64_MIN);
  EXPECT_BYTES(written(block), Bytes()
                                   .header("CN", 192, 12)
                                   .links({INT64_MIN, 0, INT64_MAX, 0, 0, -1, 0, 0})
                                   .links({INT64_MIN, INT64_MAX, INT64_MIN, -1})
                                   .u8s({0xFE, 0xFD, 0xFC, 0xFF})
                                   .text(std::string(16, '\xFF'))
                                   .u8s({255, 255, 1, 0})
                                   .u64(0xFFEFFFFFFFFFFFFF)
                                   .u64(0x7FEFFFFFFFFFFFFF)
                                   .u64(0xFFF0000000000000)
                                   .u64(0x7FF8000000000000)
                                   .u64(0x8000000000000000)
                                   .u64(1));
}

TEST(CNBLOCK, WritesTwoAttachments) {
  const CNBLOCK block = withAttachments(freshBlock(), {10, 20});
  EXPECT_EQ(block.getSize(), 176U);
  EXPECT_BYTES(
      written(block),
      Bytes().header("CN", 176, 10).zeros(64).links({10, 20}).text(freshFields(0, 0, 0, 2)));
}

TEST(CNBLOCK, WritesADefaultXAxis) {
  CNBLOCK block = freshBlock();
  block.setupDefaultXAxis(1, 2, 3);
  EXPECT_EQ(block.getSize(), 184U);
  EXPECT_BYTES(written(block), Bytes()
                                   .header("CN", 184, 11)
                                   .zeros(64)
                                   .links({1, 2, 3})
                                   .zeros(12)
                                   .u32(4096)
                                   .zeros(4)
                                   .u8s({255, 0, 0, 0})
                                   .zeros(48));
}

TEST(CNBLOCK, WriterDerivesLengthAndLinkCountAndLeavesTheBlockAlone) {
  CNBLOCK block = distinctBlock();
  block.header.length = 9999;
  block.header.link_count = 3;
  EXPECT_BYTES(written(block), distinctBytes());
  EXPECT_EQ(block.header.length, 9999U);
  EXPECT_EQ(block.header.link_count, 3U);
  EXPECT_EQ(linksOf(block), (std::vector<LINK>{100, 200, 300, 400, 500, 600, 700, 800}));
  EXPECT_EQ(block.cc_attachements, (std::vector<LINK>{901, 902}));
}

TEST(CNBLOCK, WritesEveryEntryOfTheLinkSection) {
  for (const std::size_t count : {0U, 7U, 9U}) {
    SCOPED_TRACE(count);
    CNBLOCK block = withAttachments(freshBlock(), {50});
    const auto links = linksFrom(1, count);
    block.links.assign(links.begin(), links.end());
    EXPECT_BYTES(written(block), Bytes()
                                     .header("CN", 168, 9)
                                     .text(linkBytes(links))
                                     .links({50})
                                     .text(freshFields(0, 0, 0, 1)));
  }
}

TEST(CNBLOCK, AttachmentCountInTheFileIsCutToSixteenBits) {
  for (const std::size_t count : {65535U, 65536U, 65538U}) {
    SCOPED_TRACE(count);
    const auto attachments = linksFrom(1000, count);
    const CNBLOCK block = withAttachments(freshBlock(), attachments);
    const auto in_file = static_cast<UINT16>(count % 65536);
    EXPECT_EQ(block.getAttachementCount(), in_file);
    EXPECT_EQ(block.getSize(), 160 + 8 * count);
    EXPECT_BYTES(written(block), Bytes()
                                     .header("CN", 160 + 8 * count, 8 + count)
                                     .zeros(64)
                                     .text(linkBytes(attachments))
                                     .text(freshFields(0, 0, 0, in_file)));
  }
}

TEST(CNBLOCK, SetupStoresEachArgumentInItsPlace) {
  CNBLOCK block = freshBlock();
  block.setup(CNBLOCK::CN_CHANNELTYPE_MASTER, CNBLOCK::CN_SYNCTYPE_INDEX,
              CNBLOCK::CN_DATATYPE_STRING_UTF16_BE, 100, 200, 300, 400, 500, 600, 700, 800, 5,
              0x11121314, 0x21222324, true, false, false, true, true, false, true, false, false,
              true, false, true, false, 7, 1.5, 2.5, 3.5, 4.5, 5.5, 6.5);
  EXPECT_BYTES(written(block), Bytes()
                                   .header("CN", 160, 8)
                                   .links({100, 300, 200, 500, 600, 400, 700, 800})
                                   .u8s({2, 4, 9, 5})
                                   .u32(0x11121314)
                                   .u32(0x21222324)
                                   .u32(0b0'1010'0101'1001)
                                   .u32(0)
                                   .u8s({7, 0, 0, 0})
                                   .f64(1.5)
                                   .f64(2.5)
                                   .f64(3.5)
                                   .f64(4.5)
                                   .f64(5.5)
                                   .f64(6.5));
}

TEST(CNBLOCK, SetupSetsAndClearsEachFlagAndKeepsTheHigherBits) {
  for (const UINT32 higher_bits : {0U, 0xFFFFE000U}) {
    for (UINT32 flag = 1; flag <= x_axis; flag *= 2) {
      for (const UINT32 flags : {flag, 0x1FFFU & ~flag}) {
        for (const UINT32 before : {0U, 0x1FFFU}) {
          CNBLOCK block = freshBlock();
          block.cn_flags = higher_bits | before;
          setupFlags(block, flags);
          EXPECT_EQ(block.cn_flags, higher_bits | flags);
        }
      }
    }
  }
}

TEST(CNBLOCK, SetupLeavesHeaderReservedByteAttachmentsAndXAxis) {
  CNBLOCK block = distinctBlock();
  block.header.length = 1111;
  block.header.link_count = 2222;
  setupFlags(block, x_axis);
  EXPECT_EQ(block.header.length, 1111U);
  EXPECT_EQ(block.header.link_count, 2222U);
  EXPECT_BYTES(written(block), Bytes()
                                   .text("##CN")
                                   .u8s({1, 2, 3, 4})
                                   .u64(200)
                                   .u64(13)
                                   .zeros(64)
                                   .links({901, 902, 1001, 1002, 1003})
                                   .zeros(12)
                                   .u32((distinct_flags & 0xFFFFE000) | x_axis)
                                   .zeros(4)
                                   .u8s({0, 10, 2, 0})
                                   .zeros(48));
}

TEST(CNBLOCK, SetupWithoutXAxisHidesTheXAxis) {
  CNBLOCK block = freshBlock();
  block.setupDefaultXAxis(1, 2, 3);
  setupFlags(block, 0);
  EXPECT_FALSE(block.isDefaultXAxis());
  EXPECT_EQ(block.getDefaultXAxisdgblock(), 1);
  EXPECT_EQ(block.getSize(), 160U);
  EXPECT_BYTES(written(block), Bytes().header("CN", 160, 8).zeros(64).zeros(72));
  EXPECT_EQ(dumped(block).find("defaultXAxis DG"), std::string::npos);
}

TEST(CNBLOCK, SetupResetsTheInvalidationBitPosition) {
  CNBLOCK block = freshBlock();
  block.setInvalidBitPos(12);
  setupFlags(block, 0);
  EXPECT_EQ(block.getInvalidBitPos(), 0U);
}

TEST(CNBLOCK, LinkAccessorsWorkOnTheirLink) { expectLinkAccessors(freshBlock(), link_accessors); }

TEST(CNBLOCK, NilAndMissingLinksLeadToOffsetZero) {
  expectNilAndMissingLinks(freshBlock(), link_accessors);
}

TEST(CNBLOCK, FlagAccessorsWorkOnTheirBit) {
  expectFlagAccessors(freshBlock(), &CNBLOCK::cn_flags, flag_accessors);
}

TEST(CNBLOCK, SettersStoreIntoTheirField) {
  CNBLOCK block = freshBlock();
  block.setChannelType(CNBLOCK::CN_CHANNELTYPE_MAXIMUM_DATACHANNEL);
  block.setSyncType(CNBLOCK::CN_SYNCTYPE_INDEX);
  block.setDataType(CNBLOCK::CN_DATATYPE_CANOPEN_DATE);
  block.setBitOffset(7);
  block.setByteOffset(0x11121314);
  block.setBitCount(0x21222324);
  block.setInvalidBitPos(0x31323334);
  block.setPrecision(9);
  block.setValueRangeMin(-1.5);
  block.setValueRangeMax(0.1);
  block.setLimitMin(1e100);
  block.setLimitMax(1234567);
  block.setLimitExtendedMin(-0.25);
  block.setLimitExtendedMax(1e-7);
  EXPECT_BYTES(written(block),
               Bytes().header("CN", 160, 8).zeros(64).text(distinctFields(0, 0, 0)));
}

TEST(CNBLOCK, GettersReturnTheirField) {
  const CNBLOCK block = distinctBlock();
  EXPECT_EQ(block.getChannelType(), CNBLOCK::CN_CHANNELTYPE_MAXIMUM_DATACHANNEL);
  EXPECT_EQ(block.getSyncType(), CNBLOCK::CN_SYNCTYPE_INDEX);
  EXPECT_EQ(block.getDataType(), CNBLOCK::CN_DATATYPE_CANOPEN_DATE);
  EXPECT_EQ(block.getBitOffset(), 7);
  EXPECT_EQ(block.getByteOffset(), 0x11121314U);
  EXPECT_EQ(block.getBitCount(), 0x21222324U);
  EXPECT_EQ(block.getInvalidBitPos(), 0x31323334U);
  EXPECT_EQ(block.getPrecision(), 9);
  EXPECT_EQ(block.getValueRangeMin(), -1.5);
  EXPECT_EQ(block.getValueRangeMax(), 0.1);
  EXPECT_EQ(block.getLimitMin(), 1e100);
  EXPECT_EQ(block.getLimitMax(), 1234567);
  EXPECT_EQ(block.getLimitExtendedMin(), -0.25);
  EXPECT_EQ(block.getLimitExtendedMax(), 1e-7);
  EXPECT_EQ(block.getValidMDXMLSchemaName(), "cn_comment.xsd");
  EXPECT_EQ(block.getValidUnitXMLSchemaName(), "cn_unit.xsd");
}

TEST(CNBLOCK, SizeCountsAttachmentsAndXAxis) {
  CNBLOCK block = freshBlock();
  block.header.length = 9999;
  EXPECT_EQ(block.getSize(), 160U);
  block.addAttachement(1);
  EXPECT_EQ(block.getSize(), 168U);
  block.setDefaultXAxisFlag(true);
  EXPECT_EQ(block.getSize(), 192U);
  block.removeAttachementeAt(0);
  EXPECT_EQ(block.getSize(), 184U);
}

TEST(CNBLOCK, DefaultXAxisIsStoredAndFollowed) {
  const LinkTargetFile file;
  for (const LINK first : {0, 1001}) {
    CNBLOCK block = freshBlock();
    block.cn_flags = 3;
    block.setupDefaultXAxis(first, first * 2, first * 3);
    EXPECT_EQ(block.cn_flags, 3 | x_axis);
    EXPECT_EQ(block.header.length, 160U);
    EXPECT_EQ(block.header.link_count, 8U);
    EXPECT_EQ(block.getDefaultXAxisdgblock(), first);
    EXPECT_EQ(block.getDefaultXAxiscgblock(), first * 2);
    EXPECT_EQ(block.getDefaultXAxiscnblock(), first * 3);
    file.expectFollows([&](std::ifstream& ifs) { return block.seekgDefaultXAxisdgblock(ifs); },
                       first);
    file.expectFollows([&](std::ifstream& ifs) { return block.seekgDefaultXAxiscgblock(ifs); },
                       first * 2);
    file.expectFollows([&](std::ifstream& ifs) { return block.seekgDefaultXAxiscnblock(ifs); },
                       first * 3);
  }
}

TEST(CNBLOCK, AttachmentsAreGotAndFollowedByIndex) {
  const LinkTargetFile file;
  const CNBLOCK block = withAttachments(freshBlock(), {10, 0, 30});
  EXPECT_EQ(block.getAttachementCount(), 3);
  EXPECT_EQ(block.cc_attachements, (std::vector<LINK>{10, 0, 30}));
  for (const UINT16 index : {UINT16{0}, UINT16{1}, UINT16{2}}) {
    SCOPED_TRACE(index);
    const LINK link = block.cc_attachements[index];
    EXPECT_EQ(block.getAttachementAt(index), link);
    file.expectFollows([&](std::ifstream& ifs) { return block.seekgAttachementAt(ifs, index); },
                       link);
  }
}

TEST(CNBLOCK, NoAttachmentIsFoundFromTheCountOn) {
  const LinkTargetFile file;
  for (const std::vector<LINK>& attachments :
       {std::vector<LINK>{}, std::vector<LINK>{10, 20, 30}}) {
    CNBLOCK block = withAttachments(freshBlock(), attachments);
    const UINT16 count = block.getAttachementCount();
    for (const int index : {count + 0, count + 1, count + 2, 65535}) {
      SCOPED_TRACE(index);
      const auto at = static_cast<UINT16>(index);
      EXPECT_EQ(block.getAttachementAt(at), 0);
      file.expectStays([&](std::ifstream& ifs) { return block.seekgAttachementAt(ifs, at); });
      block.removeAttachementeAt(at);
      EXPECT_EQ(block.cc_attachements, attachments);
    }
  }
}

TEST(CNBLOCK, RemovingAnAttachmentMovesTheLaterOnesForward) {
  CNBLOCK block = withAttachments(freshBlock(), {10, 20, 30, 40});
  block.removeAttachementeAt(0);
  EXPECT_EQ(block.cc_attachements, (std::vector<LINK>{20, 30, 40}));
  block.removeAttachementeAt(1);
  EXPECT_EQ(block.cc_attachements, (std::vector<LINK>{20, 40}));
  block.removeAttachementeAt(1);
  EXPECT_EQ(block.cc_attachements, (std::vector<LINK>{20}));
  block.removeAttachementeAt(0);
  EXPECT_EQ(block.cc_attachements, (std::vector<LINK>{}));
}

TEST(CNBLOCK, TheHighestIndexReachesIntoALongList) {
  const LinkTargetFile file;
  CNBLOCK block = withAttachments(freshBlock(), linksFrom(0, 65538));
  block.cc_attachements[65535] = 77;
  EXPECT_EQ(block.getAttachementAt(65535), 77);
  file.expectFollows([&](std::ifstream& ifs) { return block.seekgAttachementAt(ifs, 65535); }, 77);
  block.removeAttachementeAt(65535);
  EXPECT_EQ(block.cc_attachements.size(), 65537U);
  EXPECT_EQ(block.getAttachementAt(65535), 65536);
}

TEST(CNBLOCK, CopiesAreIndependent) {
  CNBLOCK block = distinctBlock();
  const CNBLOCK copy = block;
  CNBLOCK assigned = freshBlock();
  assigned = block;
  setupFlags(block, 0);
  block.setupDefaultXAxis(1, 2, 3);
  block.removeAttachementeAt(0);
  fillBytes(block.header.reserved, 0);
  EXPECT_BYTES(written(copy), distinctBytes());
  EXPECT_BYTES(written(assigned), distinctBytes());
}

TEST(CNBLOCK, Dump) {
  EXPECT_EQ(dumped(distinctBlock()),
            "[DEBUG] ==================== CNBLOCK ===================\n"
            "block size = 200\n"
            "next channel block = 100\n"
            "composition block = 200\n"
            "name tx block = 300\n"
            "source si block = 400\n"
            "channel conversion block = 500\n"
            "data block = 600\n"
            "unit block = 700\n"
            "comment block = 800\n"
            "channel type = 5\n"
            "sync type = 4\n"
            "data type = 13\n"
            "bit offset = 7\n"
            "byte offset = 286397204\n"
            "bit count = 555885348\n"
            "flags: invalid(0), invalidationBit(0), precisionValid(1), valueRangeValid(0), "
            "limitRangeValid(0)\n"
            "flags 2: extendedLimitRangeValid(1), discreteValue(1), calibration(1), calculated(1), "
            "virtual(1)\n"
            "flags 3: busEvent(0), monotonous(0), defaultXAxis(1\n"
            "invalid bit pos = 825373492\n"
            "precision = 9\n"
            "value range min = -1.5 max = 0.1\n"
            "limit min = 1e+100 max = 1.23457e+06\n"
            "limit extended range min = -0.25 max = 1e-07\n"
            "attachements : 2\n"
            "attachement:901\n"
            "attachement:902\n"
            "defaultXAxis DG : 1001\n"
            "defaultXAxis CG : 1002\n"
            "defaultXAxis CN : 1003\n"
            "[DEBUG] ==================== End of CNBLOCK ===================\n");
}

TEST(CNBLOCK, DumpShowsZeroForMissingLinksAndNoUnusedXAxis) {
  CNBLOCK block = freshBlock();
  block.header.length = 9999;
  block.links = {-1};
  block.cn_default_x_dgblock = 4711;
  EXPECT_EQ(dumped(block),
            "[DEBUG] ==================== CNBLOCK ===================\n"
            "block size = 160\n"
            "next channel block = -1\n"
            "composition block = 0\n"
            "name tx block = 0\n"
            "source si block = 0\n"
            "channel conversion block = 0\n"
            "data block = 0\n"
            "unit block = 0\n"
            "comment block = 0\n"
            "channel type = 0\n"
            "sync type = 0\n"
            "data type = 0\n"
            "bit offset = 0\n"
            "byte offset = 0\n"
            "bit count = 0\n"
            "flags: invalid(0), invalidationBit(0), precisionValid(0), valueRangeValid(0), "
            "limitRangeValid(0)\n"
            "flags 2: extendedLimitRangeValid(0), discreteValue(0), calibration(0), calculated(0), "
            "virtual(0)\n"
            "flags 3: busEvent(0), monotonous(0), defaultXAxis(0\n"
            "invalid bit pos = 0\n"
            "precision = 255\n"
            "value range min = 0 max = 0\n"
            "limit min = 0 max = 0\n"
            "limit extended range min = 0 max = 0\n"
            "attachements : 0\n"
            "[DEBUG] ==================== End of CNBLOCK ===================\n");
}

/// The three flags lines of a dump, from the values of the bits.
std::string flagLines(const std::array<std::string, 13>& bits) {
  return "flags: invalid(" + bits[0] + "), invalidationBit(" + bits[1] + "), precisionValid(" +
         bits[2] + "), valueRangeValid(" + bits[3] + "), limitRangeValid(" + bits[4] + ")\n" +
         "flags 2: extendedLimitRangeValid(" + bits[5] + "), discreteValue(" + bits[6] +
         "), calibration(" + bits[7] + "), calculated(" + bits[8] + "), virtual(" + bits[9] +
         ")\n" + "flags 3: busEvent(" + bits[10] + "), monotonous(" + bits[11] +
         "), defaultXAxis(" + bits[12] + "\n";
}

TEST(CNBLOCK, DumpShowsEachFlagInItsPlace) {
  CNBLOCK block = freshBlock();
  for (std::size_t bit = 0; bit < 13; ++bit) {
    SCOPED_TRACE(bit);
    std::array<std::string, 13> bits;
    bits.fill("0");
    bits[bit] = "1";
    block.cn_flags = 1U << bit;
    EXPECT_NE(dumped(block).find("\n" + flagLines(bits) + "invalid bit pos"), std::string::npos);
  }
}

TEST(CNBLOCK, DumpOfALongListShowsAllOfIt) {
  const auto attachments = linksFrom(1000, 65538);
  std::string expected = "\nattachements : 65538\n";
  for (const LINK link : attachments) {
    expected += "attachement:" + std::to_string(link) + "\n";
  }
  expected += "[DEBUG] ==================== End of CNBLOCK ===================\n";
  const std::string dump = dumped(withAttachments(freshBlock(), attachments));
  ASSERT_GT(dump.size(), expected.size());
  EXPECT_TRUE(dump.substr(dump.size() - expected.size()) == expected);
}

TEST(CNBLOCK, DumpFollowsTheFormatOfTheStream) {
  CNBLOCK block = withAttachments(freshBlock(), {30});
  block.cn_flags = x_axis | 1;
  block.setupDefaultXAxis(16, 17, 18);
  std::ostringstream os;
  os << std::boolalpha << std::hex << std::fixed;
  block.print(os);
  std::array<std::string, 13> bits;
  bits.fill("false");
  bits[0] = bits[12] = "true";
  EXPECT_EQ(os.str(),
            "[DEBUG] ==================== CNBLOCK ===================\n"
            "block size = c0\n"
            "next channel block = 0\n"
            "composition block = 0\n"
            "name tx block = 0\n"
            "source si block = 0\n"
            "channel conversion block = 0\n"
            "data block = 0\n"
            "unit block = 0\n"
            "comment block = 0\n"
            "channel type = 0\n"
            "sync type = 0\n"
            "data type = 0\n"
            "bit offset = 0\n"
            "byte offset = 0\n"
            "bit count = 0\n" +
                flagLines(bits) +
                "invalid bit pos = 0\n"
                "precision = ff\n"
                "value range min = 0.000000 max = 0.000000\n"
                "limit min = 0.000000 max = 0.000000\n"
                "limit extended range min = 0.000000 max = 0.000000\n"
                "attachements : 1\n"
                "attachement:1e\n"
                "defaultXAxis DG : 10\n"
                "defaultXAxis CG : 11\n"
                "defaultXAxis CN : 12\n"
                "[DEBUG] ==================== End of CNBLOCK ===================\n");
}

TEST(CNBLOCK, ReaderGivesNilLinksAndOneAttachmentMoreThanTheCount) {
  const auto block = readBack<CNBLOCK>(distinctBytes());
  EXPECT_EQ(block.header.length, 200U);
  EXPECT_EQ(block.header.link_count, 13U);
  EXPECT_EQ(asArray(block.header.reserved), (std::array<UINT8, 4>{}));
  EXPECT_EQ(linksOf(block), (std::vector<LINK>{0, 0, 0, 0, 0, 0, 0, 0}));
  EXPECT_EQ(block.cc_attachements, (std::vector<LINK>{100, 200, 300}));
  EXPECT_EQ(block.getDefaultXAxisdgblock(), 1001);
  EXPECT_EQ(block.getDefaultXAxiscgblock(), 1002);
  EXPECT_EQ(block.getDefaultXAxiscnblock(), 1003);
  EXPECT_EQ(block.cn_flags, distinct_flags | x_axis);
  EXPECT_EQ(block.cn_reserved, 0);
}

TEST(CNBLOCK, WritingABlockThatWasReadWritesNilLinksAndThatAttachment) {
  EXPECT_BYTES(written(readBack<CNBLOCK>(distinctBytes())), distinctBytesWrittenAfterReading());
}

TEST(CNBLOCK, BlockWithoutAttachmentsIsReadWithOne) {
  const CNBLOCK block(CNBLOCK::CN_CHANNELTYPE_MASTER, CNBLOCK::CN_SYNCTYPE_TIME,
                      CNBLOCK::CN_DATATYPE_FLOAT_LE, 100, 200, 300);
  EXPECT_BYTES(written(readBack<CNBLOCK>(written(block))),
               Bytes().header("CN", 168, 9).zeros(64).links({100}).text(freshFields(2, 1, 4, 1)));
}

TEST(CNBLOCK, DumpOfABlockThatWasRead) {
  EXPECT_EQ(dumped(readBack<CNBLOCK>(distinctBytes())),
            "[DEBUG] ==================== CNBLOCK ===================\n"
            "block size = 208\n"
            "next channel block = 0\n"
            "composition block = 0\n"
            "name tx block = 0\n"
            "source si block = 0\n"
            "channel conversion block = 0\n"
            "data block = 0\n"
            "unit block = 0\n"
            "comment block = 0\n"
            "channel type = 5\n"
            "sync type = 4\n"
            "data type = 13\n"
            "bit offset = 7\n"
            "byte offset = 286397204\n"
            "bit count = 555885348\n"
            "flags: invalid(0), invalidationBit(0), precisionValid(1), valueRangeValid(0), "
            "limitRangeValid(0)\n"
            "flags 2: extendedLimitRangeValid(1), discreteValue(1), calibration(1), calculated(1), "
            "virtual(1)\n"
            "flags 3: busEvent(0), monotonous(0), defaultXAxis(1\n"
            "invalid bit pos = 825373492\n"
            "precision = 9\n"
            "value range min = -1.5 max = 0.1\n"
            "limit min = 1e+100 max = 1.23457e+06\n"
            "limit extended range min = -0.25 max = 1e-07\n"
            "attachements : 3\n"
            "attachement:100\n"
            "attachement:200\n"
            "attachement:300\n"
            "defaultXAxis DG : 1001\n"
            "defaultXAxis CG : 1002\n"
            "defaultXAxis CN : 1003\n"
            "[DEBUG] ==================== End of CNBLOCK ===================\n");
}

/// Reads a block with so many links in the file, and compares what is written after that.
void expectReading(std::size_t link_count, UINT16 attachment_count, UINT32 flags) {
  const auto links = linksFrom(1001, link_count);
  const auto block = readBack<CNBLOCK>(Bytes()
                                           .header("CN", 96 + 8 * link_count, link_count)
                                           .text(linkBytes(links))
                                           .text(distinctFields(flags, 99, attachment_count)));
  EXPECT_EQ(block.header.length, 96 + 8 * link_count);
  EXPECT_EQ(block.header.link_count, link_count);

  const auto attached = std::min<std::size_t>(attachment_count + 1U, link_count);
  std::vector<LINK> behind_the_nil_links(links.data(), links.data() + attached);
  if (flags == x_axis) {
    std::vector<LINK> all(8, 0);
    all.insert(all.end(), links.begin(), links.end());
    behind_the_nil_links.insert(behind_the_nil_links.end(), all.end() - 3, all.end());
  }
  const std::size_t count = behind_the_nil_links.size();
  EXPECT_BYTES(written(block), Bytes()
                                   .header("CN", 160 + 8 * count, 8 + count)
                                   .zeros(64)
                                   .text(linkBytes(behind_the_nil_links))
                                   .text(distinctFields(flags, 0, static_cast<UINT16>(attached))));
}

TEST(CNBLOCK, AttachmentsStartAtTheFirstLinkOfTheFileAndXAxisIsItsLastThree) {
  for (std::size_t link_count = 0; link_count <= 12; ++link_count) {
    for (UINT16 attachment_count = 0; attachment_count <= 5; ++attachment_count) {
      for (const UINT32 flags : {0U, x_axis}) {
        SCOPED_TRACE(std::to_string(link_count) + " links, " + std::to_string(attachment_count) +
                     " attachments, flags " + std::to_string(flags));
        expectReading(link_count, attachment_count, flags);
      }
    }
  }
}

TEST(CNBLOCK, HighestAttachmentCountTakesAllLinks) {
  expectReading(70000, 65535, x_axis);
  expectReading(65535, 65535, 0);
  expectReading(12, 65535, x_axis);
}

TEST(CNBLOCK, LongBlockThatWasCutKeepsItsHeaderOnly) {
  const CNBLOCK whole = withAttachments(freshBlock(), linksFrom(1000, 65538));
  const std::string bytes = written(whole);
  for (const std::size_t length : {std::size_t{24}, std::size_t{65559}, std::size_t{65560},
                                   std::size_t{200000}, bytes.size() - 1}) {
    SCOPED_TRACE(length);
    std::istringstream is(bytes.substr(0, length));
    const CNBLOCK block(is);
    EXPECT_EQ(is.rdstate(), state_eof_fail);
    EXPECT_EQ(block.header.length, bytes.size());
    EXPECT_EQ(block.header.link_count, 65546U);
    EXPECT_BYTES(written(block), unreadBytes());
  }
}

TEST(CNBLOCK, ReadsAtThePositionOfTheStream) {
  std::istringstream is("in front" + distinctBytes() + "behind");
  is.seekg(8);
  const CNBLOCK block(is);
  EXPECT_EQ(is.rdstate(), state_good);
  EXPECT_EQ(static_cast<int>(is.tellg()), 8 + 200);
  EXPECT_BYTES(written(block), distinctBytesWrittenAfterReading());
}

TEST(CNBLOCK, BytesBehindTheFieldsArePassedOver) {
  for (const std::size_t extra : {1U, 8U, 1000U}) {
    SCOPED_TRACE(extra);
    const auto block = readBack<CNBLOCK>(Bytes()
                                             .header("CN", 160 + extra, 8)
                                             .links({1, 2, 3, 4, 5, 6, 7, 8})
                                             .text(distinctFields(0, 99, 0))
                                             .text(std::string(extra, '\x99')));
    EXPECT_BYTES(written(block),
                 Bytes().header("CN", 168, 9).zeros(64).links({1}).text(distinctFields(0, 0, 1)));
  }
}

TEST(CNBLOCK, CutStreamKeepsTheStateThatTheReadLeft) {
  forEachPrefix(distinctBytes(), [](std::istream& is, std::size_t length) {
    const CNBLOCK block(is);
    EXPECT_EQ(is.rdstate(), state_eof_fail);
    EXPECT_EQ(block.header.length, length < 24 ? 160U : 200U);
    EXPECT_EQ(block.header.link_count, length < 24 ? 8U : 13U);
    EXPECT_BYTES(written(block), unreadBytes());
  });
}

TEST(CNBLOCK, FailedStreamIsNotRead) {
  for (const auto state : {std::ios_base::failbit, std::ios_base::eofbit, std::ios_base::badbit}) {
    std::istringstream is(distinctBytes());
    is.setstate(state);
    const CNBLOCK block(is);
    EXPECT_EQ(is.rdstate(), state | std::ios_base::failbit);
    EXPECT_EQ(block.header.length, 160U);
    EXPECT_EQ(block.header.link_count, 8U);
    EXPECT_BYTES(written(block), unreadBytes());
  }
}

TEST(CNBLOCK, AnyIdentifierIsRead) {
  std::string bytes = distinctBytes();
  bytes.replace(0, 4, "XYZ!");
  EXPECT_BYTES(written(readBack<CNBLOCK>(bytes)), distinctBytesWrittenAfterReading());
}

/// Reads a block whose header says this, with so many bytes behind the header.
void expectUnreadable(std::uint64_t length, std::uint64_t link_count, std::size_t body_size,
                      std::ios_base::iostate state) {
  SCOPED_TRACE("length " + std::to_string(length) + ", link count " + std::to_string(link_count));
  std::istringstream is(
      Bytes().header("CN", length, link_count).text(std::string(body_size, '\x99')).str());
  const CNBLOCK block(is);
  EXPECT_EQ(is.rdstate(), state);
  EXPECT_EQ(block.header.length, length);
  EXPECT_EQ(block.header.link_count, link_count);
  EXPECT_BYTES(written(block), unreadBytes());
}

TEST(CNBLOCK, LengthBelowTheHeadersSizeMakesTheStreamBad) {
  for (const std::uint64_t length : {0U, 1U, 23U}) {
    for (const std::uint64_t upper_bits : {0U, 1U, UINT32_MAX}) {
      expectUnreadable(upper_bits << 32U | length, 8, 136, state_bad);
    }
  }
}

TEST(CNBLOCK, UpperBitsOfTheLengthAreKeptAndNotUsed) {
  for (const std::uint64_t upper_bits : {1U, UINT32_MAX}) {
    const std::uint64_t length = upper_bits << 32U | 160U;
    std::istringstream is(Bytes()
                              .header("CN", length, 8)
                              .links({1, 2, 3, 4, 5, 6, 7, 8})
                              .text(distinctFields(0, 0, 0))
                              .text("behind")
                              .str());
    const CNBLOCK block(is);
    EXPECT_EQ(is.rdstate(), state_good);
    EXPECT_EQ(static_cast<int>(is.tellg()), 160);
    EXPECT_EQ(block.header.length, length);
    EXPECT_BYTES(written(block),
                 Bytes().header("CN", 168, 9).zeros(64).links({1}).text(distinctFields(0, 0, 1)));
  }
}

TEST(CNBLOCK, LengthThatHoldsNotAllFieldsMakesTheStreamBad) {
  for (std::uint64_t length = 24; length < 160; ++length) {
    expectUnreadable(length, 8, 136, state_bad);
  }
  expectUnreadable(95, 0, 136, state_bad);
}

TEST(CNBLOCK, LengthBeyondTheStreamKeepsTheStateThatTheReadLeft) {
  for (const std::uint64_t length : {161U, 65536U, 0x7FFFFFFFU, 0x80000000U, UINT32_MAX}) {
    expectUnreadable(length, 8, 136, state_eof_fail);
  }
  expectUnreadable(UINT64_MAX, 8, 136, state_eof_fail);
}

TEST(CNBLOCK, LinkCountThatDoesNotFitMakesTheStreamBad) {
  constexpr std::uint64_t wraps_to_nothing = std::uint64_t{1} << 61U;
  for (const std::uint64_t link_count :
       {std::uint64_t{9}, std::uint64_t{17}, std::uint64_t{1} << 32U, wraps_to_nothing,
        wraps_to_nothing + 8, UINT64_MAX}) {
    expectUnreadable(160, link_count, 136, state_bad);
  }
}

}  // namespace
