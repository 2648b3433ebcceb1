#include <gtest/gtest.h>

#include <cstdint>
#include <iomanip>
#include <sstream>
#include <string>
#include <vector>

#include "mdf_v4_10.h"
#include "support/blocks.h"
#include "support/bytes.h"
#include "support/recording_buffer.h"

using namespace mdf_tests;
using namespace mdf_v4_10;

namespace {

/// The number of bytes in each write call that an element makes, after which it must have handed
/// back the stream.
template <class Element>
std::vector<std::size_t> writeCalls(const Element& element) {
  RecordingBuffer buffer;
  std::ostream os(&buffer);
  EXPECT_EQ(&(os << element), &os);
  return buffer.writes;
}

/// What an element writes to a stream with format flags and a width, which are for text only.
template <class Element>
std::string writtenWithFormat(const Element& element) {
  std::ostringstream os;
  os << std::hex << std::showbase << std::setfill('*') << std::setw(20) << element;
  return os.str();
}

TEST(IDTSDATABLOCK, MembersAreStoredAndWritten) {
  IDTSDATABLOCK element(1, 2);
  EXPECT_EQ(element.id, 1);
  EXPECT_EQ(element.timestamp, 2U);
  element.id = 3;
  element.timestamp = 4;
  EXPECT_BYTES(written(element), u8(3, 4, 0, 0, 0));
}

TEST(IDTSDATABLOCK, WritesUnformattedInTwoCalls) {
  const IDTSDATABLOCK element(0x87, 0x91222324);
  EXPECT_EQ(writeCalls(element), (std::vector<std::size_t>{1, 4}));
  EXPECT_BYTES(writtenWithFormat(element), u8(0x87, 0x24, 0x23, 0x22, 0x91));
}

TEST(IDTSDATABLOCK64, MembersAreStoredAndWritten) {
  IDTSDATABLOCK64 element(1, 2);
  EXPECT_EQ(element.id, 1);
  EXPECT_EQ(element.timestamp, 2U);
  element.id = 3;
  element.timestamp = 4;
  EXPECT_BYTES(written(element), u8(3, 0, 4, 0, 0, 0, 0, 0, 0, 0));
}

TEST(IDTSDATABLOCK64, WritesUnformattedInTwoCalls) {
  const IDTSDATABLOCK64 element(0x9112, 0xA122232425262728);
  EXPECT_EQ(writeCalls(element), (std::vector<std::size_t>{2, 8}));
  EXPECT_BYTES(writtenWithFormat(element),
               u8(0x12, 0x91, 0x28, 0x27, 0x26, 0x25, 0x24, 0x23, 0x22, 0xA1));
}

TEST(VALUEDATABLOCK, WritesTheLowBytesOfTheValue) {
  const std::string bytes = u8(0x88, 0x77, 0x66, 0x55, 0x44, 0x33, 0x22, 0x11);
  for (std::uint32_t size = 0; size <= 8; ++size) {
    EXPECT_BYTES(written(VALUEDATABLOCK(0x1122334455667788, size)), bytes.substr(0, size));
  }
}

TEST(VALUEDATABLOCK, SizeAboveEightWritesTheEightBytes) {
  for (const std::uint32_t size : {9U, 256U, 264U, 0x80000000U, UINT32_MAX}) {
    EXPECT_BYTES(written(VALUEDATABLOCK(0x1122334455667788, size)),
                 u8(0x88, 0x77, 0x66, 0x55, 0x44, 0x33, 0x22, 0x11));
  }
}

TEST(VALUEDATABLOCK, MembersAreStoredAndWritten) {
  VALUEDATABLOCK element(1, 2);
  EXPECT_EQ(element.value, 1U);
  EXPECT_EQ(element.valsize, 2U);
  element.value = 3;
  element.valsize = 4;
  EXPECT_BYTES(written(element), u8(3, 0, 0, 0));
}

TEST(VALUEDATABLOCK, WritesUnformattedInOneCall) {
  const VALUEDATABLOCK element(0x1122334455667788, 3);
  EXPECT_EQ(writeCalls(element), (std::vector<std::size_t>{3}));
  EXPECT_BYTES(writtenWithFormat(element), u8(0x88, 0x77, 0x66));
}

TEST(RecordElements, NothingIsWrittenToAFailedStream) {
  std::ostringstream os;
  os.setstate(std::ios_base::failbit);
  os << IDTSDATABLOCK(1, 2) << IDTSDATABLOCK64(1, 2) << VALUEDATABLOCK(1, 2);
  EXPECT_BYTES(os.str(), "");
  EXPECT_EQ(os.rdstate(), std::ios_base::failbit);
}

TEST(RecordElements, ComposeTheBytesOfADataBlock) {
  std::ostringstream os;
  os << IDTSDATABLOCK(1, 2) << VALUEDATABLOCK(0x0304, 2) << IDTSDATABLOCK64(5, 6);
  const std::string records = os.str();
  const mdf_v4_10::DTBLOCK block(reinterpret_cast<const std::uint8_t*>(records.data()),
                                 records.size());
  EXPECT_BYTES(written(block),
               header("DT", 41, 0) + u8(1, 2, 0, 0, 0, 4, 3, 5, 0, 6, 0, 0, 0, 0, 0, 0, 0));
}

}  // namespace
