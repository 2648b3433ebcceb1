// A file for each type of block beside those of the measured values.

#include <utility>

#include "sample_file.h"
#include "tools/support/data_blocks.h"

namespace mdf_tests {

namespace {

/// A file with a measurement of three records.
SampleFile measurement() {
  SampleFile file;
  file.addSortedGroup(countingGroup(3), countingChannels(), file.addData(countingRecords(3)));
  return file;
}

/// The same with all that is in it.
struct Parts {
  SampleFile file;
  std::uint64_t data_group;
  std::uint64_t group;
  std::uint64_t channel;
};

Parts partsOfMeasurement() {
  SampleFile file;
  const auto group = file.addGroupOf(countingGroup(3), countingChannels());
  const std::uint64_t channel = file.channels()[1];
  const auto data_group = file.addDataGroup({group}, file.addData(countingRecords(3)));
  return {std::move(file), data_group, group, channel};
}

Sample measured(const std::string& name, const std::string& shows, const SampleFile& file) {
  return sampleOf(name, shows, file, {countingTable(3)});
}

Sample history() {
  SampleFile file = measurement();
  const auto second = file.add(
      "FH", {0, file.metadata("<FHcomment><TX>cut</TX><tool_id>editor</tool_id></FHcomment>")},
      u64(1577836860'000000000) + u16(60, 60) + u8(2, 0, 0, 0));
  const auto third = file.add("FH", {0, file.text("a plain comment")},
                              u64(1577836920'000000000) + zeros(4) + u8(1, 0, 0, 0));
  file.chain({file.history(), second, third});
  return measured("block-file-history", "three programs worked on the file", file);
}

std::uint64_t addHierarchy(SampleFile& file, const std::string& name, unsigned type,
                           const std::vector<std::uint64_t>& elements, std::uint64_t child = 0) {
  std::vector<std::uint64_t> links = {0, child, file.text(name), 0};
  links.insert(links.end(), elements.begin(), elements.end());
  return file.add("CH", links, u32(elements.size() / 3) + u8(type) + zeros(3));
}

Sample hierarchy() {
  Parts parts = partsOfMeasurement();
  SampleFile& file = parts.file;
  const std::vector<std::uint64_t> element = {parts.data_group, parts.group, parts.channel};
  const auto inner = addHierarchy(file, "inputs", 4, element);
  const auto beside = addHierarchy(file, "locals", 6, {});
  file.chain({inner, beside});
  const auto function = addHierarchy(file, "control", 1, {}, inner);
  std::vector<std::uint64_t> twice = element;
  twice.insert(twice.end(), element.begin(), element.end());
  const auto group = addHierarchy(file, "favourites", 0, twice);
  file.link(group, 3, file.metadata("<CHcomment><TX>most wanted</TX></CHcomment>"));
  file.chain({function, group});
  file.link(FileBuilder::header, 2, function);
  return measured("block-channel-hierarchy", "functions, inputs and groups with their channels",
                  file);
}

Sample hierarchyTypes() {
  SampleFile file = measurement();
  std::vector<std::uint64_t> entries;
  for (unsigned type = 0; type <= 8; ++type) {
    entries.push_back(addHierarchy(file, "type " + std::to_string(type), type, {}));
  }
  file.chain(entries);
  file.link(FileBuilder::header, 2, entries[0]);
  return measured("block-channel-hierarchy-types", "one entry of each kind", file);
}

Sample attached(const std::string& name, const std::string& shows,
                const std::vector<AttachmentSpec>& specs) {
  SampleFile file = measurement();
  std::vector<std::uint64_t> attachments;
  for (const AttachmentSpec& spec : specs) {
    attachments.push_back(addAttachment(file, spec));
  }
  file.chain(attachments);
  file.link(FileBuilder::header, 3, attachments[0]);
  return measured(name, shows, file);
}

enum AttachmentFlag : std::uint16_t { embedded = 1, compressed = 2, has_digest = 4 };

Samples attachments() {
  const std::string no_digest(16, '\0');
  const AttachmentSpec plain{"notes.txt", "text/plain", embedded, no_digest, 3, "abc"};
  const AttachmentSpec zipped{"zip.txt", "text/plain", embedded | compressed, no_digest,
                              3,         zippedAbc()};
  const AttachmentSpec external{"videos\\drive.avi", "video/avi", 0, no_digest, 0, ""};
  const AttachmentSpec checked{
      "checked.bin", "application/octet-stream", embedded | has_digest, digestOfAbc(), 3, "abc"};
  const AttachmentSpec checked_zip{
      "both.bin", "application/octet-stream", embedded | compressed | has_digest, digestOfAbc(), 3,
      zippedAbc()};
  return {
      attached("block-attachment-embedded", "a file inside the file", {plain}),
      attached("block-attachment-empty", "an empty file inside the file",
               {{"empty", "", embedded, no_digest, 0, ""}}),
      attached("block-attachment-compressed", "a file inside the file, compressed", {zipped}),
      attached("block-attachment-external", "a file beside the file", {external}),
      attached("block-attachment-with-digest", "embedded bytes and their digest", {checked}),
      attached("block-attachment-compressed-with-digest",
               "the digest is that of the original bytes", {checked_zip}),
      attached("block-attachment-several", "attachments of each kind",
               {plain, zipped, external, checked, checked_zip}),
  };
}

Sample sources() {
  SampleFile file;
  std::vector<ChannelSpec> channels = countingChannels();
  channels[0].source = file.addSource("clock", "", 3, 0);
  channels[1].source = file.addSource("engine", "ECU.engine", 1, 2);
  file.link(channels[1].source, 2, file.metadata("<SIcomment><TX>of the car</TX></SIcomment>"));
  GroupSpec group = countingGroup(3);
  group.source = file.addSource("CAN 1", "bus.CAN 1", 2, 2);
  file.write(group.source + 24 + 3 * 8 + 2, Bytes().u8(1));
  file.addSortedGroup(group, channels, file.addData(countingRecords(3)));
  return measured("block-source", "where a group and its channels come from; the bus is simulated",
                  file);
}

Sample sourceTypes() {
  SampleFile file;
  std::vector<ValueTable> tables;
  for (unsigned type = 0; type <= 5; ++type) {
    GroupSpec group = countingGroup(1);
    group.source = file.addSource("type " + std::to_string(type), "", type, type == 2 ? 5 : type);
    file.addSortedGroup(group, countingChannels(), file.addData(countingRecords(1)));
    tables.push_back(countingTable(1));
  }
  return sampleOf("block-source-types", "sources and buses of several kinds", file, tables);
}

/// Mean, least and greatest values of each second of four records.
Sample reduction() {
  SampleFile file;
  const auto group = file.addGroupOf(countingGroup(4), countingChannels());
  const auto interval = [](std::size_t first) {
    const auto record = [](double time, std::size_t value) {
      return Bytes().f64(time).u16(static_cast<std::uint16_t>(value)).str();
    };
    const double begin = timeOf(first);
    return record(begin, 7 * first) + record(begin, 7 * first) + record(begin + 0.5, 7 * first + 7);
  };
  const auto plain = file.add("RD", {}, interval(0) + interval(2));
  const auto zipped = addZipped(file, "RD", interval(0));
  const auto seconds =
      file.add("SR", {0, plain}, Bytes().u64(2).f64(1).u8s({1, 0, 0, 0, 0, 0, 0, 0}));
  const auto minutes =
      file.add("SR", {0, zipped}, Bytes().u64(1).f64(60).u8s({1, 0, 0, 0, 0, 0, 0, 0}));
  file.chain({seconds, minutes});
  file.link(group, 4, seconds);
  file.addDataGroup({group}, file.addData(countingRecords(4)));
  return sampleOf("block-sample-reduction", "reductions to seconds and to minutes", file,
                  {countingTable(4)});
}

/// A block of another type that a source leads to.
Sample unknownBlocks() {
  Parts parts = partsOfMeasurement();
  SampleFile& file = parts.file;
  const auto text = file.text("behind an unknown block");
  const auto unknown = file.add("ZY", {text, 0}, "whatever it holds");
  const auto extended =
      file.add("SI", {file.text("source"), 0, 0, unknown}, Bytes().u8s({1, 1, 0, 0, 0, 0, 0, 0}));
  file.link(parts.channel, 3, extended);
  return measured("block-of-unknown-type", "a type that nobody knows at a link of a newer version",
                  file);
}

/// Blocks with a link more than version 4.10 gives them.
Sample newerLinks() {
  SampleFile file("MDF     ", 420);
  const auto text = file.text("added later");
  const auto name = file.text("notes.txt");
  const auto attachment = file.add("AT", {0, name, 0, 0, text},
                                   Bytes().u16(embedded).zeros(22).u64(3).u64(3).text("abc"));
  file.link(FileBuilder::header, 3, attachment);
  const auto history = file.add("FH", {0, 0, text}, Bytes().zeros(16));
  file.link(file.history(), 0, history);
  std::vector<ChannelSpec> channels = countingChannels();
  channels[1].source = file.add("SI", {name, 0, 0, text}, Bytes().u8s({1, 1, 0, 0, 0, 0, 0, 0}));
  const auto group = file.addGroupOf(countingGroup(3), channels);
  const auto data = file.addData(countingRecords(3));
  const auto data_group = file.add("DG", {0, group, data, 0, text}, Bytes().zeros(8));
  file.link(FileBuilder::header, 0, data_group);
  return measured("block-links-of-newer-versions", "links after those that are known", file);
}

/// A channel with attachments and with a default axis, whose links follow the first eight.
Sample channelReferences() {
  SampleFile file;
  const auto attachment =
      addAttachment(file, {"map.bin", "", embedded, std::string(16, '\0'), 1, "m"});
  file.link(FileBuilder::header, 3, attachment);
  const auto name = file.text("v");
  const auto value =
      file.add("CN", {0, 0, name, 0, 0, 0, 0, 0, attachment, 0, 0, 0},
               Bytes().u8s({0, 0, 0, 0}).u32(8).u32(16).u32(4096).zeros(6).u16(1).zeros(48));
  const auto group = file.addGroupOf(countingGroup(3), {timeMaster()});
  file.link(file.channels()[0], 0, value);
  const auto data_group = file.addDataGroup({group}, file.addData(countingRecords(3)));
  file.link(value, 9, data_group);
  file.link(value, 10, group);
  file.link(value, 11, file.channels()[0]);
  return measured("block-channel-with-references", "an attachment and a default axis of a channel",
                  file);
}

/// Records that stand for messages of a bus.
Sample busEvents() {
  SampleFile file;
  GroupSpec group = countingGroup(3);
  group.flags = 2 | 4;
  group.source = file.addSource("CAN 1", "CAN", 2, 2);
  group.name = "frames";
  std::vector<ChannelSpec> channels = countingChannels();
  channels[1].flags = 0x400;
  file.addSortedGroup(group, channels, file.addData(countingRecords(3)));
  return measured("block-bus-events", "a group of plain bus events", file);
}

Sample nothing(const std::string& name, const std::string& shows, const SampleFile& file) {
  return sampleOf(name, shows, file, {});
}

Samples almostEmpty() {
  SampleFile with_data_group;
  with_data_group.addDataGroup({}, 0);
  SampleFile without_channels;
  without_channels.addSortedGroup({}, {}, 0);
  return {
      nothing("block-header-alone", "a file without a measurement", SampleFile()),
      nothing("block-data-group-alone", "a data group without channel groups", with_data_group),
      nothing("block-channel-group-alone", "a channel group without channels", without_channels),
  };
}

}  // namespace

Samples blockTypeSamples() {
  return together({attachments(),
                   {history(), hierarchy(), hierarchyTypes(), sources(), sourceTypes(), reduction(),
                    unknownBlocks(), newerLinks(), channelReferences(), busEvents()},
                   almostEmpty()});
}

}  // namespace mdf_tests
