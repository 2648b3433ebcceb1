#ifndef MDF_FILEBLOCKS_LAYOUTS_H_
#define MDF_FILEBLOCKS_LAYOUTS_H_

#include <array>

#include "../framework/field_list.h"
#include "atblock.h"
#include "chblock.h"
#include "evblock.h"
#include "fhblock.h"
#include "hdblock.h"
#include "idblock.h"

/// What the blocks that frame a file and describe it look like in the file: the names of the links
/// that each one has, and the fields of its data section.
namespace mdf_v4_10::detail {

// clang-format off

inline constexpr auto idblock_fields = fieldList(
    field<&IDBLOCK::id_file>("id_file"),
    field<&IDBLOCK::id_vers>("id_vers"),
    field<&IDBLOCK::id_prog>("id_prog"),
    reserved<&IDBLOCK::id_reserved1>("id_reserved1"),
    field<&IDBLOCK::id_ver>("id_ver"),
    keptReserved<&IDBLOCK::id_reserved2>("id_reserved2"));
static_assert(idblock_fields.width() == IDBLOCK::IDBLOCK_SIZE);

inline constexpr std::array hdblock_links = {"hd_dg_first", "hd_fh_first", "hd_ch_first",
                                             "hd_at_first", "hd_ev_first", "hd_md_comment"};
static_assert(hdblock_links.size() == HDBLOCK::HD_BLOCK_LINKS_NUM);

inline constexpr auto hdblock_fields = fieldList(
    field<&HDBLOCK::hd_start_time_ns>("hd_start_time_ns"),
    field<&HDBLOCK::hd_tz_offset_min>("hd_tz_offset_min"),
    field<&HDBLOCK::hd_dst_offset_min>("hd_dst_offset_min"),
    field<&HDBLOCK::hd_time_flags>("hd_time_flags"),
    field<&HDBLOCK::hd_time_class>("hd_time_class"),
    field<&HDBLOCK::hd_flags>("hd_flags"),
    reserved<&HDBLOCK::hd_reserved>("hd_reserved"),
    field<&HDBLOCK::hd_start_angle_rad>("hd_start_angle_rad"),
    field<&HDBLOCK::hd_start_distance_m>("hd_start_distance_m"));
static_assert(sizeWithLinks(hdblock_links.size(), hdblock_fields) == HDBLOCK::HDBLOCK_SIZE);

inline constexpr std::array fhblock_links = {"fh_fh_next", "fh_md_comment"};
static_assert(fhblock_links.size() == FHBLOCK::FH_BLOCK_LINKS_NUM);

inline constexpr auto fhblock_fields = fieldList(
    field<&FHBLOCK::fh_time_ns>("fh_time_ns"),
    field<&FHBLOCK::fh_tz_offset_min>("fh_tz_offset_min"),
    field<&FHBLOCK::fh_dst_offset_min>("fh_dst_offset_min"),
    field<&FHBLOCK::fh_time_flags>("fh_time_flags"),
    reserved<&FHBLOCK::fh_reserved>("fh_reserved"));
static_assert(sizeWithLinks(fhblock_links.size(), fhblock_fields) == FHBLOCK::FHBLOCK_SIZE);

inline constexpr std::array chblock_links = {"ch_ch_next", "ch_ch_first", "ch_tx_name",
                                             "ch_md_comment"};
static_assert(chblock_links.size() == CHBLOCK::ch_md_comment + 1);

inline constexpr auto chblock_fields = fieldList(
    countOf<UINT32, &CHBLOCK::channels>("ch_element_count"),
    field<&CHBLOCK::ch_type>("ch_type"),
    reserved<&CHBLOCK::ch_reserved>("ch_reserved"));
static_assert(sizeWithLinks(chblock_links.size(), chblock_fields) ==
              CHBLOCK::CHBLOCK_CONSTANT_SIZE);

inline constexpr std::array atblock_links = {"at_at_next", "at_tx_filename", "at_tx_mimetype",
                                             "at_md_comment"};
static_assert(atblock_links.size() == ATBLOCK::AT_BLOCK_LINKS_NUM);

inline constexpr auto atblock_fields = fieldList(
    field<&ATBLOCK::at_flags>("at_flags"),
    field<&ATBLOCK::at_creator_index>("at_creator_index"),
    reserved<&ATBLOCK::at_reserved>("at_reserved"),
    field<&ATBLOCK::at_md5_checksum>("at_md5_checksum"),
    field<&ATBLOCK::at_original_size>("at_original_size"),
    countOf<UINT64, &ATBLOCK::at_embedded_data>("at_embedded_size"));
static_assert(sizeWithLinks(atblock_links.size(), atblock_fields) ==
              ATBLOCK::ATBLOCK_CONSTANT_SIZE);

inline constexpr std::array evblock_links = {"ev_ev_next", "ev_ev_parent", "ev_ev_range",
                                             "ev_tx_name", "ev_md_comment"};
static_assert(evblock_links.size() == EVBLOCK::ev_md_comment + 1);

inline constexpr auto evblock_fields = fieldList(
    field<&EVBLOCK::ev_type>("ev_type"),
    field<&EVBLOCK::ev_sync_type>("ev_sync_type"),
    field<&EVBLOCK::ev_range_type>("ev_range_type"),
    field<&EVBLOCK::ev_cause>("ev_cause"),
    field<&EVBLOCK::ev_flags>("ev_flags"),
    reserved<&EVBLOCK::ev_reserved>("ev_reserved"),
    countOf<UINT32, &EVBLOCK::ev_scope>("ev_scope_count"),
    countOf<UINT16, &EVBLOCK::ev_at_reference>("ev_attachment_count"),
    field<&EVBLOCK::ev_creator_index>("ev_creator_index"),
    field<&EVBLOCK::ev_sync_base_value>("ev_sync_base_value"),
    field<&EVBLOCK::ev_sync_factor>("ev_sync_factor"));
static_assert(sizeWithLinks(evblock_links.size(), evblock_fields) ==
              EVBLOCK::EVBLOCK_CONSTANT_SIZE);

// clang-format on

}  // namespace mdf_v4_10::detail

#endif  // MDF_FILEBLOCKS_LAYOUTS_H_
