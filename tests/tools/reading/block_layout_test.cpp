#include "reader/blocks/block_layout.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using mdf_reader::BlockLayout;
using mdf_reader::FieldKind;
using mdf_reader::FieldLayout;
using mdf_reader::findLayout;
using mdf_reader::identificationFields;
using mdf_reader::mayLeadTo;

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

/// A layout as lines: links with their targets, fields, tail.
std::string shownLayout(const std::string& letters) {
  const BlockLayout* layout = findLayout(letters);
  if (layout == nullptr) {
    return "none";
  }
  std::string text = std::string(layout->title) + '\n';
  for (const auto& link : layout->links) {
    text += std::string(link.role) + " -> " + std::string(link.targets) + '\n';
  }
  text += shown(layout->fields);
  if (!layout->tail.name.empty()) {
    text += "tail " + std::string(layout->tail.name) + ' ' + shown(layout->tail.kind) + ' ' +
            std::to_string(layout->tail.width) + '\n';
  }
  return text;
}

TEST(BlockLayout, Identification) {
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

TEST(BlockLayout, Header) {
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

TEST(BlockLayout, FileHistory) {
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

TEST(BlockLayout, Texts) {
  EXPECT_EQ(shownLayout("TX"), "text\ntail tx_data bytes 1\n");
  EXPECT_EQ(shownLayout("MD"), "metadata\ntail md_data bytes 1\n");
}

TEST(BlockLayout, ChannelHierarchy) {
  EXPECT_EQ(shownLayout("CH"),
            "channel hierarchy\n"
            "ch_ch_next -> CH\n"
            "ch_ch_first -> CH\n"
            "ch_tx_name -> TX\n"
            "ch_md_comment -> TX MD\n"
            "0 ch_element_count unsigned 4\n"
            "4 ch_type unsigned 1\n"
            "5 ch_reserved reserved 3\n");
}

TEST(BlockLayout, Attachment) {
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
            "tail at_embedded_data bytes 1\n");
}

TEST(BlockLayout, Event) {
  EXPECT_EQ(shownLayout("EV"),
            "event\n"
            "ev_ev_next -> EV\n"
            "ev_ev_parent -> EV\n"
            "ev_ev_range -> EV\n"
            "ev_tx_name -> TX\n"
            "ev_md_comment -> TX MD\n"
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

TEST(BlockLayout, DataGroup) {
  EXPECT_EQ(shownLayout("DG"),
            "data group\n"
            "dg_dg_next -> DG\n"
            "dg_cg_first -> CG\n"
            "dg_data -> DT DV DZ DL HL LD\n"
            "dg_md_comment -> TX MD\n"
            "0 dg_rec_id_size unsigned 1\n"
            "1 dg_reserved reserved 7\n");
}

TEST(BlockLayout, ChannelGroup) {
  EXPECT_EQ(shownLayout("CG"),
            "channel group\n"
            "cg_cg_next -> CG\n"
            "cg_cn_first -> CN\n"
            "cg_tx_acq_name -> TX\n"
            "cg_si_acq_source -> SI\n"
            "cg_sr_first -> SR\n"
            "cg_md_comment -> TX MD\n"
            "0 cg_record_id unsigned 8\n"
            "8 cg_cycle_count unsigned 8\n"
            "16 cg_flags unsigned 2\n"
            "18 cg_path_separator unsigned 2\n"
            "20 cg_reserved reserved 4\n"
            "24 cg_data_bytes unsigned 4\n"
            "28 cg_inval_bytes unsigned 4\n");
}

TEST(BlockLayout, Source) {
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

TEST(BlockLayout, Channel) {
  EXPECT_EQ(shownLayout("CN"),
            "channel\n"
            "cn_cn_next -> CN\n"
            "cn_composition -> CN CA\n"
            "cn_tx_name -> TX\n"
            "cn_si_source -> SI\n"
            "cn_cc_conversion -> CC\n"
            "cn_data -> SD DZ DL HL CG AT CN\n"
            "cn_md_unit -> TX MD\n"
            "cn_md_comment -> TX MD\n"
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

TEST(BlockLayout, Conversion) {
  EXPECT_EQ(shownLayout("CC"),
            "conversion\n"
            "cc_tx_name -> TX\n"
            "cc_md_unit -> TX MD\n"
            "cc_md_comment -> TX MD\n"
            "cc_cc_inverse -> CC\n"
            "0 cc_type unsigned 1\n"
            "1 cc_precision unsigned 1\n"
            "2 cc_flags unsigned 2\n"
            "4 cc_ref_count unsigned 2\n"
            "6 cc_val_count unsigned 2\n"
            "8 cc_phy_range_min real 8\n"
            "16 cc_phy_range_max real 8\n"
            "tail cc_val real 8\n");
}

TEST(BlockLayout, ChannelArray) {
  EXPECT_EQ(shownLayout("CA"),
            "channel array\n"
            "ca_composition -> CN CA\n"
            "0 ca_type unsigned 1\n"
            "1 ca_storage unsigned 1\n"
            "2 ca_ndim unsigned 2\n"
            "4 ca_flags unsigned 4\n"
            "8 ca_byte_offset_base signed 4\n"
            "12 ca_inval_bit_pos_base unsigned 4\n"
            "tail ca_dim_size unsigned 8\n");
}

TEST(BlockLayout, DataBlocks) {
  EXPECT_EQ(shownLayout("DT"), "data\ntail dt_data bytes 1\n");
  EXPECT_EQ(shownLayout("RD"), "reduction data\ntail rd_data bytes 1\n");
  EXPECT_EQ(shownLayout("SD"), "signal data\ntail sd_data bytes 1\n");
  EXPECT_EQ(shownLayout("DL"),
            "data list\n"
            "dl_dl_next -> DL\n"
            "0 dl_flags unsigned 1\n"
            "1 dl_reserved reserved 3\n"
            "4 dl_count unsigned 4\n"
            "tail dl_offset unsigned 8\n");
  EXPECT_EQ(shownLayout("DZ"),
            "zipped data\n"
            "0 dz_org_block_type unsigned 2\n"
            "2 dz_zip_type unsigned 1\n"
            "3 dz_reserved reserved 1\n"
            "4 dz_zip_parameter unsigned 4\n"
            "8 dz_org_data_length unsigned 8\n"
            "16 dz_data_length unsigned 8\n"
            "tail dz_data bytes 1\n");
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

TEST(BlockLayout, ValuesApartFromTheirInvalidation) {
  EXPECT_EQ(shownLayout("DV"), "data values\ntail dv_data bytes 1\n");
  EXPECT_EQ(shownLayout("DI"), "invalidation data\ntail di_data bytes 1\n");
  EXPECT_EQ(shownLayout("RV"), "reduction values\ntail rv_data bytes 1\n");
  EXPECT_EQ(shownLayout("RI"), "reduction invalidation data\ntail ri_data bytes 1\n");
  EXPECT_EQ(shownLayout("LD"),
            "list of values\n"
            "ld_next -> LD\n"
            "0 ld_flags unsigned 4\n"
            "4 ld_count unsigned 4\n"
            "tail ld_sample_offset unsigned 8\n");
}

TEST(BlockLayout, OtherTypesHaveNone) {
  EXPECT_EQ(shownLayout("ID"), "none");
  EXPECT_EQ(shownLayout("XX"), "none");
  EXPECT_EQ(shownLayout(""), "none");
}

TEST(BlockLayout, LinksLeadToTheirTargets) {
  EXPECT_TRUE(mayLeadTo({"role", "TX MD"}, "TX"));
  EXPECT_TRUE(mayLeadTo({"role", "TX MD"}, "MD"));
  EXPECT_TRUE(mayLeadTo({"role", ""}, "ZZ"));
  EXPECT_FALSE(mayLeadTo({"role", "TX MD"}, "X "));
  EXPECT_FALSE(mayLeadTo({"role", "TX MD"}, "CN"));
  EXPECT_FALSE(mayLeadTo({"role", "TX MD"}, ""));
}

}  // namespace
