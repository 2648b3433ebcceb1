// What a channel's type makes of the bytes in its records, and of those elsewhere.

#include <utility>

#include "sample_file.h"
#include "tools/support/data_blocks.h"

namespace mdf_tests {

namespace {

enum ChannelType : unsigned {
  fixed,
  variable_length,
  master,
  virtual_master,
  synchronization,
  maximum_length,
  virtual_data,
};

/// Values with four bytes of length in front of each.
std::string signalData(const std::vector<std::string>& values) {
  Bytes data;
  for (const std::string& value : values) {
    data.u32(static_cast<std::uint32_t>(value.size())).text(value);
  }
  return data;
}

/// A channel whose records hold offsets in signal data.
Sample variableLength(const std::string& name, const std::string& shows, unsigned data_type,
                      const std::string& signal_data, const std::vector<StoredValue>& values) {
  SampleFile file;
  ChannelSpec channel = stored(data_type, 64);
  channel.type = variable_length;
  channel.data = file.add("SD", {}, signal_data);
  return valueSample(name, shows, std::move(file), channel, values);
}

Samples variableLengths() {
  return {
      variableLength("channel-variable-length-utf8", "texts as long as each is", 7,
                     signalData({"one", "", "drei\u00E9"}),
                     {{"0000000000000000", "one"},
                      {"0700000000000000", ""},
                      {"0b00000000000000", "drei\u00E9"}}),
      variableLength("channel-variable-length-latin1", "zero bytes end a text", 6,
                     signalData({std::string("\xFC", 1) + '\0', "b"}),
                     {{"0000000000000000", "\u00FC"}, {"0600000000000000", "b"}}),
      variableLength("channel-variable-length-utf16-le", "texts of two bytes a character", 8,
                     signalData({hex("610062000000"), hex("3dd800de")}),
                     {{"0000000000000000", "ab"}, {"0a00000000000000", "\U0001F600"}}),
      variableLength("channel-variable-length-utf16-be", "the high byte first", 9,
                     signalData({hex("006100620000"), hex("d83dde00")}),
                     {{"0000000000000000", "ab"}, {"0a00000000000000", "\U0001F600"}}),
      variableLength("channel-variable-length-bytes", "bytes as many as each has", 10,
                     signalData({hex("00"), hex("0102030405"), ""}),
                     {{"0000000000000000", "00"},
                      {"0500000000000000", "0102030405"},
                      {"0e00000000000000", ""}}),
      variableLength("channel-variable-length-shared", "records that share a value, backwards too",
                     7, signalData({"on", "off"}),
                     {{"0600000000000000", "off"},
                      {"0000000000000000", "on"},
                      {"0600000000000000", "off"},
                      {"0600000000000000", "off"}}),
      variableLength("channel-variable-length-mime", "files of their own lengths", 11,
                     signalData({hex("47494638"), hex("ff")}),
                     {{"0000000000000000", "47494638"}, {"0800000000000000", "ff"}}),
  };
}

/// A group that is drawn over something else than time.
Sample overOther(const std::string& name, const std::string& shows, unsigned sync_type,
                 const std::string& unit) {
  SampleFile file;
  ChannelSpec over = timeMaster();
  over.name = "x";
  over.sync_type = sync_type;
  over.unit = unit;
  ChannelSpec value = part("v", 8, 16);
  file.addSortedGroup(countingGroup(3), {over, value}, file.addData(countingRecords(3)));
  return sampleOf(name, shows, file, {{{{"x", unit}, {"v", ""}}, {"0,0", "0.5,7", "1,14"}}});
}

/// A master channel that is made from the index of the record by a conversion.
Sample virtualMaster(const std::string& name, const std::string& shows, unsigned sync_type,
                     const std::string& unit, const std::vector<double>& linear,
                     const std::vector<std::string>& cells) {
  SampleFile file;
  ChannelSpec over = stored(0, 0);
  over.name = "x";
  over.type = virtual_master;
  over.sync_type = sync_type;
  over.conversion = linear.empty() ? 0 : file.addConversion({1, {}, linear, "", ""});
  over.unit = unit;
  const GroupSpec group{cells.size(), 1};
  Bytes records;
  ValueTable table{{{"x", unit}, {"v", ""}}, {}};
  for (std::size_t i = 0; i < cells.size(); ++i) {
    records.u8(static_cast<std::uint8_t>(200 + i));
    table.rows.push_back(cells[i] + ',' + std::to_string(200 + i));
  }
  file.addSortedGroup(group, {over, stored(0, 8)}, file.addData(records));
  return sampleOf(name, shows, file, {table});
}

Samples masters() {
  return {
      overOther("channel-master-time", "a master channel over time", 1, "s"),
      overOther("channel-master-angle", "a master channel over an angle", 2, "rad"),
      overOther("channel-master-distance", "a master channel over a distance", 3, "m"),
      overOther("channel-master-index", "a master channel over an index", 4, ""),
      virtualMaster("channel-virtual-master-time", "time from the index of the record", 1, "s",
                    {10, 0.25}, {"10", "10.25", "10.5"}),
      virtualMaster("channel-virtual-master-angle", "angles from the index of the record", 2, "rad",
                    {0, 0.125}, {"0", "0.125"}),
      virtualMaster("channel-virtual-master-distance", "a distance that goes down", 3, "m",
                    {5, -2.5}, {"5", "2.5", "0", "-2.5"}),
      virtualMaster("channel-virtual-master-index", "the index itself", 4, "", {}, {"0", "1", "2"}),
  };
}

Sample twoMasters() {
  SampleFile file;
  ChannelSpec angle = stored(4, 64);
  angle.name = "phi";
  angle.unit = "rad";
  angle.type = master;
  angle.sync_type = 2;
  ChannelSpec time = timeMaster();
  time.byte_offset = 8;
  const GroupSpec group{2, 16};
  file.addSortedGroup(group, {angle, time}, file.addData(Bytes().f64(3).f64(0).f64(4.5).f64(0.5)));
  return sampleOf("channel-two-masters", "an angle beside the time: the time comes first", file,
                  {{{{"t", "s"}, {"phi", "rad"}}, {"0,3", "0.5,4.5"}}});
}

Sample synchronized() {
  SampleFile file;
  AttachmentSpec film;
  film.name = "film.avi";
  film.mime_type = "video/avi";
  film.data = "frames";
  film.original_size = film.data.size();
  const auto attachment = addAttachment(file, film);
  file.link(FileBuilder::header, 3, attachment);
  ChannelSpec channel = stored(4, 64);
  channel.unit = "s";
  channel.type = synchronization;
  channel.sync_type = 1;
  channel.data = attachment;
  return valueSample("channel-synchronization", "positions in a film that is attached",
                     std::move(file), channel,
                     {{"0000000000000000", "0"}, {"000000000000f83f", "1.5"}});
}

/// Three values with room for six bytes, each with its length in another channel.
Sample maximumLength(const std::string& name, const std::string& shows, unsigned data_type,
                     const std::vector<StoredValue>& values) {
  SampleFile file;
  ChannelSpec text = stored(data_type, 48);
  text.byte_offset = 9;
  text.type = maximum_length;
  ChannelSpec length = part("length", 8);
  const GroupSpec group{values.size(), 15};
  Bytes records;
  ValueTable table{{{"t", "s"}, {"length", ""}, {"v", ""}}, {}};
  for (std::size_t i = 0; i < values.size(); ++i) {
    const std::string bytes = hex(values[i].digits);
    records.f64(timeOf(i)).text(bytes);
    table.rows.push_back(timeCell(i) + ',' + std::to_string(int{bytes[0]}) + ',' + values[i].cell);
  }
  file.addSortedGroup(group, {timeMaster(), length, text}, file.addData(records));
  file.link(file.channels()[2], 5, file.channels()[1]);
  return sampleOf(name, shows, file, {table});
}

Samples others() {
  ChannelSpec index = stored(0, 0);
  index.type = virtual_data;
  SampleFile scaled_file;
  ChannelSpec scaled = index;
  scaled.conversion = scaled_file.addConversion({1, {}, {-1, 0.5}, "", ""});
  return {
      twoMasters(),
      synchronized(),
      maximumLength(
          "channel-maximum-length-text", "the length of a text in another channel", 7,
          {{"03 616263787878", "abc"}, {"00 797979797979", ""}, {"06 616263646566", "abcdef"}}),
      maximumLength("channel-maximum-length-bytes", "the number of bytes in another channel", 10,
                    {{"02 0001ffffffff", "0001"}, {"06 000102030405", "000102030405"}}),
      valueSample("channel-virtual", "values that are the index of the record", index,
                  {{"aa", "0"}, {"bb", "1"}, {"cc", "2"}}),
      valueSample("channel-virtual-converted", "values computed from the index of the record",
                  std::move(scaled_file), scaled, {{"aa", "-1"}, {"bb", "-0.5"}, {"cc", "0"}}),
  };
}

}  // namespace

Samples channelTypeSamples() { return together({variableLengths(), masters(), others()}); }

}  // namespace mdf_tests
