/// What the blocks that describe a measurement offer to programs. Compiling this file is the test;
/// the accessors of links, flags and values are stated in accessors_test.cpp.

#include <cstddef>
#include <cstdint>
#include <fstream>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "mdf_v4_10.h"
#include "support/interface_checks.h"

using namespace mdf_tests;
using namespace mdf_v4_10;

// clang-format off
namespace {

namespace dgblock {

using B = DGBLOCK;

static_assert(isBlock<B>());
static_assert(isConstant<std::size_t>  (B::DGBLOCK_SIZE, 64));
static_assert(isConstant<std::uint16_t>(B::MDF_DG_ID,    0x4744));
static_assert(isEnumeration<B::MDF_DG_REC_ID_SIZE_t>({
    {B::DG_WITHOUT, 0}, {B::DG_UINT8, 1}, {B::DG_UINT16_LE, 2}, {B::DG_UINT32_LE, 3},
    {B::DG_UINT64_LE, 4}}));
static_assert(isEnumeration<B::MDF_DG_BLOCK_LINKS>({
    {B::dg_dg_next, 0}, {B::dg_cg_first, 1}, {B::dg_data, 2}, {B::dg_md_comment, 3},
    {B::DG_BLOCK_LINKS_NUM, 4}}));

static_assert(has<UINT8>(&B::dg_rec_id_size));
static_assert(has<UINT8[7]>(&B::dg_reserved));

static_assert(constructs<B, LINK, LINK, LINK, B::MDF_DG_REC_ID_SIZE_t>());

static_assert(has<std::string() const>(&B::getValidMDXMLSchemaName));

}  // namespace dgblock

namespace cgblock {

using B = CGBLOCK;

static_assert(isBlock<B>());
static_assert(isConstant<std::size_t>  (B::CGBLOCK_SIZE, 104));
static_assert(isConstant<std::uint16_t>(B::MDF_CG_ID,    0x4743));
static_assert(isEnumeration<B::CG_FLAGS_t>({
    {B::no_flag, 0}, {B::vlsd_channel_group, 1}, {B::bus_event_group, 2},
    {B::plain_bus_event_channel_group, 4}}));
static_assert(isEnumeration<B::CG_PATHSEPARATOR_t>({
    {B::CG_PATHSEPARATOR_NONE, 0}, {B::CG_PATHSEPARATOR_POINT, 46},
    {B::CG_PATHSEPARATOR_SLASH, 47}}));
static_assert(isEnumeration<B::MDF_CG_BLOCK_LINKS>({
    {B::cg_cg_next, 0}, {B::cg_cn_first, 1}, {B::cg_tx_acq_name, 2}, {B::cg_si_acq_source, 3},
    {B::cg_sr_first, 4}, {B::cg_md_comment, 5}, {B::CG_BLOCK_LINKS_NUM, 6}}));

static_assert(has<UINT64>(&B::cg_record_id, &B::cg_cycle_count));
static_assert(has<UINT16>(&B::cg_flags, &B::cg_path_separator));
static_assert(has<UINT8[4]>(&B::cg_reserved));
static_assert(has<UINT32>(&B::cg_data_bytes, &B::cg_inval_bytes));

static_assert(constructs<B>());
static_assert(constructs<B, LINK, B::CG_FLAGS_t, UINT64, LINK, LINK, LINK, LINK, UINT64,
                         B::CG_PATHSEPARATOR_t, UINT32, UINT32>());

static_assert(has<void(LINK, B::CG_FLAGS_t, UINT64, LINK, LINK, LINK, LINK, UINT64,
                       B::CG_PATHSEPARATOR_t, UINT32, UINT32)>(&B::setup));

static_assert(has<void()>(&B::incCycleCount));

static_assert(has<std::string() const>(&B::getValidMDXMLSchemaName));

}  // namespace cgblock

namespace cnblock {

using B = CNBLOCK;

static_assert(isBlock<B>());
static_assert(isConstant<std::size_t>  (B::CNBLOCK_CONSTANT_SIZE, 160));
static_assert(isConstant<std::uint16_t>(B::MDF_CN_ID,             0x4E43));
static_assert(isEnumeration<B::MDF_CN_CHANNELTYPE_t>({
    {B::CN_CHANNELTYPE_FIXEDLENGTH, 0}, {B::CN_CHANNELTYPE_VARLENGTH, 1},
    {B::CN_CHANNELTYPE_MASTER, 2}, {B::CN_CHANNELTYPE_VIRTUALMASTER, 3},
    {B::CN_CHANNELTYPE_SYNCHRONIZATION, 4}, {B::CN_CHANNELTYPE_MAXIMUM_DATACHANNEL, 5},
    {B::CN_CHANNELTYPE_VIRTUAL_DATACHANNEL, 6}}));
static_assert(isEnumeration<B::MDF_CN_SYNCTYPE_t>({
    {B::CN_SYNCTYPE_NONE, 0}, {B::CN_SYNCTYPE_TIME, 1}, {B::CN_SYNCTYPE_ANGLE, 2},
    {B::CN_SYNCTYPE_DISTANCE, 3}, {B::CN_SYNCTYPE_INDEX, 4}}));
static_assert(isEnumeration<B::MDF_CN_DATATYPES_t>({
    {B::CN_DATATYPE_UINT_LE, 0}, {B::CN_DATATYPE_UINT_BE, 1}, {B::CN_DATATYPE_INT_LE, 2},
    {B::CN_DATATYPE_INT_BE, 3}, {B::CN_DATATYPE_FLOAT_LE, 4}, {B::CN_DATATYPE_FLOAT_BE, 5},
    {B::CN_DATATYPE_STRING_ISO8859, 6}, {B::CN_DATATYPE_STRING_UTF8, 7},
    {B::CN_DATATYPE_STRING_UTF16_LE, 8}, {B::CN_DATATYPE_STRING_UTF16_BE, 9},
    {B::CN_DATATYPE_BYTEARRAY, 10}, {B::CN_DATATYPE_MIME_SAMPLE, 11},
    {B::CN_DATATYPE_MIME_STREAM, 12}, {B::CN_DATATYPE_CANOPEN_DATE, 13},
    {B::CN_DATATYPE_CANOPEN_TIME, 14}}));
static_assert(isEnumeration<B::MDF_CN_BLOCK_LINKS>({
    {B::cn_cn_next, 0}, {B::cn_composition, 1}, {B::cn_tx_name, 2}, {B::cn_si_source, 3},
    {B::cn_cc_conversion, 4}, {B::cn_data, 5}, {B::cn_md_unit, 6}, {B::cn_md_comment, 7}}));
static_assert(isEnumeration<B::CN_FLAGS_t>({
    {B::all_values_invalid, 1}, {B::invalidation_bit_valid, 2}, {B::precision_valid, 4},
    {B::value_range_valid, 8}, {B::limit_range_valid, 16}, {B::extended_limit_range_valid, 32},
    {B::discrete_value, 64}, {B::calibration, 128}, {B::calculated, 256}, {B::virtual_, 512},
    {B::bus_event, 1024}, {B::monotonous, 2048}, {B::default_x_axis, 4096}}));

static_assert(has<UINT8>(&B::cn_type, &B::cn_sync_type, &B::cn_data_type, &B::cn_bit_offset));
static_assert(has<UINT32>(&B::cn_byte_offset, &B::cn_bit_count, &B::cn_flags,
                          &B::cn_inval_bit_pos));
static_assert(has<UINT8>(&B::cn_precision, &B::cn_reserved));
static_assert(has<REAL>(&B::cn_val_range_min, &B::cn_val_range_max, &B::cn_limit_min,
                        &B::cn_limit_max, &B::cn_limit_ext_min, &B::cn_limit_ext_max));
static_assert(has<std::vector<LINK>>(&B::cc_attachements));
static_assert(has<LINK>(&B::cn_default_x_dgblock, &B::cn_default_x_cgblock,
                        &B::cn_default_x_cnblock));

static_assert(constructs<B, B::MDF_CN_CHANNELTYPE_t, B::MDF_CN_SYNCTYPE_t, B::MDF_CN_DATATYPES_t,
                         LINK, LINK, LINK>());

static_assert(has<void(B::MDF_CN_CHANNELTYPE_t, B::MDF_CN_SYNCTYPE_t, B::MDF_CN_DATATYPES_t,
                       LINK, LINK, LINK, LINK,          // next, name, composition, data
                       LINK, LINK, LINK, LINK,          // source, conversion, unit, comment
                       UINT8, UINT32, UINT32,           // bit offset, byte offset, bit count
                       bool, bool, bool, bool, bool,    // flags, from all_values_invalid
                       bool, bool, bool, bool, bool,    // from extended_limit_range_valid
                       bool, bool, bool,                // from bus_event to default_x_axis
                       UINT8,                           // precision
                       REAL, REAL, REAL, REAL,          // value range, limits
                       REAL, REAL)>(&B::setup));        // extended limits
static_assert(has<void(LINK, LINK, LINK)>(&B::setupDefaultXAxis));

static_assert(has<LINK() const>(&B::getDefaultXAxisdgblock, &B::getDefaultXAxiscgblock,
                                &B::getDefaultXAxiscnblock));
static_assert(has<LINK(std::ifstream&) const>(&B::seekgDefaultXAxisdgblock,
    &B::seekgDefaultXAxiscgblock, &B::seekgDefaultXAxiscnblock));

static_assert(has<UINT16() const>(&B::getAttachementCount));
static_assert(has<LINK(UINT16) const>(&B::getAttachementAt));

static_assert(has<std::string() const>(&B::getValidMDXMLSchemaName, &B::getValidUnitXMLSchemaName));

}  // namespace cnblock

namespace siblock {

using B = SIBLOCK;

static_assert(isBlock<B>());
static_assert(isConstant<std::size_t>  (B::SIBLOCK_SIZE, 56));
static_assert(isConstant<std::uint16_t>(B::MDF_SI_ID,    0x4953));
static_assert(isEnumeration<B::MDF_SI_SOURCETYPE_t>({
    {B::SI_SOURCETYPE_OTHER, 0}, {B::SI_SOURCETYPE_ECU, 1}, {B::SI_SOURCETYPE_BUS, 2},
    {B::SI_SOURCETYPE_IO, 3}, {B::SI_SOURCETYPE_TOOL, 4}, {B::SI_SOURCETYPE_USER, 5}}));
static_assert(isEnumeration<B::MDF_SI_BUSTYPE_t>({
    {B::SI_BUSTYPE_NONE, 0}, {B::SI_BUSTYPE_OTHER, 1}, {B::SI_BUSTYPE_CAN, 2},
    {B::SI_BUSTYPE_LIN, 3}, {B::SI_BUSTYPE_MOST, 4}, {B::SI_BUSTYPE_FLEXRAY, 5},
    {B::SI_BUSTYPE_K_LINE, 6}, {B::SI_BUSTYPE_ETHERNET, 7}, {B::SI_BUSTYPE_USB, 8}}));
static_assert(isEnumeration<B::SI_FLAGS_t>({{B::simulated_source, 1}}));
static_assert(isEnumeration<B::MDF_SI_BLOCK_LINKS>({
    {B::si_tx_name, 0}, {B::si_tx_path, 1}, {B::si_md_comment, 2}, {B::SI_BLOCK_LINKS_NUM, 3}}));

static_assert(has<UINT8>(&B::si_type, &B::si_bus_type, &B::si_flags));
static_assert(has<UINT8[5]>(&B::si_reserved));

static_assert(constructs<B>());
static_assert(constructs<B, B::MDF_SI_SOURCETYPE_t, B::MDF_SI_BUSTYPE_t, bool, LINK, LINK>());

static_assert(has<std::string() const>(&B::getValidMDXMLSchemaName));

}  // namespace siblock

namespace ccblock {

using B = CCBLOCK;
using Range = std::pair<REAL, REAL>;

static_assert(isBlock<B>());
static_assert(isConstant<std::size_t>  (B::CCBLOCK_CONSTANT_SIZE, 80));
static_assert(isConstant<std::uint16_t>(B::MDF_CC_ID,             0x4343));
static_assert(isEnumeration<B::MDF_CC_TYPE_t>({
    {B::CC_CONVTYPE_EQUAL, 0}, {B::CC_CONVTYPE_LINEAR, 1}, {B::CC_CONVTYPE_RATIONAL, 2},
    {B::CC_CONVTYPE_ALGEBRAIC, 3}, {B::CC_CONVTYPE_V2VTAB_INTERPOL, 4},
    {B::CC_CONVTYPE_V2VTAB_NOINTERPOL, 5}, {B::CC_CONVTYPE_VRANGE2VTAB, 6},
    {B::CC_CONVTYPE_V2TEXT_SCALETAB, 7}, {B::CC_CONVTYPE_VRANGE2TEXT_SCALETAB, 8},
    {B::CC_CONVTYPE_TEXT2VTAB, 9}, {B::CC_CONVTYPE_TEXT2TEXTTAB, 10}}));
static_assert(isEnumeration<B::MDF_CC_BLOCK_LINKS>({
    {B::cc_tx_name, 0}, {B::cc_md_unit, 1}, {B::cc_md_comment, 2}, {B::cc_cc_inverse, 3}}));
static_assert(isEnumeration<B::CC_FLAGS_t>({
    {B::precision_valid, 1}, {B::phys_value_range_valid, 2}, {B::status_string, 4}}));

static_assert(has<UINT8>(&B::cc_type, &B::cc_precision));
static_assert(has<UINT16>(&B::cc_flags));
static_assert(has<REAL>(&B::cc_phy_range_min, &B::cc_phy_range_max));
static_assert(has<std::vector<LINK>>(&B::cc_refs));
static_assert(has<std::vector<REAL>>(&B::cc_vals));

static_assert(constructs<B, B::MDF_CC_TYPE_t>());

static_assert(has<bool(UINT16, LINK&) const>(&B::getReferenceAtIndex));
static_assert(has<bool(UINT16, REAL&) const>(&B::getValueAtIndex));

static_assert(has<std::string() const>(&B::getValidMDXMLSchemaName, &B::getValidUnitXMLSchemaName));

static_assert(has<void()>(&B::setupEqualConversion));
static_assert(has<void(REAL, REAL)>(&B::setupLinearConversion));
static_assert(has<void(REAL, REAL, REAL, REAL, REAL, REAL)>(&B::setupRationalConversion));
static_assert(has<void(LINK)>(&B::setupAlgebraicConversion));
static_assert(has<void(bool, const std::map<REAL, REAL>&)>(&B::setupV2VTABConversion));
static_assert(has<void(const std::map<Range, REAL>&, REAL)>(&B::setupVRANGE2VTABConversion));
static_assert(has<void(const std::map<REAL, LINK>&, LINK)>(&B::setupV2TEXT_SCALETABConversion));
static_assert(has<void(const std::map<Range, LINK>&, LINK)>
                                                       (&B::setupVRANGE2TEXT_SCALETABConversion));
static_assert(has<void(const std::map<LINK, REAL>&, REAL)>(&B::setupTEXT2VTABConversion));
static_assert(has<void(const std::map<LINK, LINK>&, LINK)>(&B::setupTEXT2TEXTTABConversion));

}  // namespace ccblock

}  // namespace
// clang-format on
