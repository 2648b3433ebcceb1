#include "block_type.h"

#include <algorithm>
#include <array>
#include <string>

#include "identification.h"
#include "later_types.h"
#include "layouts.h"

namespace mdf_reader {

using namespace mdf_v4_10;

namespace {

/// The fields as the library's class states them.
template <class Fields>
std::vector<FieldLayout> fieldsOf(const Fields& list) {
  return {list.fields().begin(), list.fields().end()};
}

/// What a link may lead to.
struct Targets {
  constexpr Targets(std::string_view types, bool is_reference = false)
      : letters(types), refers(is_reference) {}
  constexpr Targets(const char* types) : Targets(std::string_view(types)) {}

  std::string_view letters;
  bool refers;
};
constexpr Targets refer(std::string_view letters) { return {letters, true}; }

/// The links as the library's class names them, each with what it may lead to.
template <std::size_t Count>
std::vector<LinkLayout> linksOf(const std::array<const char*, Count>& roles,
                                const std::array<Targets, Count>& targets) {
  std::vector<LinkLayout> links;
  for (std::size_t i = 0; i < Count; ++i) {
    links.push_back({roles[i], targets[i].letters, targets[i].refers});
  }
  return links;
}

FieldCondition ifSet(std::string_view field, std::uint64_t bits) { return {field, bits, bits}; }
FieldCondition unlessSet(std::string_view field, std::uint64_t bits) { return {field, bits, 0}; }
FieldCondition ifIs(std::string_view field, std::uint64_t value) {
  return {field, UINT64_MAX, value};
}
FieldCondition unlessIs(std::string_view field, std::uint64_t value) {
  return {field, UINT64_MAX, value, false};
}

MoreLinks more(std::string_view role, Targets targets, Amount amount) {
  return {{{role, targets.letters, targets.refers}}, std::move(amount)};
}

constexpr FieldKind number = FieldKind::unsigned_number;
constexpr Targets text = "TX";
constexpr Targets text_or_metadata = "TX MD";
constexpr std::string_view record_data = "DT DV DZ DL HL LD";
constexpr Amount::Kind one = Amount::one;
constexpr Amount::Kind counted = Amount::counted;
constexpr Amount::Kind all = Amount::all;

/// Its elements are groups and channels that have their place in lists.
BlockType hierarchyType() {
  return {"CH",
          "channel hierarchy",
          BlockFamily::file,
          Contents::description,
          linksOf(detail::chblock_links, {"CH", "CH", text, text_or_metadata}),
          fieldsOf(detail::chblock_fields),
          {{{{".dg", "DG", true}, {".cg", "CG", true}, {".cn", "CN", true}},
            {all, "ch_element_count"},
            "ch_element"}},
          {},
          {},
          LinkCount::by_elements};
}

/// Blocks that describe the file.
std::vector<BlockType> fileTypes() {
  constexpr BlockFamily family = BlockFamily::file;
  return {
      {"HD", "header", family, Contents::description,
       linksOf(detail::hdblock_links, {"DG", "FH", "CH", "AT", "EV", text_or_metadata}),
       fieldsOf(detail::hdblock_fields)},
      {"FH", "file history", family, Contents::description,
       linksOf(detail::fhblock_links, {"FH", text_or_metadata}), fieldsOf(detail::fhblock_fields)},
      {"TX", "text", BlockFamily::text, Contents::text, {}, {}, {}, "tx_data"},
      {"MD", "metadata", BlockFamily::text, Contents::text, {}, {}, {}, "md_data"},
      {"AT",
       "attachment",
       family,
       Contents::description,
       linksOf(detail::atblock_links, {"AT", text, text, text_or_metadata}),
       fieldsOf(detail::atblock_fields),
       {},
       "at_embedded_data"},
      // Parent and range are events of the list, scopes are channels.
      {"EV",
       "event",
       family,
       Contents::description,
       linksOf(detail::evblock_links, {"EV", refer("EV"), refer("EV"), text, text_or_metadata}),
       fieldsOf(detail::evblock_fields),
       {more("ev_scope", refer("CN CG"), {counted, "ev_scope_count"}),
        more("ev_at_reference", refer("AT"), {counted, "ev_attachment_count"})}},
  };
}

/// Blocks that describe groups of channels.
std::vector<BlockType> groupTypes() {
  return {
      {"DG", "data group", BlockFamily::group, Contents::description,
       linksOf(detail::dgblock_links, {"DG", "CG", record_data, text_or_metadata}),
       fieldsOf(detail::dgblock_fields)},
      {"CG",
       "channel group",
       BlockFamily::group,
       Contents::description,
       linksOf(detail::cgblock_links, {"CG", "CN", text, "SI", "SR", text_or_metadata}),
       fieldsOf(detail::cgblock_fields),
       {more("cg_cg_master", refer("CG"), {one, "", {ifSet("cg_flags", cg_remote_master)}})}},
      {"SI", "source", BlockFamily::group, Contents::description,
       linksOf(detail::siblock_links, {text, text, text_or_metadata}),
       fieldsOf(detail::siblock_fields)},
      {"SR", "sample reduction", BlockFamily::group, Contents::description,
       linksOf(detail::srblock_links, {"SR", "RD DZ DL HL RV RI LD"}),
       fieldsOf(detail::srblock_fields)},
  };
}

/// Blocks that describe channels.
std::vector<BlockType> channelTypes() {
  constexpr std::uint64_t has_default_x = CNBLOCK::default_x_axis;
  return {
      // Its data may be a channel group of the list.
      {"CN",
       "channel",
       BlockFamily::channel,
       Contents::description,
       linksOf(detail::cnblock_links,
               {"CN", "CN CA", text, "SI", "CC", refer("SD DZ DL HL CG AT CN"), text_or_metadata,
                text_or_metadata}),
       fieldsOf(detail::cnblock_fields),
       {more("cn_at_reference", refer("AT"), {counted, "cn_attachment_count"}),
        more("cn_default_x_dg", refer("DG"), {one, "", {ifSet("cn_flags", has_default_x)}}),
        more("cn_default_x_cg", refer("CG"), {one, "", {ifSet("cn_flags", has_default_x)}}),
        more("cn_default_x_cn", refer("CN"), {one, "", {ifSet("cn_flags", has_default_x)}})}},
      {"CC",
       "conversion",
       BlockFamily::conversion,
       Contents::description,
       linksOf(detail::ccblock_links, {text, text_or_metadata, text_or_metadata, "CC"}),
       fieldsOf(detail::ccblock_fields),
       {more("cc_ref", "TX MD CC", {all, "cc_ref_count"})},
       {},
       {{"cc_val", FieldKind::real, {all, "cc_val_count"}}}},
  };
}

/// Which links lead to data of the elements cannot be told without the array's sizes when
/// other links follow them, and the same holds for numbers after its sizes.
BlockType arrayType() {
  return {"CA",
          "channel array",
          BlockFamily::channel,
          Contents::description,
          {{"ca_composition", "CN CA"}},
          {{"ca_type", number, 0, 1},
           {"ca_storage", number, 1, 1},
           {"ca_ndim", number, 2, 2},
           {"ca_flags", number, 4, 4},
           {"ca_byte_offset_base", FieldKind::signed_number, 8, 4},
           {"ca_inval_bit_pos_base", number, 12, 4}},
          {more("ca_data", refer(record_data),
                {all,
                 "",
                 {ifIs("ca_storage", CABLOCK::in_data_groups),
                  unlessSet("ca_flags", CABLOCK::fixed_axis - 1)}})},
          {},
          {{"ca_dim_size", number, {counted, "ca_ndim"}},
           {"ca_axis_value",
            FieldKind::real,
            {all,
             "",
             {ifSet("ca_flags", CABLOCK::fixed_axis), ifIs("ca_storage", CABLOCK::in_records)}}},
           {"ca_cycle_count",
            number,
            {all,
             "",
             {unlessSet("ca_flags", CABLOCK::fixed_axis),
              unlessIs("ca_storage", CABLOCK::in_records)}}}}};
}

BlockType dataType(std::string_view letters, std::string_view title, std::string_view bytes,
                   Contents contents = Contents::data, unsigned open_flag = 0) {
  return {letters, title, BlockFamily::data, contents, {}, {}, {},
          bytes,   {},    LinkCount::right,  open_flag};
}

/// Lists of data: an offset for each block, or one number where all have the same length.
std::vector<BlockType> listTypes() {
  return {
      {"DL",
       "data list",
       BlockFamily::data,
       Contents::data_list,
       linksOf(detail::dlblock_links, {"DL"}),
       fieldsOf(detail::dlblock_fields),
       {more("dl_data", "DT SD RD DV RV DZ", {all})},
       {},
       {{"dl_offset", number, {all, "dl_count", {unlessSet("dl_flags", DLBLOCK::equal_length)}}},
        {"dl_equal_length",
         number,
         {one, "dl_count", {ifSet("dl_flags", DLBLOCK::equal_length)}}}}},
      {"LD",
       "list of values",
       BlockFamily::data,
       Contents::data_list,
       {{"ld_next", "LD"}},
       {{"ld_flags", number, 0, 4}, {"ld_count", number, 4, 4}},
       {more("ld_data", "DV DT RV RD SD DZ", {counted, "ld_count"}),
        more("ld_invalidation_data", "DI RI DZ",
             {counted, "ld_count", {ifSet("ld_flags", LDBLOCK::has_invalidation_data)}})},
       {},
       {{"ld_sample_offset",
         number,
         {all, "ld_count", {unlessSet("ld_flags", LDBLOCK::equal_sample_count)}}},
        {"ld_equal_sample_count",
         number,
         {one, "ld_count", {ifSet("ld_flags", LDBLOCK::equal_sample_count)}}}}},
  };
}

BlockType headerListType() {
  return {"HL",
          "header list",
          BlockFamily::data,
          Contents::list_of_lists,
          linksOf(detail::hlblock_links, {"DL LD"}),
          fieldsOf(detail::hlblock_fields),
          {},
          {},
          {},
          LinkCount::left_out};
}

/// Blocks with data; those of version 4.2 keep values apart from their invalidation bits.
std::vector<BlockType> dataTypes() {
  return {
      dataType("DT", "data", "dt_data", Contents::data, Identification::last_data_open),
      dataType("DV", "data values", "dv_data", Contents::data, Identification::last_data_open),
      dataType("DI", "invalidation data", "di_data"),
      dataType("RD", "reduction data", "rd_data", Contents::data,
               Identification::last_reduction_open),
      dataType("RV", "reduction values", "rv_data", Contents::data_apart),
      dataType("RI", "reduction invalidation data", "ri_data", Contents::data_apart),
      dataType("SD", "signal data", "sd_data"),
      {"DZ",
       "zipped data",
       BlockFamily::data,
       Contents::zipped_data,
       {},
       fieldsOf(detail::dzblock_fields),
       {},
       "dz_data"},
      {"GD", "", BlockFamily::data},  // of a later version, known by its letters alone
  };
}

/// All types. One is found by its letters in no time, since that is done for every block.
class Table {
 public:
  Table() {
    index_.fill(0);
    for (const auto& types :
         {fileTypes(), groupTypes(), channelTypes(), listTypes(), dataTypes()}) {
      types_.insert(types_.end(), types.begin(), types.end());
    }
    types_.push_back(hierarchyType());
    types_.push_back(arrayType());
    types_.push_back(headerListType());
    for (std::size_t i = 1; i < types_.size(); ++i) {
      complete(types_[i]);
      index_.at(slotOf(types_[i].letters)) = static_cast<unsigned char>(i);
    }
  }

  const BlockType& operator[](std::string_view letters) const {
    const std::size_t slot = slotOf(letters);
    return types_[slot < index_.size() ? index_[slot] : 0];
  }

 private:
  static constexpr std::size_t alphabet = 26;

  /// Nothing for what are not two capital letters.
  static std::size_t slotOf(std::string_view letters) {
    const auto place = [&](std::size_t at) {
      return static_cast<std::size_t>(static_cast<unsigned char>(letters[at])) - 'A';
    };
    return letters.size() == 2 && place(0) < alphabet && place(1) < alphabet
               ? alphabet * place(0) + place(1)
               : SIZE_MAX;
  }

  /// Links that no row tells of are taken for such as those before them.
  static void complete(BlockType& type) {
    constexpr std::string_view ending = "_next";
    const std::string_view first = type.links.empty() ? "" : type.links.front().role;
    type.has_next =
        first.size() > ending.size() && first.substr(first.size() - ending.size()) == ending;
    type.others_refer =
        type.more_links.empty() ? type.links.empty() : type.more_links.front().links.front().refers;
    type.may_refer =
        type.others_refer || std::any_of(type.links.begin(), type.links.end(),
                                         [](const LinkLayout& link) { return link.refers; });
  }

  std::vector<BlockType> types_ = {{"", ""}};  ///< the unknown type, and the others
  std::array<unsigned char, alphabet * alphabet> index_;
};

}  // namespace

const BlockType& typeOf(std::string_view letters) {
  static const Table types;
  return types[letters];
}

const std::vector<FieldLayout>& identificationFields() {
  static const std::vector<FieldLayout> fields = {
      {"id_file", FieldKind::bytes, 0, 8},  {"id_vers", FieldKind::bytes, 8, 8},
      {"id_prog", FieldKind::bytes, 16, 8}, {"id_default_byte_order", number, 24, 2},
      {"id_float_format", number, 26, 2},   {"id_ver", number, 28, 2},
      {"id_code_page", number, 30, 2},      {"id_reserved", FieldKind::reserved, 32, 28},
      {"id_unfin_flags", number, 60, 2},    {"id_custom_unfin_flags", number, 62, 2}};
  return fields;
}

bool isAmongTargets(std::string_view targets, std::string_view letters) {
  return targets.empty() || (letters.size() == 2 && letters.find(' ') == letters.npos &&
                             targets.find(letters) != std::string_view::npos);
}

}  // namespace mdf_reader
