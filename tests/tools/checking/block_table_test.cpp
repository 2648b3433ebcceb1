#include "reader/blocks/block_table.h"

#include <gtest/gtest.h>

#include <string>

#include "reader/blocks/walk.h"
#include "reader/bytes/input_file.h"
#include "tools/support/small_file.h"
#include "tools/support/temp_file.h"

using namespace mdf_tests;
using mdf_reader::BlockEntry;
using mdf_reader::BlockTable;
using mdf_reader::InputFile;

namespace {

TEST(BlockTable, FindsManyBlocksByTheirOffsetsAndNoOthers) {
  BlockTable table;
  EXPECT_EQ(table.find(64), BlockTable::none);
  for (std::uint32_t i = 0; i < 10000; ++i) {
    BlockEntry entry;
    entry.offset = std::uint64_t{24} * (10000 - i);
    EXPECT_EQ(table.add(entry), i);
  }
  EXPECT_EQ(table.size(), 10000U);
  for (std::uint32_t i = 0; i < 10000; ++i) {
    EXPECT_EQ(table.find(std::uint64_t{24} * (10000 - i)), i);
    EXPECT_EQ(table.find(std::uint64_t{24} * i + 8), BlockTable::none);
  }
}

/// The paths of all blocks, in the order of the table.
std::string pathsOf(const FileBuilder& file) {
  const TempFile written(file.bytes());
  InputFile input(written.path());
  const BlockTable blocks = mdf_reader::walkBlocks(input, nullptr);
  std::string paths;
  for (std::uint32_t index = 0; index < blocks.size(); ++index) {
    paths += std::to_string(blocks[index].offset) + ' ' + pathOf(input, blocks, index) + '\n';
  }
  return paths;
}

TEST(PathOf, BlockComesBeforeWhatItLeadsToAndThatBeforeTheNextOfItsChain) {
  EXPECT_EQ(pathsOf(SmallFile()),
            "64 HD\n"
            "168 HD.hd_dg_first/DG[0]\n"
            "232 HD.hd_dg_first/DG[0].dg_cg_first/CG[0]\n"
            "336 HD.hd_dg_first/DG[0].dg_cg_first/CG[0].cg_cn_first/CN[0]\n"
            "656 HD.hd_dg_first/DG[0].dg_cg_first/CG[0].cg_cn_first/CN[0].cn_tx_name/TX\n"
            "496 HD.hd_dg_first/DG[0].dg_cg_first/CG[0].cg_cn_first/CN[1]\n"
            "688 HD.hd_dg_first/DG[0].dg_cg_first/CG[0].cg_cn_first/CN[1].cn_tx_name/TX\n"
            "720 HD.hd_dg_first/DG[0].dg_data/DT\n");
}

TEST(PathOf, BlockThatIsAlsoReferredToIsFoundInItsPlace) {
  SmallFile file;
  const auto hierarchy =
      file.add("CH", {0, 0, 0, 0, 0, 0, SmallFile::speed}, Bytes().u32(1).zeros(4));
  file.link(FileBuilder::header, 2, hierarchy);
  const std::string paths = pathsOf(file);
  EXPECT_NE(paths.find("\n496 HD.hd_dg_first/DG[0].dg_cg_first/CG[0].cg_cn_first/CN[1]\n"),
            std::string::npos)
      << paths;
  EXPECT_NE(paths.find("\n768 HD.hd_ch_first/CH[0]\n"), std::string::npos) << paths;
}

TEST(PathOf, BlockThatIsOnlyReferredTo) {
  FileBuilder file;
  const auto channel = file.add("CN", {0, 0, 0, 0, 0, 0, 0, 0}, ChannelSpec{}.fields());
  const auto unknown = file.add("XX", {0, channel});
  const auto hierarchy =
      file.add("CH", {0, 0, 0, 0, 0, 0, 0, 0, 0, unknown}, Bytes().u32(2).zeros(4));
  file.link(FileBuilder::header, 2, hierarchy);
  EXPECT_EQ(pathsOf(file),
            "64 HD\n"
            "368 HD.hd_ch_first/CH[0]\n"
            "328 HD.hd_ch_first/CH[0].ch_element[1].cn/XX\n"
            "168 HD.hd_ch_first/CH[0].ch_element[1].cn/XX.link 1/CN[0]\n");
}

TEST(PathOf, DeepBlockHasTheEndOfItsPathAlone) {
  FileBuilder file;
  std::uint64_t conversion = 0;
  for (int i = 0; i < 16; ++i) {
    conversion = file.add("CC", {0, 0, 0, conversion}, std::string(24, '\0'));
  }
  file.link(FileBuilder::header, 5, conversion);
  const std::string paths = pathsOf(file);
  std::string nested;
  for (int i = 0; i < 15; ++i) {
    nested += "CC.cc_cc_inverse/";
  }
  EXPECT_NE(paths.find("HD.hd_md_comment/" + nested.substr(17) + "CC\n"), std::string::npos)
      << paths;
  EXPECT_NE(paths.find("\n168 .../" + nested + "CC\n"), std::string::npos) << paths;
}

}  // namespace
