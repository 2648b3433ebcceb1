#include "reader/blocks/block_fields.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "reader/bytes/input_file.h"
#include "support/bytes.h"
#include "tools/support/file_builder.h"
#include "tools/support/temp_file.h"

using namespace mdf_tests;
using namespace mdf_reader;

namespace {

/// The fields of the last block of a file.
class Block {
 public:
  Block(const FileBuilder& builder, std::uint64_t offset)
      : temp_(builder.bytes()), file_(temp_.path()), fields_(file_, *readRawBlock(file_, offset)) {}

  const BlockFields* operator->() const { return &fields_; }
  const BlockFields& operator*() const { return fields_; }

 private:
  TempFile temp_;
  InputFile file_;
  BlockFields fields_;
};

std::string channelContents(std::uint16_t attachments) {
  return u8(2, 1, 4, 3) + u32(0x01020304, 64, 0x1000, 7) + u8(5, 0) + u16(attachments) +
         f64(-1.5, 0.1) + zeros(32);
}

TEST(BlockFields, ReadsLinksAndFieldsOfTheFormat) {
  FileBuilder file;
  const auto at = file.add("CN", {1, 2, 3, 4, 5, 6, 7, 8}, channelContents(0));
  const Block block(file, at);
  EXPECT_TRUE(block->isComplete());
  EXPECT_EQ(block->offset(), at);
  EXPECT_EQ(block->link(0), 1U);
  EXPECT_EQ(block->link(7), 8U);
  EXPECT_EQ(block->link(8), 0U);
  EXPECT_EQ(block->number("cn_byte_offset"), 0x01020304U);
  EXPECT_EQ(block->number("cn_flags"), 0x1000U);
  EXPECT_TRUE(block->hasFlag("cn_flags", 0x1000));
  EXPECT_FALSE(block->hasFlag("cn_flags", 1));
  EXPECT_EQ(block->real("cn_val_range_min"), -1.5);
  EXPECT_EQ(block->fieldsAt(), at + 88);
  EXPECT_EQ(block->tailAt(), at + 160);
  EXPECT_EQ(block->tailBytes(), 0U);
}

TEST(BlockFields, FieldsFollowTheLinksThatTheBlockSaysItHas) {
  FileBuilder file;
  const auto at = file.add("DG", {1, 2, 3, 4, 99, 98}, Bytes().u8(8).zeros(7));
  const Block block(file, at);
  EXPECT_EQ(block->number("dg_rec_id_size"), 8U);
  EXPECT_EQ(block->link(3), 4U);
  EXPECT_TRUE(block->isComplete());
}

TEST(BlockFields, WhatIsCutOffReadsAsZero) {
  FileBuilder file;
  const auto at = file.add("CN", {1, 2}, Bytes().u8s({2, 1, 4, 3}).u16(0xFFFF));
  const Block block(file, at);
  EXPECT_FALSE(block->isComplete());
  EXPECT_EQ(block->link(1), 2U);
  EXPECT_EQ(block->link(2), 0U);
  EXPECT_EQ(block->number("cn_bit_offset"), 3U);
  EXPECT_EQ(block->number("cn_byte_offset"), 0U) << "two of its four bytes are there";
  EXPECT_EQ(block->real("cn_val_range_min"), 0.0);
  EXPECT_EQ(block->tailBytes(), 0U);
}

TEST(BlockFields, LyingLinkCountsLeaveNothingToRead) {
  for (const std::uint64_t count : {std::uint64_t{5}, std::uint64_t{1} << 40U, UINT64_MAX}) {
    FileBuilder file;
    const auto at = file.add("DG", {1, 2, 3, 4}, Bytes().u8(8).zeros(7));
    file.write(at + 16, Bytes().u64(count));
    const Block block(file, at);
    EXPECT_EQ(block->link(3), 4U) << count;
    EXPECT_EQ(block->number("dg_rec_id_size"), 0U) << count;
    EXPECT_FALSE(block->isComplete()) << count;
    EXPECT_EQ(block->tailBytes(), 0U) << count;
  }
}

TEST(BlockFields, ShowsNumbersAndBytes) {
  FileBuilder file;
  const auto at = file.add("HD", {0, 0, 0, 0, 0, 0},
                           Bytes().u64(5).i16(-60).i16(60).u8s({1, 2, 3, 4}).f64(0.1).f64(1e300));
  const Block block(file, at);
  std::string text;
  for (const auto& field : block->type().fields) {
    text += shownField(field, block->bytes(field.name)) + '\n';
  }
  EXPECT_EQ(text, "5\n-60\n60\n1\n2\n3\n04\n0.1\n1e+300\n");
  EXPECT_EQ(block->signedNumber("hd_tz_offset_min"), -60);
  EXPECT_EQ(block->bytes("hd_dst_offset_min"), std::string("\x3C\0", 2));
}

TEST(BlockFields, UnknownTypesHaveNone) {
  FileBuilder file;
  const auto at = file.add("XX", {1, 2}, "contents");
  const Block block(file, at);
  EXPECT_FALSE(block->type().isKnown());
  EXPECT_EQ(block->link(0), 0U);
  EXPECT_EQ(block->number("cn_type"), 0U);
  EXPECT_EQ(block->tailAt(), at + 40);
  EXPECT_EQ(block->tailBytes(), 8U);
  EXPECT_EQ(linkRole(*block, 1).name, "link 1");
}

TEST(BlockFields, TheTailEndsWithTheBlockOrTheFile) {
  FileBuilder file;
  const auto at = file.add("DT", {}, "12345678");
  EXPECT_EQ(Block(file, at)->tailBytes(), 8U);
  file.write(at + 8, Bytes().u64(1000));
  EXPECT_EQ(Block(file, at)->tailBytes(), 8U);
  file.write(at + 8, Bytes().u64(25));
  EXPECT_EQ(Block(file, at)->tailBytes(), 1U);
}

TEST(ReadFields, WantsTheType) {
  FileBuilder builder;
  const auto at = builder.text("text");
  const TempFile temp(builder.bytes());
  InputFile file(temp.path());
  EXPECT_TRUE(readFields(file, at, "TX"));
  EXPECT_FALSE(readFields(file, at, "MD"));
  EXPECT_FALSE(readFields(file, 0, "TX"));
  EXPECT_FALSE(readFields(file, at + 8, "TX"));
  EXPECT_FALSE(readFields(file, UINT64_MAX, "TX"));
}

/// The names of so many links, and the types they may lead to.
std::vector<std::string> rolesOf(const Block& block, std::uint64_t count) {
  std::vector<std::string> roles;
  for (std::uint64_t i = 0; i < count; ++i) {
    const auto role = linkRole(*block, i);
    roles.push_back(role.name + " -> " + std::string(role.layout.targets));
  }
  return roles;
}

std::vector<std::string> after(std::size_t count, std::vector<std::string> roles) {
  roles.erase(roles.begin(), roles.begin() + static_cast<std::ptrdiff_t>(count));
  return roles;
}

using Roles = std::vector<std::string>;

TEST(LinkRole, ChannelsHaveAttachmentsAndDefaultAxis) {
  FileBuilder file;
  const auto at = file.add("CN", std::vector<std::uint64_t>(14), channelContents(2));
  EXPECT_EQ(after(7, rolesOf(Block(file, at), 14)),
            (Roles{"cn_md_comment -> TX MD", "cn_at_reference[0] -> AT", "cn_at_reference[1] -> AT",
                   "cn_default_x_dg -> DG", "cn_default_x_cg -> CG", "cn_default_x_cn -> CN",
                   "link 13 -> "}));
}

TEST(LinkRole, WithoutTheirFlagsChannelsAndGroupsHaveNoSuchLinks) {
  FileBuilder file;
  const auto channel =
      file.add("CN", std::vector<std::uint64_t>(9), Bytes().zeros(22).u16(0).zeros(48));
  EXPECT_EQ(after(7, rolesOf(Block(file, channel), 9)),
            (Roles{"cn_md_comment -> TX MD", "link 8 -> "}));
  const auto group = file.add("CG", std::vector<std::uint64_t>(7), Bytes().zeros(32));
  EXPECT_EQ(after(5, rolesOf(Block(file, group), 7)),
            (Roles{"cg_md_comment -> TX MD", "link 6 -> "}));
}

TEST(LinkRole, EventsHaveScopesAndAttachments) {
  FileBuilder file;
  const auto at = file.add("EV", std::vector<std::uint64_t>(9),
                           Bytes().zeros(8).u32(2).u16(1).u16(0).zeros(16));
  EXPECT_EQ(after(4, rolesOf(Block(file, at), 9)),
            (Roles{"ev_md_comment -> TX MD", "ev_scope[0] -> CN CG", "ev_scope[1] -> CN CG",
                   "ev_at_reference[0] -> AT", "link 8 -> "}));
}

TEST(LinkRole, ListsHaveAsManyAsTheirLinks) {
  FileBuilder file;
  const auto list = file.add("DL", {0, 1, 2}, Bytes().u8s({0, 0, 0, 0}).u32(2).u64(0).u64(8));
  EXPECT_EQ(rolesOf(Block(file, list), 3),
            (Roles{"dl_dl_next -> DL", "dl_data[0] -> DT SD RD DV RV DZ",
                   "dl_data[1] -> DT SD RD DV RV DZ"}));
  const auto conversion = file.add("CC", {0, 0, 0, 0, 1}, Bytes().zeros(24));
  EXPECT_EQ(after(4, rolesOf(Block(file, conversion), 5)), (Roles{"cc_ref[0] -> TX MD CC"}));
  const auto hierarchy = file.add("CH", {0, 0, 0, 0, 1, 2, 3, 4}, Bytes().zeros(8));
  EXPECT_EQ(after(4, rolesOf(Block(file, hierarchy), 8)),
            (Roles{"ch_element[0].dg -> DG", "ch_element[0].cg -> CG", "ch_element[0].cn -> CN",
                   "ch_element[1].dg -> DG"}));
}

TEST(LinkRole, ListsOfValuesMayHaveLinksToInvalidationData) {
  FileBuilder file;
  const auto values = file.add("LD", {0, 1, 2, 3, 4}, Bytes().u32(1).u32(2).u64(8));
  const Roles data = {"ld_data[0] -> DV DT RV RD SD DZ", "ld_data[1] -> DV DT RV RD SD DZ"};
  EXPECT_EQ(after(1, rolesOf(Block(file, values), 5)),
            (Roles{data[0], data[1], "link 3 -> ", "link 4 -> "}));
  const auto both = file.add("LD", {0, 1, 2, 3, 4, 5}, Bytes().u32(0x80000001U).u32(2).u64(8));
  EXPECT_EQ(after(1, rolesOf(Block(file, both), 6)),
            (Roles{data[0], data[1], "ld_invalidation_data[0] -> DI RI DZ",
                   "ld_invalidation_data[1] -> DI RI DZ", "link 5 -> "}));
}

TEST(LinkRole, ArraysMayHaveDataOfEachElement) {
  FileBuilder file;
  const auto rolesWith = [&](std::uint8_t storage, std::uint32_t flags) {
    const auto array = file.add(
        "CA", {0, 1, 2}, Bytes().u8(0).u8(storage).u16(1).u32(flags).zeros(8).u64(2).u64(1).u64(1));
    return after(1, rolesOf(Block(file, array), 3));
  };
  const Roles unknown = {"link 1 -> ", "link 2 -> "};
  EXPECT_EQ(rolesWith(0, 0), unknown);
  EXPECT_EQ(rolesWith(1, 0), unknown);
  EXPECT_EQ(rolesWith(2, 0),
            (Roles{"ca_data[0] -> DT DV DZ DL HL LD", "ca_data[1] -> DT DV DZ DL HL LD"}));
  EXPECT_EQ(rolesWith(2, 16), unknown);
}

TEST(LinkRole, NewerLinksAfterTheKnownOnes) {
  FileBuilder file;
  const auto group =
      file.add("CG", std::vector<std::uint64_t>(8), Bytes().zeros(16).u16(8).zeros(14));
  EXPECT_EQ(after(6, rolesOf(Block(file, group), 8)), (Roles{"cg_cg_master -> CG", "link 7 -> "}));
  const auto source = file.add("SI", std::vector<std::uint64_t>(4), Bytes().zeros(8));
  EXPECT_EQ(after(3, rolesOf(Block(file, source), 4)), (Roles{"link 3 -> "}));
}

}  // namespace
