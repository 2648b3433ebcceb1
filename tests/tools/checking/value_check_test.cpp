// Offsets in records against the signal data that they lead into.

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "support/bytes.h"
#include "tools/support/checked.h"
#include "tools/support/data_blocks.h"
#include "tools/support/small_file.h"

using namespace mdf_tests;

namespace {

using Offsets = std::vector<std::uint64_t>;

/// Values of 3, 0 and 5 bytes: they stand at 0, 7 and 11, and there are 20 bytes of them.
std::string threeValues() { return Bytes().u32(3).text("one").u32(0).u32(5).text("three"); }

std::string recordsWith(const Offsets& offsets) {
  Bytes records;
  for (const std::uint64_t offset : offsets) {
    records.zeros(8).u64(offset);
  }
  return records;
}

/// The small file with a text channel in place of the speed, whose offset is the last 8 of 16
/// bytes.
class TextFile : public SmallFile {
 public:
  TextFile(const GroupSpec& fields, const std::string& records) {
    setGroup(fields);
    setText({0, 0, 0, 0, 0, 64});
    replaceData(add("DT", {}, records));
  }

  explicit TextFile(const Offsets& offsets)
      : TextFile({offsets.size(), 16}, recordsWith(offsets)) {}

  TextFile& setIdBytes(int count) {
    write(data_group + 56, Bytes().u8s({count}));
    return *this;
  }

  TextFile& setText(ChannelSpec fields) {
    fields.type = 1;
    fields.data_type = 7;
    fields.byte_offset = 8;
    fields.bit_count = fields.bit_count == 0 ? 64 : fields.bit_count;
    setChannel(speed, fields);
    return *this;
  }

  TextFile& setValues(std::uint64_t block) {
    link(speed, 5, block);
    return *this;
  }
};

/// The first value that is missing is that of a record, at an offset.
std::string outside(int record, std::uint64_t offset) {
  return "496 value-outside-signal-data " + std::to_string(offset) + ' ' + std::to_string(record) +
         '\n';
}

TEST(ValueCheck, OffsetsInOneBlock) {
  const std::string past_the_end = Bytes().u32(3).text("one").u32(2).text("x");
  const std::string past_in_the_middle = Bytes().u32(12).text("one").u32(UINT32_MAX).u32(0);
  const std::string none_but_the_last = Bytes().u32(UINT32_MAX).text("one").u32(0);
  const struct {
    Offsets offsets;
    std::string values;
    std::string problem;
  } cases[] = {
      {{0, 7, 11}, threeValues(), ""},
      {{11, 0, 7, 7, 11}, threeValues(), ""},
      {{0, 17, 11, 20, 7}, threeValues(), outside(1, 17)},  // after the last length
      {{16}, zeros(20), ""},
      {{17}, zeros(20), outside(0, 17)},
      {{0, 7}, past_the_end, outside(1, 7)},
      {{0, 7, 11}, past_in_the_middle, outside(0, 0)},
      {{0, 0, 0}, u32(1), outside(0, 0)},  // one value that is missing is reported once
      {{7, 0}, none_but_the_last, outside(1, 0)},
      {{0}, "abc", outside(0, 0)},
      {{UINT64_MAX, UINT64_MAX - 3, std::uint64_t{1} << 63U},
       threeValues(),
       outside(0, UINT64_MAX)},
  };
  for (const auto& [offsets, values, problem] : cases) {
    TextFile file(offsets);
    file.setValues(file.add("SD", {}, values));
    EXPECT_EQ(problemsIn(file.bytes()), problem) << testing::PrintToString(offsets);
  }
}

TEST(ValueCheck, RecordsWithoutSignalData) {
  EXPECT_EQ(problemsIn(TextFile({0, 0}).bytes()), outside(0, 0));
  EXPECT_EQ(problemsIn(TextFile({}).bytes()), "");
}

TEST(ValueCheck, SignalDataInListsZippedOrNot) {
  TextFile file({0, 60, 64, 68, 60});
  const auto zipped = file.add("DZ", {}, zippedFields(62, zippedZeros(62), "SD"));
  const auto plain = file.add("SD", {}, Bytes().u16(0).u32(0).u32(1));
  const auto list = file.add("DL", {0, zipped, plain}, Bytes().zeros(4).u32(2).u64(0).u64(62));
  file.setValues(file.add("HL", {list}, Bytes().zeros(8)));
  EXPECT_EQ(problemsIn(file.bytes()), outside(3, 68));
}

TEST(ValueCheck, ZippedSignalDataThatIsBroken) {
  TextFile file({0, 4});
  std::string stream = zippedZeros(20);
  stream.back() = 2;
  file.setValues(file.add("DZ", {}, zippedFields(20, stream, "SD")));
  EXPECT_EQ(checkedCodes(file.bytes()), "value-outside-signal-data 1\nzip-broken 1\n");
}

TEST(ValueCheck, OffsetsOfFewerBits) {
  // In the 16 bits of 0x47EF from the fourth one on there are 0x47E, in 5 bits 0x1E.
  TextFile wide({0x47EF});
  wide.setText({0, 0, 0, 4, 0, 12});
  wide.setValues(wide.add("SD", {}, threeValues()));
  EXPECT_EQ(problemsIn(wide.bytes()), outside(0, 1150));
  TextFile narrow({0x47EF});
  narrow.setText({0, 0, 0, 4, 0, 5});
  narrow.setValues(narrow.add("SD", {}, threeValues()));
  EXPECT_EQ(problemsIn(narrow.bytes()), outside(0, 30));
}

TEST(ValueCheck, InvalidValuesNeedNotBeThere) {
  TextFile file({2, 16, 1}, Bytes().zeros(8).u64(99).u8(8).zeros(8).u64(98).u8(0xF7));
  file.setText({0, 0, 0, 0, 0, 0, 2, 3});
  file.setValues(file.add("SD", {}, threeValues()));
  EXPECT_EQ(problemsIn(file.bytes()), outside(1, 98));
  file.setText({0, 0, 0, 0, 0, 0, 1});
  EXPECT_EQ(problemsIn(file.bytes()), "");
}

TEST(ValueCheck, RecordsWithAnIdThatAreTheOnlyOnes) {
  TextFile file({2, 16, 0, 7}, Bytes().u8(7).zeros(8).u64(7).u8(7).zeros(8).u64(40));
  file.setIdBytes(1);
  file.setValues(file.add("SD", {}, threeValues()));
  EXPECT_EQ(problemsIn(file.bytes()), outside(1, 40));
}

/// A file whose values are the records of a second group, with the id 2.
TextFile fileWithValueGroup(std::uint64_t records, const std::string& data,
                            const GroupSpec& values) {
  TextFile file({records, 16, 0, 1}, data);
  const auto group = file.add("CG", {0, 0, 0, 0, 0, 0}, values.fields());
  file.link(SmallFile::group, 0, group);
  file.setValues(group);
  return file;
}

/// Values of 3 and 0 bytes, and a record in front of each.
TextFile fileWithTwoValues(std::uint64_t second_offset) {
  const Bytes first = Bytes().u8(1).zeros(8).u64(0).u8(2).u32(3).text("one");
  const Bytes second = Bytes().u8(1).zeros(8).u64(second_offset).u8(2).u32(0);
  return fileWithValueGroup(2, first.str() + second.str(), {2, 11, 0, 2, 1}).setIdBytes(1);
}

TEST(ValueCheck, ValuesThatAreRecordsOfAnotherGroup) {
  EXPECT_EQ(problemsIn(fileWithTwoValues(7).bytes()), "");
  EXPECT_EQ(problemsIn(fileWithTwoValues(8).bytes()), outside(1, 8));
}

TEST(ValueCheck, RecordIdsOfEightBytesWithTheCodeFour) {
  TextFile file = fileWithValueGroup(1, Bytes().u64(1).zeros(8).u64(5).u64(2).u32(1).text("x"),
                                     {1, 5, 0, 2, 1});
  file.setIdBytes(4);
  EXPECT_EQ(problemsIn(file.bytes()), outside(0, 5));
}

TEST(ValueCheck, OffsetOfAValueThatIsNowhere) {
  struct Case {
    std::string shows;
    std::string other_codes;
    std::function<void(TextFile&)> change;
  };
  const std::vector<Case> cases = {
      {"an array whose elements have data of their own", "",
       [](TextFile& file) {
         file.link(SmallFile::speed, 1,
                   file.add("CA", {0}, u8(0, 1) + u16(1) + zeros(12) + u64(1, 0)));
       }},
      {"an unfinished file", "file-unfinished 1\n",
       [](TextFile& file) {
         file.write(0, "UnFinMF ");
         file.write(60, u16(64));
         file.setValues(file.add("SD", {}, threeValues()));
       }},
      {"a count that is wrong", "cycle-count-wrong 1\n",
       [](TextFile& file) {
         file.setGroup({2, 16});
       }},
      {"a link to a text", "link-wrong-type 1\n",
       [](TextFile& file) { file.setValues(SmallFile::time_name); }},
      {"a link to another group", "", [](TextFile& file) { file.setValues(SmallFile::group); }},
      {"a list with itself", "link-wrong-type 1\n",
       [](TextFile& file) {
         const auto list = file.add("DL", {0, 0}, zeros(4) + u32(1) + u64(0));
         file.link(list, 1, list);
         file.setValues(list);
       }},
      {"lists without an end", "chain-endless 1\n",
       [](TextFile& file) {
         const auto data = file.add("SD", {}, threeValues());
         const auto list = file.add("DL", {0, data}, zeros(4) + u32(1) + u64(0));
         file.link(list, 0, list);
         file.setValues(list);
       }},
  };
  for (const Case& each : cases) {
    TextFile file({99});
    each.change(file);
    EXPECT_EQ(checkedCodes(file.bytes()), each.other_codes + "value-outside-signal-data 1\n")
        << each.shows;
  }
}

TEST(ValueCheck, OffsetThatIsNotInTheRecordOrHasTooManyBits) {
  TextFile outside_record({99});
  outside_record.setText({0, 0, 0, 0, 0, 65});
  EXPECT_EQ(checkedCodes(outside_record.bytes()), "channel-outside-record 1\n");
  TextFile too_many({1, 18}, std::string(18, 'x'));
  too_many.setText({0, 0, 0, 0, 0, 65});
  EXPECT_EQ(checkedCodes(too_many.bytes()), "value-outside-signal-data 1\n");
}

TEST(ValueCheck, ChannelsThatShareSignalData) {
  TextFile file({0, 99});
  const auto values = file.add("SD", {}, threeValues());
  file.setValues(values);
  file.link(SmallFile::speed, 0,
            file.add("CN", {0, 0, SmallFile::speed_name, 0, 0, values, 0, 0},
                     ChannelSpec{1, 0, 7, 0, 0, 64}.fields()));
  EXPECT_EQ(problemsIn(file.bytes()), outside(1, 99));
}

}  // namespace
