// A small broken file for each code, which raises that code alone.

#include <gtest/gtest.h>

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "checking/codes.h"
#include "support/bytes.h"
#include "tools/support/attachment_blocks.h"
#include "tools/support/checked.h"
#include "tools/support/data_blocks.h"
#include "tools/support/small_file.h"

using namespace mdf_tests;

namespace {

const std::string group_path = "HD.hd_dg_first/DG[0].dg_cg_first/CG[0]";
const std::string speed_path = group_path + ".cg_cn_first/CN[1]";

struct BrokenFile {
  std::string bytes;
  std::string problem;  ///< the line without its end
};

BrokenFile broken(const FileBuilder& file, const std::string& problem) {
  return {file.bytes(), problem};
}

SmallFile changedFile(std::uint64_t offset, const std::string& bytes) {
  SmallFile file;
  file.write(offset, bytes);
  return file;
}

SmallFile commentedFile(std::uint64_t comment) {
  SmallFile file;
  file.setComment(comment);
  return file;
}

SmallFile fileWithSpeed(const ChannelSpec& fields) {
  SmallFile file;
  file.setChannel(SmallFile::speed, fields);
  return file;
}

BrokenFile notMdf() {
  return broken(changedFile(0, "m"),
                "0 error not-mdf: expected \"MDF     \" or \"UnFinMF \" at the beginning, found "
                "\"mDF     \"");
}

BrokenFile versionWrong() {
  return broken(SmallFile("MDF     ", 510),
                "0 error version-wrong: expected a version number from 400 to 499, found 510");
}

BrokenFile versionTextWrong() {
  return broken(changedFile(8, "4.11"),
                "0 warning version-text-wrong: expected the version text \"4.10\" for the version "
                "number 410, found \"4.11    \"");
}

BrokenFile headerMissing() {
  return broken(changedFile(66, "XX"),
                "64 error header-missing: expected the header block \"##HD\", found \"##XX\"");
}

BrokenFile fileUnfinished() {
  SmallFile file("UnFinMF ");
  file.write(60, Bytes().u16(1 + 4));
  return broken(file,
                "0 warning file-unfinished: expected a finished file, found an unfinished one; "
                "still open: cycle counters, length of the last data block");
}

BrokenFile linkOutsideFile() {
  return broken(commentedFile(739),
                "64 error link-outside-file: expected hd_md_comment to lead to a block in the file "
                "of 762 bytes, found 739 (0x2e3) [HD]");
}

BrokenFile linkMisaligned() {
  return broken(commentedFile(SmallFile::time_name + 1),
                "64 error link-misaligned: expected hd_md_comment to lead to a block on a multiple "
                "of 8, found 657 (0x291) [HD]");
}

BrokenFile linkInsideBlock() {
  return broken(commentedFile(SmallFile::time_name + 8),
                "64 error link-inside-block: expected hd_md_comment to lead to a block, found 664 "
                "(0x298) inside ##TX at 656 (0x290) [HD]");
}

BrokenFile linkToNoBlock() {
  SmallFile file;
  file.append(Bytes().zeros(100));
  file.setComment(768);
  return broken(file,
                "64 error link-to-no-block: expected hd_md_comment to lead to a block, found none "
                "at 768 (0x300) [HD]");
}

BrokenFile linkWrongType() {
  return broken(commentedFile(SmallFile::speed),
                "64 error link-wrong-type: expected hd_md_comment to lead to TX MD, found ##CN at "
                "496 (0x1f0) [HD]");
}

BrokenFile chainEndless() {
  SmallFile file;
  file.link(SmallFile::speed, 0, SmallFile::time);
  return broken(file,
                "496 error chain-endless: expected cn_cn_next to lead on to the end of its list or "
                "tree, found ##CN at 336 (0x150), which leads here [" +
                    speed_path + "]");
}

BrokenFile blockMisaligned() {
  SmallFile file;
  file.append(Bytes().zeros(7).header("TX", 25, 0).zeros(1));
  file.setComment(769);
  return broken(file,
                "769 warning block-misaligned: expected the block to stand on a multiple of 8, "
                "found 769 (0x301) [HD.hd_md_comment/TX]");
}

BrokenFile lengthTooSmall() {
  return broken(changedFile(SmallFile::speed + 8, Bytes().u64(159)),
                "496 error length-too-small: expected a length that holds the header, 8 links and "
                "72 bytes of fields, found 159 [" +
                    speed_path + "]");
}

BrokenFile lengthPastEnd() {
  return broken(changedFile(SmallFile::data + 8, Bytes().u64(43)),
                "720 error length-past-end: expected the 43 bytes of the block, found 42 up to the "
                "end of the file [HD.hd_dg_first/DG[0].dg_data/DT]");
}

BrokenFile blocksOverlap() {
  return broken(changedFile(SmallFile::time_name + 8, Bytes().u64(33)),
                "656 error blocks-overlap: expected the block to end before the next one, found "
                "##TX at 688 (0x2b0) inside it [" +
                    group_path + ".cg_cn_first/CN[0].cn_tx_name/TX]");
}

BrokenFile linksMissing() {
  return broken(changedFile(SmallFile::data_group + 16, Bytes().u64(3)),
                "168 error links-missing: expected at least 4 links, found 3 "
                "[HD.hd_dg_first/DG[0]]");
}

BrokenFile blockUnreachable() {
  SmallFile file;
  file.text("lost");
  return broken(file,
                "768 warning block-unreachable: expected a link to each block, found none to ##TX "
                "at 768 (0x300) of 29 bytes");
}

BrokenFile countTooLarge() {
  SmallFile file;
  const auto conversion =
      file.add("CC", {0, 0, 0, 0}, Bytes().zeros(6).u16(3).zeros(16).f64(0).f64(1));
  file.link(SmallFile::speed, 4, conversion);
  return broken(file,
                "768 error count-too-large: expected room for the 3 numbers of 8 bytes of "
                "cc_val_count, found room for 2 [" +
                    speed_path + ".cn_cc_conversion/CC]");
}

/// The small file with a list of two data blocks of a record each.
SmallFile fileWithList(const std::string& list_fields) {
  SmallFile file;
  const auto first = file.add("DT", {}, Bytes().zeros(9));
  const auto second = file.add("DT", {}, Bytes().zeros(9));
  file.replaceData(file.add("DL", {0, first, second}, list_fields));
  return file;
}

const std::string list_path = " [HD.hd_dg_first/DG[0].dg_data/DL[0]]";

BrokenFile listCountWrong() {
  return broken(
      fileWithList(Bytes().zeros(4).u32(1).u64(0).u64(9)),
      "848 error list-count-wrong: expected dl_count to be the number of 2 links to data, "
      "found 1" +
          list_path);
}

BrokenFile listOffsetsNotAscending() {
  return broken(fileWithList(Bytes().zeros(4).u32(2).u64(9).u64(0)),
                "848 error list-offsets-not-ascending: expected dl_offset to go up, found 9 and 0 "
                "at 1" +
                    list_path);
}

BrokenFile listOffsetsWrong() {
  return broken(fileWithList(Bytes().zeros(4).u32(2).u64(0).u64(8)),
                "848 error list-offsets-wrong: expected dl_offset to go up by the 9 bytes of data "
                "at dl_data[0], found 0 and 8 at 1" +
                    list_path);
}

BrokenFile equalLengthBroken() {
  return broken(
      fileWithList(Bytes().u8s({1, 0, 0, 0}).u32(2).u64(8)),
      "848 error equal-length-broken: expected 8 bytes of data at dl_data[0], found 9" + list_path);
}

/// The small file with zipped data.
SmallFile fileWithZip(const std::string& contents) {
  SmallFile file;
  file.replaceData(file.add("DZ", {}, contents));
  return file;
}

const std::string zip_path = " [HD.hd_dg_first/DG[0].dg_data/DZ]";

BrokenFile zipLengthWrong() {
  SmallFile file = fileWithZip(zippedFields(18, zippedZeros(18)));
  file.write(768 + 24 + 16, Bytes().u64(30));
  return broken(file,
                "768 error zip-length-wrong: expected the 30 compressed bytes in the block, found "
                "room for 29" +
                    zip_path);
}

BrokenFile zipBroken() {
  std::string stream = zippedZeros(18);
  stream.back() = 2;
  return broken(
      fileWithZip(zippedFields(18, stream)),
      "768 error zip-broken: expected 29 bytes that inflate to 18, found that they cannot "
      "be inflated" +
          zip_path);
}

BrokenFile zipOriginalLengthWrong() {
  return broken(fileWithZip(zippedFields(18, zippedZeros(19))),
                "768 error zip-original-length-wrong: expected 30 bytes that inflate to 18, found "
                "more" +
                    zip_path);
}

BrokenFile textNotTerminated() {
  SmallFile file;
  file.setComment(file.add("TX", {}, "abc"));
  return broken(file,
                "768 warning text-not-terminated: expected a zero byte at the end of the text, "
                "found none in 3 bytes [HD.hd_md_comment/TX]");
}

BrokenFile textNotUtf8() {
  SmallFile file;
  file.setComment(
      file.text("Stra\xDF"
                "e"));
  return broken(file,
                "768 warning text-not-utf8: expected a text in UTF-8, found other bytes "
                "[HD.hd_md_comment/TX]");
}

BrokenFile xmlNotWellFormed() {
  SmallFile file;
  file.setComment(file.metadata("<HDcomment><TX>abc</HDcomment>"));
  return broken(file,
                "768 warning xml-not-well-formed: expected well-formed XML, found \"Start-end tags "
                "mismatch\" at byte 20 [HD.hd_md_comment/MD]");
}

BrokenFile attachmentLengthWrong() {
  SmallFile file;
  const auto attachment = addAttachment(file, {"", "", 1, std::string(16, '\0'), 6, "embed"});
  file.write(attachment + 88, Bytes().u64(6));
  file.link(FileBuilder::header, 3, attachment);
  return broken(file,
                "768 error attachment-length-wrong: expected the 6 embedded bytes in the block, "
                "found room for 5 [HD.hd_at_first/AT[0]]");
}

BrokenFile attachmentDigestWrong() {
  SmallFile file;
  file.link(FileBuilder::header, 3, addAttachment(file, {"", "", 5, "sixteen bytes...", 3, "abc"}));
  return broken(file,
                "768 error attachment-digest-wrong: expected the digest "
                "7369787465656e2062797465732e2e2e of the embedded bytes, found "
                "900150983cd24fb0d6963f7d28e17f72 [HD.hd_at_first/AT[0]]");
}

BrokenFile recordIdSizeWrong() {
  return broken(changedFile(SmallFile::data_group + 56, Bytes().u8(5)),
                "168 error record-id-size-wrong: expected record ids of 0, 1, 2, 4 or 8 bytes, "
                "found dg_rec_id_size 5 [HD.hd_dg_first/DG[0]]");
}

/// The small file with a second channel group, of records of 1 byte, and record ids of 1 byte.
SmallFile fileWithTwoGroups(std::uint64_t second_id, const std::string& data) {
  SmallFile file;
  file.write(SmallFile::data_group + 56, Bytes().u8(1));
  file.setGroup({2, 9, 0, 1});
  file.link(SmallFile::group, 0, file.addChannelGroup({1, 1, 0, second_id}));
  file.replaceData(file.add("DT", {}, data));
  return file;
}

std::string recordWithId(int id, std::size_t size) { return Bytes().u8s({id}).zeros(size); }

BrokenFile recordIdTwice() {
  return broken(fileWithTwoGroups(1, recordWithId(1, 9)),
                "768 error record-id-twice: expected a record id of its own, found 1 as of ##CG at "
                "232 (0xe8) [HD.hd_dg_first/DG[0].dg_cg_first/CG[1]]");
}

BrokenFile recordIdUnknown() {
  return broken(fileWithTwoGroups(2, recordWithId(1, 9) + recordWithId(3, 1)),
                "168 error record-id-unknown: expected a channel group for each record id, found "
                "none for id 3 of the record at byte 10 of the data [HD.hd_dg_first/DG[0]]");
}

BrokenFile recordCutOff() {
  return broken(fileWithTwoGroups(2, recordWithId(1, 9) + recordWithId(2, 1) + recordWithId(1, 8)),
                "168 error record-cut-off: expected the data to end with a whole record, found a "
                "torn record at byte 12 of the data [HD.hd_dg_first/DG[0]]");
}

BrokenFile cycleCountWrong() {
  SmallFile file;
  file.setGroup({3, 9});
  return broken(file,
                "232 error cycle-count-wrong: expected data for 3 records of 9 bytes, found 18 "
                "bytes [" +
                    group_path + "]");
}

BrokenFile dataShared() {
  SmallFile file;
  const auto group = file.addChannelGroup({18, 1});
  file.link(SmallFile::data_group, 0,
            file.add("DG", {0, group, SmallFile::data, 0}, dataGroupFields(0)));
  return broken(file,
                "872 warning data-shared: expected dg_data to lead to data of its own, found data "
                "that another link leads to [HD.hd_dg_first/DG[1]]");
}

BrokenFile channelOutsideRecord() {
  return broken(fileWithSpeed({0, 0, 0, 1, 8, 8}),
                "496 error channel-outside-record: expected the channel within the 9 data bytes of "
                "a record, found its end at bit 73 [" +
                    speed_path + "]");
}

BrokenFile invalidationBitOutsideRecord() {
  SmallFile file;
  file.setGroup({2, 8, 1});
  file.setChannel(SmallFile::speed, {0, 0, 0, 0, 7, 8, 2, 8});
  return broken(file,
                "496 error invalidation-bit-outside-record: expected the invalidation bit within "
                "the 1 invalidation bytes of a record, found bit 8 [" +
                    speed_path + "]");
}

BrokenFile valueOutsideSignalData() {
  SmallFile file;
  file.setChannel(SmallFile::speed, {1, 0, 7, 0, 8, 8});
  file.write(SmallFile::end - 1, "\x03");
  file.link(SmallFile::speed, 5, file.add("SD", {}, Bytes().u32(2).text("ok")));
  return broken(file,
                "496 error value-outside-signal-data: expected a value of each record in the 6 "
                "bytes of signal data, found 1 outside, first that of record 1 at byte 3 [" +
                    speed_path + "]");
}

BrokenFile masterMissing() {
  SmallFile file;
  file.setChannel(SmallFile::time, {0, 0, 4, 0, 0, 64});
  return broken(file,
                "232 note master-missing: expected a master channel among the channels, found none "
                "[" +
                    group_path + "]");
}

BrokenFile masterTwice() {
  return broken(fileWithSpeed({2, 1, 0, 0, 8, 8}),
                "496 warning master-twice: expected one master of synchronisation type 1, found "
                "another, ##CN at 336 (0x150) [" +
                    speed_path + "]");
}

BrokenFile mastersOverlap() {
  return broken(fileWithSpeed({2, 2, 0, 0, 7, 8}),
                "496 error masters-overlap: expected masters with bits of their own, found that it "
                "shares bit 56 with ##CN at 336 (0x150) [" +
                    speed_path + "]");
}

/// What a file without records comes to whose list of values has these links behind the next one,
/// and these fields.
std::string checkedValueList(std::vector<std::uint64_t> links, const std::string& fields) {
  SmallFile file("MDF     ", 420);
  file.setGroup({0, 9});
  links.insert(links.begin(), 0);
  file.replaceData(file.add("LD", links, fields));
  return checkedBytes(file.bytes());
}

const std::vector<BrokenFile (*)()> makers = {notMdf,
                                              versionWrong,
                                              versionTextWrong,
                                              headerMissing,
                                              fileUnfinished,
                                              linkOutsideFile,
                                              linkMisaligned,
                                              linkInsideBlock,
                                              linkToNoBlock,
                                              linkWrongType,
                                              chainEndless,
                                              blockMisaligned,
                                              lengthTooSmall,
                                              lengthPastEnd,
                                              blocksOverlap,
                                              linksMissing,
                                              blockUnreachable,
                                              countTooLarge,
                                              listCountWrong,
                                              listOffsetsNotAscending,
                                              listOffsetsWrong,
                                              equalLengthBroken,
                                              zipLengthWrong,
                                              zipBroken,
                                              zipOriginalLengthWrong,
                                              textNotTerminated,
                                              textNotUtf8,
                                              xmlNotWellFormed,
                                              attachmentLengthWrong,
                                              attachmentDigestWrong,
                                              recordIdSizeWrong,
                                              recordIdTwice,
                                              recordIdUnknown,
                                              recordCutOff,
                                              cycleCountWrong,
                                              dataShared,
                                              channelOutsideRecord,
                                              invalidationBitOutsideRecord,
                                              valueOutsideSignalData,
                                              masterMissing,
                                              masterTwice,
                                              mastersOverlap};

/// The files by the codes that their problems have.
std::map<std::string, BrokenFile> brokenFiles() {
  std::map<std::string, BrokenFile> files;
  for (BrokenFile (*const make)() : makers) {
    const BrokenFile file = make();
    const std::string before_code = file.problem.substr(0, file.problem.find(": "));
    files[before_code.substr(before_code.rfind(' ') + 1)] = file;
  }
  return files;
}

class BrokenFiles : public testing::TestWithParam<std::string> {};

TEST_P(BrokenFiles, RaiseTheirCodeAlone) {
  const BrokenFile file = brokenFiles().at(GetParam());
  EXPECT_EQ(checkedBytes(file.bytes), file.problem + "\n");
}

/// An array whose elements have the record ids 0 and 1.
TEST(BrokenFiles, ElementsWithRecordsOfTheirOwn) {
  SmallFile file;
  const auto counts = [](std::uint64_t second) { return Bytes().u64(2).u64(1).u64(second).str(); };
  const std::string fields = Bytes().u8(0).u8(1).u16(1).zeros(12);
  const auto array = file.add("CA", {0}, fields + counts(1));
  file.link(SmallFile::speed, 1, array);
  file.setGroup({1, 9});
  file.write(SmallFile::data_group + 56, Bytes().u8(1));
  file.replaceData(file.add("DT", {}, Bytes().zeros(10).u8(1).zeros(9)));
  EXPECT_EQ(checkedBytes(file.bytes()), "");
  file.write(array + 32 + fields.size(), counts(2));
  EXPECT_EQ(checkedBytes(file.bytes()),
            "232 error cycle-count-wrong: expected 2 records with id 1, found 1 "
            "[HD.hd_dg_first/DG[0].dg_cg_first/CG[0]]\n");
  file.write(array + 32 + 1, Bytes().u8(0));
  EXPECT_EQ(checkedBytes(file.bytes()),
            "232 error cycle-count-wrong: expected data for 1 records of 10 bytes, found 20 bytes "
            "[HD.hd_dg_first/DG[0].dg_cg_first/CG[0]]\n");
}

TEST(BrokenFiles, ListsOfValues) {
  const std::string path = " [HD.hd_dg_first/DG[0].dg_data/LD[0]]\n";
  EXPECT_EQ(checkedValueList({0, 0, 0}, Bytes().u32(0x80000001U).u32(2).u64(1)),
            "768 error links-missing: expected 4 links after the first 1, as its counts and flags "
            "say, found 3" +
                path);
  EXPECT_EQ(checkedValueList({0, 0}, Bytes().u32(0).u32(2).u64(0)),
            "768 error count-too-large: expected room for the 2 numbers of 8 bytes of ld_count, "
            "found room for 1" +
                path);
  EXPECT_EQ(checkedValueList({0, SmallFile::time}, Bytes().u32(0x80000001U).u32(1).u64(1)),
            "768 error link-wrong-type: expected ld_invalidation_data[0] to lead to DI RI DZ, "
            "found ##CN at 336 (0x150)" +
                path);
}

std::vector<std::string> allWords() {
  std::vector<std::string> words;
  for (const mdf_tools::CodeText& code : mdf_tools::allCodes()) {
    words.emplace_back(code.word);
  }
  return words;
}

std::string testName(const testing::TestParamInfo<std::string>& info) {
  std::string name = info.param;
  for (char& character : name) {
    character = character == '-' ? '_' : character;
  }
  return name;
}

INSTANTIATE_TEST_SUITE_P(OfEachCode, BrokenFiles, testing::ValuesIn(allWords()), testName);

}  // namespace
