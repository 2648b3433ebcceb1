// The accessors of links, flags and values: one row each, which states the accessor's exact types,
// its place in the block, and its name for the message.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <fstream>
#include <limits>
#include <string>
#include <type_traits>
#include <vector>

#include "mdf_v4_10.h"
#include "support/blocks.h"
#include "support/bytes.h"

using namespace mdf_tests;
using namespace mdf_v4_10;

namespace {

template <class Block>
struct Link {
  const char* name;
  std::size_t index;
  void (Block::*set)(LINK);
  LINK (Block::*get)() const;
  LINK (Block::*follow)(std::ifstream&) const;
};

template <class Block>
void expectFollowed(const Block& block, const Link<Block>& row, LINK link) {
  EXPECT_EQ((block.*row.get)(), link);
  LinkTargetFile().expectFollows([&](std::ifstream& ifs) { return (block.*row.follow)(ifs); },
                                 link);
}

/// Expects that a link's accessors work on the entry at its index and on no other, and that a nil
/// or missing link leads to offset 0. Setting one that is missing gives the block at least so many.
template <class Block>
void expectLinks(Block block, const std::vector<Link<Block>>& rows, std::size_t least = 0) {
  for (const Link<Block>& row : rows) {
    SCOPED_TRACE(row.name);
    std::vector<LINK> links = {100, 101, 102, 103, 104, 105, 106, 107, 108};
    block.links.assign(links.begin(), links.end());
    expectFollowed(block, row, links[row.index]);
    (block.*row.set)(4000);
    links[row.index] = 4000;
    EXPECT_EQ(linksOf(block), links);

    for (const std::size_t count : {links.size(), row.index}) {
      block.links.assign(count, 0);
      expectFollowed(block, row, 0);
    }
    (block.*row.set)(-5);
    std::vector<LINK> grown(std::max(row.index + 1, least), 0);
    grown[row.index] = -5;
    EXPECT_EQ(linksOf(block), grown);
  }
}

template <class Block>
struct Flag {
  const char* name;
  unsigned bit;
  void (Block::*set)(bool);
  bool (Block::*test)() const;
};

/// Expects that a flag's accessors see and change its own bit and no other, whether all other bits
/// are clear or set.
template <class Bits, class Block>
void expectFlags(Block block, Bits Block::*flags, const std::vector<Flag<Block>>& rows) {
  for (const Flag<Block>& row : rows) {
    for (const Bits others : {Bits{0}, static_cast<Bits>(~Bits{0})}) {
      SCOPED_TRACE(row.name);
      const auto without = static_cast<Bits>(others & ~row.bit);
      const auto with = static_cast<Bits>(others | row.bit);
      for (const Bits before : {without, with}) {
        block.*flags = before;
        EXPECT_EQ((block.*row.test)(), before == with);
        (block.*row.set)(true);
        EXPECT_EQ(block.*flags, with);
        block.*flags = before;
        (block.*row.set)(false);
        EXPECT_EQ(block.*flags, without);
      }
    }
  }
}

/// Expects that a value's accessors work on its member, and that nothing else in the block changes.
template <class Value, class Block, class Member>
void expectValue(const char* name, Block block, void (Block::*set)(Value),
                 Value (Block::*get)() const, Member Block::*member,
                 const std::common_type_t<Value>& value) {
  SCOPED_TRACE(name);
  Block expected = block;
  expected.*member = static_cast<Member>(value);
  (block.*set)(value);
  EXPECT_EQ(block.*member, static_cast<Member>(value));
  EXPECT_EQ((block.*get)(), value);
  EXPECT_BYTES(written(block), written(expected));
}

/// Expects that entries are added to a list's end and are got, followed and removed by index, and
/// that an index from the list's size on gives `missing` and changes nothing, up to the highest.
template <class Index, class Block, class Entry, class Get>
void expectList(Block block, std::vector<Entry> Block::*list, void (Block::*add)(Entry),
                void (Block::*remove)(Index), Get get, Entry missing,
                std::common_type_t<LINK (Block::*)(std::ifstream&, Index) const> follow) {
  const LinkTargetFile file;
  const std::uint64_t size_without = block.getSize();
  constexpr Index highest = std::numeric_limits<Index>::max();
  const std::vector<Entry> added = {30, 0, 10, 10};
  for (std::size_t size = 0; size <= added.size(); ++size) {
    const std::vector<Entry> entries(added.begin(), added.begin() + static_cast<int>(size));
    const std::string before = written(block.header) + written(block.links);
    EXPECT_EQ(block.*list, entries);
    for (Index i = 0; i < size + 2; ++i) {
      SCOPED_TRACE(i);
      const Index at = i == size + 1 ? highest : i;
      EXPECT_EQ(get(block, at), at < size ? entries[at] : missing);
      if (follow != nullptr) {
        const auto follow_entry = [&](std::ifstream& ifs) { return (block.*follow)(ifs, at); };
        at < size ? file.expectFollows(follow_entry, static_cast<LINK>(entries[at]))
                  : file.expectStays(follow_entry);
      }
      Block changed = block;
      (changed.*remove)(at);
      std::vector<Entry> left = entries;
      if (at < size) {
        left.erase(left.begin() + static_cast<int>(at));
      }
      EXPECT_EQ(changed.*list, left);
      changed.*list = entries;
      EXPECT_BYTES(written(changed), written(block));
    }
    EXPECT_EQ(block.getSize(), size_without + sizeof(Entry) * size);
    EXPECT_BYTES(written(block.header) + written(block.links), before);
    if (size < added.size()) {
      (block.*add)(added[size]);
    }
  }
  if constexpr (sizeof highest == 2) {
    (block.*list).assign(65537, 1);
    (block.*list)[highest] = 77;
    EXPECT_EQ(get(block, highest), 77);
    (block.*remove)(highest);
    EXPECT_EQ((block.*list), std::vector<Entry>(65536, 1));
  }
}

/// Expects the size of a block without lists, whatever its header and its links say.
template <class Block>
void expectSize(Block block, std::uint64_t size) {
  block.header.length = 9999;
  block.links.resize(10);
  EXPECT_EQ(block.getSize(), size);
}

// Rows from the part of the names that the accessors have in common.
#define LINK_ROW(index, name, follow) \
  { #name, index, &B::set##name, &B::get##name, &B::follow }
#define FLAG_ROW(bit, name, test) \
  { #name, bit, &B::set##name, &B::test }
#define EXPECT_VALUE(block, type, name, member, value) \
  expectValue<type>(#name, block, &B::set##name, &B::get##name, &B::member, value)

TEST(Accessors, HDBLOCK) {
  using B = HDBLOCK;
  const B block(200, 100, 0x0102030405060708, -60, B::TIME_EXT_ABSOLUTE_SYNC, 0, 0);
  expectLinks<B>(
      block,
      {LINK_ROW(0, DGFirstblock, seekgFirstDGBlock), LINK_ROW(1, FHFirstblock, seekgFirstFHBlock),
       LINK_ROW(2, CHFirstblock, seekgFirstCHBlock), LINK_ROW(3, ATFirstblock, seekgFirstATBlock),
       LINK_ROW(4, EVFirstblock, seekgFirstEVBlock),
       LINK_ROW(5, MDCommentblock, seekgMDCommentBlock)});
  EXPECT_EQ(block.getStartTime(), 0x0102030405060708U);
  EXPECT_EQ(block.getTimeStamp(), 0x0102030405060708U);
  EXPECT_EQ(block.getUtcOffset(), -60);
  EXPECT_EQ(block.getTimeQuality(), B::TIME_EXT_ABSOLUTE_SYNC);
  EXPECT_EQ(block.getValidMDXMLSchemaName(), "hd_comment.xsd");
  expectSize(block, 104);
}

TEST(Accessors, FHBLOCK) {
  using B = FHBLOCK;
  const B block(200, 0x0102030405060708, -60, 100);
  expectLinks<B>(block,
                 {LINK_ROW(0, NextFHBlock, seekgNextFHBlock), LINK_ROW(1, MDBlock, seekgMDBlock)});
  EXPECT_EQ(block.getTime(), 0x0102030405060708U);
  EXPECT_EQ(block.getUtcOffset(), -60);
  EXPECT_EQ(block.getValidMDXMLSchemaName(), "fh_comment.xsd");
  expectSize(block, 56);
}

TEST(Accessors, CHBLOCK) {
  using B = CHBLOCK;
  const B block(B::CH_TYPE_GROUP);
  expectLinks<B>(block,
                 {LINK_ROW(1, FirstCHBlock, seekgFirstCHBlock),
                  LINK_ROW(2, TXNameBlock, seekgTXNameBlock), LINK_ROW(3, MDBlock, seekgMDBlock)});
  // The setter of the next block takes a type as well; its rules have tests of their own.
  B with_next = block;
  for (const LINK link : {0, 100}) {
    with_next.links[0] = link;
    expectFollowed(with_next, {"next", 0, nullptr, &B::getNextCHBlock, &B::seekgNextCHBlock}, link);
  }
  with_next.links.clear();
  expectFollowed(with_next, {"next", 0, nullptr, &B::getNextCHBlock, &B::seekgNextCHBlock}, 0);
  EXPECT_VALUE(block, B::MDF_CH_TYPE_t, Type, ch_type, B::CH_TYPE_REF_CHARACTERISTIC);
  EXPECT_EQ(block.getValidMDXMLSchemaName(), "ch_comment.xsd");
  expectSize(block, 64);
}

TEST(Accessors, ATBLOCK) {
  using B = ATBLOCK;
  expectLinks<B>(
      B(),
      {LINK_ROW(0, NextATBlock, seekgNextATBlock),
       LINK_ROW(1, TXFilenameBlock, seekgTXFilenameBlock),
       LINK_ROW(2, TXMimetypeBlock, seekgTXMimetypeBlock), LINK_ROW(3, MDBlock, seekgMDBlock)},
      4);
  expectFlags<UINT16>(
      B(), &B::at_flags,
      {FLAG_ROW(1, EmbeddedDataFlag, isEmbeddedData), FLAG_ROW(4, MD5ChecksumFlag, isMD5Checksum)});
  EXPECT_VALUE(B(), UINT16, CreatorIndex, at_creator_index, 0x1112);
  EXPECT_VALUE(B(), UINT64, OriginalSize, at_original_size, 0x2122232425262728);
  EXPECT_EQ(B().getValidMDXMLSchemaName(), "at_comment.xsd");
  expectSize(B("abc", 3), 99);
}

TEST(Accessors, EVBLOCK) {
  using B = EVBLOCK;
  const B block(B::EV_TYPE_MARKER, B::EV_SYNCTYPE_SECONDS, B::EV_RANGETYPE_POINT,
                B::EV_CAUSETYPE_USER);
  expectLinks<B>(
      block,
      {LINK_ROW(0, NextEVBlock, seekgNextEVBlock), LINK_ROW(1, ParentEVBlock, seekgParentEVBlock),
       LINK_ROW(2, EVRangeBlock, seekgEVRangeBlock), LINK_ROW(3, TXNameBlock, seekgTXNameBlock),
       LINK_ROW(4, MDBlock, seekgMDBlock)});
  expectFlags<UINT8>(block, &B::ev_flags, {FLAG_ROW(1, PostProcessedFlag, isPostProcessed)});
  EXPECT_VALUE(block, B::MDF_EV_TYPE_t, Type, ev_type, B::EV_TYPE_STOP_RECORDING_TRIGGER);
  EXPECT_VALUE(block, B::MDF_EV_SYNCTYPE_t, SyncType, ev_sync_type, B::EV_SYNCTYPE_METERS);
  EXPECT_VALUE(block, B::MDF_EV_RANGETYPE_t, RangeType, ev_range_type, B::EV_RANGETYPE_END);
  EXPECT_VALUE(block, B::MDF_EV_CAUSETYPE_t, Cause, ev_cause, B::EV_CAUSETYPE_ERROR);
  EXPECT_VALUE(block, UINT16, CreatorIndex, ev_creator_index, 0x1112);
  EXPECT_VALUE(block, INT64, SyncBaseValue, ev_sync_base_value, INT64_MIN);
  EXPECT_VALUE(block, REAL, SyncBaseFactor, ev_sync_factor, 1.5);
  expectList<UINT32>(
      block, &B::ev_scope, &B::addScope, &B::removeScopeAt,
      [](const B& b, UINT32 i) { return b.getScopeAt(i); }, LINK{0}, &B::seekgScopeAt);
  expectList<UINT16>(
      block, &B::ev_at_reference, &B::addAttachment, &B::removeAttachmentAt,
      [](const B& b, UINT16 i) { return b.getAttachmentAt(i); }, LINK{0}, &B::seekgAttachmentAt);
  EXPECT_EQ(block.getValidMDXMLSchemaName(), "ev_comment.xsd");
  expectSize(block, 96);
}

TEST(Accessors, DGBLOCK) {
  using B = DGBLOCK;
  const B block(1, 2, 3, B::DG_UINT8);
  expectLinks<B>(block, {LINK_ROW(0, NextDgblock, seekgNextDgblock),
                         LINK_ROW(1, FirstCgblock, seekgFirstCgblock),
                         LINK_ROW(2, Datablock, seekgData), LINK_ROW(3, Comment, seekgComment)});
  EXPECT_VALUE(block, B::MDF_DG_REC_ID_SIZE_t, RecordIdSize, dg_rec_id_size, B::DG_UINT64_LE);
  EXPECT_EQ(block.getValidMDXMLSchemaName(), "dg_comment.xsd");
  expectSize(block, 64);
}

TEST(Accessors, CGBLOCK) {
  using B = CGBLOCK;
  expectLinks<B>(
      B(),
      {LINK_ROW(0, NextCgblock, seekgNextCgblock), LINK_ROW(1, FirstCnblock, seekgFirstCnblock),
       LINK_ROW(2, AcqTxNameblock, seekgAcqNameTxblock),
       LINK_ROW(3, AcqSourceSiblock, seekgAcqSourceSiblock),
       LINK_ROW(4, FirstSrblock, seekgFirstSrblock), LINK_ROW(5, Comment, seekgCommentblock)});
  expectFlags<UINT16>(B(), &B::cg_flags,
                      {FLAG_ROW(1, VLSDChannelGroup, isVLSDChannelGroup),
                       FLAG_ROW(2, BusEventGroup, isBusEventGroup),
                       FLAG_ROW(4, PlainBusEventChannelGroup, isPlainBusEventChannelGroup)});
  EXPECT_VALUE(B(), UINT64, RecordId, cg_record_id, UINT64_MAX);
  EXPECT_VALUE(B(), UINT64, CycleCount, cg_cycle_count, UINT64_MAX);
  EXPECT_VALUE(B(), B::CG_PATHSEPARATOR_t, PathSeparator, cg_path_separator,
               B::CG_PATHSEPARATOR_SLASH);
  EXPECT_VALUE(B(), UINT32, DataBytes, cg_data_bytes, UINT32_MAX);
  EXPECT_VALUE(B(), UINT32, InvalidBytes, cg_inval_bytes, UINT32_MAX);
  EXPECT_EQ(B().getValidMDXMLSchemaName(), "cg_comment.xsd");
  expectSize(B(), 104);
}

TEST(Accessors, SIBLOCK) {
  using B = SIBLOCK;
  expectLinks<B>(
      B(), {LINK_ROW(0, NameTxblock, seekgNameTxblock), LINK_ROW(1, PathTxblock, seekgPathTxblock),
            LINK_ROW(2, Comment, seekgCommentblock)});
  expectFlags<UINT8>(B(), &B::si_flags, {FLAG_ROW(1, SimulatedSource, isSimulatedSource)});
  EXPECT_VALUE(B(), B::MDF_SI_SOURCETYPE_t, SourceType, si_type, B::SI_SOURCETYPE_IO);
  EXPECT_VALUE(B(), B::MDF_SI_BUSTYPE_t, BusType, si_bus_type, B::SI_BUSTYPE_K_LINE);
  EXPECT_EQ(B().getValidMDXMLSchemaName(), "si_comment.xsd");
  expectSize(B(), 56);
}

TEST(Accessors, CNBLOCK) {
  using B = CNBLOCK;
  const B block(B::CN_CHANNELTYPE_FIXEDLENGTH, B::CN_SYNCTYPE_NONE, B::CN_DATATYPE_UINT_LE, 0, 0,
                0);
  expectLinks<B>(
      block,
      {LINK_ROW(0, NextCnblock, seekgNextCnblock),
       LINK_ROW(1, Compositionblock, seekgCompositionblock),
       LINK_ROW(2, NameTxblock, seekgNameTxblock), LINK_ROW(3, SourceSiblock, seekgSourceSiblock),
       LINK_ROW(4, ConversionCcblock, seekgConversionCcblock),
       LINK_ROW(5, Datablock, seekgDatablock), LINK_ROW(6, Unitblock, seekgUnitblock),
       LINK_ROW(7, Commentblock, seekgCommentblock)});
  expectFlags<UINT32>(
      block, &B::cn_flags,
      {FLAG_ROW(1, InvalidFlag, isInvalid), FLAG_ROW(2, InvalidationBitFlag, isInvalidationBit),
       FLAG_ROW(4, PrecisionValidFlag, isPrecisionValid),
       FLAG_ROW(8, ValueRangeValidFlag, isValueRangeValid),
       FLAG_ROW(16, LimitRangeValidFlag, isLimitRangeValid),
       FLAG_ROW(32, ExtendedLimitRangeValidFlag, isExtendedLimitRangeValid),
       FLAG_ROW(64, DiscreteValueFlag, isDiscreteValue),
       FLAG_ROW(128, CalibrationFlag, isCalibration), FLAG_ROW(256, CalculatedFlag, isCalculated),
       FLAG_ROW(512, VirtualFlag, isVirtual), FLAG_ROW(1024, BusEventFlag, isBusEvent),
       FLAG_ROW(2048, MonotonousFlag, isMonotonous),
       FLAG_ROW(4096, DefaultXAxisFlag, isDefaultXAxis)});
  EXPECT_VALUE(block, B::MDF_CN_CHANNELTYPE_t, ChannelType, cn_type,
               B::CN_CHANNELTYPE_MAXIMUM_DATACHANNEL);
  EXPECT_VALUE(block, B::MDF_CN_SYNCTYPE_t, SyncType, cn_sync_type, B::CN_SYNCTYPE_INDEX);
  EXPECT_VALUE(block, B::MDF_CN_DATATYPES_t, DataType, cn_data_type, B::CN_DATATYPE_CANOPEN_DATE);
  EXPECT_VALUE(block, UINT8, BitOffset, cn_bit_offset, 7);
  EXPECT_VALUE(block, UINT32, ByteOffset, cn_byte_offset, 0x81121314);
  EXPECT_VALUE(block, UINT32, BitCount, cn_bit_count, 0x81222324);
  EXPECT_VALUE(block, UINT32, InvalidBitPos, cn_inval_bit_pos, 0x81323334);
  EXPECT_VALUE(block, UINT8, Precision, cn_precision, 9);
  EXPECT_VALUE(block, REAL, ValueRangeMin, cn_val_range_min, -1.5);
  EXPECT_VALUE(block, REAL, ValueRangeMax, cn_val_range_max, 0.1);
  EXPECT_VALUE(block, REAL, LimitMin, cn_limit_min, 1e100);
  EXPECT_VALUE(block, REAL, LimitMax, cn_limit_max, 1234567);
  EXPECT_VALUE(block, REAL, LimitExtendedMin, cn_limit_ext_min, -0.25);
  EXPECT_VALUE(block, REAL, LimitExtendedMax, cn_limit_ext_max, 1e-7);
  expectList<UINT16>(
      block, &B::cc_attachements, &B::addAttachement, &B::removeAttachementeAt,
      [](const B& b, UINT16 i) { return b.getAttachementAt(i); }, LINK{0}, &B::seekgAttachementAt);
  EXPECT_EQ(block.getValidMDXMLSchemaName(), "cn_comment.xsd");
  EXPECT_EQ(block.getValidUnitXMLSchemaName(), "cn_unit.xsd");
  expectSize(block, 160);
}

TEST(Accessors, CCBLOCK) {
  using B = CCBLOCK;
  const B block(B::CC_CONVTYPE_LINEAR);
  expectLinks<B>(
      block, {LINK_ROW(0, NameTxblock, seekgNameTxblock), LINK_ROW(1, Unitblock, seekgUnitblock),
              LINK_ROW(2, Commentblock, seekgCommentblock),
              LINK_ROW(3, InverseCcblock, seekgInverseCcblock)});
  expectFlags<UINT16>(block, &B::cc_flags,
                      {FLAG_ROW(1, PrecisionValidFlag, isPrecisionValid),
                       FLAG_ROW(2, PhysicalValueRangeValidFlag, isPhysicalValueRangeValid),
                       FLAG_ROW(4, StatusStringFlag, isStatusString)});
  EXPECT_VALUE(block, B::MDF_CC_TYPE_t, ConversionType, cc_type, B::CC_CONVTYPE_TEXT2TEXTTAB);
  EXPECT_VALUE(block, UINT8, Precision, cc_precision, 7);
  EXPECT_VALUE(block, REAL, PhysicalValueRangeMin, cc_phy_range_min, -3.5);
  EXPECT_VALUE(block, REAL, PhysicalValueRangeMax, cc_phy_range_max, 4.5);
  expectList<UINT16>(
      block, &B::cc_refs, &B::addReference, &B::removeReferenceAtIndex,
      [](const B& b, UINT16 i) {
        LINK link = -7;
        const bool found = b.getReferenceAtIndex(i, link);
        EXPECT_EQ(found, link != -7);
        return link;
      },
      LINK{-7}, &B::seekgReferenceAt);
  expectList<UINT16>(
      block, &B::cc_vals, &B::addValue, &B::removeValueAtIndex,
      [](const B& b, UINT16 i) {
        REAL value = -7;
        const bool found = b.getValueAtIndex(i, value);
        EXPECT_EQ(found, value != -7);
        return value;
      },
      REAL{-7}, nullptr);
  EXPECT_EQ(block.getValidMDXMLSchemaName(), "cc_comment.xsd");
  EXPECT_EQ(block.getValidUnitXMLSchemaName(), "cc_unit.xsd");
  expectSize(block, 80);
}

TEST(Accessors, DLBLOCK) {
  using B = DLBLOCK;
  expectLinks<B>(B(false, 1), {LINK_ROW(0, NextDlblock, seekgNextDlblock)});
  expectFlags<UINT8>(B(false, 1), &B::dl_flags, {FLAG_ROW(1, EqualLengthFlag, isEqualLengthFlag)});
  EXPECT_VALUE(B(true, 1), UINT64, EqualLength, dl_equal_length, UINT64_MAX);
  expectSize(B(false, 1), 40);
  expectSize(B(true, 1), 48);
}

TEST(Accessors, DZBLOCK) {
  using B = DZBLOCK;
  const B block(DTBLOCK::MDF_DT_ID, B::DZ_ZIPTYPE_DEFLATE, nullptr, 0);
  EXPECT_VALUE(block, UINT16, OriginalBlockType, dz_org_block_type, 0x4452);
  EXPECT_VALUE(block, B::DZ_ZIPTYPE_t, ZipType, dz_zip_type, B::DZ_ZIPTYPE_TRANSPORTION_DEFLATE);
  EXPECT_VALUE(block, UINT32, ZipParameter, dz_zip_parameter, UINT32_MAX);
  EXPECT_VALUE(block, UINT64, OriginalLength, dz_org_data_length, UINT64_MAX);
  expectSize(block, 48);
}

TEST(Accessors, HLBLOCK) {
  using B = HLBLOCK;
  const B block(1, false, DZBLOCK::DZ_ZIPTYPE_DEFLATE);
  expectLinks<B>(block, {LINK_ROW(0, FirstDlblock, seekgFirstDlblock)});
  expectFlags<UINT16>(block, &B::hl_flags, {FLAG_ROW(1, EqualLengthFlag, isEqualLengthFlag)});
  EXPECT_VALUE(block, DZBLOCK::DZ_ZIPTYPE_t, ZipType, hl_zip_type,
               DZBLOCK::DZ_ZIPTYPE_TRANSPORTION_DEFLATE);
  expectSize(block, 40);
}

TEST(Accessors, SRBLOCK) {
  using B = SRBLOCK;
  const B block(1, 2.5, B::SR_SYNCTYPE_TIME_SECONDS, 3, 4);
  expectLinks<B>(
      block, {LINK_ROW(0, NextSrblock, seekgNextSrblock), LINK_ROW(1, Datablock, seekgDatablock)});
  expectFlags<UINT8>(block, &B::sr_flags,
                     {FLAG_ROW(1, ValidationBytesFlag, isValidationBytesFlag)});
  EXPECT_VALUE(block, UINT64, CycleCount, sr_cycle_count, UINT64_MAX);
  EXPECT_VALUE(block, REAL, Interval, sr_interval, -1e300);
  EXPECT_VALUE(block, B::MDF_SR_SYNCTYPE_t, SyncType, sr_sync_type,
               B::SR_SYNCTYPE_INDEX_RECORDINDEX);
  expectSize(block, 64);
}

// A type that no enumerator names comes back as its byte says.
TEST(Accessors, UnknownTypesAreGivenAsTheyStand) {
  DZBLOCK zipped(DTBLOCK::MDF_DT_ID, DZBLOCK::DZ_ZIPTYPE_DEFLATE, nullptr, 0);
  zipped.dz_zip_type = 200;
  EXPECT_EQ(static_cast<int>(zipped.getZipType()), 200);
  HLBLOCK list(1, false, DZBLOCK::DZ_ZIPTYPE_DEFLATE);
  list.hl_zip_type = 200;
  EXPECT_EQ(static_cast<int>(list.getZipType()), 200);
  SRBLOCK reduction(1, 1, SRBLOCK::SR_SYNCTYPE_TIME_SECONDS, 0, 0);
  reduction.sr_sync_type = 200;
  EXPECT_EQ(static_cast<int>(reduction.getSyncType()), 200);
}

}  // namespace
