#include "reader/data/data_stream.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <string>
#include <vector>

#include "exported.h"
#include "reader/bytes/input_file.h"
#include "tools/support/temp_file.h"

using namespace mdf_reader;
using namespace mdf_tests;

namespace {

/// The data that a link of a file leads to.
class Streamed {
 public:
  Streamed(const std::string& bytes, std::uint64_t link,
           DataStream::Access access = DataStream::Access::forward, std::size_t threads = 2)
      : path_(bytes),
        input_(path_.path()),
        file_(input_, threads),
        stream_(file_, {FileBuilder::header, link}, access, report_) {}

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
  InputFile input_;
  DataFile file_;
  std::vector<std::string> findings_;
  FindingSink report_ = [this](const Finding& finding) { findings_.push_back(finding.sentence); };
  DataStream stream_;
};

/// The bytes at a link, where nothing is wrong with them.
std::string bytesAt(const FileBuilder& file, std::uint64_t link) {
  Streamed streamed(file.bytes(), link);
  std::string all = streamed.all();
  EXPECT_EQ(streamed.findings(), std::vector<std::string>());
  EXPECT_EQ(streamed.stream().size(), all.size());
  return all;
}

TEST(DataStream, NoLink) { EXPECT_EQ(bytesAt(FileBuilder(), 0), ""); }

TEST(DataStream, PlainBlocksOfEachType) {
  for (const char* letters : {"DT", "SD", "RD", "DV"}) {
    FileBuilder file;
    const std::uint64_t data = file.add(letters, {}, "the quick brown fox");
    EXPECT_EQ(bytesAt(file, data), "the quick brown fox");
  }
}

TEST(DataStream, ListsWithPiecesOfAnyLength) {
  FileBuilder file;
  const std::uint64_t a = file.addData("abc");
  const std::uint64_t empty = file.addData("");
  const std::uint64_t b = file.add("DT", {}, "defghijklmnop");
  const std::uint64_t c = file.addData("q");
  const std::uint64_t second = addList(file, {c, empty});
  const std::uint64_t first = addList(file, {a, empty, b}, second);
  EXPECT_EQ(bytesAt(file, first), "abcdefghijklmnopq");
  EXPECT_EQ(bytesAt(file, file.add("HL", {first}, Bytes().zeros(8))), "abcdefghijklmnopq");
}

/// Blocks that are long enough to be unzipped ahead, some of them, and the data of all.
std::string addLongBlocks(FileBuilder& file, std::vector<std::uint64_t>& blocks) {
  std::string all;
  for (const char letter : std::string("abcdefghij")) {
    const std::string data((letter == 'e' ? 10 : 70000), letter);
    blocks.push_back(letter == 'g' ? file.addData(data) : addZipped(file, "DT", data));
    all += data;
  }
  return all;
}

TEST(DataStream, BlocksThatAreUnzippedAhead) {
  FileBuilder file;
  std::vector<std::uint64_t> blocks;
  const std::string all = addLongBlocks(file, blocks);
  const std::uint64_t list = addList(file, blocks);
  for (const std::size_t threads : {1U, 3U, 100U}) {
    Streamed streamed(file.bytes(), list, DataStream::Access::forward, threads);
    EXPECT_EQ(streamed.stream().size(), all.size());
    EXPECT_TRUE(streamed.all() == all) << threads;
    for (const std::size_t offset : {200000U, 1U, 69999U, 140000U, 600000U, 210000U, 250000U}) {
      EXPECT_EQ(streamed.stream().at(offset, 20), all.substr(offset, 20)) << offset;
    }
    EXPECT_TRUE(streamed.all() == all) << threads;
    EXPECT_EQ(streamed.findings(), std::vector<std::string>());
  }
}

TEST(DataStream, StreamsShareTheRoomForWhatIsUnzippedAhead) {
  FileBuilder builder;
  std::vector<std::uint64_t> blocks;
  const std::string all = addLongBlocks(builder, blocks);
  const DataLink link{FileBuilder::header, addList(builder, blocks)};
  const TempFile path(builder.bytes());
  InputFile input(path.path());
  DataFile file(input, 3);
  file.roomAhead().bytes = 150000;
  const FindingSink none = [](const Finding& finding) { ADD_FAILURE() << finding.sentence; };
  {
    DataStream one(file, link, DataStream::Access::forward, none);
    DataStream other(file, link, DataStream::Access::forward, none);
    EXPECT_EQ(one.size(), other.size());
    for (const std::size_t offset : {0U, 70000U, 140000U}) {
      EXPECT_EQ(one.at(offset, 9), all.substr(offset, 9));
      EXPECT_EQ(other.at(offset, 9), all.substr(offset, 9));
    }
    EXPECT_EQ(file.roomAhead().bytes, 80000U);
  }
  EXPECT_EQ(file.roomAhead().bytes, 150000U);
}

TEST(DataStream, BlocksAheadThatAreDamaged) {
  FileBuilder file;
  std::vector<std::uint64_t> blocks;
  const std::string all = addLongBlocks(file, blocks);
  const std::uint64_t list = addList(file, blocks);
  file.write(blocks[8] + 48 + 20, "damaged");
  for (const std::size_t threads : {1U, 4U}) {
    Streamed streamed(file.bytes(), list, DataStream::Access::forward, threads);
    EXPECT_EQ(streamed.stream().size(), all.size());
    EXPECT_TRUE(streamed.all() == all.substr(0, 7 * 70000 + 10)) << threads;
    EXPECT_EQ(
        streamed.findings(),
        std::vector<std::string>{"expected a zlib stream, found a damaged one or other bytes; "
                                 "140000 bytes were not read"});
  }
}

TEST(DataStream, AnyOffsetOfAListOfBoth) {
  FileBuilder file;
  const std::uint64_t list =
      addList(file, {addZipped(file, "SD", "0123456789"), file.add("SD", {}, "abcdefghij"),
                     addZipped(file, "SD", "ABCDEFGHIJ")});
  const std::string expected = "0123456789abcdefghijABCDEFGHIJ";
  Streamed streamed(file.bytes(), list, DataStream::Access::scattered);
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

/// A block of three bytes with another number at a place of its header.
std::uint64_t addLying(FileBuilder& file, std::uint64_t place, std::uint64_t number) {
  const std::uint64_t data = file.addData("abc");
  file.write(data + place, u64(number));
  return data;
}

/// A zipped block of "the quick" with another number at a place of its fields.
std::uint64_t addLyingZipped(FileBuilder& file, std::uint64_t place, std::uint64_t number) {
  const std::uint64_t zipped = addZipped(file, "DT", "the quick");
  file.write(zipped + place, u64(number));
  return zipped;
}

TEST(DataStream, WhatIsWrongIsFoundAndTheRestIsRead) {
  struct Case {
    std::string finding;
    std::string bytes;
    std::function<std::uint64_t(FileBuilder&)> link;
  };
  constexpr std::uint64_t length = 8;
  constexpr std::uint64_t link_count = 16;
  constexpr std::uint64_t original = 32;
  constexpr std::uint64_t zipped = 40;
  const std::vector<Case> cases = {
      {"expected a block with data at 64 (0x40), found none", "",
       [](FileBuilder&) { return FileBuilder::header; }},
      {"expected a block with data at 99999 (0x1869f), found none", "",
       [](FileBuilder&) { return 99999; }},
      {"expected data at 64 (0x40), found none; 3 bytes were not read", "abc",
       [](FileBuilder& file) {
         const std::uint64_t data = file.addData("abc");
         return addList(file, {data, FileBuilder::header, data});
       }},
      {"expected the chain of lists to end, found this one again", "abc",
       [](FileBuilder& file) {
         const std::uint64_t list = addList(file, {file.addData("abc")});
         file.link(list, 0, list);
         return list;
       }},
      {"expected a length of at least 24, found 23", "",
       [](FileBuilder& file) { return addLying(file, length, 23); }},
      {"expected the 100 bytes of ##DT, found 27 up to the file's end", "abc",
       [](FileBuilder& file) { return addLying(file, length, 100); }},
      {"expected no links in a data block, found 18446744073709551615", "",
       [](FileBuilder& file) { return addLying(file, link_count, UINT64_MAX); }},
      {"expected a zlib stream, found a damaged one or other bytes; 12 bytes were not read", "abc",
       [](FileBuilder& file) {
         const std::uint64_t data = file.addData("abc");
         return addList(file, {data, addLyingZipped(file, 48, 0), data});
       }},
      {"expected 8 bytes of zipped data, found more; 8 bytes were not read", "",
       [](FileBuilder& file) { return addLyingZipped(file, original, 8); }},
      {"expected 10 bytes of zipped data, found 9; 1 byte was not read", "the quick",
       [](FileBuilder& file) { return addLyingZipped(file, original, 10); }},
      {"expected at most 20640 bytes of zipped data, found 18446744073709551615", "",
       [](FileBuilder& file) { return addLyingZipped(file, original, UINT64_MAX); }},
      {"expected 21 zipped bytes, found 20", "",
       [](FileBuilder& file) { return addLyingZipped(file, zipped, 21); }},
      {"expected a known zip type, found 7", "",
       [](FileBuilder& file) {
         return file.add("DZ", {}, zippedFields(3, storedStream("abc"), "DT", 7));
       }},
  };
  for (const Case& each : cases) {
    FileBuilder file;
    const std::uint64_t link = each.link(file);
    Streamed streamed(file.bytes(), link);
    EXPECT_EQ(streamed.all(), each.bytes);
    EXPECT_EQ(streamed.findings(), std::vector<std::string>{each.finding});
  }
}

TEST(DataStream, SameBlockAgainAndAgainIsLimitedByTheFile) {
  FileBuilder file;
  const std::uint64_t data = file.addData(std::string(1000, 'x'));
  const std::uint64_t list = addList(file, std::vector<std::uint64_t>(100, data));
  Streamed streamed(file.bytes(), list);
  EXPECT_EQ(streamed.stream().size(), 2000U);  // the file has 2952 bytes
  EXPECT_EQ(streamed.findings().size(), 1U);
}

/// A file with a data group and the data that a test gives it.
class OpenFile : public FileBuilder {
 public:
  /// @param flags of an unfinished file; -1 for a finished one
  explicit OpenFile(int flags) : FileBuilder(flags < 0 ? "MDF     " : "UnFinMF ") {
    write(60, Bytes().u16(static_cast<std::uint16_t>(std::max(flags, 0))));
    data_group_ = addDataGroup({}, 0);
  }

  std::uint64_t setData(std::uint64_t block) {
    link(data_group_, 2, block);
    return block;
  }
  void setLength(std::uint64_t block, std::uint64_t length) {
    write(block + 8, Bytes().u64(length));
  }

 private:
  std::uint64_t data_group_ = 0;
};

constexpr int last_data_open = 4;

TEST(DataStream, OpenLastBlockGoesOnToTheEndWhateverItsLengthSays) {
  for (const std::uint64_t length : {0U, 24U, 25U, 30U, 42U, 44U, 1000U}) {
    OpenFile file(last_data_open);
    const std::uint64_t data = file.setData(file.addData("abcdefgh, and so on"));
    file.setLength(data, length);
    EXPECT_EQ(bytesAt(file, data), "abcdefgh, and so on") << length;
  }
}

TEST(DataStream, WithoutTheFlagAnEmptyLastBlockIsOpenAndNoOther) {
  OpenFile file(0);
  const std::uint64_t data = file.setData(file.addData("abcdefgh, and so on"));
  file.setLength(data, 24);
  EXPECT_EQ(bytesAt(file, data), "abcdefgh, and so on");
  file.setLength(data, 27);
  EXPECT_EQ(bytesAt(file, data), "abc");
  OpenFile finished(-1);
  const std::uint64_t empty = finished.setData(finished.addData("abc"));
  finished.setLength(empty, 24);
  EXPECT_EQ(bytesAt(finished, empty), "");
}

TEST(DataStream, OpenLastBlockEndsWhereTheNextBlockBegins) {
  OpenFile file(last_data_open);
  const std::uint64_t data = file.setData(file.addData("abcdefgh"));
  file.link(FileBuilder::header, 5, file.text("a comment after the data"));
  for (const std::uint64_t length : {0U, 24U, 40U, 1000U}) {
    file.setLength(data, length);
    EXPECT_EQ(bytesAt(file, data), "abcdefgh") << length;
  }
}

TEST(DataStream, BlocksBeforeTheLastOneEndByTheirLength) {
  OpenFile file(last_data_open);
  const std::uint64_t first = file.addData("abcdefgh");
  const std::uint64_t last = file.addData("ijklmnop");
  file.setData(addList(file, {first, last}));
  file.setLength(first, 27);
  EXPECT_EQ(bytesAt(file, first), "abc");
}

TEST(DataStream, EmptyBlocksBeforeOthersStayEmptyInAnUnfinishedFile) {
  OpenFile file(last_data_open);
  const std::uint64_t empty = file.addData("");
  file.text("that no link leads to");
  EXPECT_EQ(bytesAt(file, file.setData(empty)), "");
  EXPECT_EQ(bytesAt(file, file.setData(file.addData(""))), "");
}

TEST(DataStream, LengthBeyondTheFileIsAFindingUnlessTheBlockIsOpen) {
  OpenFile file(0);
  const std::uint64_t data = file.setData(file.addData("abc"));
  file.setLength(data, 100);
  Streamed streamed(file.bytes(), data);
  EXPECT_EQ(streamed.all(), "abc");
  EXPECT_EQ(
      streamed.findings(),
      std::vector<std::string>{"expected the 100 bytes of ##DT, found 27 up to the file's end"});
}

TEST(DataStream, AListThatIsCutIsAFinding) {
  OpenFile file(0);
  const std::uint64_t first = file.addData("abc");
  const std::uint64_t second = file.addData("def");
  const std::uint64_t list = file.setData(addList(file, {first, second}));
  Streamed streamed(file.bytes().substr(0, static_cast<std::size_t>(list) + 24 + 2 * 8), list);
  EXPECT_EQ(streamed.all(), "abc");
  EXPECT_EQ(streamed.findings(), std::vector<std::string>{"expected the 3 links of ##DL, found 2"});
}

TEST(DataStream, TellsWhereItsBytesStandInTheFile) {
  FileBuilder file;
  const std::uint64_t plain = file.addData("abc");
  const std::uint64_t zipped = addZipped(file, "DT", "defgh");
  Streamed streamed(file.bytes(), addList(file, {plain, zipped, plain}));
  EXPECT_EQ(streamed.stream().size(), 11U);
  EXPECT_EQ(streamed.stream().placeOf(2), plain + 24 + 2);
  EXPECT_EQ(streamed.stream().placeOf(3), zipped);
  EXPECT_EQ(streamed.stream().placeOf(8), plain + 24);
  EXPECT_EQ(streamed.stream().placeOf(11), plain + 24 + 3);
  EXPECT_EQ(Streamed(file.bytes(), 0).stream().placeOf(0), FileBuilder::header);
}

}  // namespace
