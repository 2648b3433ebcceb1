// Events of each kind.

#include <utility>

#include "sample_file.h"
#include "tools/support/data_blocks.h"

namespace mdf_tests {

namespace {

/// An event block in the making.
struct EventSpec {
  std::string name;
  unsigned type = 6;  ///< marker
  unsigned sync_type = 1;
  unsigned range = 0;
  unsigned cause = 0;
  std::int64_t base = 0;
  double factor = 1;
  std::uint64_t parent = 0;
  std::uint64_t begin = 0;
  std::vector<std::uint64_t> scopes{};
  std::vector<std::uint64_t> attachments{};
  bool is_added_later = false;
};

std::uint64_t addEvent(SampleFile& file, const EventSpec& spec) {
  std::vector<std::uint64_t> links = {0, spec.parent, spec.begin, file.text(spec.name), 0};
  links.insert(links.end(), spec.scopes.begin(), spec.scopes.end());
  links.insert(links.end(), spec.attachments.begin(), spec.attachments.end());
  return file.add(
      "EV", links,
      u8(spec.type, spec.sync_type, spec.range, spec.cause, spec.is_added_later ? 1 : 0) +
          zeros(3) + u32(spec.scopes.size()) + u16(spec.attachments.size(), 0) + u64(spec.base) +
          f64(spec.factor));
}

Sample finish(const std::string& name, const std::string& shows, SampleFile file,
              const std::vector<std::uint64_t>& events) {
  file.chain(events);
  file.link(FileBuilder::header, 4, events[0]);
  file.addSortedGroup(countingGroup(3), countingChannels(), file.addData(countingRecords(3)));
  return sampleOf(name, shows, file, {countingTable(3)});
}

Sample types() {
  SampleFile file;
  std::vector<std::uint64_t> events;
  for (unsigned type = 0; type <= 6; ++type) {
    events.push_back(
        addEvent(file, {"type " + std::to_string(type), type, 1, 0, 0, std::int64_t{type}, 0.5}));
  }
  return finish("block-event-types", "an event of each type", std::move(file), events);
}

Sample causes() {
  SampleFile file;
  std::vector<std::uint64_t> events;
  for (unsigned cause = 0; cause <= 4; ++cause) {
    EventSpec spec{"cause " + std::to_string(cause), 6, 1, 0, cause};
    spec.is_added_later = cause == 4;
    events.push_back(addEvent(file, spec));
  }
  return finish("block-event-causes", "an event of each cause, the last one added later",
                std::move(file), events);
}

Sample syncTypes() {
  SampleFile file;
  const std::vector<std::uint64_t> events = {addEvent(file, {"over 1", 6, 1, 0, 0, -1500, 0.001}),
                                             addEvent(file, {"over 2", 6, 2, 0, 0, -1500, 0.001}),
                                             addEvent(file, {"over 3", 6, 3, 0, 0, -1500, 0.001}),
                                             addEvent(file, {"over 4", 6, 4, 0, 0, 2, 1})};
  return finish("block-event-sync-types", "events at a time, an angle, a distance and an index",
                std::move(file), events);
}

Sample range() {
  SampleFile file;
  const auto begin = addEvent(file, {"lap", 6, 1, 1, 0, 1, 0.25});
  const auto end = addEvent(file, {"lap", 6, 1, 2, 0, 4, 0.25, 0, begin});
  return finish("block-event-range", "the begin and the end of a range", std::move(file),
                {begin, end});
}

Sample parent() {
  SampleFile file;
  const auto recording = addEvent(file, {"recording", 0});
  const auto trigger = addEvent(file, {"trigger", 3, 1, 0, 0, 1, 1, recording});
  return finish("block-event-parent", "an event that belongs to another", std::move(file),
                {recording, trigger});
}

/// An event of a group and one of its channels, with an attachment and a comment.
Sample scope() {
  SampleFile file;
  const auto group = file.addGroupOf(countingGroup(3), countingChannels());
  EventSpec spec;
  spec.name = "note";
  spec.scopes = {group, file.channels()[1]};
  spec.attachments = {
      addAttachment(file, {"photo.png", "image/png", 1, std::string(16, '\0'), 2, "PN"})};
  file.link(FileBuilder::header, 3, spec.attachments[0]);
  const auto event = addEvent(file, spec);
  file.link(event, 4, file.metadata("<EVcomment><TX>seen from the car</TX></EVcomment>"));
  file.link(FileBuilder::header, 4, event);
  file.addDataGroup({group}, file.addData(countingRecords(3)));
  return sampleOf("block-event-scope", "an event with scope, attachment and comment", file,
                  {countingTable(3)});
}

}  // namespace

Samples eventSamples() { return {types(), causes(), syncTypes(), range(), parent(), scope()}; }

}  // namespace mdf_tests
