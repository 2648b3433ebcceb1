// Events of each kind.

#include <utility>

#include "sample_file.h"
#include "tools/support/attachment_blocks.h"

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
  std::vector<std::uint64_t> scopes;
  std::vector<std::uint64_t> attachments;
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
    EventSpec spec;
    spec.name = "type " + std::to_string(type);
    spec.type = type;
    spec.base = type;
    spec.factor = 0.5;
    events.push_back(addEvent(file, spec));
  }
  return finish("block-event-types", "an event of each type", std::move(file), events);
}

Sample causes() {
  SampleFile file;
  std::vector<std::uint64_t> events;
  for (unsigned cause = 0; cause <= 4; ++cause) {
    EventSpec spec;
    spec.name = "cause " + std::to_string(cause);
    spec.cause = cause;
    spec.is_added_later = cause == 4;
    events.push_back(addEvent(file, spec));
  }
  return finish("block-event-causes", "an event of each cause, the last one added later",
                std::move(file), events);
}

Sample syncTypes() {
  SampleFile file;
  std::vector<std::uint64_t> events;
  for (unsigned sync_type = 1; sync_type <= 4; ++sync_type) {
    EventSpec spec;
    spec.name = "over " + std::to_string(sync_type);
    spec.sync_type = sync_type;
    spec.base = sync_type == 4 ? 2 : -1500;
    spec.factor = sync_type == 4 ? 1 : 0.001;
    events.push_back(addEvent(file, spec));
  }
  return finish("block-event-sync-types", "events at a time, an angle, a distance and an index",
                std::move(file), events);
}

Sample range() {
  SampleFile file;
  EventSpec begin;
  begin.name = "lap";
  begin.range = 1;
  begin.base = 1;
  begin.factor = 0.25;
  const auto first = addEvent(file, begin);
  EventSpec end = begin;
  end.range = 2;
  end.base = 4;
  end.begin = first;
  const auto second = addEvent(file, end);
  return finish("block-event-range", "the begin and the end of a range", std::move(file),
                {first, second});
}

Sample parent() {
  SampleFile file;
  EventSpec recording;
  recording.name = "recording";
  recording.type = 0;
  const auto first = addEvent(file, recording);
  EventSpec trigger;
  trigger.name = "trigger";
  trigger.type = 3;
  trigger.parent = first;
  trigger.base = 1;
  const auto second = addEvent(file, trigger);
  return finish("block-event-parent", "an event that belongs to another", std::move(file),
                {first, second});
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
