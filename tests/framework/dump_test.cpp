#include "framework/dump.h"

#include <gtest/gtest.h>

#include <iomanip>
#include <limits>
#include <sstream>
#include <string>
#include <type_traits>
#include <vector>

#include "mdf_v4_10.h"
#include "support/blocks.h"
#include "support/recording_buffer.h"

using namespace mdf_tests;
using namespace mdf_v4_10;
using detail::Dump;

namespace {

/// What `show(dump)` adds to a dump whose banners are left out.
template <class Show>
std::string shown(Show show) {
  std::ostringstream os;
  Dump dump(os, "X");
  os.str("");
  show(dump);
  return os.str();
}

template <class Value>
std::string lineWith(Value value) {
  return shown([&](Dump& dump) { dump.line("v = ", value); });
}

/// The positions behind the line ends of a text.
std::vector<std::size_t> behindLineEnds(const std::string& text) {
  std::vector<std::size_t> positions;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '\n') {
      positions.push_back(i + 1);
    }
  }
  return positions;
}

template <class Block>
void expectFlushesEveryLine(const Block& block) {
  RecordingBuffer sink;
  std::ostream os(&sink);
  block.print(os);
  EXPECT_EQ(sink.flushes, behindLineEnds(sink.bytes)) << sink.bytes;
  EXPECT_FALSE(sink.flushes.empty());
}

/// A width that is set on the stream fills up the first line and changes no other.
template <class Block>
void expectPadsTheFirstLine(const Block& block) {
  const std::string dump = dumped(block);
  const std::size_t line_end = dump.find('\n');
  ASSERT_NE(line_end, std::string::npos);
  ASSERT_LT(line_end, 90U);
  const std::string padding(90 - line_end, '*');
  std::ostringstream left;
  left << std::setfill('*') << std::left << std::setw(90);
  block.print(left);
  EXPECT_EQ(left.str(), dump.substr(0, line_end) + padding + dump.substr(line_end));
  std::ostringstream right;
  right << std::setfill('*') << std::right << std::setw(90);
  block.print(right);
  EXPECT_EQ(right.str(), padding + dump);
}

CHBLOCK hierarchyWithElement() {
  CHBLOCK block(CHBLOCK::CH_TYPE_GROUP);
  block.addChannelElement(1, 2, 3);
  return block;
}

ATBLOCK attachmentWithChecksum() {
  ATBLOCK block("abc", 3);
  block.setMD5ChecksumFlag(true);
  return block;
}

EVBLOCK eventWithLists() {
  EVBLOCK block(EVBLOCK::EV_TYPE_MARKER, EVBLOCK::EV_SYNCTYPE_SECONDS, EVBLOCK::EV_RANGETYPE_POINT,
                EVBLOCK::EV_CAUSETYPE_USER);
  block.addScope(1);
  block.addAttachment(2);
  return block;
}

TEST(Dump, FramesItsLinesWithBanners) {
  std::ostringstream os;
  Dump dump(os, "XYBLOCK");
  dump.line("size = ", 5);
  dump.end();
  EXPECT_EQ(os.str(),
            "[DEBUG] ==================== XYBLOCK ===================\n"
            "size = 5\n"
            "[DEBUG] ==================== End of XYBLOCK ===================\n");
}

TEST(Dump, AWidthPadsAWholeBanner) {
  const std::string begin = "[DEBUG] ==================== XYBLOCK ===================";
  const std::string end = "[DEBUG] ==================== End of XYBLOCK ===================";
  std::ostringstream os;
  os << std::setfill('*') << std::right << std::setw(70);
  Dump dump(os, "XYBLOCK");
  EXPECT_EQ(os.width(), 0);
  os << std::left << std::setw(80);
  dump.end();
  EXPECT_EQ(os.str(), std::string(70 - begin.size(), '*') + begin + "\n" + end +
                          std::string(80 - end.size(), '*') + "\n");
}

TEST(Dump, AWidthPadsTheFirstLineOfEveryClass) {
  expectPadsTheFirstLine(HeaderSection(MDF_Block_ID(0x4448)));
  expectPadsTheFirstLine(IDBLOCK("TESTPROG"));
  expectPadsTheFirstLine(HDBLOCK(1, 2, 3, 4, HDBLOCK::TIME_LOCAL_PC, 0, 0));
  expectPadsTheFirstLine(FHBLOCK(1, 2, 3, 4));
  expectPadsTheFirstLine(TXBLOCK("abc", 3));
  expectPadsTheFirstLine(MDBLOCK("abc", 3));
  expectPadsTheFirstLine(hierarchyWithElement());
  expectPadsTheFirstLine(attachmentWithChecksum());
  expectPadsTheFirstLine(eventWithLists());
  expectPadsTheFirstLine(DGBLOCK(1, 2, 3, DGBLOCK::DG_UINT8));
  expectPadsTheFirstLine(CGBLOCK());
  expectPadsTheFirstLine(CNBLOCK(CNBLOCK::CN_CHANNELTYPE_MASTER, CNBLOCK::CN_SYNCTYPE_TIME,
                                 CNBLOCK::CN_DATATYPE_UINT_LE, 1, 2, 3));
  expectPadsTheFirstLine(SIBLOCK());
  expectPadsTheFirstLine(CCBLOCK(CCBLOCK::CC_CONVTYPE_LINEAR));
  expectPadsTheFirstLine(DTBLOCK());
  expectPadsTheFirstLine(SDBLOCK());
  expectPadsTheFirstLine(RDBLOCK(nullptr, 0));
  expectPadsTheFirstLine(DLBLOCK(true, 1));
  expectPadsTheFirstLine(DZBLOCK(DTBLOCK::MDF_DT_ID, DZBLOCK::DZ_ZIPTYPE_DEFLATE, nullptr, 0));
  expectPadsTheFirstLine(HLBLOCK(1, true, DZBLOCK::DZ_ZIPTYPE_DEFLATE));
  expectPadsTheFirstLine(SRBLOCK(1, 0.5, SRBLOCK::SR_SYNCTYPE_TIME_SECONDS, 1, 2));
}

TEST(Dump, ShowsIntegersInDecimal) {
  EXPECT_EQ(lineWith(UINT64_MAX), "v = 18446744073709551615\n");
  EXPECT_EQ(lineWith(LINK{INT64_MIN}), "v = -9223372036854775808\n");
  EXPECT_EQ(lineWith(UINT32{4294967295}), "v = 4294967295\n");
  EXPECT_EQ(lineWith(UINT16{65535}), "v = 65535\n");
  EXPECT_EQ(lineWith(INT16{-32768}), "v = -32768\n");
}

TEST(Dump, ShowsEightBitValuesAsNumbers) {
  EXPECT_EQ(lineWith(UINT8{0}), "v = 0\n");
  EXPECT_EQ(lineWith(UINT8{65}), "v = 65\n");
  EXPECT_EQ(lineWith(UINT8{255}), "v = 255\n");
}

TEST(Dump, ShowsFlagsAsOneAndZero) {
  EXPECT_EQ(lineWith(true), "v = 1\n");
  EXPECT_EQ(lineWith(false), "v = 0\n");
}

TEST(Dump, ShowsRealsInTheDefaultForm) {
  using Limits = std::numeric_limits<REAL>;
  EXPECT_EQ(lineWith(0.0), "v = 0\n");
  EXPECT_EQ(lineWith(-0.0), "v = -0\n");
  EXPECT_EQ(lineWith(1.5), "v = 1.5\n");
  EXPECT_EQ(lineWith(1.0 / 3), "v = 0.333333\n");
  EXPECT_EQ(lineWith(123456.0), "v = 123456\n");
  EXPECT_EQ(lineWith(1234567.0), "v = 1.23457e+06\n");
  EXPECT_EQ(lineWith(0.0001), "v = 0.0001\n");
  EXPECT_EQ(lineWith(0.00001), "v = 1e-05\n");
  EXPECT_EQ(lineWith(-Limits::max()), "v = -1.79769e+308\n");
  EXPECT_EQ(lineWith(Limits::infinity()), "v = inf\n");
}

TEST(Dump, ShowsAllCharactersOfAFixedText) {
  EXPECT_EQ(shown([](Dump& dump) { dump.line("v = ", "a\0\n", 3); }),
            std::string("v = a\0\n\n", 8));
}

TEST(Dump, PutsALineTogetherFromParts) {
  EXPECT_EQ(shown([](Dump& dump) {
              dump.part("flags : a(", true);
              dump.part("), b(", UINT8{66});
              dump.part(")");
              dump.endLine();
            }),
            "flags : a(1), b(66)\n");
}

TEST(Dump, ShowsRawBytesAsTheyAre) {
  const std::vector<UINT8> bytes{'a', 0, 255, '\n', 'b'};
  EXPECT_EQ(shown([&](Dump& dump) { dump.raw(bytes.data(), bytes.size()); }),
            std::string("a\0\xFF\nb", 5));
  EXPECT_EQ(shown([&](Dump& dump) { dump.raw(nullptr, 0); }), "");
}

TEST(Dump, HexDumpShowsCharactersWithoutALineEnd) {
  EXPECT_EQ(shown([](Dump& dump) { dump.hexDump({0x41, 0x42}); }), "data hex dump: AB");
  EXPECT_EQ(shown([](Dump& dump) { dump.hexDump({}); }), "data hex dump: ");
}

TEST(Dump, HexDumpLeavesTheStreamInHexadecimalMode) {
  std::ostringstream os;
  Dump(os, "X").hexDump({0x41});
  os << ' ' << 29;
  EXPECT_EQ(os.str(), "[DEBUG] ==================== X ===================\ndata hex dump: A 1d");
}

TEST(Dump, HexDumpOfNothingLeavesTheStreamInDecimalMode) {
  std::ostringstream os;
  const std::ios_base::fmtflags flags = os.flags();
  Dump(os, "X").hexDump({});
  EXPECT_EQ(os.flags(), flags);
}

TEST(Dump, LeavesTheFormatOfTheStreamAsItWas) {
  std::ostringstream os;
  const std::ios_base::fmtflags flags = os.flags();
  HDBLOCK(1, 2, 3, 4, HDBLOCK::TIME_LOCAL_PC, 0, 0).print(os);
  EXPECT_EQ(os.flags(), flags);
  EXPECT_EQ(os.precision(), 6);
  EXPECT_EQ(os.fill(), ' ');
}

TEST(Dump, EveryLineEndFlushesTheStream) {
  expectFlushesEveryLine(HeaderSection(MDF_Block_ID(0x4448)));
  expectFlushesEveryLine(IDBLOCK("TESTPROG"));
  expectFlushesEveryLine(HDBLOCK(1, 2, 3, 4, HDBLOCK::TIME_LOCAL_PC, 0, 0));
  expectFlushesEveryLine(FHBLOCK(1, 2, 3, 4));
  expectFlushesEveryLine(TXBLOCK("abc", 3));
  expectFlushesEveryLine(MDBLOCK("abc", 3));
  expectFlushesEveryLine(hierarchyWithElement());
  expectFlushesEveryLine(attachmentWithChecksum());
  expectFlushesEveryLine(eventWithLists());
  expectFlushesEveryLine(DGBLOCK(1, 2, 3, DGBLOCK::DG_UINT8));
  expectFlushesEveryLine(CGBLOCK());
  expectFlushesEveryLine(CNBLOCK(CNBLOCK::CN_CHANNELTYPE_MASTER, CNBLOCK::CN_SYNCTYPE_TIME,
                                 CNBLOCK::CN_DATATYPE_UINT_LE, 1, 2, 3));
  expectFlushesEveryLine(SIBLOCK());
  expectFlushesEveryLine(CCBLOCK(CCBLOCK::CC_CONVTYPE_LINEAR));
  expectFlushesEveryLine(DTBLOCK());
  expectFlushesEveryLine(SDBLOCK());
  expectFlushesEveryLine(RDBLOCK(nullptr, 0));
  expectFlushesEveryLine(DLBLOCK(true, 1));
  expectFlushesEveryLine(DZBLOCK(DTBLOCK::MDF_DT_ID, DZBLOCK::DZ_ZIPTYPE_DEFLATE, nullptr, 0));
  expectFlushesEveryLine(HLBLOCK(1, true, DZBLOCK::DZ_ZIPTYPE_DEFLATE));
  expectFlushesEveryLine(SRBLOCK(1, 0.5, SRBLOCK::SR_SYNCTYPE_TIME_SECONDS, 1, 2));
}

TEST(Dump, RowSizeForCallersWhoLayOutRows) { EXPECT_EQ(HEXDUMP_DEFAULT_ROWSIZE, 16U); }

}  // namespace
