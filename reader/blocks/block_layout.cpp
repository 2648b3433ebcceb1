#include "block_layout.h"

#include <algorithm>
#include <array>

#include "layouts.h"

namespace mdf_reader {

using namespace mdf_v4_10;

namespace {

/// The fields as the library's class states them.
template <class Fields>
std::vector<FieldLayout> fieldsOf(const Fields& list) {
  return {list.fields().begin(), list.fields().end()};
}

/// The links as the library's class names them, each with what it may lead to.
template <std::size_t Count>
std::vector<LinkLayout> linksOf(const std::array<const char*, Count>& roles,
                                const std::array<std::string_view, Count>& targets) {
  std::vector<LinkLayout> links;
  for (std::size_t i = 0; i < Count; ++i) {
    links.push_back({roles[i], targets[i]});
  }
  return links;
}

/// The fields of a channel array, which the library has no class for.
std::vector<FieldLayout> arrayFields() {
  constexpr FieldKind unsigned_number = FieldKind::unsigned_number;
  return {{"ca_type", unsigned_number, 0, 1},
          {"ca_storage", unsigned_number, 1, 1},
          {"ca_ndim", unsigned_number, 2, 2},
          {"ca_flags", unsigned_number, 4, 4},
          {"ca_byte_offset_base", FieldKind::signed_number, 8, 4},
          {"ca_inval_bit_pos_base", unsigned_number, 12, 4}};
}

constexpr std::string_view text = "TX";
constexpr std::string_view text_or_metadata = "TX MD";
constexpr std::string_view record_data = "DT DV DZ DL HL LD";

/// Blocks that describe the file.
std::vector<BlockLayout> fileLayouts() {
  return {
      {"HD",
       "header",
       linksOf(detail::hdblock_links, {"DG", "FH", "CH", "AT", "EV", text_or_metadata}),
       fieldsOf(detail::hdblock_fields),
       {}},
      {"FH",
       "file history",
       linksOf(detail::fhblock_links, {"FH", text_or_metadata}),
       fieldsOf(detail::fhblock_fields),
       {}},
      {"TX", "text", {}, {}, {"tx_data"}},
      {"MD", "metadata", {}, {}, {"md_data"}},
      {"CH",
       "channel hierarchy",
       linksOf(detail::chblock_links, {"CH", "CH", text, text_or_metadata}),
       fieldsOf(detail::chblock_fields),
       {}},
      {"AT",
       "attachment",
       linksOf(detail::atblock_links, {"AT", text, text, text_or_metadata}),
       fieldsOf(detail::atblock_fields),
       {"at_embedded_data"}},
      {"EV",
       "event",
       linksOf(detail::evblock_links, {"EV", "EV", "EV", text, text_or_metadata}),
       fieldsOf(detail::evblock_fields),
       {}},
  };
}

/// Blocks that describe channels and their groups.
std::vector<BlockLayout> channelLayouts() {
  return {
      {"DG",
       "data group",
       linksOf(detail::dgblock_links, {"DG", "CG", record_data, text_or_metadata}),
       fieldsOf(detail::dgblock_fields),
       {}},
      {"CG",
       "channel group",
       linksOf(detail::cgblock_links, {"CG", "CN", text, "SI", "SR", text_or_metadata}),
       fieldsOf(detail::cgblock_fields),
       {}},
      {"SI",
       "source",
       linksOf(detail::siblock_links, {text, text, text_or_metadata}),
       fieldsOf(detail::siblock_fields),
       {}},
      {"CN",
       "channel",
       linksOf(detail::cnblock_links, {"CN", "CN CA", text, "SI", "CC", "SD DZ DL HL CG AT CN",
                                       text_or_metadata, text_or_metadata}),
       fieldsOf(detail::cnblock_fields),
       {}},
      {"CC",
       "conversion",
       linksOf(detail::ccblock_links, {text, text_or_metadata, text_or_metadata, "CC"}),
       fieldsOf(detail::ccblock_fields),
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
       linksOf(detail::dlblock_links, {"DL"}),
       fieldsOf(detail::dlblock_fields),
       {"dl_offset", FieldKind::unsigned_number, sizeof(UINT64)}},
      {"DZ", "zipped data", {}, fieldsOf(detail::dzblock_fields), {"dz_data"}},
      {"HL",
       "header list",
       linksOf(detail::hlblock_links, {"DL LD"}),
       fieldsOf(detail::hlblock_fields),
       {}},
      {"SR",
       "sample reduction",
       linksOf(detail::srblock_links, {"SR", "RD DZ DL HL RV RI LD"}),
       fieldsOf(detail::srblock_fields),
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
  constexpr FieldKind number = FieldKind::unsigned_number;
  static const std::vector<FieldLayout> fields = {
      {"id_file", FieldKind::bytes, 0, 8},  {"id_vers", FieldKind::bytes, 8, 8},
      {"id_prog", FieldKind::bytes, 16, 8}, {"id_default_byte_order", number, 24, 2},
      {"id_float_format", number, 26, 2},   {"id_ver", number, 28, 2},
      {"id_code_page", number, 30, 2},      {"id_reserved", FieldKind::reserved, 32, 28},
      {"id_unfin_flags", number, 60, 2},    {"id_custom_unfin_flags", number, 62, 2}};
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
