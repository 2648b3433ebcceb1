// What channels have beside their values: invalidation bits, units, names, comments, ranges.

#include <utility>

#include "sample_file.h"

namespace mdf_tests {

namespace {

enum ChannelFlag : std::uint32_t {
  all_invalid = 1,
  has_invalidation_bit = 2,
  has_precision = 4,
  has_value_range = 8,
};

/// A group whose records end in invalidation bytes.
Sample withInvalidation(const std::string& name, const std::string& shows, SampleFile file,
                        std::vector<ChannelSpec> channels, std::uint32_t invalidation_bytes,
                        const std::vector<std::string>& records, const ValueTable& table) {
  Bytes data;
  for (std::size_t i = 0; i < records.size(); ++i) {
    data.f64(timeOf(i)).text(hex(records[i]));
  }
  const GroupSpec group{records.size(),
                        static_cast<std::uint32_t>(8 + hex(records[0]).size()) - invalidation_bytes,
                        invalidation_bytes};
  channels.insert(channels.begin(), timeMaster());
  file.addSortedGroup(group, channels, file.addData(data));
  return sampleOf(name, shows, file, {table});
}

ChannelSpec byteAt(const std::string& name, std::uint32_t offset, std::uint32_t flags,
                   std::uint32_t bit) {
  ChannelSpec channel = part(name, offset);
  channel.flags = flags;
  channel.invalidation_bit = bit;
  return channel;
}

Sample invalidTexts() {
  SampleFile file;
  ChannelSpec text = stored(7, 16);
  text.byte_offset = 8;
  text.flags = has_invalidation_bit;
  text.conversion = file.addConversion({10, {file.text("ok"), file.text("good"), 0}, {}, "", ""});
  return withInvalidation("invalidation-of-texts", "an invalid text is not converted",
                          std::move(file), {text}, 1, {"6f6b 00", "6f6b 01", "6f6e 00"},
                          {{{"t", "s"}, {"v", ""}}, {"0,good", "0.5,", "1,on"}});
}

Samples invalidations() {
  const std::vector<Column> columns = {{"t", "s"}, {"a", ""}, {"b", ""}};
  return {
      withInvalidation(
          "invalidation-bit", "a bit after the data for each of two channels", SampleFile(),
          {byteAt("a", 8, has_invalidation_bit, 0), byteAt("b", 9, has_invalidation_bit, 7)}, 1,
          {"0102 00", "0304 01", "0506 80", "0708 81", "090a 7e"},
          {columns, {"0,1,2", "0.5,,4", "1,5,", "1.5,,", "2,9,10"}}),
      withInvalidation(
          "invalidation-bit-in-the-second-byte", "bits are counted through the bytes", SampleFile(),
          {byteAt("a", 8, has_invalidation_bit, 9), byteAt("b", 9, has_invalidation_bit, 16)}, 3,
          {"0102 000000", "0304 000200", "0506 ff0101", "0708 0002fe"},
          {columns, {"0,1,2", "0.5,,4", "1,5,", "1.5,,8"}}),
      withInvalidation("invalidation-bit-without-flag", "without the flag the bit means nothing",
                       SampleFile(),
                       {byteAt("a", 8, 0, 0), byteAt("b", 9, has_invalidation_bit, 0)}, 1,
                       {"0102 01", "0304 00"}, {columns, {"0,1,", "0.5,3,4"}}),
      withInvalidation(
          "invalidation-bit-shared", "two channels with one bit", SampleFile(),
          {byteAt("a", 8, has_invalidation_bit, 3), byteAt("b", 9, has_invalidation_bit, 3)}, 1,
          {"0102 08", "0304 f7"}, {columns, {"0,,", "0.5,3,4"}}),
      withInvalidation("invalidation-all", "a channel without a valid value", SampleFile(),
                       {byteAt("a", 8, all_invalid, 0), byteAt("b", 9, 0, 0)}, 0, {"0102", "0304"},
                       {columns, {"0,,2", "0.5,,4"}}),
      invalidTexts(),
  };
}

Sample unit(const std::string& name, const std::string& shows, const std::string& own,
            const std::string& of_conversion, const std::string& shown) {
  SampleFile file;
  ChannelSpec channel = stored(0, 8);
  channel.unit = own;
  channel.conversion = file.addConversion({1, {}, {0, 2}, of_conversion, ""});
  Sample sample = valueSample(name, shows, std::move(file), channel, {{"01", "2"}});
  sample.tables[0].columns[1].unit = shown;
  return sample;
}

Sample unitInMetadata() {
  SampleFile file;
  const GroupSpec group{1, 9};
  ChannelSpec value = part("v", 8);
  file.addSortedGroup(group, {timeMaster(), value}, file.addData(Bytes().f64(0).u8(5)));
  file.link(file.channels()[1], 6, file.metadata("<CNunit><TX>N&#183;m</TX></CNunit>"));
  return sampleOf("unit-in-metadata", "a unit in XML", file,
                  {{{{"t", "s"}, {"v", "N\u00B7m"}}, {"0,5"}}});
}

Samples units() {
  return {
      unit("unit-of-channel", "the channel's own unit", "rpm", "", "rpm"),
      unit("unit-of-conversion", "the unit of the conversion", "", "\u00B0C", "\u00B0C"),
      unit("unit-of-both", "the channel's unit goes before the conversion's", "K", "\u00B0C", "K"),
      unitInMetadata(),
  };
}

/// One channel of one byte, named so.
Sample named(const std::string& name, const std::string& shows, const std::string& channel_name,
             const std::string& column) {
  ChannelSpec channel = stored(0, 8);
  channel.name = channel_name;
  Sample sample = valueSample(name, shows, channel, {{"01", "1"}});
  sample.tables[0].columns[1].name = column;
  return sample;
}

Sample sharedTexts() {
  SampleFile file;
  const auto text = file.text("all");
  const auto source = file.add("SI", {text, text, text}, Bytes().u8s({1, 2, 0, 0, 0, 0, 0, 0}));
  ChannelSpec first = part("", 8);
  first.source = source;
  ChannelSpec second = first;
  second.byte_offset = 9;
  GroupSpec group = countingGroup(1);
  group.source = source;
  const auto channel_group = file.addGroupOf(group, {timeMaster(), first, second});
  for (const std::size_t i : {1U, 2U}) {
    for (const std::size_t link : {2U, 6U, 7U}) {
      file.link(file.channels()[i], link, text);
    }
  }
  file.link(channel_group, 2, text);
  file.link(channel_group, 5, text);
  file.addDataGroup({channel_group}, file.addData(Bytes().f64(0).u8s({1, 2})));
  return sampleOf("texts-shared", "one text for all names, units and comments", file,
                  {{{{"t", "s"}, {"all", "all"}, {"all (2)", "all"}}, {"0,1,2"}}});
}

Sample comments() {
  SampleFile file;
  ChannelSpec value = part("v", 8);
  value.comment = "plain text";
  value.source = file.addSource("engine", "ECU.engine", 1, 2);
  GroupSpec group{1, 9};
  group.name = "10 ms";
  group.comment = "of the engine";
  group.source = file.addSource("CAN 1", "bus", 2, 2);
  const auto channel_group = file.addGroupOf(group, {timeMaster(), value});
  file.link(
      file.channels()[0], 7,
      file.metadata(
          "<CNcomment><TX>since the start</TX><names><display>time</display></names></CNcomment>"));
  const auto data_group = file.addDataGroup({channel_group}, file.addData(Bytes().f64(0).u8(1)));
  file.link(data_group, 3, file.metadata("<DGcomment><TX>first rig</TX></DGcomment>"));
  file.link(
      FileBuilder::header, 5,
      file.metadata("<HDcomment><TX>A drive &amp; a stop</TX><common_properties><e name=\"driver\">"
                    "M. M\u00FCller</e></common_properties></HDcomment>"));
  return sampleOf("comments", "names, comments and sources wherever there may be some", file,
                  {{{{"t", "s"}, {"v", ""}}, {"0,1"}}});
}

Sample statedRange() {
  SampleFile file;
  ChannelSpec time = timeMaster();
  time.flags = has_value_range;
  time.range_min = 0;
  time.range_max = 4.5;
  ChannelSpec value = countingChannels()[1];
  value.flags = has_value_range | has_precision;
  value.range_max = 63;
  file.addSortedGroup(countingGroup(10), {time, value}, file.addData(countingRecords(10)));
  file.write(file.channels()[1] + 24 + 8 * 8 + 20, Bytes().u8(2));
  return sampleOf("range-of-values", "least and greatest values that are stated", file,
                  {countingTable(10)});
}

Samples names() {
  return {
      named("name-of-many-characters", "a name in other scripts", "\u901F\u5EA6 \u03C9\u2032",
            "\u901F\u5EA6 \u03C9\u2032"),
      named("name-that-needs-quotes", "a name with a comma and quotes", "a \"b\", c",
            "\"a \"\"b\"\", c\""),
      named("name-twice", "two channels with one name", "t", "t (2)"),
      named("name-missing", "a channel without a name", "", "unnamed"),
  };
}

}  // namespace

Samples channelDetailSamples() {
  return together({invalidations(), units(), names(), {sharedTexts(), comments(), statedRange()}});
}

}  // namespace mdf_tests
