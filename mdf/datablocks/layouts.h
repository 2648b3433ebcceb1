#ifndef MDF_DATABLOCKS_LAYOUTS_H_
#define MDF_DATABLOCKS_LAYOUTS_H_

#include <array>

#include "../framework/field_list.h"
#include "dlblock.h"
#include "dzblock.h"
#include "hlblock.h"
#include "srblock.h"

/// What the blocks that organise recorded data look like in the file: the names of the links
/// that each one has, and the fields of its data section.
namespace mdf_v4_10::detail {

// clang-format off

inline constexpr std::array dlblock_links = {"dl_dl_next"};
static_assert(dlblock_links.size() == DLBLOCK::dl_dl_next + 1);

inline constexpr auto dlblock_fields = fieldList(
    field<&DLBLOCK::dl_flags>("dl_flags"),
    reserved<&DLBLOCK::dl_reserved>("dl_reserved"),
    countOf<UINT32, &DLBLOCK::dl_data>("dl_count"));
static_assert(sizeWithLinks(dlblock_links.size(), dlblock_fields) ==
              DLBLOCK::DLBLOCK_CONSTANT_SIZE);

/// What follows the other fields, in place of the offsets, with the `equal_length` flag.
inline constexpr auto dlblock_equal_length_fields = fieldList(
    field<&DLBLOCK::dl_equal_length>("dl_equal_length"));

inline constexpr auto dzblock_fields = fieldList(
    field<&DZBLOCK::dz_org_block_type>("dz_org_block_type"),
    field<&DZBLOCK::dz_zip_type>("dz_zip_type"),
    reserved<&DZBLOCK::dz_reserved>("dz_reserved"),
    field<&DZBLOCK::dz_zip_parameter>("dz_zip_parameter"),
    field<&DZBLOCK::dz_org_data_length>("dz_org_data_length"),
    countOf<UINT64, &DZBLOCK::dz_data>("dz_data_length"));
static_assert(sizeWithLinks(0, dzblock_fields) == DZBLOCK::DZBLOCK_CONSTANT_SIZE);

inline constexpr std::array hlblock_links = {"hl_dl_first"};
static_assert(hlblock_links.size() == HLBLOCK::HL_BLOCK_LINKS_NUM);

inline constexpr auto hlblock_fields = fieldList(
    field<&HLBLOCK::hl_flags>("hl_flags"),
    field<&HLBLOCK::hl_zip_type>("hl_zip_type"),
    reserved<&HLBLOCK::hl_reserved>("hl_reserved"));
static_assert(sizeWithLinks(hlblock_links.size(), hlblock_fields) == HLBLOCK::HLBLOCK_SIZE);

inline constexpr std::array srblock_links = {"sr_sr_next", "sr_data"};
static_assert(srblock_links.size() == SRBLOCK::SR_BLOCK_LINKS_NUM);

inline constexpr auto srblock_fields = fieldList(
    field<&SRBLOCK::sr_cycle_count>("sr_cycle_count"),
    field<&SRBLOCK::sr_interval>("sr_interval"),
    field<&SRBLOCK::sr_sync_type>("sr_sync_type"),
    field<&SRBLOCK::sr_flags>("sr_flags"),
    reserved<&SRBLOCK::sr_reserved>("sr_reserved"));
static_assert(sizeWithLinks(srblock_links.size(), srblock_fields) == SRBLOCK::SRBLOCK_SIZE);

// clang-format on

}  // namespace mdf_v4_10::detail

#endif  // MDF_DATABLOCKS_LAYOUTS_H_
