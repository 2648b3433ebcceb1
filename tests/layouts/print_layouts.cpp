// Prints docs/layouts.md: the bytes of each block, from the field lists that the library itself
// writes and reads by. Only what these do not know is stated here: units, and which links vary.

#include <iostream>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "layouts.h"
#include "reader/blocks/block_type.h"

using namespace mdf_reader;

namespace {

/// Units of numbers, and what else a field's values are.
const std::map<std::string_view, const char*> units = {
    {"hd_start_time_ns", "ns since 1970-01-01 UTC"},
    {"hd_tz_offset_min", "min"},
    {"hd_dst_offset_min", "min"},
    {"hd_time_flags", "bit 0: local time, bit 1: offsets valid"},
    {"hd_time_class", "`MDF_HD_TIME_QUALITY_t`"},
    {"hd_flags", "bit 0: angle valid, bit 1: distance valid"},
    {"hd_start_angle_rad", "rad"},
    {"hd_start_distance_m", "m"},
    {"fh_time_ns", "ns since 1970-01-01 UTC"},
    {"fh_tz_offset_min", "min"},
    {"fh_dst_offset_min", "min"},
    {"fh_time_flags", "bit 0: local time, bit 1: offsets valid"},
    {"ch_element_count", "elements"},
    {"ch_type", "`MDF_CH_TYPE_t`"},
    {"at_flags", "bits of `AT_FLAGS_t`"},
    {"at_creator_index", "file history block, from 0"},
    {"at_md5_checksum", "digest of the content"},
    {"at_original_size", "bytes before compression"},
    {"at_embedded_size", "bytes"},
    {"ev_type", "`MDF_EV_TYPE_t`"},
    {"ev_sync_type", "`MDF_EV_SYNCTYPE_t`"},
    {"ev_range_type", "`MDF_EV_RANGETYPE_t`"},
    {"ev_cause", "`MDF_EV_CAUSETYPE_t`"},
    {"ev_flags", "bits of `EV_FLAGS_t`"},
    {"ev_scope_count", "links"},
    {"ev_attachment_count", "links"},
    {"ev_creator_index", "file history block, from 0"},
    {"ev_sync_base_value", "times `ev_sync_factor`"},
    {"ev_sync_factor", "s, rad, m or records, by `ev_sync_type`"},
    {"dg_rec_id_size", "`MDF_DG_REC_ID_SIZE_t`"},
    {"cg_cycle_count", "records"},
    {"cg_flags", "bits of `CG_FLAGS_t`"},
    {"cg_path_separator", "`CG_PATHSEPARATOR_t`"},
    {"cg_data_bytes", "bytes of each record"},
    {"cg_inval_bytes", "bytes of each record"},
    {"si_type", "`MDF_SI_SOURCETYPE_t`"},
    {"si_bus_type", "`MDF_SI_BUSTYPE_t`"},
    {"si_flags", "bits of `SI_FLAGS_t`"},
    {"cn_type", "`MDF_CN_CHANNELTYPE_t`"},
    {"cn_sync_type", "`MDF_CN_SYNCTYPE_t`"},
    {"cn_data_type", "`MDF_CN_DATATYPES_t`"},
    {"cn_bit_offset", "bits in the first byte"},
    {"cn_byte_offset", "bytes in the record"},
    {"cn_bit_count", "bits"},
    {"cn_flags", "bits of `CN_FLAGS_t`"},
    {"cn_inval_bit_pos", "bits in the invalidation bytes"},
    {"cn_precision", "decimal places; 255: not set"},
    {"cn_attachment_count", "links"},
    {"cn_val_range_min", "raw value"},
    {"cn_val_range_max", "raw value"},
    {"cn_limit_min", "physical value"},
    {"cn_limit_max", "physical value"},
    {"cn_limit_ext_min", "physical value"},
    {"cn_limit_ext_max", "physical value"},
    {"cc_type", "`MDF_CC_TYPE_t`"},
    {"cc_precision", "decimal places; 255: not set"},
    {"cc_flags", "bits of `CC_FLAGS_t`"},
    {"cc_ref_count", "links"},
    {"cc_val_count", "values"},
    {"cc_phy_range_min", "physical value"},
    {"cc_phy_range_max", "physical value"},
    {"dl_flags", "bits of `DL_FLAGS_t`"},
    {"dl_count", "links"},
    {"dl_offset", "bytes; with `equal_length` one `dl_equal_length` instead"},
    {"dz_org_block_type", "type letters of the replaced block"},
    {"dz_zip_type", "`DZ_ZIPTYPE_t`"},
    {"dz_zip_parameter", "bytes of a row, when transposed"},
    {"dz_org_data_length", "bytes before compression"},
    {"dz_data_length", "bytes"},
    {"hl_flags", "bits of `HL_FLAGS_t`"},
    {"hl_zip_type", "`DZBLOCK::DZ_ZIPTYPE_t`"},
    {"sr_cycle_count", "records"},
    {"sr_interval", "s, rad, m or records, by `sr_sync_type`"},
    {"sr_sync_type", "`MDF_SR_SYNCTYPE_t`"},
    {"sr_flags", "bits of `SR_FLAGS_t`"},
};

/// The links that a block has besides those of the table.
const std::map<std::string_view, const char*> further_links = {
    {"CH", "`channels`: data group, channel group and channel of each element"},
    {"EV", "`ev_scope`, then `ev_at_reference`"},
    {"CN", "`cc_attachements`, then with `default_x_axis` a data group, channel group and channel"},
    {"CC", "`cc_refs`"},
    {"DL", "the blocks of `dl_data`"},
};

std::set<std::string_view> units_used;

std::string unitOf(std::string_view field) {
  const auto unit = units.find(field);
  if (unit == units.end()) {
    return "";
  }
  units_used.insert(field);
  return unit->second;
}

std::string kindOf(FieldKind kind, std::size_t width) {
  const std::string bits = std::to_string(8 * width);
  switch (kind) {
    case FieldKind::unsigned_number:
      return "UINT" + bits;
    case FieldKind::signed_number:
      return "INT" + bits;
    case FieldKind::real:
      return "REAL";
    case FieldKind::bytes:
      return "bytes";
    case FieldKind::reserved:
      break;
  }
  return "reserved";
}

void printRow(std::size_t offset, const std::string& width, const std::string& field,
              const std::string& type, const std::string& unit) {
  std::cout << "| " << offset << " | " << width << " | " << field << " | " << type << " | " << unit
            << " |\n";
}

std::string quoted(std::string_view name) { return '`' + std::string(name) + '`'; }

void printFields(const std::vector<FieldLayout>& fields, std::size_t start) {
  for (const FieldLayout& field : fields) {
    printRow(start + field.offset, std::to_string(field.width), quoted(field.name),
             kindOf(field.kind, field.width), unitOf(field.name));
  }
}

void printTableHead() {
  std::cout << "\n| Offset | Width | Field | Type | Unit or values |\n|---|---|---|---|---|\n";
}

std::string targetsOf(const LinkLayout& link) {
  std::string targets = "to ";
  for (const char letter : link.targets) {
    targets += letter == ' ' ? std::string(", ") : std::string(1, letter);
  }
  return targets;
}

void printBlock(std::string_view letters) {
  const BlockType& type = typeOf(letters);
  std::cout << "\n## " << letters << "BLOCK\n\n";
  std::cout << "The " << type.title << " block, `##" << letters << "`.\n";
  printTableHead();
  printRow(0, "4", "`mdfID`", "bytes", "`##" + std::string(letters) + '`');
  printRow(4, "4", "`reserved`", "reserved", "");
  printRow(8, "8", "`length`", "UINT64", "bytes");
  printRow(16, "8", "`link_count`", "UINT64", "links");
  std::size_t offset = 24;
  for (const LinkLayout& link : type.links) {
    printRow(offset, "8", quoted(link.role), "LINK", targetsOf(link));
    offset += 8;
  }
  const auto further = further_links.find(letters);
  if (further != further_links.end()) {
    printRow(offset, "8 each", "further links", "LINK", further->second);
  }
  printFields(type.fields, offset);
  if (!type.bytes.empty()) {
    printRow(offset + type.fieldsWidth(), "rest", quoted(type.bytes), "bytes", unitOf(type.bytes));
  }
  if (!type.numbers.empty()) {
    const MoreNumbers& numbers = type.numbers.front();
    printRow(offset + type.fieldsWidth(), "8 each", quoted(numbers.name), kindOf(numbers.kind, 8),
             unitOf(numbers.name));
  }
  if (further != further_links.end()) {
    std::cout << "\nOffsets after the further links are those of a block without any.\n";
  }
}

constexpr const char* introduction = R"(# Layouts

The bytes of each block as they stand in a file: offset from the block's first byte and width in
bytes, the field under its name in the library, and its unit or the enumeration in the block's class
that names its values. Numbers are little-endian. A link is the offset of a block in the file, and 0
where there is none; the letters tell what types of block it may lead to.

Padding, which the length does not count, brings the next block to a multiple of 8.

## IDBLOCK

The identification block, the first 64 bytes of the file.
)";

}  // namespace

int main() {
  std::cout << introduction;
  printTableHead();
  const auto& identification = mdf_v4_10::detail::idblock_fields.fields();
  printFields({identification.begin(), identification.end()}, 0);
  for (const char* letters : {"HD", "TX", "MD", "FH", "CH", "AT", "EV", "DG", "CG", "SI", "CN",
                              "CC", "DT", "RD", "SD", "DL", "DZ", "HL", "SR"}) {
    printBlock(letters);
  }
  for (const auto& unit : units) {
    if (units_used.count(unit.first) == 0) {
      std::cerr << "print_layouts: there is no field " << unit.first << '\n';
      return 1;
    }
  }
  return 0;
}
