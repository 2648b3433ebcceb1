#include "reader/blocks/block_type.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

using mdf_reader::Amount;
using mdf_reader::BlockType;
using mdf_reader::FieldCondition;
using mdf_reader::FieldKind;
using mdf_reader::FieldLayout;
using mdf_reader::identificationFields;
using mdf_reader::isAmongTargets;
using mdf_reader::typeOf;

namespace {

std::string shown(FieldKind kind) {
  switch (kind) {
    case FieldKind::unsigned_number:
      return "unsigned";
    case FieldKind::signed_number:
      return "signed";
    case FieldKind::real:
      return "real";
    case FieldKind::bytes:
      return "bytes";
    case FieldKind::reserved:
      break;
  }
  return "reserved";
}

std::string shown(const std::vector<FieldLayout>& fields) {
  std::string text;
  for (const FieldLayout& field : fields) {
    text += std::to_string(field.offset) + ' ' + std::string(field.name) + ' ' + shown(field.kind) +
            ' ' + std::to_string(field.width) + '\n';
  }
  return text;
}

std::string shown(const Amount& amount) {
  std::string text = amount.kind == Amount::one ? "one" : "";
  text += amount.kind == Amount::all ? "all" : "";
  text += (text.empty() || amount.field.empty() ? "" : " ") + std::string(amount.field);
  for (const FieldCondition& each : amount.when) {
    text += " if " + std::string(each.field) + " & " + std::to_string(each.mask) +
            (each.is_equal ? " == " : " != ") + std::to_string(each.value);
  }
  return text;
}

/// A type as lines: links with their targets, "*" for those that refer; fields; what follows.
std::string shownLayout(const std::string& letters) {
  const BlockType& type = typeOf(letters);
  if (!type.isKnown()) {
    return "none";
  }
  std::string text = std::string(type.title) + '\n';
  const auto link = [&](const mdf_reader::LinkLayout& each) {
    text += std::string(each.role) + (each.refers ? " *" : " ") + "-> " +
            std::string(each.targets) + '\n';
  };
  std::for_each(type.links.begin(), type.links.end(), link);
  for (const auto& more : type.more_links) {
    text += std::string(more.element) + "[" + shown(more.elements) + "]\n";
    std::for_each(more.links.begin(), more.links.end(), link);
  }
  text += shown(type.fields);
  text += type.bytes.empty() ? "" : "bytes " + std::string(type.bytes) + '\n';
  for (const auto& numbers : type.numbers) {
    text += std::string(numbers.name) + ' ' + shown(numbers.kind) + " [" + shown(numbers.amount) +
            "]\n";
  }
  return text;
}

TEST(BlockType, Identification) {
  EXPECT_EQ(shown(identificationFields()),
            "0 id_file bytes 8\n"
            "8 id_vers bytes 8\n"
            "16 id_prog bytes 8\n"
            "24 id_default_byte_order unsigned 2\n"
            "26 id_float_format unsigned 2\n"
            "28 id_ver unsigned 2\n"
            "30 id_code_page unsigned 2\n"
            "32 id_reserved reserved 28\n"
            "60 id_unfin_flags unsigned 2\n"
            "62 id_custom_unfin_flags unsigned 2\n");
}

TEST(BlockType, Header) {
  EXPECT_EQ(shownLayout("HD"),
            "header\n"
            "hd_dg_first -> DG\n"
            "hd_fh_first -> FH\n"
            "hd_ch_first -> CH\n"
            "hd_at_first -> AT\n"
            "hd_ev_first -> EV\n"
            "hd_md_comment -> TX MD\n"
            "0 hd_start_time_ns unsigned 8\n"
            "8 hd_tz_offset_min signed 2\n"
            "10 hd_dst_offset_min signed 2\n"
            "12 hd_time_flags unsigned 1\n"
            "13 hd_time_class unsigned 1\n"
            "14 hd_flags unsigned 1\n"
            "15 hd_reserved reserved 1\n"
            "16 hd_start_angle_rad real 8\n"
            "24 hd_start_distance_m real 8\n");
}

TEST(BlockType, FileHistory) {
  EXPECT_EQ(shownLayout("FH"),
            "file history\n"
            "fh_fh_next -> FH\n"
            "fh_md_comment -> TX MD\n"
            "0 fh_time_ns unsigned 8\n"
            "8 fh_tz_offset_min signed 2\n"
            "10 fh_dst_offset_min signed 2\n"
            "12 fh_time_flags unsigned 1\n"
            "13 fh_reserved reserved 3\n");
}

TEST(BlockType, Texts) {
  EXPECT_EQ(shownLayout("TX"), "text\nbytes tx_data\n");
  EXPECT_EQ(shownLayout("MD"), "metadata\nbytes md_data\n");
}

TEST(BlockType, ChannelHierarchy) {
  EXPECT_EQ(shownLayout("CH"),
            "channel hierarchy\n"
            "ch_ch_next -> CH\n"
            "ch_ch_first -> CH\n"
            "ch_tx_name -> TX\n"
            "ch_md_comment -> TX MD\n"
            "ch_element[all ch_element_count]\n"
            ".dg *-> DG\n"
            ".cg *-> CG\n"
            ".cn *-> CN\n"
            "0 ch_element_count unsigned 4\n"
            "4 ch_type unsigned 1\n"
            "5 ch_reserved reserved 3\n");
}

TEST(BlockType, Attachment) {
  EXPECT_EQ(shownLayout("AT"),
            "attachment\n"
            "at_at_next -> AT\n"
            "at_tx_filename -> TX\n"
            "at_tx_mimetype -> TX\n"
            "at_md_comment -> TX MD\n"
            "0 at_flags unsigned 2\n"
            "2 at_creator_index unsigned 2\n"
            "4 at_reserved reserved 4\n"
            "8 at_md5_checksum bytes 16\n"
            "24 at_original_size unsigned 8\n"
            "32 at_embedded_size unsigned 8\n"
            "bytes at_embedded_data\n");
}

TEST(BlockType, Event) {
  EXPECT_EQ(shownLayout("EV"),
            "event\n"
            "ev_ev_next -> EV\n"
            "ev_ev_parent *-> EV\n"
            "ev_ev_range *-> EV\n"
            "ev_tx_name -> TX\n"
            "ev_md_comment -> TX MD\n"
            "[ev_scope_count]\n"
            "ev_scope *-> CN CG\n"
            "[ev_attachment_count]\n"
            "ev_at_reference *-> AT\n"
            "0 ev_type unsigned 1\n"
            "1 ev_sync_type unsigned 1\n"
            "2 ev_range_type unsigned 1\n"
            "3 ev_cause unsigned 1\n"
            "4 ev_flags unsigned 1\n"
            "5 ev_reserved reserved 3\n"
            "8 ev_scope_count unsigned 4\n"
            "12 ev_attachment_count unsigned 2\n"
            "14 ev_creator_index unsigned 2\n"
            "16 ev_sync_base_value signed 8\n"
            "24 ev_sync_factor real 8\n");
}

TEST(BlockType, DataGroup) {
  EXPECT_EQ(shownLayout("DG"),
            "data group\n"
            "dg_dg_next -> DG\n"
            "dg_cg_first -> CG\n"
            "dg_data -> DT DV DZ DL HL LD\n"
            "dg_md_comment -> TX MD\n"
            "0 dg_rec_id_size unsigned 1\n"
            "1 dg_reserved reserved 7\n");
}

TEST(BlockType, ChannelGroup) {
  EXPECT_EQ(shownLayout("CG"),
            "channel group\n"
            "cg_cg_next -> CG\n"
            "cg_cn_first -> CN\n"
            "cg_tx_acq_name -> TX\n"
            "cg_si_acq_source -> SI\n"
            "cg_sr_first -> SR\n"
            "cg_md_comment -> TX MD\n"
            "[one if cg_flags & 8 == 8]\n"
            "cg_cg_master *-> CG\n"
            "0 cg_record_id unsigned 8\n"
            "8 cg_cycle_count unsigned 8\n"
            "16 cg_flags unsigned 2\n"
            "18 cg_path_separator unsigned 2\n"
            "20 cg_reserved reserved 4\n"
            "24 cg_data_bytes unsigned 4\n"
            "28 cg_inval_bytes unsigned 4\n");
}

TEST(BlockType, Source) {
  EXPECT_EQ(shownLayout("SI"),
            "source\n"
            "si_tx_name -> TX\n"
            "si_tx_path -> TX\n"
            "si_md_comment -> TX MD\n"
            "0 si_type unsigned 1\n"
            "1 si_bus_type unsigned 1\n"
            "2 si_flags unsigned 1\n"
            "3 si_reserved reserved 5\n");
}

TEST(BlockType, Channel) {
  EXPECT_EQ(shownLayout("CN"),
            "channel\n"
            "cn_cn_next -> CN\n"
            "cn_composition -> CN CA\n"
            "cn_tx_name -> TX\n"
            "cn_si_source -> SI\n"
            "cn_cc_conversion -> CC\n"
            "cn_data *-> SD DZ DL HL CG AT CN\n"
            "cn_md_unit -> TX MD\n"
            "cn_md_comment -> TX MD\n"
            "[cn_attachment_count]\n"
            "cn_at_reference *-> AT\n"
            "[one if cn_flags & 4096 == 4096]\n"
            "cn_default_x_dg *-> DG\n"
            "[one if cn_flags & 4096 == 4096]\n"
            "cn_default_x_cg *-> CG\n"
            "[one if cn_flags & 4096 == 4096]\n"
            "cn_default_x_cn *-> CN\n"
            "0 cn_type unsigned 1\n"
            "1 cn_sync_type unsigned 1\n"
            "2 cn_data_type unsigned 1\n"
            "3 cn_bit_offset unsigned 1\n"
            "4 cn_byte_offset unsigned 4\n"
            "8 cn_bit_count unsigned 4\n"
            "12 cn_flags unsigned 4\n"
            "16 cn_inval_bit_pos unsigned 4\n"
            "20 cn_precision unsigned 1\n"
            "21 cn_reserved reserved 1\n"
            "22 cn_attachment_count unsigned 2\n"
            "24 cn_val_range_min real 8\n"
            "32 cn_val_range_max real 8\n"
            "40 cn_limit_min real 8\n"
            "48 cn_limit_max real 8\n"
            "56 cn_limit_ext_min real 8\n"
            "64 cn_limit_ext_max real 8\n");
}

TEST(BlockType, Conversion) {
  EXPECT_EQ(shownLayout("CC"),
            "conversion\n"
            "cc_tx_name -> TX\n"
            "cc_md_unit -> TX MD\n"
            "cc_md_comment -> TX MD\n"
            "cc_cc_inverse -> CC\n"
            "[all cc_ref_count]\n"
            "cc_ref -> TX MD CC\n"
            "0 cc_type unsigned 1\n"
            "1 cc_precision unsigned 1\n"
            "2 cc_flags unsigned 2\n"
            "4 cc_ref_count unsigned 2\n"
            "6 cc_val_count unsigned 2\n"
            "8 cc_phy_range_min real 8\n"
            "16 cc_phy_range_max real 8\n"
            "cc_val real [all cc_val_count]\n");
}

TEST(BlockType, ChannelArray) {
  EXPECT_EQ(shownLayout("CA"),
            "channel array\n"
            "ca_composition -> CN CA\n"
            "[all if ca_storage & 18446744073709551615 == 2 if ca_flags & 31 == 0]\n"
            "ca_data *-> DT DV DZ DL HL LD\n"
            "0 ca_type unsigned 1\n"
            "1 ca_storage unsigned 1\n"
            "2 ca_ndim unsigned 2\n"
            "4 ca_flags unsigned 4\n"
            "8 ca_byte_offset_base signed 4\n"
            "12 ca_inval_bit_pos_base unsigned 4\n"
            "ca_dim_size unsigned [ca_ndim]\n"
            "ca_axis_value real [all if ca_flags & 32 == 32 if ca_storage & 18446744073709551615 "
            "== 0]\n"
            "ca_cycle_count unsigned [all if ca_flags & 32 == 0 if ca_storage & "
            "18446744073709551615 != 0]\n");
}

TEST(BlockType, DataBlocks) {
  EXPECT_EQ(shownLayout("DT"), "data\nbytes dt_data\n");
  EXPECT_EQ(shownLayout("RD"), "reduction data\nbytes rd_data\n");
  EXPECT_EQ(shownLayout("SD"), "signal data\nbytes sd_data\n");
  EXPECT_EQ(shownLayout("DL"),
            "data list\n"
            "dl_dl_next -> DL\n"
            "[all]\n"
            "dl_data -> DT SD RD DV RV DZ\n"
            "0 dl_flags unsigned 1\n"
            "1 dl_reserved reserved 3\n"
            "4 dl_count unsigned 4\n"
            "dl_offset unsigned [all dl_count if dl_flags & 1 == 0]\n"
            "dl_equal_length unsigned [one dl_count if dl_flags & 1 == 1]\n");
  EXPECT_EQ(shownLayout("DZ"),
            "zipped data\n"
            "0 dz_org_block_type unsigned 2\n"
            "2 dz_zip_type unsigned 1\n"
            "3 dz_reserved reserved 1\n"
            "4 dz_zip_parameter unsigned 4\n"
            "8 dz_org_data_length unsigned 8\n"
            "16 dz_data_length unsigned 8\n"
            "bytes dz_data\n");
  EXPECT_EQ(shownLayout("HL"),
            "header list\n"
            "hl_dl_first -> DL LD\n"
            "0 hl_flags unsigned 2\n"
            "2 hl_zip_type unsigned 1\n"
            "3 hl_reserved reserved 5\n");
  EXPECT_EQ(shownLayout("SR"),
            "sample reduction\n"
            "sr_sr_next -> SR\n"
            "sr_data -> RD DZ DL HL RV RI LD\n"
            "0 sr_cycle_count unsigned 8\n"
            "8 sr_interval real 8\n"
            "16 sr_sync_type unsigned 1\n"
            "17 sr_flags unsigned 1\n"
            "18 sr_reserved reserved 6\n");
}

TEST(BlockType, ValuesApartFromTheirInvalidation) {
  EXPECT_EQ(shownLayout("DV"), "data values\nbytes dv_data\n");
  EXPECT_EQ(shownLayout("DI"), "invalidation data\nbytes di_data\n");
  EXPECT_EQ(shownLayout("RV"), "reduction values\nbytes rv_data\n");
  EXPECT_EQ(shownLayout("RI"), "reduction invalidation data\nbytes ri_data\n");
  EXPECT_EQ(shownLayout("LD"),
            "list of values\n"
            "ld_next -> LD\n"
            "[ld_count]\n"
            "ld_data -> DV DT RV RD SD DZ\n"
            "[ld_count if ld_flags & 2147483648 == 2147483648]\n"
            "ld_invalidation_data -> DI RI DZ\n"
            "0 ld_flags unsigned 4\n"
            "4 ld_count unsigned 4\n"
            "ld_sample_offset unsigned [all ld_count if ld_flags & 1 == 0]\n"
            "ld_equal_sample_count unsigned [one ld_count if ld_flags & 1 == 1]\n");
}

/// Types by what they are made for, whether they are chained, and how their links are counted.
TEST(BlockType, KnowsWhatBlocksAreFor) {
  std::string text;
  for (const char* letters :
       {"HD", "FH", "TX", "MD", "CH", "AT", "EV", "DG", "CG", "SI", "CN", "CC", "CA", "SR",
        "DT", "DV", "DI", "RD", "RV", "RI", "SD", "DZ", "DL", "LD", "HL", "GD", "XX"}) {
    const BlockType& type = typeOf(letters);
    text += std::string(letters) + ' ' + std::to_string(static_cast<int>(type.contents)) +
            (type.has_next ? " next" : "") + (type.others_refer ? " refer" : "") +
            (type.isData() ? " data" : "") +
            (type.link_count == mdf_reader::LinkCount::right ? "" : " more links") +
            (type.open_flag == 0 ? "" : " open " + std::to_string(type.open_flag)) + '\n';
  }
  EXPECT_EQ(text,
            "HD 0\n"
            "FH 0 next\n"
            "TX 1 refer\n"
            "MD 1 refer\n"
            "CH 0 next refer more links\n"
            "AT 0 next\n"
            "EV 0 next refer\n"
            "DG 0 next\n"
            "CG 0 next refer\n"
            "SI 0\n"
            "CN 0 next refer\n"
            "CC 0\n"
            "CA 0 refer\n"
            "SR 0 next\n"
            "DT 2 refer data open 4\n"
            "DV 2 refer data open 4\n"
            "DI 2 refer data\n"
            "RD 2 refer data open 8\n"
            "RV 4 refer data\n"
            "RI 4 refer data\n"
            "SD 2 refer data\n"
            "DZ 3 refer data\n"
            "DL 5 next\n"
            "LD 5 next\n"
            "HL 6 more links\n"
            "GD 0 refer\n"
            "XX 0 refer\n");
}

TEST(BlockType, OtherTypesHaveNone) {
  EXPECT_EQ(shownLayout("ID"), "none");
  EXPECT_EQ(shownLayout("XX"), "none");
  EXPECT_EQ(shownLayout(""), "none");
}

TEST(BlockType, LinksLeadToTheirTargets) {
  EXPECT_TRUE(isAmongTargets("TX MD", "TX"));
  EXPECT_TRUE(isAmongTargets("TX MD", "MD"));
  EXPECT_TRUE(isAmongTargets("", "ZZ"));
  EXPECT_FALSE(isAmongTargets("TX MD", "X "));
  EXPECT_FALSE(isAmongTargets("TX MD", "CN"));
  EXPECT_FALSE(isAmongTargets("TX MD", ""));
}

}  // namespace
