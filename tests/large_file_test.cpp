// Blocks beyond 4 GiB and beyond 1 TiB, on machines of any word size. The file is sparse: what lies
// between its blocks takes no room on the disk.

#include <gtest/gtest.h>

#include <fstream>
#include <string>

#include "mdf_v4_10.h"
#include "support/blocks.h"
#include "support/bytes.h"

using namespace mdf_tests;
using namespace mdf_v4_10;

namespace {

constexpr LINK hd_at = 64;
constexpr LINK dg_at = (LINK{1} << 32U) + 8;
constexpr LINK dt_at = (LINK{1} << 40U) + 8;

template <class Block>
void writeAt(std::ofstream& ofs, LINK offset, const Block& block) {
  ofs.seekp(offset);
  EXPECT_EQ(static_cast<LINK>(ofs.tellp()), offset);
  ofs << block;
}

void fill(const std::string& path) {
  std::ofstream ofs(path, std::ios_base::binary);
  writeAt(ofs, hd_at, HDBLOCK(0, dg_at, 0, 0, HDBLOCK::TIME_LOCAL_PC, 0, 0));
  writeAt(ofs, dg_at, DGBLOCK(0, 0, dt_at, DGBLOCK::DG_UINT8));
  writeAt(ofs, dt_at, DTBLOCK(reinterpret_cast<const std::uint8_t*>("far"), 3));
  EXPECT_TRUE(ofs.flush());
}

TEST(LargeFile, BlocksBeyondFourGibibytesAndOneTebibyteAreWrittenAndFollowed) {
  const LinkTargetFile file;
  fill(file.path());
  std::ifstream ifs = file.open();
  ifs.seekg(hd_at);
  const HDBLOCK hd(ifs);
  EXPECT_EQ(hd.seekgFirstDGBlock(ifs), dg_at);
  EXPECT_EQ(static_cast<LINK>(ifs.tellg()), dg_at);
  DGBLOCK dg(ifs);
  // The links read stand after the nil ones.
  EXPECT_EQ(linksOf(dg), (std::vector<LINK>{0, 0, 0, 0, 0, 0, dt_at, 0}));
  dg.setDatablock(dg.links[6]);
  EXPECT_EQ(dg.seekgData(ifs), dt_at);
  EXPECT_EQ(static_cast<LINK>(ifs.tellg()), dt_at);
  const DTBLOCK dt(ifs);
  EXPECT_EQ(ifs.rdstate(), state_good);
  EXPECT_EQ(static_cast<LINK>(ifs.tellg()), dt_at + 27);
  EXPECT_BYTES(written(dt), Bytes().header("DT", 27, 0).text("far"));
}

}  // namespace
