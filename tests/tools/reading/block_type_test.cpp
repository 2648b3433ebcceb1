#include "reader/blocks/block_type.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace mdf_reader;

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

std::string shown(const LinkLayout& link) {
  return std::string(link.role) + (link.refers ? " *" : " ") + "-> " + std::string(link.targets) +
         '\n';
}

/// Links that vary, and numbers after the fields.
std::string shownVarying(const BlockType& type) {
  std::string text;
  for (const auto& more : type.more_links) {
    text += std::string(more.element) + "[" + shown(more.elements) + "]\n";
    for (const auto& link : more.links) {
      text += shown(link);
    }
  }
  for (const auto& numbers : type.numbers) {
    text += std::string(numbers.name) + ' ' + shown(numbers.kind) + " [" + shown(numbers.amount) +
            "]\n";
  }
  return text;
}

/// A type as lines: links with their targets, "*" for those that refer; fields; what varies.
std::string shownLayout(const std::string& letters) {
  const BlockType& type = typeOf(letters);
  if (!type.isKnown()) {
    return "none";
  }
  std::string text = std::string(type.title) + '\n';
  for (const auto& link : type.links) {
    text += shown(link);
  }
  text += shown(type.fields);
  text += type.bytes.empty() ? "" : "bytes " + std::string(type.bytes) + '\n';
  return text + shownVarying(type);
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

// The other links and the fields of these types are in docs/layouts.md, which is compared with
// them.
TEST(BlockType, LinksThatReferOrVaryAndNumbersAfterTheFields) {
  std::string text;
  for (const char* letters : {"HD", "FH", "TX", "MD", "CH", "AT", "EV", "DG", "CG", "SI", "CN",
                              "CC", "DT", "RD", "SD", "DL", "DZ", "HL", "SR"}) {
    const BlockType& type = typeOf(letters);
    text += letters + std::string("\n");
    for (const auto& link : type.links) {
      text += link.refers ? shown(link) : "";
    }
    text += shownVarying(type);
  }
  EXPECT_EQ(text,
            "HD\nFH\nTX\nMD\n"
            "CH\n"
            "ch_element[all ch_element_count]\n"
            ".dg *-> DG\n"
            ".cg *-> CG\n"
            ".cn *-> CN\n"
            "AT\n"
            "EV\n"
            "ev_ev_parent *-> EV\n"
            "ev_ev_range *-> EV\n"
            "[ev_scope_count]\n"
            "ev_scope *-> CN CG\n"
            "[ev_attachment_count]\n"
            "ev_at_reference *-> AT\n"
            "DG\n"
            "CG\n"
            "[one if cg_flags & 8 == 8]\n"
            "cg_cg_master *-> CG\n"
            "SI\n"
            "CN\n"
            "cn_data *-> SD DZ DL HL CG AT CN\n"
            "[cn_attachment_count]\n"
            "cn_at_reference *-> AT\n"
            "[one if cn_flags & 4096 == 4096]\n"
            "cn_default_x_dg *-> DG\n"
            "[one if cn_flags & 4096 == 4096]\n"
            "cn_default_x_cg *-> CG\n"
            "[one if cn_flags & 4096 == 4096]\n"
            "cn_default_x_cn *-> CN\n"
            "CC\n"
            "[all cc_ref_count]\n"
            "cc_ref -> TX MD CC\n"
            "cc_val real [all cc_val_count]\n"
            "DT\nRD\nSD\n"
            "DL\n"
            "[all]\n"
            "dl_data -> DT SD RD DV RV DZ\n"
            "dl_offset unsigned [all dl_count if dl_flags & 1 == 0]\n"
            "dl_equal_length unsigned [one dl_count if dl_flags & 1 == 1]\n"
            "DZ\nHL\nSR\n");
}

TEST(BlockType, ChannelArray) {
  EXPECT_EQ(shownLayout("CA"),
            "channel array\n"
            "ca_composition -> CN CA\n"
            "0 ca_type unsigned 1\n"
            "1 ca_storage unsigned 1\n"
            "2 ca_ndim unsigned 2\n"
            "4 ca_flags unsigned 4\n"
            "8 ca_byte_offset_base signed 4\n"
            "12 ca_inval_bit_pos_base unsigned 4\n"
            "[all if ca_storage & 18446744073709551615 == 2 if ca_flags & 31 == 0]\n"
            "ca_data *-> DT DV DZ DL HL LD\n"
            "ca_dim_size unsigned [ca_ndim]\n"
            "ca_axis_value real [all if ca_flags & 32 == 32 if ca_storage & 18446744073709551615 "
            "== 0]\n"
            "ca_cycle_count unsigned [all if ca_flags & 32 == 0 if ca_storage & "
            "18446744073709551615 != 0]\n");
}

TEST(BlockType, ValuesApartFromTheirInvalidation) {
  EXPECT_EQ(shownLayout("DV"), "data values\nbytes dv_data\n");
  EXPECT_EQ(shownLayout("DI"), "invalidation data\nbytes di_data\n");
  EXPECT_EQ(shownLayout("RV"), "reduction values\nbytes rv_data\n");
  EXPECT_EQ(shownLayout("RI"), "reduction invalidation data\nbytes ri_data\n");
  EXPECT_EQ(shownLayout("LD"),
            "list of values\n"
            "ld_next -> LD\n"
            "0 ld_flags unsigned 4\n"
            "4 ld_count unsigned 4\n"
            "[ld_count]\n"
            "ld_data -> DV DT RV RD SD DZ\n"
            "[ld_count if ld_flags & 2147483648 == 2147483648]\n"
            "ld_invalidation_data -> DI RI DZ\n"
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
            (type.link_count == LinkCount::right ? "" : " more links") +
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
