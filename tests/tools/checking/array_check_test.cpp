// Arrays against the records that have their elements, and against their own counts.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/bytes.h"
#include "tools/support/checked.h"
#include "tools/support/small_file.h"

using namespace mdf_tests;

namespace {

using Numbers = std::vector<std::uint64_t>;

/// The fields of an array, and the numbers after them: sizes of dimensions first.
struct ArrayFields {
  int storage = 0;
  std::uint16_t dimensions = 1;
  std::uint32_t flags = 0;
  std::uint32_t byte_step = 1;
  std::uint32_t invalidation_step = 0;
  Numbers numbers;

  std::string bytes() const {
    Bytes bytes;
    bytes.u8s({0, storage}).u16(dimensions).u32(flags).u32(byte_step).u32(invalidation_step);
    for (const std::uint64_t number : numbers) {
      bytes.u64(number);
    }
    return bytes;
  }
};

/// The small file with records of 20 bytes, the last 12 of which are for the speed.
class ArrayFile : public SmallFile {
 public:
  explicit ArrayFile(const ArrayFields& fields, const Numbers& links = {0}) {
    setGroup({0, 20});
    replaceData(0);
    array = add("CA", links, fields.bytes());
    link(speed, 1, array);
  }

  std::uint64_t array;
};

/// A record of 20 bytes has room for so many elements, and so many are needed.
std::string outsideRecord(const std::string& room, const std::string& needed) {
  return "768 channel-outside-record 20 " + room + ' ' + needed + '\n';
}

std::string countTooLarge(const std::string& promised, const std::string& room) {
  return "768 count-too-large " + promised + " 8 " + room + '\n';
}

std::string linksMissing(const std::string& promised, const std::string& there) {
  return "768 links-missing " + promised + " 1 " + there + '\n';
}

/// What whoever makes columns of the elements says of them.
const std::string too_many_elements = "496 channel-outside-record 20 65536\n";

TEST(ArrayCheck, ElementsFitTheRecordAndNumbersAndLinksTheBlock) {
  constexpr std::uint64_t half = std::uint64_t{1} << 32U;
  constexpr std::uint64_t top = std::uint64_t{1} << 63U;
  const std::string most = "18446744073709551615";
  const struct {
    ArrayFields fields;
    Numbers links;
    std::string problems;
  } cases[] = {
      // Up to the end of the record, and beyond it.
      {{0, 1, 0, 1, 0, {12}}, {0}, ""},
      {{0, 2, 0, 1, 0, {3, 4}}, {0}, ""},
      {{0, 1, 0, 11, 0, {2}}, {0}, ""},
      {{0, 1, 0, 1, 0, {13}}, {0}, outsideRecord("12", "13")},
      {{0, 3, 0, 1, 0, {2, 2, 4}}, {0}, outsideRecord("12", "16")},
      {{0, 1, 0, 12, 0, {2}}, {0}, outsideRecord("1", "2")},
      // Backwards, and all in the same bytes.
      {{0, 1, 0, 0xFFFFFFFF, 0, {9}}, {0}, ""},
      {{0, 1, 0, 0xFFFFFFFF, 0, {10}}, {0}, outsideRecord("9", "10")},
      {{0, 1, 0, 0x80000000, 0, {2}}, {0}, outsideRecord("1", "2")},
      {{0, 1, 0, 0, 0, {UINT64_MAX}}, {0}, too_many_elements},
      // More than a number says.
      {{0, 2, 0, 1, 0, {half, half}}, {0}, outsideRecord("12", most)},
      {{0, 1, 0, 0x7FFFFFFF, 0, {top}}, {0}, outsideRecord("1", "9223372036854775808")},
      {{0, 3, 0, 1, 0, {UINT64_MAX, UINT64_MAX, 0}}, {0}, ""},
      {{2, 2, 32, 1, 0, {top, top}}, {0}, linksMissing(most, "0") + countTooLarge(most, "2")},
      // Elements with records, or data, of their own have a count, and a link, each.
      {{1, 2, 0, 1, 0, {2, 3, 0, 0, 0, 0, 0, 0}}, {0}, ""},
      {{1, 2, 0, 1, 0, {2, 3, 0, 0, 0, 0, 0}}, {0}, countTooLarge("8", "7")},
      {{2, 2, 0, 1, 0, {2, 3, 0, 0, 0, 0, 0, 0}}, Numbers(7, 0), ""},
      {{2, 2, 0, 1, 0, {2, 3, 0, 0, 0, 0, 0}}, Numbers(7, 0), countTooLarge("8", "7")},
      {{2, 1, 0, 0, 0, {3, 0, 0, 0}}, {0, 0, 0}, linksMissing("3", "2")},
      // Axes have conversions and channels, fixed ones conversions and values.
      {{0, 2, 16, 1, 0, {2, 3}}, Numbers(9, 0), ""},
      {{0, 2, 16, 1, 0, {2, 3}}, Numbers(8, 0), linksMissing("8", "7")},
      {{0, 2, 48, 1, 0, {2, 3, 1, 2, 3, 4, 5}}, {0, 0, 0}, ""},
      {{0, 2, 48, 1, 0, {2, 3, 1, 2, 3, 4}},
       {0, 0},
       linksMissing("2", "1") + countTooLarge("7", "6")},
      // Sizes and inputs of each dimension, an output and a comparison have three links each.
      {{0, 2, 15, 1, 0, {2, 3}}, Numbers(19, 0), ""},
      {{0, 2, 15, 1, 0, {2, 3}}, Numbers(18, 0), linksMissing("18", "17")},
      {{0, 2, 0, 1, 0, {99}}, {0}, countTooLarge("2", "1")},
  };
  for (const auto& [fields, links, problems] : cases) {
    EXPECT_EQ(problemsIn(ArrayFile(fields, links).bytes()), problems)
        << testing::PrintToString(fields.numbers);
  }
}

TEST(ArrayCheck, ElementsOfSeveralBytesAndBits) {
  for (const std::uint32_t bits : {25U, 32U}) {
    ArrayFile fitting({0, 1, 0, 4, 0, {3}});
    fitting.setChannel(SmallFile::speed, {0, 0, 0, 0, 8, bits});
    EXPECT_EQ(problemsIn(fitting.bytes()), "") << bits;
  }
  ArrayFile too_wide({0, 1, 0, 4, 0, {3}});
  too_wide.setChannel(SmallFile::speed, {0, 0, 0, 1, 8, 32});
  EXPECT_EQ(problemsIn(too_wide.bytes()), outsideRecord("2", "3"));
}

TEST(ArrayCheck, ArrayOfArrays) {
  ArrayFile file({0, 1, 0, 4, 0, {3}});
  const auto inner = file.add("CA", {0}, ArrayFields{0, 1, 0, 1, 0, {4}}.bytes());
  file.link(file.array, 0, inner);
  EXPECT_EQ(problemsIn(file.bytes()), "");
  file.write(inner + 24 + 8 + 16, Bytes().u64(5));
  EXPECT_EQ(problemsIn(file.bytes()), "824 channel-outside-record 20 4 5\n");
}

TEST(ArrayCheck, ArrayOfArraysThatGoBackwards) {
  ArrayFile file({0, 1, 0, 0xFFFFFFFC, 0, {3}});
  const auto inner = file.add("CA", {0}, ArrayFields{0, 1, 0, 0xFFFFFFFF, 0, {2}}.bytes());
  file.link(file.array, 0, inner);
  EXPECT_EQ(problemsIn(file.bytes()), "824 channel-outside-record 20 1 2\n");
}

TEST(ArrayCheck, ChannelOutsideTheRecordIsReportedAlone) {
  ArrayFile file({0, 1, 0, 1, 0, {3}});
  file.setChannel(SmallFile::speed, {0, 0, 0, 0, 20, 8});
  EXPECT_EQ(checkedCodes(file.bytes()), "channel-outside-record 1\n");
}

TEST(ArrayCheck, InvalidationBitsOfTheElements) {
  for (const std::uint64_t elements : {13U, 14U}) {
    ArrayFile file({0, 1, 0, 0, 1, {elements}});
    file.setGroup({0, 20, 2});
    file.setChannel(SmallFile::speed, {0, 0, 0, 0, 8, 8, 2, 3});
    EXPECT_EQ(problemsIn(file.bytes()),
              elements == 13 ? too_many_elements : "768 invalidation-bit-outside-record 2 13 14\n");
  }
}

TEST(ArrayCheck, InvalidationBitsOfMoreElementsThanANumberSays) {
  constexpr std::uint64_t half = std::uint64_t{1} << 32U;
  ArrayFile file({0, 2, 0, 0, UINT32_MAX, {half, half}});
  file.setGroup({0, 20, 1});
  file.setChannel(SmallFile::speed, {0, 0, 0, 0, 8, 8, 2, 0});
  EXPECT_EQ(problemsIn(file.bytes()),
            "768 invalidation-bit-outside-record 1 1 18446744073709551615\n");
}

TEST(ArrayCheck, ArrayThatIsMadeOfItself) {
  ArrayFile file({0, 1, 0, 1, 0, {2}});
  file.link(file.array, 0, file.array);
  EXPECT_EQ(checkedCodes(file.bytes()), "chain-endless 1\n");
}

TEST(ArrayCheck, ArrayThatTwoChannelsShareIsThatOfTheFirst) {
  ArrayFile file({0, 1, 0, 8, 0, {2}});
  file.link(SmallFile::time, 1, file.array);
  EXPECT_EQ(problemsIn(file.bytes()), "");
}

TEST(ArrayCheck, ArrayOfAVirtualChannelTakesNothingOfTheRecord) {
  ArrayFile file({0, 1, 0, 8, 0, {200}});
  file.setChannel(SmallFile::speed, {6, 0, 0, 0, 0, 0});
  EXPECT_EQ(problemsIn(file.bytes()), too_many_elements);
}

}  // namespace
