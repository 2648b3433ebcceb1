#include "reader/data/data_stream.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "reader/bytes/input_file.h"
#include "sample_file.h"
#include "tools/support/temp_file.h"

using namespace mdf_reader;
using mdf_tests::Bytes;
using mdf_tests::SampleFile;
using mdf_tests::TempFile;

namespace {

/// The stream behind a link of a file.
class Streamed {
 public:
  Streamed(const std::string& bytes, std::uint64_t link, bool is_unfinished = false,
           DataStream::Access access = DataStream::Access::forward)
      : path_(bytes), file_(path_.path()), stream_(file_, link, is_unfinished, access, report_) {}

  /// All bytes, in pieces of seven.
  std::string all() {
    std::string bytes;
    for (std::string_view piece = stream_.at(0, 7); !piece.empty();
         piece = stream_.at(bytes.size(), 7)) {
      bytes += piece;
    }
    return bytes;
  }

  DataStream& stream() { return stream_; }
  const std::vector<std::string>& findings() const { return findings_; }

 private:
  TempFile path_;
  InputFile file_;
  std::vector<std::string> findings_;
  FindingSink report_ = [this](const Finding& finding) { findings_.push_back(finding.sentence); };
  DataStream stream_;
};

/// The bytes at a link, where nothing is wrong with them.
std::string bytesAt(const SampleFile& file, std::uint64_t link) {
  Streamed streamed(file.bytes(), link);
  std::string all = streamed.all();
  EXPECT_EQ(streamed.findings(), std::vector<std::string>());
  EXPECT_EQ(streamed.stream().size(), all.size());
  return all;
}

TEST(DataStream, NoLink) { EXPECT_EQ(bytesAt(SampleFile(), 0), ""); }

TEST(DataStream, PlainBlocksOfEachType) {
  for (const char* letters : {"DT", "SD", "RD", "DV"}) {
    SampleFile file;
    const std::uint64_t data = file.add(letters, {}, "the quick brown fox");
    EXPECT_EQ(bytesAt(file, data), "the quick brown fox");
  }
}

TEST(DataStream, ListsWithPiecesOfAnyLength) {
  SampleFile file;
  const std::uint64_t a = file.data("abc");
  const std::uint64_t empty = file.data("");
  const std::uint64_t b = file.add("DT", {}, "defghijklmnop");
  const std::uint64_t c = file.data("q");
  const std::uint64_t second = file.list({c, empty});
  const std::uint64_t first = file.list({a, empty, b}, second);
  EXPECT_EQ(bytesAt(file, first), "abcdefghijklmnopq");
  EXPECT_EQ(bytesAt(file, file.add("HL", {first}, Bytes().zeros(8))), "abcdefghijklmnopq");
}

TEST(DataStream, HeaderListThatCountsNoLink) {
  SampleFile file;
  const std::uint64_t first = file.list({file.data("abc")});
  const std::uint64_t header = file.add("HL", {first}, Bytes().zeros(8));
  file.write(header + 16, Bytes().u64(0));
  EXPECT_EQ(bytesAt(file, header), "abc");
}

TEST(DataStream, ListsOfVersion42) {
  SampleFile file;
  const std::uint64_t a = file.add("DV", {}, "abc");
  const std::uint64_t b = file.add("DV", {}, "def");
  const std::uint64_t invalid = file.add("DI", {}, "xyz");
  const std::uint64_t list =
      file.add("LD", {0, a, b, invalid, invalid}, Bytes().u32(0x80000001U).u32(2).u64(3));
  EXPECT_EQ(bytesAt(file, list), "abcdef");
}

TEST(DataStream, LinksThatLeadNowhereInListsMadeInAdvance) {
  SampleFile file;
  const std::uint64_t a = file.data("abc");
  EXPECT_EQ(bytesAt(file, file.list({0, a, 0})), "abc");
}

TEST(DataStream, ZippedBlocks) {
  SampleFile file;
  const std::uint64_t a = file.zipped("DT", "the quick ");
  const std::uint64_t b = file.zipped("DT", "brown fox");
  EXPECT_EQ(bytesAt(file, a), "the quick ");
  EXPECT_EQ(bytesAt(file, file.list({a, b})), "the quick brown fox");
}

TEST(DataStream, TransposedBlocks) {
  SampleFile file;
  // Rows "abc", "def", "ghi" and "jk", which is none.
  EXPECT_EQ(bytesAt(file, file.zipped("DT", "adgbehcfijk", 1, 3)), "abcdefghijk");
}

TEST(DataStream, AnyOffsetOfAListOfBoth) {
  SampleFile file;
  const std::uint64_t list =
      file.list({file.zipped("SD", "0123456789"), file.add("SD", {}, "abcdefghij"),
                 file.zipped("SD", "ABCDEFGHIJ")});
  const std::string expected = "0123456789abcdefghijABCDEFGHIJ";
  Streamed streamed(file.bytes(), list, false, DataStream::Access::scattered);
  for (const std::size_t offset : {25U, 0U, 15U, 9U, 29U, 19U, 5U}) {
    for (const std::size_t count : {1U, 4U, 12U, 30U}) {
      EXPECT_EQ(streamed.stream().at(offset, count), expected.substr(offset, count));
    }
  }
  EXPECT_EQ(streamed.stream().at(30, 1), "");
  EXPECT_EQ(streamed.stream().at(UINT64_MAX, 5), "");
  EXPECT_TRUE(streamed.stream().reaches(30));
  EXPECT_FALSE(streamed.stream().reaches(31));
}

/// What is found wrong with the data, and what is read of it.
void expectFinding(const SampleFile& file, std::uint64_t link, const std::string& finding,
                   const std::string& bytes) {
  Streamed streamed(file.bytes(), link);
  EXPECT_EQ(streamed.all(), bytes);
  EXPECT_EQ(streamed.findings(), std::vector<std::string>{finding});
}

TEST(DataStream, LinkToSomethingElse) {
  const SampleFile file;
  expectFinding(file, 64, "expected a block with data, found none", "");
  expectFinding(file, 99999, "expected a block with data, found none", "");
}

TEST(DataStream, ListWithALinkToSomethingElse) {
  SampleFile file;
  const std::uint64_t a = file.data("abc");
  const std::uint64_t list = file.list({a, SampleFile::header, a});
  expectFinding(file, list, "expected data at 64 (0x40), found none", "abc");
}

TEST(DataStream, ListsInACircle) {
  SampleFile file;
  const std::uint64_t list = file.list({file.data("abc")});
  file.link(list, 0, list);
  expectFinding(file, list, "expected the chain of lists to end, found this one again", "abc");
}

TEST(DataStream, SameBlockAgainAndAgainIsLimitedByTheFile) {
  SampleFile file;
  const std::uint64_t data = file.data(std::string(1000, 'x'));
  const std::uint64_t list = file.list(std::vector<std::uint64_t>(100, data));
  Streamed streamed(file.bytes(), list);
  EXPECT_EQ(streamed.stream().size(), 2000U);  // the file has 2952 bytes
  EXPECT_EQ(streamed.findings().size(), 1U);
}

TEST(DataStream, LengthBelowTheHeader) {
  SampleFile file;
  const std::uint64_t data = file.data("abc");
  file.write(data + 8, Bytes().u64(23));
  expectFinding(file, data, "expected a length of at least 24, found 23", "");
}

TEST(DataStream, LengthBeyondTheFile) {
  SampleFile file;
  const std::uint64_t data = file.data("abc");
  file.write(data + 8, Bytes().u64(100));
  expectFinding(file, data, "expected the 100 bytes of ##DT, found 27 up to the file's end", "abc");
}

TEST(DataStream, LinksOfADataBlockThatAreMoreThanTheFile) {
  SampleFile file;
  const std::uint64_t data = file.data("abc");
  file.write(data + 16, Bytes().u64(UINT64_MAX));
  expectFinding(file, data, "expected no links in a data block, found 18446744073709551615", "");
}

TEST(DataStream, OpenLastBlockGoesOnToTheEnd) {
  for (const std::uint64_t length : {0U, 24U}) {
    SampleFile file;
    const std::uint64_t data = file.data("abcdefgh, and so on");
    file.write(data + 8, Bytes().u64(length));
    Streamed unfinished(file.bytes(), data, true);
    EXPECT_EQ(unfinished.all(), "abcdefgh, and so on");
    EXPECT_EQ(unfinished.findings(), std::vector<std::string>());
    EXPECT_EQ(Streamed(file.bytes(), data, false).all(), "");
  }
}

TEST(DataStream, EmptyBlocksBeforeOthersStayEmptyInAnUnfinishedFile) {
  SampleFile file;
  const std::uint64_t empty = file.data("");
  file.text("behind it");
  EXPECT_EQ(Streamed(file.bytes(), empty, true).all(), "");
  const std::uint64_t last = file.data("");
  EXPECT_EQ(Streamed(file.bytes(), last, true).all(), "");
}

TEST(DataStream, LengthBeyondTheFileIsNoFindingInAnUnfinishedFile) {
  SampleFile file;
  const std::uint64_t data = file.data("abc");
  file.write(data + 8, Bytes().u64(100));
  Streamed unfinished(file.bytes(), data, true);
  EXPECT_EQ(unfinished.all(), "abc");
  EXPECT_EQ(unfinished.findings(), std::vector<std::string>());
}

TEST(DataStream, BrokenZippedData) {
  SampleFile file;
  const std::uint64_t a = file.data("abc");
  const std::uint64_t zipped = file.zipped("DT", "the quick brown fox");
  file.write(zipped + 48, "\x01\x02");
  expectFinding(file, file.list({a, zipped, a}),
                "expected a zlib stream, found a damaged one or other bytes", "abc");
}

TEST(DataStream, ZippedDataOfAnotherLength) {
  SampleFile file;
  const std::uint64_t zipped = file.zipped("DT", "the quick");
  file.write(zipped + 32, Bytes().u64(8));
  expectFinding(file, zipped, "expected 8 bytes of zipped data, found more", "");
  file.write(zipped + 32, Bytes().u64(10));
  expectFinding(file, zipped, "expected 10 bytes of zipped data, found 9", "the quick");
}

TEST(DataStream, ZippedDataThatCannotBeAsLongAsItSays) {
  SampleFile file;
  const std::uint64_t zipped = file.zipped("DT", "abc");  // a stream of 14 bytes
  file.write(zipped + 32, Bytes().u64(UINT64_MAX));
  expectFinding(file, zipped,
                "expected at most 14448 bytes of zipped data, found 18446744073709551615", "");
}

TEST(DataStream, ZippedBytesBeyondTheBlock) {
  SampleFile file;
  const std::uint64_t zipped = file.zipped("DT", "abc");
  file.write(zipped + 40, Bytes().u64(15));
  expectFinding(file, zipped, "expected 15 zipped bytes, found 14", "");
}

TEST(DataStream, UnknownZipType) {
  SampleFile file;
  expectFinding(file, file.zipped("DT", "abc", 7), "expected a known zip type, found 7", "");
}

}  // namespace
