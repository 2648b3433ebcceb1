// Values in blocks of their own since version 4.2: apart from their invalidation bits, and apart
// from their master channel.

#include <utility>

#include "sample_file.h"
#include "tools/support/data_blocks.h"

namespace mdf_tests {

namespace {

SampleFile newFile() { return SampleFile("MDF     ", 420); }

/// Records of the time and a byte "v" with an invalidation bit, which stands elsewhere.
struct Invalidated {
  std::string data;          ///< 9 bytes a record
  std::string invalidation;  ///< 1 byte a record
  ValueTable table{{{"t", "s"}, {"v", ""}}, {}};
};

/// Bytes 10, 11, 12, ... of which those are invalid whose letter is "i".
Invalidated invalidated(const std::string& letters) {
  Invalidated made;
  Bytes data;
  Bytes bits;
  for (std::size_t i = 0; i < letters.size(); ++i) {
    const bool is_valid = letters[i] != 'i';
    data.f64(timeOf(i)).u8(static_cast<std::uint8_t>(10 + i));
    bits.u8(is_valid ? 0 : 4);
    made.table.rows.push_back(timeCell(i) + ',' + (is_valid ? std::to_string(10 + i) : ""));
  }
  made.data = data;
  made.invalidation = bits;
  return made;
}

/// A sample of such records in one data group with that data.
Sample invalidation(const std::string& name, const std::string& shows, SampleFile file,
                    const Invalidated& records, std::uint64_t data) {
  ChannelSpec value = part("v", 8);
  value.flags = 2;
  value.invalidation_bit = 2;
  const GroupSpec group{records.table.rows.size(), 9, 1};
  file.addSortedGroup(group, {timeMaster(), value}, data);
  return sampleOf(name, shows, file, {records.table});
}

Sample invalidationInOneBlock() {
  SampleFile file = newFile();
  const Invalidated records = invalidated("vivvi");
  const auto values = file.add("DV", {}, records.data);
  const auto bits = file.add("DI", {}, records.invalidation);
  const auto list = addValueList(file, {{values}, {bits}, {}, 5});
  return invalidation("invalidation-apart", "values and invalidation bits in a block each",
                      std::move(file), records, list);
}

Sample invalidationInSeveralBlocks() {
  SampleFile file = newFile();
  const Invalidated records = invalidated("ivvvvivii");
  const auto values = addPieces(file, "DV", records.data, 27);
  const auto bits = addPieces(file, "DI", records.invalidation, 3);
  const auto list = addValueList(file, {values, bits, {}, 3});
  return invalidation("invalidation-apart-in-blocks", "as many blocks of bits as of values",
                      std::move(file), records, list);
}

Sample invalidationWithNilLinks() {
  SampleFile file = newFile();
  const Invalidated records = invalidated("vvvivvvvvi");
  const auto first = file.add("DV", {}, records.data.substr(0, 27));
  const auto second = file.add("DV", {}, records.data.substr(27, 9));
  const auto third = file.add("DV", {}, records.data.substr(36, 36));
  const auto last = file.add("DV", {}, records.data.substr(72));
  const auto one = file.add("DI", {}, records.invalidation.substr(3, 1));
  const auto two = file.add("DI", {}, records.invalidation.substr(8));
  const auto list =
      addValueList(file, {{first, second, third, last}, {0, one, 0, two}, {0, 3, 4, 8}, 0});
  return invalidation("invalidation-apart-with-nil-links",
                      "parts whose values are all valid have no block of bits", std::move(file),
                      records, list);
}

Sample zippedInvalidation() {
  SampleFile file = newFile();
  const Invalidated records = invalidated("viivvviiv");
  const auto values = addZippedPieces(file, "DV", records.data, 36, 9);
  const auto bits = addZippedPieces(file, "DI", records.invalidation, 4);
  const auto list = addValueList(file, {values, bits, {}, 4});
  const auto header = addHeaderList(file, list, 1, 1);
  return invalidation("invalidation-apart-zipped", "both are zipped, under the header of a list",
                      std::move(file), records, header);
}

Sample chainOfLists() {
  SampleFile file = newFile();
  const Invalidated records = invalidated("iivvvvi");
  const auto values = addPieces(file, "DV", records.data, 18);
  const auto front = file.add("DI", {}, records.invalidation.substr(0, 2));
  const auto back = file.add("DI", {}, records.invalidation.substr(6));
  const auto first = addValueList(file, {{values[0]}, {front}, {}, 2});
  const auto second = addValueList(file, {{values[1], values[2]}, {}, {2, 4}, 0});
  const auto third = addValueList(file, {{values[3]}, {back}, {6}, 0});
  file.chain({first, second, third});
  return invalidation("invalidation-apart-chain-of-lists",
                      "the second of three lists has values that are all valid", std::move(file),
                      records, first);
}

/// Records as before version 4.2, in a list as since then.
Sample listOfRecords() {
  SampleFile file = newFile();
  const Invalidated records = invalidated("vivi");
  std::string interleaved;
  for (std::size_t i = 0; i < 4; ++i) {
    interleaved += records.data.substr(9 * i, 9) + records.invalidation[i];
  }
  const auto list = addValueList(file, {addPieces(file, "DT", interleaved, 20), {}, {}, 2});
  return invalidation("invalidation-in-listed-records",
                      "a list of values whose records have their invalidation bits inside",
                      std::move(file), records, list);
}

/// Values 7, 14, 21, ... of two bytes.
std::string values(std::size_t count) {
  Bytes data;
  for (std::size_t i = 1; i <= count; ++i) {
    data.u16(static_cast<std::uint16_t>(7 * i));
  }
  return data;
}

/// The same in a table with the times of a master.
ValueTable valueTable(const std::string& name, std::size_t count) {
  ValueTable table{{{"t", "s"}, {name, ""}}, {}};
  for (std::size_t i = 0; i < count; ++i) {
    table.rows.push_back(timeCell(i) + ',' + std::to_string(7 * (i + 1)));
  }
  return table;
}

std::string times(std::size_t count) {
  Bytes data;
  for (std::size_t i = 0; i < count; ++i) {
    data.f64(timeOf(i));
  }
  return data;
}

ValueTable timeTable(std::size_t count) {
  ValueTable table{{{"t", "s"}}, {}};
  for (std::size_t i = 0; i < count; ++i) {
    table.rows.push_back(timeCell(i));
  }
  return table;
}

GroupSpec columnOf(std::size_t count, std::uint32_t bytes) {
  const GroupSpec group{count, bytes};
  return group;
}

/// A group of the time alone.
std::uint64_t timeGroup(SampleFile& file, std::size_t count) {
  return file.addGroupOf(columnOf(count, 8), {timeMaster()});
}

/// A group of one number whose master is elsewhere.
std::uint64_t valueGroup(SampleFile& file, const std::string& name, std::size_t count,
                         std::uint64_t master) {
  GroupSpec group = columnOf(count, 2);
  group.flags = 8;
  group.master = master;
  ChannelSpec channel = stored(0, 16);
  channel.name = name;
  return file.addGroupOf(group, {channel});
}

/// A data group of such numbers.
void addColumn(SampleFile& file, const std::string& name, std::size_t count, std::uint64_t master) {
  const auto data = file.add("DV", {}, values(count));
  file.addDataGroup({valueGroup(file, name, count, master)}, data);
}

Sample remoteMaster() {
  SampleFile file = newFile();
  const auto time = timeGroup(file, 4);
  file.addDataGroup({time}, file.add("DV", {}, times(4)));
  addColumn(file, "v", 4, time);
  return sampleOf("remote-master", "a channel group whose time is in another one", file,
                  {timeTable(4), valueTable("v", 4)});
}

/// Several columns with one time, which comes last.
Sample sharedMaster() {
  SampleFile file = newFile();
  const auto time = timeGroup(file, 5);
  const auto listed = addEqualList(file, addPieces(file, "DT", times(5), 12), 12);
  addColumn(file, "a", 5, time);
  const auto zipped = addZipped(file, "DV", values(3), 2);
  file.addDataGroup({valueGroup(file, "b", 3, time)}, zipped);
  file.addDataGroup({valueGroup(file, "c", 0, time)}, 0);
  file.addDataGroup({time}, listed);
  return sampleOf("remote-master-shared",
                  "three groups with the time of a fourth, which may have more samples", file,
                  {valueTable("a", 5), valueTable("b", 3), valueTable("c", 0), timeTable(5)});
}

/// The time is a channel among others of records.
Sample masterInRecords() {
  SampleFile file = newFile();
  const auto group = file.addGroupOf(countingGroup(4), countingChannels());
  file.addDataGroup({group}, file.addData(countingRecords(4)));
  addColumn(file, "t", 4, group);
  return sampleOf("remote-master-in-records",
                  "the time of a group with records, and another channel of its name", file,
                  {countingTable(4), valueTable("t (2)", 4)});
}

/// The time follows from the number of the sample.
Sample virtualRemoteMaster() {
  SampleFile file = newFile();
  ChannelSpec time = timeMaster();
  time.type = 3;
  time.data_type = 0;
  time.bit_count = 0;
  time.conversion = file.addConversion({1, {}, {0, 0.5}, "", ""});
  const auto group = file.addGroupOf(columnOf(3, 0), {time});
  file.addDataGroup({group}, 0);
  addColumn(file, "v", 3, group);
  return sampleOf("remote-master-virtual", "a time that is counted, in another group", file,
                  {timeTable(3), valueTable("v", 3)});
}

/// Both at once, zipped: how files by columns mostly are.
Sample columns() {
  SampleFile file = newFile();
  const auto time = timeGroup(file, 6);
  const auto time_blocks = addZippedPieces(file, "DV", times(6), 24, 8);
  const auto value_blocks = addZippedPieces(file, "DV", values(6), 6, 2);
  const auto bits = addZipped(file, "DI", hex("000100"));
  file.addDataGroup({time},
                    addHeaderList(file, addValueList(file, {time_blocks, {}, {}, 3}), 1, 1));
  GroupSpec spec = columnOf(6, 2);
  spec.flags = 8;
  spec.master = time;
  spec.invalidation_bytes = 1;
  ChannelSpec channel = stored(0, 16);
  channel.flags = 2;
  const auto group = file.addGroupOf(spec, {channel});
  const auto list = addValueList(file, {value_blocks, {0, bits}, {}, 3});
  file.addDataGroup({group}, addHeaderList(file, list, 1, 1));
  return sampleOf("remote-master-and-invalidation-apart",
                  "a column with its invalidation bits, and its time in another one", file,
                  {timeTable(6),
                   {{{"t", "s"}, {"v", ""}}, {"0,7", "0.5,14", "1,21", "1.5,28", "2,", "2.5,42"}}});
}

}  // namespace

Samples separateDataSamples() {
  return {invalidationInOneBlock(),
          invalidationInSeveralBlocks(),
          invalidationWithNilLinks(),
          zippedInvalidation(),
          chainOfLists(),
          listOfRecords(),
          remoteMaster(),
          sharedMaster(),
          masterInRecords(),
          virtualRemoteMaster(),
          columns()};
}

}  // namespace mdf_tests
