/// What the blocks that carry data, and the record elements, offer to programs. Compiling this file
/// is the test; the accessors of links, flags and values are stated in accessors_test.cpp.

#include <cstddef>
#include <cstdint>
#include <fstream>
#include <type_traits>
#include <utility>
#include <vector>

#include "mdf_v4_10.h"
#include "support/interface_checks.h"

using namespace mdf_tests;
using namespace mdf_v4_10;

// clang-format off
namespace {

static_assert(HEXDUMP_DEFAULT_ROWSIZE == 16);

/// What the data, the reduction data and the signal data block share.
template <class B>
struct PlainDataBlock {
  static_assert(isBlock<B>());

  static_assert(constructs<B, const std::uint8_t*, std::size_t>());

  static_assert(has<void(const std::uint8_t*, std::size_t)>(&B::setup));
  static_assert(has<const std::vector<UINT8>&() const>     (&B::getData));
};
template struct PlainDataBlock<DTBLOCK>;
template struct PlainDataBlock<RDBLOCK>;
template struct PlainDataBlock<SDBLOCK>;

/// What only the data and the signal data block offer.
template <class B>
struct GrowingDataBlock {
  static_assert(constructs<B>());

  static_assert(has<void(std::uint8_t)>(&B::addData));
  static_assert(has<void()>            (&B::clearData));
};
template struct GrowingDataBlock<DTBLOCK>;
template struct GrowingDataBlock<SDBLOCK>;

constexpr auto adds_data   = [](auto& block) -> std::void_t<decltype(block.addData(UINT8{}))> {};
constexpr auto clears_data = [](auto& block) -> std::void_t<decltype(block.clearData())> {};

static_assert(!constructs<RDBLOCK>());
static_assert(allows<DTBLOCK>(adds_data)   && !allows<RDBLOCK>(adds_data));
static_assert(allows<DTBLOCK>(clears_data) && !allows<RDBLOCK>(clears_data));

static_assert(isConstant<std::size_t>(DTBLOCK::DTBLOCK_CONSTANT_SIZE, 24));
static_assert(isConstant<std::size_t>(RDBLOCK::RDBLOCK_CONSTANT_SIZE, 24));
static_assert(isConstant<std::size_t>(SDBLOCK::SDBLOCK_CONSTANT_SIZE, 24));

static_assert(isConstant<std::uint16_t>(DTBLOCK::MDF_DT_ID, 0x5444));
static_assert(isConstant<std::uint16_t>(RDBLOCK::MDF_RD_ID, 0x4452));
static_assert(isConstant<std::uint16_t>(SDBLOCK::MDF_SD_ID, 0x4453));

static_assert(has<std::vector<UINT8>>(&DTBLOCK::dt_data, &RDBLOCK::rd_data, &SDBLOCK::sd_data));

namespace dlblock {

using B = DLBLOCK;

static_assert(isBlock<B>());
static_assert(isConstant<std::size_t>  (B::DLBLOCK_CONSTANT_SIZE, 40));
static_assert(isConstant<std::uint16_t>(B::MDF_DL_ID,             0x4C44));
static_assert(isEnumeration<B::MDF_DL_BLOCK_LINKS>({{B::dl_dl_next, 0}}));
static_assert(isEnumeration<B::DL_FLAGS_t>({{B::equal_length, 1}}));

static_assert(has<UINT8>(&B::dl_flags));
static_assert(has<UINT8[3]>(&B::dl_reserved));
static_assert(has<UINT64>(&B::dl_equal_length));
static_assert(has<std::vector<std::pair<LINK, UINT64>>>(&B::dl_data));

static_assert(constructs<B, bool, LINK>());

static_assert(has<void(LINK, UINT64)>(&B::addData));
static_assert(has<bool(UINT32, LINK&, UINT64&) const>(&B::getDataAtIndex));
static_assert(has<void(UINT32)>(&B::removeDataAtIndex));
static_assert(has<LINK(std::ifstream&, UINT32) const>(&B::seekgDataAt));
static_assert(has<UINT32() const>(&B::getDataLength));

}  // namespace dlblock

namespace dzblock {

using B = DZBLOCK;

static_assert(isBlock<B>());
static_assert(isConstant<std::size_t>  (B::DZBLOCK_CONSTANT_SIZE, 48));
static_assert(isConstant<std::uint16_t>(B::MDF_DZ_ID,             0x5A44));
static_assert(isEnumeration<B::DZ_ZIPTYPE_t>({
    {B::DZ_ZIPTYPE_DEFLATE, 0}, {B::DZ_ZIPTYPE_TRANSPORTION_DEFLATE, 1}}));

static_assert(has<UINT16>(&B::dz_org_block_type));
static_assert(has<UINT8>(&B::dz_zip_type, &B::dz_reserved));
static_assert(has<UINT32>(&B::dz_zip_parameter));
static_assert(has<UINT64>(&B::dz_org_data_length));
static_assert(has<std::vector<UINT8>>(&B::dz_data));

static_assert(constructs<B, std::uint16_t, B::DZ_ZIPTYPE_t, const std::uint8_t*, std::size_t>());

static_assert(has<void(const std::uint8_t*, std::size_t)>(&B::setupZipData));

}  // namespace dzblock

namespace hlblock {

using B = HLBLOCK;

static_assert(isBlock<B>());
static_assert(isConstant<std::size_t>  (B::HLBLOCK_SIZE, 40));
static_assert(isConstant<std::uint16_t>(B::MDF_HL_ID,    0x4C48));
static_assert(isEnumeration<B::MDF_HL_BLOCK_LINKS>({
    {B::hl_dl_first, 0}, {B::HL_BLOCK_LINKS_NUM, 1}}));
static_assert(isEnumeration<B::HL_FLAGS_t>({{B::equal_length, 1}}));

static_assert(has<UINT16>(&B::hl_flags));
static_assert(has<UINT8>(&B::hl_zip_type));
static_assert(has<UINT8[5]>(&B::hl_reserved));

static_assert(constructs<B, LINK, bool, DZBLOCK::DZ_ZIPTYPE_t>());

}  // namespace hlblock

namespace srblock {

using B = SRBLOCK;

static_assert(isBlock<B>());
static_assert(isConstant<std::size_t>  (B::SRBLOCK_SIZE, 64));
static_assert(isConstant<std::uint16_t>(B::MDF_SR_ID,    0x5253));
static_assert(isEnumeration<B::MDF_SR_SYNCTYPE_t>({
    {B::SR_SYNCTYPE_TIME_SECONDS, 1}, {B::SR_SYNCTYPE_ANGLE_RADIANS, 2},
    {B::SR_SYNCTYPE_DISTANCE_METER, 3}, {B::SR_SYNCTYPE_INDEX_RECORDINDEX, 4}}));

// The enumeration of the links deliberately bears the source information block's name.
static_assert(isEnumeration<B::MDF_SI_BLOCK_LINKS>({
    {B::sr_sr_next, 0}, {B::sr_data, 1}, {B::SR_BLOCK_LINKS_NUM, 2}}));
static_assert(isEnumeration<B::SR_FLAGS_t>({{B::invalidation_bytes, 1}}));

static_assert(has<UINT64>(&B::sr_cycle_count));
static_assert(has<REAL>(&B::sr_interval));
static_assert(has<UINT8>(&B::sr_sync_type, &B::sr_flags));
static_assert(has<UINT8[6]>(&B::sr_reserved));

static_assert(constructs<B, UINT64, REAL, B::MDF_SR_SYNCTYPE_t, LINK, LINK>());

}  // namespace srblock

/// Record elements are no blocks.
template <class B>
struct RecordElement {
  static_assert(isPlainValue<B>());
  static_assert(!std::is_base_of_v<GENERALBLOCK, B>);
  static_assert(!std::is_default_constructible_v<B>);
  static_assert(writes<B>());
};
template struct RecordElement<IDTSDATABLOCK>;
template struct RecordElement<IDTSDATABLOCK64>;
template struct RecordElement<VALUEDATABLOCK>;

static_assert(constructs<IDTSDATABLOCK,   std::uint8_t,  std::uint32_t>());
static_assert(constructs<IDTSDATABLOCK64, std::uint16_t, std::uint64_t>());
static_assert(constructs<VALUEDATABLOCK,  std::uint64_t, std::uint32_t>());

static_assert(has<std::uint8_t>(&IDTSDATABLOCK::id));
static_assert(has<std::uint32_t>(&IDTSDATABLOCK::timestamp));
static_assert(has<std::uint16_t>(&IDTSDATABLOCK64::id));
static_assert(has<std::uint64_t>(&IDTSDATABLOCK64::timestamp, &VALUEDATABLOCK::value));
static_assert(has<std::uint32_t>(&VALUEDATABLOCK::valsize));

}  // namespace
// clang-format on
