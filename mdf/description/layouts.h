#ifndef MDF_DESCRIPTION_LAYOUTS_H_
#define MDF_DESCRIPTION_LAYOUTS_H_

#include <array>

#include "../framework/field_list.h"
#include "ccblock.h"
#include "cgblock.h"
#include "cnblock.h"
#include "dgblock.h"
#include "siblock.h"

/// What the blocks that describe measured signals look like in the file: the names of the links
/// that each one has, and the fields of its data section.
namespace mdf_v4_10::detail {

// clang-format off

inline constexpr std::array dgblock_links = {"dg_dg_next", "dg_cg_first", "dg_data",
                                             "dg_md_comment"};
static_assert(dgblock_links.size() == DGBLOCK::DG_BLOCK_LINKS_NUM);

inline constexpr auto dgblock_fields = fieldList(
    field<&DGBLOCK::dg_rec_id_size>("dg_rec_id_size"),
    reserved<&DGBLOCK::dg_reserved>("dg_reserved"));
static_assert(sizeWithLinks(dgblock_links.size(), dgblock_fields) == DGBLOCK::DGBLOCK_SIZE);

inline constexpr std::array cgblock_links = {"cg_cg_next",       "cg_cn_first", "cg_tx_acq_name",
                                             "cg_si_acq_source", "cg_sr_first", "cg_md_comment"};
static_assert(cgblock_links.size() == CGBLOCK::CG_BLOCK_LINKS_NUM);

inline constexpr auto cgblock_fields = fieldList(
    field<&CGBLOCK::cg_record_id>("cg_record_id"),
    field<&CGBLOCK::cg_cycle_count>("cg_cycle_count"),
    field<&CGBLOCK::cg_flags>("cg_flags"),
    field<&CGBLOCK::cg_path_separator>("cg_path_separator"),
    reserved<&CGBLOCK::cg_reserved>("cg_reserved"),
    field<&CGBLOCK::cg_data_bytes>("cg_data_bytes"),
    field<&CGBLOCK::cg_inval_bytes>("cg_inval_bytes"));
static_assert(sizeWithLinks(cgblock_links.size(), cgblock_fields) == CGBLOCK::CGBLOCK_SIZE);

inline constexpr std::array siblock_links = {"si_tx_name", "si_tx_path", "si_md_comment"};
static_assert(siblock_links.size() == SIBLOCK::SI_BLOCK_LINKS_NUM);

inline constexpr auto siblock_fields = fieldList(
    field<&SIBLOCK::si_type>("si_type"),
    field<&SIBLOCK::si_bus_type>("si_bus_type"),
    field<&SIBLOCK::si_flags>("si_flags"),
    reserved<&SIBLOCK::si_reserved>("si_reserved"));
static_assert(sizeWithLinks(siblock_links.size(), siblock_fields) == SIBLOCK::SIBLOCK_SIZE);

inline constexpr std::array cnblock_links = {"cn_cn_next",   "cn_composition",   "cn_tx_name",
                                             "cn_si_source", "cn_cc_conversion", "cn_data",
                                             "cn_md_unit",   "cn_md_comment"};
static_assert(cnblock_links.size() == CNBLOCK::cn_md_comment + 1);

inline constexpr auto cnblock_fields = fieldList(
    field<&CNBLOCK::cn_type>("cn_type"),
    field<&CNBLOCK::cn_sync_type>("cn_sync_type"),
    field<&CNBLOCK::cn_data_type>("cn_data_type"),
    field<&CNBLOCK::cn_bit_offset>("cn_bit_offset"),
    field<&CNBLOCK::cn_byte_offset>("cn_byte_offset"),
    field<&CNBLOCK::cn_bit_count>("cn_bit_count"),
    field<&CNBLOCK::cn_flags>("cn_flags"),
    field<&CNBLOCK::cn_inval_bit_pos>("cn_inval_bit_pos"),
    field<&CNBLOCK::cn_precision>("cn_precision"),
    reserved<&CNBLOCK::cn_reserved>("cn_reserved"),
    countOf<UINT16, &CNBLOCK::cc_attachements>("cn_attachment_count"),
    field<&CNBLOCK::cn_val_range_min>("cn_val_range_min"),
    field<&CNBLOCK::cn_val_range_max>("cn_val_range_max"),
    field<&CNBLOCK::cn_limit_min>("cn_limit_min"),
    field<&CNBLOCK::cn_limit_max>("cn_limit_max"),
    field<&CNBLOCK::cn_limit_ext_min>("cn_limit_ext_min"),
    field<&CNBLOCK::cn_limit_ext_max>("cn_limit_ext_max"));
static_assert(sizeWithLinks(cnblock_links.size(), cnblock_fields) ==
              CNBLOCK::CNBLOCK_CONSTANT_SIZE);

inline constexpr std::array ccblock_links = {"cc_tx_name", "cc_md_unit", "cc_md_comment",
                                             "cc_cc_inverse"};
static_assert(ccblock_links.size() == CCBLOCK::cc_cc_inverse + 1);

inline constexpr auto ccblock_fields = fieldList(
    field<&CCBLOCK::cc_type>("cc_type"),
    field<&CCBLOCK::cc_precision>("cc_precision"),
    field<&CCBLOCK::cc_flags>("cc_flags"),
    countOf<UINT16, &CCBLOCK::cc_refs>("cc_ref_count"),
    countOf<UINT16, &CCBLOCK::cc_vals>("cc_val_count"),
    field<&CCBLOCK::cc_phy_range_min>("cc_phy_range_min"),
    field<&CCBLOCK::cc_phy_range_max>("cc_phy_range_max"));
static_assert(sizeWithLinks(ccblock_links.size(), ccblock_fields) ==
              CCBLOCK::CCBLOCK_CONSTANT_SIZE);

// clang-format on

}  // namespace mdf_v4_10::detail

#endif  // MDF_DESCRIPTION_LAYOUTS_H_
