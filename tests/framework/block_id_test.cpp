#include <gtest/gtest.h>

#include <sstream>

#include "mdf_v4_10.h"
#include "support/blocks.h"
#include "support/bytes.h"

using namespace mdf_tests;
using mdf_v4_10::MDF_Block_ID;

namespace {

TEST(MDF_Block_ID, JoinsTheTypeToTheConstantPart) {
  EXPECT_EQ(MDF_Block_ID(0x4448).idInternal, 0x44482323U);
  EXPECT_EQ(MDF_Block_ID(0).idInternal, 0x00002323U);
  EXPECT_EQ(MDF_Block_ID(0xFFFF).idInternal, 0xFFFF2323U);
}

TEST(MDF_Block_ID, WritesTheBytesInFileOrder) {
  EXPECT_BYTES(written(MDF_Block_ID(0x4448)), u8(0x23, 0x23, 0x48, 0x44));
  EXPECT_BYTES(written(MDF_Block_ID(0x5854)), "##TX");
}

TEST(MDF_Block_ID, WritesWhateverIsStored) {
  MDF_Block_ID id(0);
  id.idInternal = 0xFF000A80;
  EXPECT_BYTES(written(id), u8(0x80, 0x0A, 0x00, 0xFF));
}

TEST(MDF_Block_ID, WriterReturnsTheStream) {
  std::ostringstream os;
  EXPECT_EQ(&(os << MDF_Block_ID(0x4448)), &os);
}

}  // namespace
