/// What the blocks that frame a file offer to programs. Compiling this file is the test;
/// the accessors of links, flags and values are stated in accessors_test.cpp.

#include <cstddef>
#include <cstdint>
#include <ctime>
#include <fstream>
#include <string>
#include <string_view>
#include <vector>

#include "mdf_v4_10.h"
#include "support/interface_checks.h"

using namespace mdf_tests;
using namespace mdf_v4_10;

// clang-format off
namespace {

namespace idblock {

using B = IDBLOCK;

static_assert(isBlock<B>());
static_assert(isConstant<std::size_t>  (B::IDBLOCK_SIZE, 64));
static_assert(isConstant<std::uint16_t>(B::MDF_ID_ID,    0x4449));
static_assert(std::string_view(B::MDF_ID_FILE_STRING) == "MDF     ");
static_assert(std::string_view(B::MDF_ID_VERS_STRING) == "4.10    ");
static_assert(B::MDF_ID_VERS_NO     == 410);
static_assert(B::MDF_ID_FILE        == 8);
static_assert(B::MDF_ID_VERS        == 8);
static_assert(B::MDF_ID_PROG        == 8);
static_assert(B::MDF_ID_ORDER_INTEL == 0);

static_assert(has<char[8]>(&B::id_file, &B::id_vers, &B::id_prog));
static_assert(has<UINT8[4]>(&B::id_reserved1));
static_assert(has<UINT16>(&B::id_ver));
static_assert(has<UINT8[34]>(&B::id_reserved2));

static_assert(constructs<B, const char*>());

static_assert(has<std::string() const>(&B::getKenn, &B::getVers, &B::getProg));
static_assert(has<std::uint16_t() const>(&B::getVersionNumber));

}  // namespace idblock

/// The time operations that the header and the file history block share.
template <class B>
struct TimeOperations {
  static_assert(has<void(std::uint64_t)> (&B::setTimestamp));
  static_assert(has<void(bool)>          (&B::setDST));
  static_assert(has<void(std::tm)>       (&B::setDateAndTime));
  static_assert(has<void(std::tm&) const>(&B::getDateAndTime));
};
template struct TimeOperations<HDBLOCK>;
template struct TimeOperations<FHBLOCK>;

namespace hdblock {

using B = HDBLOCK;

static_assert(isBlock<B>());
static_assert(isConstant<std::size_t>  (B::HDBLOCK_SIZE, 104));
static_assert(isConstant<std::uint16_t>(B::MDF_HD_ID,    0x4448));
static_assert(isEnumeration<B::MDF_HD_BLOCK_LINKS>({
    {B::hd_dg_first, 0}, {B::hd_fh_first, 1}, {B::hd_ch_first, 2}, {B::hd_at_first, 3},
    {B::hd_ev_first, 4}, {B::hd_md_comment, 5}, {B::HD_BLOCK_LINKS_NUM, 6}}));
static_assert(isEnumeration<B::MDF_HD_TIME_QUALITY_t>({
    {B::TIME_LOCAL_PC, 0}, {B::TIME_EXT_SOURCE, 10}, {B::TIME_EXT_ABSOLUTE_SYNC, 16}}));

static_assert(has<UINT64>(&B::hd_start_time_ns));
static_assert(has<INT16>(&B::hd_tz_offset_min, &B::hd_dst_offset_min));
static_assert(has<UINT8>(&B::hd_time_flags, &B::hd_time_class, &B::hd_flags, &B::hd_reserved));
static_assert(has<REAL>(&B::hd_start_angle_rad, &B::hd_start_distance_m));

static_assert(constructs<B, LINK, LINK, std::uint64_t, std::int16_t, B::MDF_HD_TIME_QUALITY_t,
                         REAL, REAL>());

static_assert(has<UINT64() const>(&B::getStartTime));
static_assert(has<std::uint64_t() const>(&B::getTimeStamp));
static_assert(has<std::int16_t() const>(&B::getUtcOffset));
static_assert(has<B::MDF_HD_TIME_QUALITY_t() const>(&B::getTimeQuality));
static_assert(has<std::string() const>(&B::getValidMDXMLSchemaName));

}  // namespace hdblock

/// The text and the metadata block differ in their names only.
template <class B>
struct TextBlock {
  static_assert(isBlock<B>());

  static_assert(has<std::vector<UINT8>>(&B::data));

  static_assert(constructs<B>());
  static_assert(constructs<B, const char*, std::size_t>());

  static_assert(has<void(const char*, std::size_t)>   (&B::setup));
  static_assert(has<const std::vector<UINT8>&() const>(&B::getData));
};
template struct TextBlock<TXBLOCK>;
template struct TextBlock<MDBLOCK>;

static_assert(isConstant<std::size_t>  (TXBLOCK::TXBLOCK_CONSTANT_SIZE, 24));
static_assert(isConstant<std::size_t>  (MDBLOCK::MDBLOCK_CONSTANT_SIZE, 24));
static_assert(isConstant<std::uint16_t>(TXBLOCK::MDF_TX_ID, 0x5854));
static_assert(isConstant<std::uint16_t>(MDBLOCK::MDF_MD_ID, 0x444D));

namespace fhblock {

using B = FHBLOCK;

static_assert(isBlock<B>());
static_assert(isConstant<std::size_t>  (B::FHBLOCK_SIZE, 56));
static_assert(isConstant<std::uint16_t>(B::MDF_FH_ID,    0x4846));
static_assert(isEnumeration<B::MDF_FH_BLOCK_LINKS>({
    {B::fh_fh_next, 0}, {B::fh_md_comment, 1}, {B::FH_BLOCK_LINKS_NUM, 2}}));

static_assert(has<UINT64>(&B::fh_time_ns));
static_assert(has<INT16>(&B::fh_tz_offset_min, &B::fh_dst_offset_min));
static_assert(has<UINT8>(&B::fh_time_flags));
static_assert(has<UINT8[3]>(&B::fh_reserved));

static_assert(constructs<B, LINK, std::uint64_t, std::int16_t, LINK>());

static_assert(has<UINT64() const>(&B::getTime));
static_assert(has<std::int16_t() const>(&B::getUtcOffset));
static_assert(has<std::string() const>(&B::getValidMDXMLSchemaName));

}  // namespace fhblock

namespace chblock {

using B = CHBLOCK;
using Element = B::CHBLOCK_CHANNEL_t;

static_assert(isBlock<B>());
static_assert(isConstant<std::size_t>  (B::CHBLOCK_CONSTANT_SIZE, 64));
static_assert(isConstant<std::uint16_t>(B::MDF_CH_ID,             0x4843));
static_assert(isEnumeration<B::MDF_CH_TYPE_t>({
    {B::CH_TYPE_GROUP, 0}, {B::CH_TYPE_FUNCTION, 1}, {B::CH_TYPE_STRUCTURE, 2},
    {B::CH_TYPE_MAP_LIST, 3}, {B::CH_TYPE_IN_MEASUREMENT, 4}, {B::CH_TYPE_OUT_MEASUREMENT, 5},
    {B::CH_TYPE_LOC_MEASUREMENT, 6}, {B::CH_TYPE_DEF_CHARACTERISTIC, 7},
    {B::CH_TYPE_REF_CHARACTERISTIC, 8}}));
static_assert(isEnumeration<B::MDF_CH_BLOCK_LINKS>({
    {B::ch_ch_next, 0}, {B::ch_ch_first, 1}, {B::ch_tx_name, 2}, {B::ch_md_comment, 3}}));

static_assert(has<LINK>(&Element::ch_element_dg, &Element::ch_element_cg, &Element::ch_element_cn));

static_assert(has<UINT8>(&B::ch_type));
static_assert(has<UINT8[3]>(&B::ch_reserved));
static_assert(has<std::vector<Element>>(&B::channels));

static_assert(constructs<B, B::MDF_CH_TYPE_t>());

static_assert(has<void(LINK, B::MDF_CH_TYPE_t)>(&B::setNextCHBlock));
static_assert(has<LINK() const>(&B::getNextCHBlock));
static_assert(has<LINK(std::ifstream&) const>(&B::seekgNextCHBlock));

static_assert(has<UINT32() const>(&B::getElementCount));
static_assert(has<void(LINK, LINK, LINK)>(&B::addChannelElement));
static_assert(has<void(Element)>(&B::addChannelElement));
static_assert(has<bool(UINT32, LINK&, LINK&, LINK&) const>(&B::getChannelElementAtIndex));
static_assert(has<bool(UINT32, Element&) const>(&B::getChannelElementAtIndex));
static_assert(has<void(UINT32)>(&B::removeChannelAtIndex));

static_assert(has<std::string() const>(&B::getValidMDXMLSchemaName));

}  // namespace chblock

namespace atblock {

using B = ATBLOCK;

static_assert(isBlock<B>());
static_assert(isConstant<std::size_t>  (B::ATBLOCK_CONSTANT_SIZE, 96));
static_assert(isConstant<std::size_t>  (B::MDF_AT_MD5,            16));
static_assert(isConstant<std::uint16_t>(B::MDF_AT_ID,             0x5441));
static_assert(isEnumeration<B::MDF_AT_BLOCK_LINKS>({
    {B::at_at_next, 0}, {B::at_tx_filename, 1}, {B::at_tx_mimetype, 2}, {B::at_md_comment, 3},
    {B::AT_BLOCK_LINKS_NUM, 4}}));
static_assert(isEnumeration<B::AT_FLAGS_t>({
    {B::embedded_data, 1}, {B::compressed_embedded_data, 2}, {B::md5_checksum, 4}}));

static_assert(has<UINT16>(&B::at_flags, &B::at_creator_index));
static_assert(has<UINT8[4]>(&B::at_reserved));
static_assert(has<UINT8[16]>(&B::at_md5_checksum));
static_assert(has<UINT64>(&B::at_original_size));
static_assert(has<std::vector<UINT8>>(&B::at_embedded_data));

static_assert(constructs<B>());
static_assert(constructs<B, const char*, std::size_t>());

static_assert(has<void(const char*, std::size_t)>(&B::setup));

static_assert(has<void(const char*)>(&B::setMD5Checksum));
static_assert(has<std::string() const>(&B::getMD5Checksum));

static_assert(has<std::string() const>(&B::getValidMDXMLSchemaName));

}  // namespace atblock

namespace evblock {

using B = EVBLOCK;

static_assert(isBlock<B>());
static_assert(isConstant<std::size_t>  (B::EVBLOCK_CONSTANT_SIZE, 96));
static_assert(isConstant<std::uint16_t>(B::MDF_EV_ID,             0x5645));
static_assert(isEnumeration<B::MDF_EV_TYPE_t>({
    {B::EV_TYPE_RECORDING, 0}, {B::EV_TYPE_RECORDING_INTERRUPT, 1},
    {B::EV_TYPE_ACQUISITION_INTERRUPT, 2}, {B::EV_TYPE_START_RECORDING_TRIGGER, 3},
    {B::EV_TYPE_STOP_RECORDING_TRIGGER, 4}, {B::EV_TYPE_TRIGGER, 5}, {B::EV_TYPE_MARKER, 6}}));
static_assert(isEnumeration<B::MDF_EV_SYNCTYPE_t>({
    {B::EV_SYNCTYPE_SECONDS, 1}, {B::EV_SYNCTYPE_RADIANS, 2}, {B::EV_SYNCTYPE_METERS, 3},
    {B::EV_SYNCTYPE_RECORD_INDEX, 4}}));
static_assert(isEnumeration<B::MDF_EV_RANGETYPE_t>({
    {B::EV_RANGETYPE_POINT, 0}, {B::EV_RANGETYPE_BEGIN, 1}, {B::EV_RANGETYPE_END, 2}}));
static_assert(isEnumeration<B::MDF_EV_CAUSETYPE_t>({
    {B::EV_CAUSETYPE_OTHER, 0}, {B::EV_CAUSETYPE_ERROR, 1}, {B::EV_CAUSETYPE_TOOL, 2},
    {B::EV_CAUSETYPE_SCRIPT, 3}, {B::EV_CAUSETYPE_USER, 4}}));
static_assert(isEnumeration<B::EV_FLAGS_t>({{B::post_processing, 1}}));
static_assert(isEnumeration<B::MDF_EV_BLOCK_LINKS>({
    {B::ev_ev_next, 0}, {B::ev_ev_parent, 1}, {B::ev_ev_range, 2}, {B::ev_tx_name, 3},
    {B::ev_md_comment, 4}}));

static_assert(has<UINT8>(&B::ev_type, &B::ev_sync_type, &B::ev_range_type, &B::ev_cause,
                         &B::ev_flags));
static_assert(has<UINT8[3]>(&B::ev_reserved));
static_assert(has<UINT16>(&B::ev_creator_index));
static_assert(has<INT64>(&B::ev_sync_base_value));
static_assert(has<REAL>(&B::ev_sync_factor));
static_assert(has<std::vector<LINK>>(&B::ev_scope, &B::ev_at_reference));

static_assert(constructs<B, B::MDF_EV_TYPE_t, B::MDF_EV_SYNCTYPE_t, B::MDF_EV_RANGETYPE_t,
                         B::MDF_EV_CAUSETYPE_t>());

static_assert(has<UINT32() const>(&B::getScopeCount));
static_assert(has<LINK(UINT32) const>(&B::getScopeAt));

static_assert(has<UINT16() const>(&B::getAttachmentCount));
static_assert(has<LINK(UINT16) const>(&B::getAttachmentAt));

static_assert(has<std::string() const>(&B::getValidMDXMLSchemaName));

}  // namespace evblock

}  // namespace
// clang-format on
