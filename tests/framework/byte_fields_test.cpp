/// Bytes of a block as programs use them that know the format's own C structures.

#include <gtest/gtest.h>

#include <cstring>
#include <iterator>
#include <numeric>
#include <string>

#include "mdf_v4_10.h"
#include "support/blocks.h"

using namespace mdf_tests;
using namespace mdf_v4_10;

namespace {

TEST(ByteFields, AreComparedByMemcmp) {
  const IDBLOCK block("TESTPROG");
  EXPECT_EQ(std::memcmp(block.id_file, "MDF     ", 8), 0);
  EXPECT_EQ(std::memcmp(block.id_vers, IDBLOCK::MDF_ID_VERS_STRING, sizeof block.id_vers), 0);
  EXPECT_NE(std::memcmp(block.id_prog, "TESTPROC", 8), 0);
}

TEST(ByteFields, AreFilledByMemcpy) {
  const char digest[] = "0123456789abcdef";
  ATBLOCK block;
  std::memcpy(block.at_md5_checksum, digest, ATBLOCK::MDF_AT_MD5);
  EXPECT_EQ(block.getMD5Checksum(), digest);
}

TEST(ByteFields, CharactersMakeAString) {
  const IDBLOCK block("TESTPROG");
  EXPECT_EQ(std::string(block.id_prog, 8), "TESTPROG");
  EXPECT_EQ(std::string(block.id_prog, sizeof block.id_prog), block.getProg());
}

TEST(ByteFields, HaveElementsAndASize) {
  DGBLOCK block(1, 2, 3, DGBLOCK::DG_UINT8);
  block.dg_reserved[6] = 7;
  for (UINT8& byte : block.dg_reserved) {
    byte = static_cast<UINT8>(byte + 1);
  }
  EXPECT_EQ(std::accumulate(std::begin(block.dg_reserved), std::end(block.dg_reserved), 0), 14);
  EXPECT_EQ(sizeof block.dg_reserved, 7U);
  EXPECT_EQ(std::size(block.header.reserved), 4U);
}

TEST(ByteFields, AreCopiedWithTheirBlock) {
  IDBLOCK block("TESTPROG");
  block.id_reserved2[33] = 5;
  IDBLOCK copy("other");
  copy = block;
  block.id_prog[0] = 'B';
  EXPECT_EQ(copy.getProg(), "TESTPROG");
  EXPECT_EQ(copy.id_reserved2[33], 5);
  EXPECT_EQ(written(IDBLOCK(copy)), written(copy));
}

}  // namespace
