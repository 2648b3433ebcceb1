// Files that were not closed, as the flags of their identification say.

#include "sample_file.h"
#include "tools/support/data_blocks.h"

namespace mdf_tests {

namespace {

enum StandardFlag : std::uint16_t {
  cycle_counters_open = 1,
  reduction_counters_open = 2,
  last_data_open = 4,
  last_reduction_open = 8,
  last_list_open = 16,
  variable_length_sizes_open = 32,
};

/// An unfinished file with records in one block.
Sample withBlock(const std::string& name, const std::string& shows, std::uint16_t flags,
                 std::size_t stated, std::size_t there) {
  SampleFile file = SampleFile::unfinished(flags);
  const auto data_group = file.addSortedGroup(countingGroup(stated), countingChannels(), 0);
  file.link(data_group, 2, file.addData(countingRecords(there)));
  return sampleOf(name, shows, file, {countingTable(there)});
}

/// That a record is torn at the end of a file.
Complaint tornRecord(const std::string& bytes, std::size_t whole, std::size_t there) {
  return {bytes.size() - there, "expected " + std::to_string(whole) + " bytes of a record up to " +
                                    std::to_string(bytes.size()) + ", found " +
                                    std::to_string(there) + "; " + std::to_string(there) +
                                    " bytes were not read"};
}

/// A file whose last data block says that it is empty, with what was written after it.
Sample withOpenBlock(const std::string& name, const std::string& shows, const std::string& after,
                     std::size_t records) {
  constexpr std::size_t record_bytes = 10;
  SampleFile file = SampleFile::unfinished(cycle_counters_open | last_data_open);
  const auto data_group = file.addSortedGroup(countingGroup(0), countingChannels(), 0);
  file.link(data_group, 2, file.add("DT", {}));
  file.append(after);
  Sample sample{name, shows, file.bytes(), {countingTable(records)}};
  const std::size_t torn = after.size() - records * record_bytes;
  if (torn > 0) {
    sample.complaints = {tornRecord(sample.bytes, record_bytes, torn)};
  }
  return sample;
}

Samples oneBlock() {
  return {
      withBlock("unfinished-cycle-counters", "records that no count speaks of", cycle_counters_open,
                0, 5),
      withBlock("unfinished-cycle-counters-behind", "a count that is behind the records",
                cycle_counters_open, 2, 5),
      withBlock("unfinished-without-records", "a file that ended before its first record",
                cycle_counters_open, 0, 0),
      withBlock("unfinished-nothing-open", "a file that only lacks its last word", 0, 4, 4),
      withBlock("unfinished-reductions", "what is open does not concern the records",
                reduction_counters_open | last_reduction_open, 3, 3),
      withOpenBlock("unfinished-last-data-open", "records up to the end of the file",
                    countingRecords(7), 7),
      withOpenBlock("unfinished-last-data-open-empty", "an open block without a byte after it", "",
                    0),
      withOpenBlock("unfinished-last-data-open-half-a-record", "the last record is cut off",
                    countingRecords(4).substr(0, 36), 3),
      withOpenBlock("unfinished-last-data-open-less-than-a-record", "not even one record",
                    countingRecords(1).substr(0, 6), 0),
  };
}

Sample customFlags() {
  SampleFile file = SampleFile::unfinished(cycle_counters_open, 0x8001);
  file.addSortedGroup(countingGroup(0), countingChannels(), file.addData(countingRecords(2)));
  return sampleOf("unfinished-custom-flags", "steps that only the writing program knows", file,
                  {countingTable(2)});
}

/// An empty block that is not the last thing in the file, though the flags say that one is open.
Sample emptyBlockBefore() {
  SampleFile file = SampleFile::unfinished(cycle_counters_open | last_data_open);
  const auto empty = file.add("DT", {});
  file.addSortedGroup(countingGroup(0), countingChannels(), empty);
  return sampleOf("unfinished-last-data-open-before-others",
                  "an empty block with others after it is empty", file, {countingTable(0)});
}

/// A list whose last block is still open.
Sample listWithOpenBlock() {
  SampleFile file = SampleFile::unfinished(cycle_counters_open | last_data_open);
  const auto data_group = file.addSortedGroup(countingGroup(0), countingChannels(), 0);
  const std::string data = countingRecords(9);
  const auto first = file.addData(data.substr(0, 40));
  const auto list = addEqualList(file, {first, 0}, 40);
  file.link(list, 2, file.add("DT", {}));
  file.append(data.substr(40));
  file.link(data_group, 2, list);
  return sampleOf("unfinished-list-with-open-block",
                  "the last block of a list goes to the end of the file", file, {countingTable(9)});
}

/// A list that was made for five blocks in advance.
Sample openList() {
  SampleFile file = SampleFile::unfinished(cycle_counters_open | last_list_open);
  const std::string data = countingRecords(8);
  const auto first = file.addData(data.substr(0, 40));
  const auto second = file.addData(data.substr(40));
  const auto list = addEqualList(file, {first, second, 0, 0, 0}, 40);
  file.addSortedGroup(countingGroup(0), countingChannels(), list);
  return sampleOf("unfinished-last-list-open", "a list with room for more blocks", file,
                  {countingTable(8)});
}

Sample openZippedList() {
  SampleFile file = SampleFile::unfinished(cycle_counters_open | last_list_open);
  const auto blocks = addZippedPieces(file, "DT", countingRecords(6), 30, 10);
  const auto list = addOffsetList(file, {blocks[0], blocks[1], 0}, {0, 30, 0});
  file.addSortedGroup(countingGroup(0), countingChannels(), addHeaderList(file, list, 0, 1));
  return sampleOf("unfinished-last-list-open-zipped", "an open list of zipped blocks", file,
                  {countingTable(6)});
}

/// Unsorted records up to the end of the file, the last one cut off.
Sample openUnsorted() {
  SampleFile file = SampleFile::unfinished(cycle_counters_open | last_data_open);
  ChannelSpec value = part("b", 8);
  GroupSpec first_spec = countingGroup(0);
  first_spec.record_id = 1;
  GroupSpec second_spec{0, 9};
  second_spec.record_id = 2;
  const auto first = file.addGroupOf(first_spec, countingChannels());
  const auto second = file.addGroupOf(second_spec, {timeMaster(), value});
  const auto data_group = file.addDataGroup({first, second}, 0, 1);
  file.link(data_group, 2, file.add("DT", {}));
  const std::string records = countingRecords(2);
  file.append(u8(1) + records.substr(0, 10) + u8(2) + f64(0.25) + u8(9, 1) + records.substr(10) +
              u8(2) + zeros(3));
  return {"unfinished-unsorted",
          "unsorted records up to the end of the file",
          file.bytes(),
          {countingTable(2), {{{"t", "s"}, {"b", ""}}, {"0.25,9"}}},
          {tornRecord(file.bytes(), 10, 4)}};
}

/// Values of variable length among records, whose sizes nobody has added up.
Sample openVariableLength() {
  SampleFile file =
      SampleFile::unfinished(cycle_counters_open | last_data_open | variable_length_sizes_open);
  GroupSpec value_spec;
  value_spec.record_id = 2;
  value_spec.flags = 1;
  const auto values = file.addGroupOf(value_spec, {});
  ChannelSpec text = stored(7, 64);
  text.byte_offset = 8;
  text.type = 1;
  text.data = values;
  GroupSpec spec{0, 16};
  spec.record_id = 1;
  const auto group = file.addGroupOf(spec, {timeMaster(), text});
  const auto data_group = file.addDataGroup({group, values}, 0, 1);
  file.link(data_group, 2, file.add("DT", {}));
  file.append(Bytes().u8(2).u32(3).text("abc").u8(1).f64(0).u64(0));
  file.append(Bytes().u8(2).u32(1).text("d").u8(1).f64(0.5).u64(7));
  return sampleOf("unfinished-variable-length", "texts among the records of an open block", file,
                  {{{{"t", "s"}, {"v", ""}}, {"0,abc", "0.5,d"}}});
}

}  // namespace

Samples unfinishedSamples() {
  return together({oneBlock(),
                   {customFlags(), emptyBlockBefore(), listWithOpenBlock(), openList(),
                    openZippedList(), openUnsorted(), openVariableLength()}});
}

}  // namespace mdf_tests
