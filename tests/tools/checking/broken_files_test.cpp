// Every sentence of a check, each raised alone by a small broken file. Other tests have the short
// forms of support/checked.h.

#include <gtest/gtest.h>

#include <cstdint>
#include <set>
#include <string>
#include <vector>

#include "reader/blocks/codes.h"
#include "support/bytes.h"
#include "tools/support/checked.h"
#include "tools/support/data_blocks.h"
#include "tools/support/small_file.h"

using namespace mdf_tests;

namespace {

const std::string group_path = "HD.hd_dg_first/DG[0].dg_cg_first/CG[0]";
const std::string in_group = " [" + group_path + "]";
const std::string in_time_name = " [" + group_path + ".cg_cn_first/CN[0].cn_tx_name/TX]";
const std::string speed_path = group_path + ".cg_cn_first/CN[1]";
const std::string in_speed = " [" + speed_path + "]";
const std::string in_array = " [" + speed_path + ".cn_composition/CA]";
const std::string in_data = " [HD.hd_dg_first/DG[0].dg_data/DT]";
const std::string in_data_group = " [HD.hd_dg_first/DG[0]]";
const std::string in_list = " [HD.hd_dg_first/DG[0].dg_data/DL[0]]";
const std::string in_value_list = " [HD.hd_dg_first/DG[0].dg_data/LD[0]]";
const std::string in_zip = " [HD.hd_dg_first/DG[0].dg_data/DZ]";
const std::string in_attachment = " [HD.hd_at_first/AT[0]]";

struct BrokenFile {
  std::string problem;  ///< the line without its end
  std::string bytes;
};

using BrokenFiles = std::vector<BrokenFile>;

/// The small file with what is done to it.
std::string made(void (*change)(SmallFile&), const std::string& file_word = "MDF     ",
                 unsigned version = 410) {
  SmallFile file(file_word, version);
  change(file);
  return file.bytes();
}

std::string changed(std::uint64_t offset, const std::string& bytes) {
  SmallFile file;
  file.write(offset, bytes);
  return file.bytes();
}

std::string unfinished(int flags) {
  SmallFile file("UnFinMF ");
  file.write(60, Bytes().u8s({flags}));
  return file.bytes();
}

std::string commented(std::uint64_t comment) {
  SmallFile file;
  file.setComment(comment);
  return file.bytes();
}

/// With bytes after the last block, and a comment that stands among them.
std::string commentedAfter(const std::string& bytes, std::uint64_t comment) {
  SmallFile file;
  file.append(bytes);
  file.setComment(comment);
  return file.bytes();
}

std::string withText(const std::string& letters, const std::string& contents) {
  SmallFile file;
  file.setComment(file.add(letters, {}, contents));
  return file.bytes();
}

std::string withSpeed(const ChannelSpec& spec, const GroupSpec& group = {2, 9}) {
  SmallFile file;
  file.setGroup(group);
  file.setChannel(SmallFile::speed, spec);
  return file.bytes();
}

BrokenFiles brokenFrames() {
  return {
      {"0 error not-mdf: expected \"MDF     \" or \"UnFinMF \" at the beginning, found "
       "\"mDF     \"",
       changed(0, "m")},
      {"0 error not-mdf: this is not an MDF file: it begins with \"MDF\"", "MDF"},
      {"0 error version-wrong: expected a version number from 400 to 499, found 510",
       SmallFile("MDF     ", 510).bytes()},
      {"0 warning version-text-wrong: expected the version text \"4.10\" for the version number "
       "410, found \"4.11    \"",
       changed(8, "4.11")},
      {"64 error header-missing: expected the header block \"##HD\", found \"##XX\"",
       changed(66, "XX")},
      {"0 warning file-unfinished: expected a finished file, found an unfinished one; still open: "
       "nothing that the standard flags name",
       unfinished(0)},
      {"0 warning file-unfinished: expected a finished file, found an unfinished one; still open: "
       "cycle counts of channel groups, cycle counts of sample reductions, length of the last data "
       "block, length of the last reduction data block, last data list, data bytes of "
       "variable-length groups, offsets of variable-length channels",
       unfinished(0x7F)},
  };
}

BrokenFiles brokenLinks() {
  const std::string comment = ": expected hd_md_comment to lead to ";
  return {
      {"64 error link-outside-file" + comment +
           "a block in the file of 762 bytes, found 739 (0x2e3) [HD]",
       commented(739)},
      {"64 error link-misaligned" + comment + "a block on a multiple of 8, found 657 (0x291) [HD]",
       commented(SmallFile::time_name + 1)},
      {"64 error link-inside-block" + comment +
           "a block, found 664 (0x298) inside ##TX at 656 (0x290) [HD]",
       commented(SmallFile::time_name + 8)},
      {"64 error link-inside-block" + comment +
           "a block, found 40 (0x28) inside the identification [HD]",
       commented(40)},
      {"64 error link-to-no-block" + comment + "a block, found none at 768 (0x300) [HD]",
       commentedAfter(Bytes().zeros(100), 768)},
      {"64 error link-wrong-type" + comment + "TX MD, found ##CN at 496 (0x1f0) [HD]",
       commented(SmallFile::speed)},
      {"496 error chain-endless: expected cn_cn_next to lead on to the end of its list or tree, "
       "found ##CN at 336 (0x150), which leads here" +
           in_speed,
       made([](SmallFile& file) { file.link(SmallFile::speed, 0, SmallFile::time); })},
      {"496 error link-unknown-type: expected cn_cn_next to lead to CN, found ##QX at 768 (0x300)" +
           in_speed,
       made([](SmallFile& file) { file.link(SmallFile::speed, 0, file.add("QX", {}, "...")); })},
      {"768 error chain-shared: expected cg_cn_first to lead to a block of its own, found ##CN at "
       "496 (0x1f0), which ##CN at 336 (0x150) leads to "
       "[HD.hd_dg_first/DG[1].dg_cg_first/CG[0]]",
       made([](SmallFile& file) {
         const auto group =
             file.add("CG", {0, SmallFile::speed, 0, 0, 0, 0}, GroupSpec{0, 9}.fields());
         file.link(SmallFile::data_group, 0, file.add("DG", {0, group, 0, 0}, dataGroupFields(0)));
       })},
  };
}

std::string withConversion(const std::string& contents) {
  SmallFile file;
  file.link(SmallFile::speed, 4, file.add("CC", {0, 0, 0, 0}, contents));
  return file.bytes();
}

/// What a file without records says whose list of values has these links after the next one.
std::string withValueList(std::vector<std::uint64_t> links, const std::string& fields) {
  SmallFile file("MDF     ", 420);
  file.setGroup({0, 9});
  links.insert(links.begin(), 0);
  file.replaceData(file.add("LD", links, fields));
  return file.bytes();
}

std::string withBytesAfter(const std::string& bytes) {
  SmallFile file;
  file.append(bytes);
  return file.bytes();
}

BrokenFiles brokenBlocks() {
  return {
      {"769 warning block-misaligned: expected the block to stand on a multiple of 8, found 769 "
       "(0x301) [HD.hd_md_comment/TX]",
       commentedAfter(Bytes().zeros(7).header("TX", 25, 0).zeros(1), 769)},
      {"496 error length-too-small: expected a length that holds the header, 8 links and 72 bytes "
       "of fields, found 159" +
           in_speed,
       changed(SmallFile::speed + 8, Bytes().u64(159))},
      {"720 error length-past-end: expected the 43 bytes of the block, found 42 up to the end of "
       "the file [HD.hd_dg_first/DG[0].dg_data/DT]",
       changed(SmallFile::data + 8, Bytes().u64(43))},
      {"656 error blocks-overlap: expected the block to end before the next one, found ##TX at 688 "
       "(0x2b0) inside it" +
           in_time_name,
       changed(SmallFile::time_name + 8, Bytes().u64(33))},
      {"168 error links-missing: expected at least 4 links, found 3" + in_data_group,
       changed(SmallFile::data_group + 16, Bytes().u64(3))},
      {"768 error links-missing: expected 4 links after the first 1, as its counts and flags say, "
       "found 3" +
           in_value_list,
       withValueList({0, 0, 0}, Bytes().u32(0x80000001U).u32(2).u64(1))},
      {"768 error link-wrong-type: expected ld_invalidation_data[0] to lead to DI RI DZ, found "
       "##CN "
       "at 336 (0x150)" +
           in_value_list,
       withValueList({0, SmallFile::time}, Bytes().u32(0x80000001U).u32(1).u64(1))},
      {"768 warning block-unreachable: expected a link to each block, found none to ##TX at 768 "
       "(0x300) of 29 bytes",
       made([](SmallFile& file) { file.text("lost"); })},
      {"872 warning link-count-wrong: expected the link count 1 by the length of 40, found 0 "
       "[HD.hd_dg_first/DG[0].dg_data/HL]",
       made([](SmallFile& file) {
         const auto list =
             file.add("DL", {0, file.addData(Bytes().zeros(18))}, Bytes().zeros(4).u32(1).u64(0));
         const auto header_list = file.add("HL", {list}, Bytes().zeros(8));
         file.replaceData(header_list);
         file.write(header_list + 16, Bytes().u64(0));
       })},
      {"768 error data-with-links: expected data without links, found 1 "
       "[HD.hd_dg_first/DG[0].dg_data/DT]",
       made([](SmallFile& file) { file.replaceData(file.add("DT", {0}, Bytes().zeros(18))); })},
      {"769 warning bytes-outside-blocks: expected each byte in a block, found 4 bytes outside",
       withBytesAfter(Bytes().zeros(7).text("lost").zeros(9))},
      {"768 error count-too-large: expected room for the 3 numbers of 8 bytes of cc_val_count, "
       "found room for 2 [" +
           speed_path + ".cn_cc_conversion/CC]",
       withConversion(Bytes().zeros(6).u16(3).zeros(16).f64(0).f64(1))},
      {"768 error count-too-large: expected room for the 2 numbers of 8 bytes of ld_count, found "
       "room for 1" +
           in_value_list,
       withValueList({0, 0}, Bytes().u32(0).u32(2).u64(0))},
  };
}

/// The small file with a list of two data blocks of a record each.
std::string withList(const std::string& list_fields) {
  SmallFile file;
  const auto first = file.addData(Bytes().zeros(9));
  const auto second = file.addData(Bytes().zeros(9));
  file.replaceData(file.add("DL", {0, first, second}, list_fields));
  return file.bytes();
}

std::string withZip(std::uint64_t original_size, const std::string& stream,
                    std::uint64_t stream_size = 29) {
  SmallFile file;
  file.replaceData(file.add("DZ", {}, zippedFields(original_size, stream)));
  file.write(768 + 24 + 16, Bytes().u64(stream_size));
  return file.bytes();
}

BrokenFiles brokenData() {
  const std::string zip = "768 error zip-original-length-wrong: expected ";
  return {
      {"848 error list-count-wrong: expected dl_count to be the number of 2 links to data, found "
       "1" +
           in_list,
       withList(Bytes().zeros(4).u32(1).u64(0).u64(9))},
      {"848 error list-offsets-not-ascending: expected dl_offset to go up, found 9 and 0 at 1" +
           in_list,
       withList(Bytes().zeros(4).u32(2).u64(9).u64(0))},
      {"848 error list-offsets-wrong: expected dl_offset to go up by the 9 bytes of data at "
       "dl_data[0], found 0 and 8 at 1" +
           in_list,
       withList(Bytes().zeros(4).u32(2).u64(0).u64(8))},
      {"848 error equal-length-broken: expected 8 bytes of data at dl_data[0], found 9" + in_list,
       withList(Bytes().u8s({1, 0, 0, 0}).u32(2).u64(8))},
      {"904 error equal-length-broken: expected 8 bytes of data at dl_data[0], found 9" + in_list,
       made([](SmallFile& file) {
         const auto first = file.addData(Bytes().zeros(9));
         const auto second = file.addData(Bytes().zeros(9));
         const auto last = file.add("DL", {0, second}, Bytes().u8s({1, 0, 0, 0}).u32(1).u64(9));
         file.replaceData(file.add("DL", {last, first}, Bytes().u8s({1, 0, 0, 0}).u32(1).u64(8)));
       })},
      {"768 error zip-length-wrong: expected the 30 compressed bytes in the block, found room for "
       "29" +
           in_zip,
       withZip(18, zippedZeros(18), 30)},
      {"768 error zip-broken: expected 29 bytes that inflate to 18, found that they cannot be "
       "inflated" +
           in_zip,
       withZip(18, zippedZeros(18).substr(0, 28) + '\2')},
      {zip + "30 bytes that inflate to 18, found more" + in_zip, withZip(18, zippedZeros(19), 30)},
      {zip + "28 bytes that inflate to 18, found 17" + in_zip, withZip(18, zippedZeros(17), 28)},
  };
}

/// An attachment with three embedded bytes, and what it says of them.
std::string withAttachment(std::uint16_t flags, std::uint64_t original_size,
                           std::uint64_t embedded_size) {
  SmallFile file;
  const auto attachment =
      addAttachment(file, {"", "", flags, "sixteen bytes...", original_size, "abc"});
  file.write(attachment + 88, Bytes().u64(embedded_size));
  file.link(FileBuilder::header, 3, attachment);
  return file.bytes();
}

BrokenFiles brokenTexts() {
  return {
      {"768 warning text-not-terminated: expected a zero byte at the end of the text, found none "
       "in 3 bytes [HD.hd_md_comment/TX]",
       withText("TX", "abc")},
      {"768 warning text-not-utf8: expected a text in UTF-8, found other bytes "
       "[HD.hd_md_comment/TX]",
       withText("TX", std::string("Stra\xDF\0", 6))},
      {"768 warning xml-not-well-formed: expected well-formed XML, found \"Start-end tags "
       "mismatch\" at byte 20 [HD.hd_md_comment/MD]",
       withText("MD", std::string("<HDcomment><TX>abc</HDcomment>\0", 31))},
      {"768 error attachment-length-wrong: expected the 4 embedded bytes in the block, found room "
       "for 3" +
           in_attachment,
       withAttachment(1, 4, 4)},
      {"768 error attachment-length-wrong: expected as many embedded bytes as the original has, "
       "found 3 and 4" +
           in_attachment,
       withAttachment(1, 4, 3)},
      {"768 error attachment-digest-wrong: expected the digest 7369787465656e2062797465732e2e2e of "
       "the embedded bytes, found 900150983cd24fb0d6963f7d28e17f72" +
           in_attachment,
       withAttachment(5, 3, 3)},
  };
}

/// The small file with a second channel group, of records of 1 byte, and record ids of 1 byte.
std::string withTwoGroups(std::uint64_t second_id, const std::string& data,
                          std::uint8_t record_id_size = 1) {
  SmallFile file;
  file.write(SmallFile::data_group + 56, Bytes().u8(record_id_size));
  file.setGroup({2, 9, 0, 1});
  file.link(SmallFile::group, 0, file.addChannelGroup({1, 1, 0, second_id}));
  file.replaceData(file.addData(data));
  return file.bytes();
}

std::string withZipType(unsigned type) {
  SmallFile file;
  file.setGroup({0, 9});
  file.replaceData(file.add("DZ", {}, zippedFields(18, zippedZeros(18), "DT", type)));
  return file.bytes();
}

/// Version 4.2: invalidation bits of two records in a block of their own.
std::string withInvalidationBytes(std::size_t count) {
  SmallFile file("MDF     ", 420);
  file.setGroup({2, 9, 1});
  const auto values = file.add("DV", {}, Bytes().zeros(18));
  const auto bits = file.add("DI", {}, Bytes().zeros(count));
  file.replaceData(file.add("LD", {0, values, bits}, Bytes().u32(0x80000000).u32(1).u64(0)));
  return file.bytes();
}

std::string recordWithId(int id, std::size_t size) { return Bytes().u8s({id}).zeros(size); }

std::string withCycles(std::uint64_t count) {
  SmallFile file;
  file.setGroup({count, 9});
  return file.bytes();
}

/// An array of two elements whose records have the ids 0 and 1, and there is one of each.
std::string withElementRecords(std::uint64_t second_count) {
  SmallFile file;
  const Bytes fields = Bytes().u8s({0, 1}).u16(1).zeros(12).u64(2).u64(1).u64(second_count);
  file.link(SmallFile::speed, 1, file.add("CA", {0}, fields));
  file.setGroup({1, 9});
  file.write(SmallFile::data_group + 56, Bytes().u8(1));
  file.replaceData(file.addData(Bytes().zeros(10).u8(1).zeros(9)));
  return file.bytes();
}

BrokenFiles brokenRecords() {
  return {
      {"168 error record-id-size-wrong: expected record ids of 0, 1, 2, 4 or 8 bytes, found "
       "dg_rec_id_size 5" +
           in_data_group,
       changed(SmallFile::data_group + 56, Bytes().u8(5))},
      {"168 error record-id-size-wrong: expected record ids for 2 channel groups, found "
       "dg_rec_id_size 0; 19 bytes were not read" +
           in_data_group,
       withTwoGroups(2, Bytes().zeros(19), 0)},
      {"768 error record-id-twice: expected a record id of its own, found 1 as of ##CG at 232 "
       "(0xe8) [HD.hd_dg_first/DG[0].dg_cg_first/CG[1]]",
       withTwoGroups(1, recordWithId(1, 9))},
      {"906 error record-id-unknown: expected records up to 908, found record id 3 of no channel "
       "group; 2 bytes were not read" +
           in_data,
       withTwoGroups(2, recordWithId(1, 9) + recordWithId(3, 1))},
      {"904 error record-past-end: expected a record of variable length up to 912, found one that "
       "states 4 bytes; 8 bytes were not read" +
           in_data,
       made([](SmallFile& file) {
         file.write(SmallFile::data_group + 56, Bytes().u8(1));
         file.setGroup({2, 14, 0, 1, 1});
         file.link(SmallFile::group, 0, file.addChannelGroup({0, 1, 0, 2}));
         file.replaceData(file.addData(Bytes().u8(1).u32(3).text("one").u8(1).u32(4).text("two")));
       })},
      {"908 error record-cut-off: expected 10 bytes of a record up to 917, found 9; 9 bytes were "
       "not read" +
           in_data,
       withTwoGroups(2, recordWithId(1, 9) + recordWithId(2, 1) + recordWithId(1, 8))},
      {"0 warning file-unfinished: expected a finished file, found an unfinished one; still open: "
       "cycle counts of channel groups, length of the last data block\n"
       "762 warning bytes-not-read: expected 9 bytes of a record up to 765, found 3; 3 bytes were "
       "not read" +
           in_data,
       made(
           [](SmallFile& file) {
             file.write(60, Bytes().u16(1 + 4));
             file.append("cut");
           },
           "UnFinMF ")},
      {"768 error zip-type-unknown: expected a known zip type, found 7 "
       "[HD.hd_dg_first/DG[0].dg_data/DZ]",
       withZipType(7)},
      {"816 error invalidation-data-wrong: expected 2 bytes of invalidation data for the 2 records "
       "in the data at 768 (0x300), found 1 "
       "[HD.hd_dg_first/DG[0].dg_data/LD[0].ld_invalidation_data[0]/DI]",
       withInvalidationBytes(1)},
      {"232 error cycle-count-wrong: expected data for 3 records of 9 bytes, found 18 bytes" +
           in_group,
       withCycles(3)},
      {"232 error cycle-count-wrong: expected 2 records with id 1, found 1" + in_group,
       withElementRecords(2)},
      {"872 warning data-shared: expected dg_data to lead to data of its own, found data that "
       "another link leads to [HD.hd_dg_first/DG[1]]",
       made([](SmallFile& file) {
         const auto group = file.addChannelGroup({18, 1});
         file.link(SmallFile::data_group, 0,
                   file.add("DG", {0, group, SmallFile::data, 0}, dataGroupFields(0)));
       })},
  };
}

std::string withArray(std::uint64_t elements, std::uint32_t step, std::uint32_t invalidation_step) {
  SmallFile file;
  file.setGroup({2, 8, 1});
  file.setChannel(SmallFile::speed, {0, 0, 0, 0, 7, 8, 2, 0});
  const Bytes fields =
      Bytes().zeros(2).u16(1).zeros(4).u32(step).u32(invalidation_step).u64(elements);
  file.link(SmallFile::speed, 1, file.add("CA", {0}, fields));
  return file.bytes();
}

std::string withArrayStorage(int storage) {
  SmallFile file;
  file.link(SmallFile::speed, 1,
            file.add("CA", {0}, Bytes().u8s({0, storage}).u16(1).zeros(12).u64(1).u64(0)));
  return file.bytes();
}

std::string withConversionType(int type) {
  SmallFile file;
  file.link(SmallFile::speed, 4, file.add("CC", {0, 0, 0, 0}, Bytes().u8s({type}).zeros(23)));
  return file.bytes();
}

std::string withEventFactor(double factor) {
  SmallFile file;
  const Bytes fields = Bytes().u8s({6, 1, 0, 0, 0, 0, 0, 0}).zeros(8).u64(5).f64(factor);
  file.link(FileBuilder::header, 4, file.add("EV", {0, 0, 0, 0, 0}, fields));
  return file.bytes();
}

BrokenFiles brokenChannels() {
  return {
      {"496 error channel-outside-record: expected the channel within the 9 data bytes of a "
       "record, found its end at bit 73" +
           in_speed,
       withSpeed({0, 0, 0, 1, 8, 8})},
      {"768 error channel-outside-record: expected all elements of the array within the 8 data "
       "bytes of a record, found room for 1 of 2" +
           in_array,
       withArray(2, 1, 0)},
      {"768 error channel-outside-record: expected all elements of the array within the 8 data "
       "bytes of a record, found room for 1 of 18446744073709551615 or more" +
           in_array,
       withArray(UINT64_MAX, 1, 0)},
      {"496 error invalidation-bit-outside-record: expected the invalidation bit within the 1 "
       "invalidation bytes of a record, found bit 8" +
           in_speed,
       withSpeed({0, 0, 0, 0, 7, 8, 2, 8}, {2, 8, 1})},
      {"768 error invalidation-bit-outside-record: expected the invalidation bits of all elements "
       "of the array within the 1 invalidation bytes of a record, found room for 8 of 9" +
           in_array,
       withArray(9, 0, 1)},
      {"496 warning channel-without-bits: expected bits in the record for a channel of type 0, "
       "found cn_bit_count 0" +
           in_speed,
       withSpeed({0, 0, 0, 0, 8, 0})},
      {"496 error signal-data-unused: expected cn_data of a channel of type 0 to lead to no "
       "values, found ##SD at 768 (0x300)" +
           in_speed,
       made([](SmallFile& file) { file.link(SmallFile::speed, 5, file.add("SD", {})); })},
      {"768 warning event-factor-zero: expected ev_sync_factor to make a position of the base "
       "value 5, found 0 [HD.hd_ev_first/EV[0]]",
       withEventFactor(0)},
      {"496 error value-outside-signal-data: expected a value of variable length for each record, "
       "found none at offset 3 of the signal data for record 1" +
           in_speed,
       made([](SmallFile& file) {
         file.setChannel(SmallFile::speed, {1, 0, 7, 0, 8, 8});
         file.write(SmallFile::end - 1, "\x03");
         file.link(SmallFile::speed, 5, file.add("SD", {}, Bytes().u32(2).text("ok")));
       })},
      {"496 error data-type-unknown: expected a known data type, found 99" + in_speed,
       withSpeed({0, 0, 99, 0, 8, 8})},
      {"496 error array-unreadable: expected a known array storage, found 9; the array is left "
       "out" +
           in_speed,
       withArrayStorage(9)},
      {"768 error conversion-unreadable: expected a known conversion type, found 99 [" +
           speed_path + ".cn_cc_conversion/CC]",
       withConversionType(99)},
      {"928 error remote-master-missing: expected the remote master in a channel group at 232 "
       "(0xe8), found none of the file [HD.hd_dg_first/DG[0].dg_cg_first/CG[0]]",
       made(
           [](SmallFile& file) {
             const auto channel = file.add("CN", {0, 0, SmallFile::speed_name, 0, 0, 0, 0, 0},
                                           ChannelSpec{0, 0, 0, 0, 8, 8}.fields());
             const auto group = file.add("CG", {0, channel, 0, 0, 0, 0, SmallFile::group},
                                         GroupSpec{2, 9, 0, 0, 8}.fields());
             file.link(SmallFile::data_group, 1, group);
           },
           "MDF     ", 420)},
      {"232 note master-missing: expected a master channel among the channels, found none" +
           in_group,
       made([](SmallFile& file) {
         file.setChannel(SmallFile::time, {0, 0, 4, 0, 0, 64});
       })},
      {"496 warning master-twice: expected one master of synchronisation type 1, found another, "
       "##CN at 336 (0x150)" +
           in_speed,
       withSpeed({2, 1, 0, 0, 8, 8})},
      {"496 error masters-overlap: expected masters with bits of their own, found that it shares "
       "bit 56 with ##CN at 336 (0x150)" +
           in_speed,
       withSpeed({2, 2, 0, 0, 7, 8})},
  };
}

TEST(BrokenFiles, RaiseTheirProblemAlone) {
  std::set<std::string> codes;
  for (const auto& part : {brokenFrames(), brokenLinks(), brokenBlocks(), brokenData(),
                           brokenTexts(), brokenRecords(), brokenChannels()}) {
    for (const BrokenFile& file : part) {
      EXPECT_EQ(checkedBytes(file.bytes), file.problem + "\n");
      // The last one counts: that a file is unfinished is said before what is wrong with it.
      const std::string last = file.problem.substr(file.problem.rfind('\n') + 1);
      const std::string before_sentence = last.substr(0, last.find(": "));
      codes.insert(before_sentence.substr(before_sentence.rfind(' ') + 1));
    }
  }
  // What tells of a request, of the machine, or of blocks that overlap is not in a file alone.
  codes.insert({"file-shrunk", "request-failed", "work-limited"});
  std::set<std::string> all_codes;
  for (const mdf_reader::CodeText& code : mdf_reader::allCodes()) {
    all_codes.emplace(code.word);
  }
  EXPECT_EQ(codes, all_codes);
}

/// An array whose elements have the record ids 0 and 1.
TEST(BrokenFiles, ElementsWithRecordsOfTheirOwn) {
  std::string bytes = withElementRecords(1);
  EXPECT_EQ(problemsIn(bytes), "");
  bytes[768 + 32 + 1] = 0;  // the elements are in the records, all with the id 0
  EXPECT_EQ(problemsIn(bytes),
            "232 cycle-count-wrong 1 10 20 10\n496 channel-outside-record 9 65536\n");
}

}  // namespace
