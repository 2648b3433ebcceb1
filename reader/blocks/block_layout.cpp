#include "block_layout.h"

#include <algorithm>
#include <array>

#include "mdf_v4_10.h"

namespace mdf_reader {

using namespace mdf_v4_10;

namespace {

constexpr std::array<std::string_view, 12> reals = {
    "sr_interval",      "cc_phy_range_min",   "cc_phy_range_max", "cn_val_range_min",
    "cn_val_range_max", "cn_limit_min",       "cn_limit_max",     "cn_limit_ext_min",
    "cn_limit_ext_max", "hd_start_angle_rad", "ev_sync_factor",   "hd_start_distance_m"};
constexpr std::array<std::string_view, 3> characters = {"id_file", "id_vers", "id_prog"};
constexpr std::array<std::string_view, 6> signed_numbers = {
    "ev_sync_base_value", "hd_tz_offset_min",  "hd_dst_offset_min",
    "fh_tz_offset_min",   "fh_dst_offset_min", "ca_byte_offset_base"};

template <class Names>
bool isAmong(const Names& names, std::string_view name) {
  return std::find(names.begin(), names.end(), name) != names.end();
}

FieldKind kindOf(std::string_view name, std::size_t width) {
  if (name.find("_reserved") != std::string_view::npos) {
    return FieldKind::reserved;
  }
  if (isAmong(reals, name)) {
    return FieldKind::real;
  }
  if (isAmong(signed_numbers, name)) {
    return FieldKind::signed_number;
  }
  const bool is_number = width <= sizeof(UINT64) && !isAmong(characters, name);
  return is_number ? FieldKind::unsigned_number : FieldKind::bytes;
}

/// The fields as the library's class states them.
template <class Fields>
std::vector<FieldLayout> fieldsOf(const Fields& fields) {
  std::vector<FieldLayout> layouts;
  fields.forEach([&](std::string_view name, std::size_t offset, std::size_t width) {
    layouts.push_back({name, kindOf(name, width), offset, width});
  });
  return layouts;
}

/// The fields of a channel array, which the library has no class for.
std::vector<FieldLayout> arrayFields() {
  std::vector<FieldLayout> layouts;
  std::size_t offset = 0;
  const auto add = [&](std::string_view name, std::size_t width) {
    layouts.push_back({name, kindOf(name, width), offset, width});
    offset += width;
  };
  add("ca_type", 1);
  add("ca_storage", 1);
  add("ca_ndim", 2);
  add("ca_flags", 4);
  add("ca_byte_offset_base", 4);
  add("ca_inval_bit_pos_base", 4);
  return layouts;
}

constexpr std::string_view text = "TX";
constexpr std::string_view text_or_metadata = "TX MD";
constexpr std::string_view record_data = "DT DV DZ DL HL LD";

/// Blocks that describe the file.
std::vector<BlockLayout> fileLayouts() {
  return {
      {"HD",
       "header",
       {{"hd_dg_first", "DG"},
        {"hd_fh_first", "FH"},
        {"hd_ch_first", "CH"},
        {"hd_at_first", "AT"},
        {"hd_ev_first", "EV"},
        {"hd_md_comment", text_or_metadata}},
       fieldsOf(hdblock_fields),
       {}},
      {"FH",
       "file history",
       {{"fh_fh_next", "FH"}, {"fh_md_comment", text_or_metadata}},
       fieldsOf(fhblock_fields),
       {}},
      {"TX", "text", {}, {}, {"tx_data"}},
      {"MD", "metadata", {}, {}, {"md_data"}},
      {"CH",
       "channel hierarchy",
       {{"ch_ch_next", "CH"},
        {"ch_ch_first", "CH"},
        {"ch_tx_name", text},
        {"ch_md_comment", text_or_metadata}},
       fieldsOf(chblock_fields),
       {}},
      {"AT",
       "attachment",
       {{"at_at_next", "AT"},
        {"at_tx_filename", text},
        {"at_tx_mimetype", text},
        {"at_md_comment", text_or_metadata}},
       fieldsOf(atblock_fields),
       {"at_embedded_data"}},
      {"EV",
       "event",
       {{"ev_ev_next", "EV"},
        {"ev_ev_parent", "EV"},
        {"ev_ev_range", "EV"},
        {"ev_tx_name", text},
        {"ev_md_comment", text_or_metadata}},
       fieldsOf(evblock_fields),
       {}},
  };
}

/// Blocks that describe channels and their groups.
std::vector<BlockLayout> channelLayouts() {
  return {
      {"DG",
       "data group",
       {{"dg_dg_next", "DG"},
        {"dg_cg_first", "CG"},
        {"dg_data", record_data},
        {"dg_md_comment", text_or_metadata}},
       fieldsOf(dgblock_fields),
       {}},
      {"CG",
       "channel group",
       {{"cg_cg_next", "CG"},
        {"cg_cn_first", "CN"},
        {"cg_tx_acq_name", text},
        {"cg_si_acq_source", "SI"},
        {"cg_sr_first", "SR"},
        {"cg_md_comment", text_or_metadata}},
       fieldsOf(cgblock_fields),
       {}},
      {"SI",
       "source",
       {{"si_tx_name", text}, {"si_tx_path", text}, {"si_md_comment", text_or_metadata}},
       fieldsOf(siblock_fields),
       {}},
      {"CN",
       "channel",
       {{"cn_cn_next", "CN"},
        {"cn_composition", "CN CA"},
        {"cn_tx_name", text},
        {"cn_si_source", "SI"},
        {"cn_cc_conversion", "CC"},
        {"cn_data", "SD DZ DL HL CG AT CN"},
        {"cn_md_unit", text_or_metadata},
        {"cn_md_comment", text_or_metadata}},
       fieldsOf(cnblock_fields),
       {}},
      {"CC",
       "conversion",
       {{"cc_tx_name", text},
        {"cc_md_unit", text_or_metadata},
        {"cc_md_comment", text_or_metadata},
        {"cc_cc_inverse", "CC"}},
       fieldsOf(ccblock_fields),
       {"cc_val", FieldKind::real, sizeof(REAL)}},
      {"CA",
       "channel array",
       {{"ca_composition", "CN CA"}},
       arrayFields(),
       {"ca_dim_size", FieldKind::unsigned_number, sizeof(UINT64)}},
  };
}

/// Blocks with data, and lists of them.
std::vector<BlockLayout> dataLayouts() {
  return {
      {"DT", "data", {}, {}, {"dt_data"}},
      {"RD", "reduction data", {}, {}, {"rd_data"}},
      {"SD", "signal data", {}, {}, {"sd_data"}},
      {"DL",
       "data list",
       {{"dl_dl_next", "DL"}},
       fieldsOf(dlblock_fields),
       {"dl_offset", FieldKind::unsigned_number, sizeof(UINT64)}},
      {"DZ", "zipped data", {}, fieldsOf(dzblock_fields), {"dz_data"}},
      {"HL", "header list", {{"hl_dl_first", "DL LD"}}, fieldsOf(hlblock_fields), {}},
      {"SR",
       "sample reduction",
       {{"sr_sr_next", "SR"}, {"sr_data", "RD DZ DL HL RV RI LD"}},
       fieldsOf(srblock_fields),
       {}},
  };
}

/// Blocks of version 4.2, which keep values apart from their invalidation bits.
std::vector<BlockLayout> separateDataLayouts() {
  return {
      {"DV", "data values", {}, {}, {"dv_data"}},
      {"DI", "invalidation data", {}, {}, {"di_data"}},
      {"RV", "reduction values", {}, {}, {"rv_data"}},
      {"RI", "reduction invalidation data", {}, {}, {"ri_data"}},
      {"LD",
       "list of values",
       {{"ld_next", "LD"}},
       {{"ld_flags", FieldKind::unsigned_number, 0, 4},
        {"ld_count", FieldKind::unsigned_number, 4, 4}},
       {"ld_sample_offset", FieldKind::unsigned_number, sizeof(UINT64)}},
  };
}

std::vector<BlockLayout> allLayouts() {
  std::vector<BlockLayout> layouts = fileLayouts();
  for (const auto& more : {channelLayouts(), dataLayouts(), separateDataLayouts()}) {
    layouts.insert(layouts.end(), more.begin(), more.end());
  }
  return layouts;
}

}  // namespace

std::size_t BlockLayout::fieldsWidth() const {
  return fields.empty() ? 0 : fields.back().offset + fields.back().width;
}

const BlockLayout* findLayout(std::string_view letters) {
  static const std::vector<BlockLayout> layouts = allLayouts();
  const auto layout = std::find_if(layouts.begin(), layouts.end(), [&](const BlockLayout& each) {
    return each.letters == letters;
  });
  return layout == layouts.end() ? nullptr : &*layout;
}

const std::vector<FieldLayout>& identificationFields() {
  static const std::vector<FieldLayout> fields = fieldsOf(idblock_fields);
  return fields;
}

bool mayLeadTo(const LinkLayout& link, std::string_view letters) {
  return isAmongTargets(link.targets, letters);
}

bool isAmongTargets(std::string_view targets, std::string_view letters) {
  return targets.empty() || (letters.size() == 2 && letters.find(' ') == letters.npos &&
                             targets.find(letters) != std::string_view::npos);
}

}  // namespace mdf_reader
