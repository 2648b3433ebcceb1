// How a file is laid out as a whole: versions, times, gaps, the order of blocks.

#include <utility>

#include "sample_file.h"
#include "tools/support/data_blocks.h"

namespace mdf_tests {

namespace {

Sample counting(const std::string& name, const std::string& shows, SampleFile file) {
  file.addSortedGroup(countingGroup(3), countingChannels(), file.addData(countingRecords(3)));
  return sampleOf(name, shows, file, {countingTable(3)});
}

Samples versions() {
  return {
      counting("version-4.00", "the first version", SampleFile("MDF     ", 400)),
      counting("version-4.10", "the version with events and zipped data",
               SampleFile("MDF     ", 410)),
      counting("version-4.11", "a later version", SampleFile("MDF     ", 411)),
      counting("version-4.20", "a version with other data blocks", SampleFile("MDF     ", 420)),
  };
}

/// What follows the links of a header block.
struct StartSpec {
  std::uint64_t time = 0;
  std::int16_t zone_minutes = 0;
  std::int16_t daylight_minutes = 0;
  int flags = 0;
  int time_class = 0;
};

Sample started(const std::string& name, const std::string& shows, const StartSpec& spec) {
  SampleFile file;
  file.write(FileBuilder::header + 24 + 48, u64(spec.time) +
                                                u16(spec.zone_minutes, spec.daylight_minutes) +
                                                u8(spec.flags, spec.time_class, 0, 0));
  return counting(name, shows, std::move(file));
}

Samples times() {
  constexpr std::uint64_t second = 1'000'000'000;
  constexpr std::uint64_t new_year = 1577836800;  // 2020-01-01 00:00:00 UTC
  return {
      started("time-utc", "a start without a zone", {new_year * second, 0, 0, 0, 0}),
      started("time-with-nanoseconds", "a fraction of a second",
              {new_year * second + 123456789, 0, 0, 0, 0}),
      started("time-with-zone", "a zone and daylight saving time",
              {1593606600 * second, 60, 60, 2, 16}),  // 2020-07-01 12:30:00 UTC
      started("time-with-zone-behind", "a zone behind UTC, by hours and a half",
              {new_year * second, -210, 0, 2, 10}),
      started("time-local", "local time of a zone that is not stated",
              {new_year * second, 0, 0, 1, 0}),
      started("time-in-seconds", "a start in seconds, as some programs write",
              {new_year, 0, 0, 0, 0}),
      started("time-missing", "a start that is not stated", {0, 0, 0, 0, 0}),
      started("time-leap-day", "the last second of a leap day",
              {1583020799 * second, 0, 0, 0, 0}),  // 2020-02-29 23:59:59 UTC
  };
}

Sample startPosition() {
  SampleFile file;
  file.write(FileBuilder::header + 24 + 48 + 14, Bytes().u8(3).u8(0).f64(1.5).f64(-250));
  return counting("start-angle-and-distance", "where angles and distances begin", std::move(file));
}

Sample programWithZeros() {
  SampleFile file;
  file.write(16, std::string("ab\0\0\0\0\0\0", 8));
  return counting("program-name-with-zeros", "zero bytes after the name of the program",
                  std::move(file));
}

Sample identificationWithZeros() {
  SampleFile file;
  file.write(8, std::string("4.10\0\0\0\0", 8));
  return counting("version-text-with-zeros", "zero bytes after the text of the version",
                  std::move(file));
}

Sample gaps() {
  SampleFile file;
  file.append(std::string(64, '\0'));
  const auto data = file.addData(countingRecords(3));
  file.append("left behind by an editor");
  file.addSortedGroup(countingGroup(3), countingChannels(), data);
  file.append(std::string(13, '\xFF'));
  return sampleOf("layout-gaps", "bytes that belong to no block", file, {countingTable(3)});
}

/// Texts whose blocks end in more zero bytes than one, and at any length.
Sample zerosAfterTexts() {
  SampleFile file;
  const auto name = file.add("TX", {}, std::string("v\0\0\0\0\0\0\0", 8));
  const auto unit = file.add("TX", {}, std::string("V\0\0\0\0", 5));
  const auto comment =
      file.add("MD", {}, "<CNcomment><TX>padded</TX></CNcomment>" + std::string(11, '\0'));
  std::vector<ChannelSpec> channels = countingChannels();
  channels[1].name.clear();
  const auto group = file.addGroupOf(countingGroup(3), channels);
  file.link(file.channels()[1], 2, name);
  file.link(file.channels()[1], 6, unit);
  file.link(file.channels()[1], 7, comment);
  file.addDataGroup({group}, file.addData(countingRecords(3)));
  ValueTable table = countingTable(3);
  table.columns[1].unit = "V";
  return sampleOf("layout-zeros-behind-texts", "texts that end in several zero bytes", file,
                  {table});
}

/// Each block leads to others that stand further back in the file, never forwards.
Sample backwards() {
  SampleFile file;
  const auto second_data = file.addData(countingRecords(2));
  const auto first_data = file.addData(countingRecords(3));
  const auto group = [&file](std::size_t records) {
    const auto value = file.addChannel(countingChannels()[1]);
    const auto time = file.addChannel(timeMaster());
    return file.addChannelGroup(countingGroup(records), {time, value});
  };
  const std::uint64_t second_group = group(2);
  const std::uint64_t first_group = group(3);
  const auto second = file.addDataGroup({second_group}, second_data);
  const auto first = file.addDataGroup({first_group}, first_data);
  file.chain({first, second, 0});
  file.link(FileBuilder::header, 0, first);
  return sampleOf("layout-reverse-order", "the last blocks stand first", file,
                  {countingTable(3), countingTable(2)});
}

/// Some programs do not count the one link of a list's header.
Sample uncountedLink() {
  SampleFile file;
  const auto blocks = addZippedPieces(file, "DT", countingRecords(6), 30, 10);
  const auto list = addEqualList(file, blocks, 30);
  const auto header_list = addHeaderList(file, list, 1, 1);
  file.write(header_list + 16, Bytes().u64(0));
  file.addSortedGroup(countingGroup(6), countingChannels(), header_list);
  return sampleOf("layout-uncounted-link", "the header of a list that does not count its link",
                  file, {countingTable(6)});
}

/// Two groups, of other kinds of masters, one with more records.
Sample severalKinds() {
  SampleFile file;
  ChannelSpec angle = timeMaster();
  angle.name = "phi";
  angle.sync_type = 2;
  angle.unit = "rad";
  file.addSortedGroup(countingGroup(2), {angle, countingChannels()[1]},
                      file.addData(countingRecords(2)));
  GroupSpec named = countingGroup(4);
  named.name = "fast";
  file.addSortedGroup(named, countingChannels(), file.addData(countingRecords(4)));
  ValueTable first = countingTable(2);
  first.columns[0] = {"phi", "rad"};
  return sampleOf("layout-groups-of-different-kinds", "a group over angles and one over time", file,
                  {first, countingTable(4)});
}

Sample withoutMaster() {
  SampleFile file;
  ChannelSpec value = stored(0, 16);
  const GroupSpec group{2, 2};
  file.addSortedGroup(group, {value}, file.addData(hex("01000200")));
  return sampleOf("layout-no-master", "a group that is drawn over nothing", file,
                  {{{{"v", ""}}, {"1", "2"}}});
}

/// Records with bytes that no channel takes, and channels in another order than in the record.
Sample unusedBytes() {
  SampleFile file;
  ChannelSpec last = part("last", 15);
  ChannelSpec first = part("first", 0);
  ChannelSpec time = timeMaster();
  time.byte_offset = 2;
  const GroupSpec group{2, 20};
  const auto record = [](double t, int a, int b) {
    return Bytes().u8s({a, 0xEE}).f64(t).zeros(5).u8s({b, 1, 2, 3, 4}).str();
  };
  file.addSortedGroup(group, {last, time, first},
                      file.addData(record(0, 1, 2) + record(0.5, 3, 4)));
  return sampleOf("layout-unused-bytes",
                  "bytes of records that no channel takes, the time in the middle", file,
                  {{{{"t", "s"}, {"last", ""}, {"first", ""}}, {"0,2,1", "0.5,4,3"}}});
}

}  // namespace

Samples layoutSamples() {
  return together(
      {versions(),
       times(),
       {startPosition(), programWithZeros(), identificationWithZeros(), gaps(), zerosAfterTexts(),
        backwards(), uncountedLink(), severalKinds(), withoutMaster(), unusedBytes()}});
}

}  // namespace mdf_tests
