#include "file_comparison.h"

#include <utility>

#include "json_difference.h"
#include "reader/bytes/digest.h"
#include "reader/model/channel_names.h"
#include "table_comparison.h"

namespace mdf_tools {

namespace {

constexpr std::size_t most_of_a_name = 1024;

/// Names of different channels, so that groups without names are known by them.
std::string digestOf(const Channels& channels) {
  Md5 md5;
  for (const Channel& channel : channels) {
    md5.add(channel.name.substr(0, most_of_a_name));
    md5.add(std::string_view("\0", 1));
  }
  return md5.digest();
}

Keys namesOf(const Channels& channels) {
  Keys names;
  ChannelNames next;
  for (const Channel& channel : channels) {
    names.push_back({next.next(channel)});
  }
  return names;
}

Keys keysOf(const std::vector<ListEntry>& entries) {
  Keys keys;
  for (const ListEntry& entry : entries) {
    keys.push_back({entry.key + '\0' + jsonLine(entry.members), entry.key});
  }
  return keys;
}

}  // namespace

const std::vector<std::string>& ignorableParts() {
  static const std::vector<std::string> parts = {
      "start",  "clock",       "properties", "comment",   "name",  "source",
      "unit",   "conversion",  "ranges",     "precision", "flags", "values",
      "events", "attachments", "hierarchy",  "reductions"};
  return parts;
}

FileComparison::FileComparison(ComparedFile& a, ComparedFile& b, const DiffOptions& options,
                               DifferenceSink report)
    : a_(a), b_(b), options_(options), report_(std::move(report)) {}

DiffSummary FileComparison::run() {
  compareThings({"header"}, a_.describer.header(a_.tables.header()),
                b_.describer.header(b_.tables.header()));
  compareGroups();
  compareLists("events", "event");
  compareLists("attachments", "attachment");
  compareLists("hierarchy", "hierarchy entry");
  if (options_.compares_history) {
    compareLists("history", "history entry");
  }
  return summary_;
}

/// All but those that hold values of other groups' channels.
std::vector<FileComparison::Group> FileComparison::groupsOf(const ComparedFile& file) {
  std::vector<Group> groups;
  for (const DataGroup& data_group : file.tables.dataGroups()) {
    for (const ChannelGroup& group : data_group.groups) {
      if (!group.holdsVariableLength()) {
        groups.push_back({&data_group, &group});
      }
    }
  }
  return groups;
}

/// Groups are known by their names, their sources, and their channels; or else by the first two, or
/// at least by the last.
Keys FileComparison::keysOf(ComparedFile& file, const std::vector<Group>& groups) const {
  Keys keys;
  for (const auto& [data_group, group] : groups) {
    const Json element = group->element ? Json(*group->element) : Json();
    const Json source = isIgnored("source") ? Json() : file.describer.source(group->source);
    const std::string name =
        jsonLine(Json::array({group->name.substr(0, most_of_a_name), source, element}));
    const std::string channels = digestOf(group->channels) + jsonLine(element);
    keys.push_back({name + channels, name, channels});
  }
  return keys;
}

void FileComparison::compareGroups() {
  const std::vector<Group> groups_a = groupsOf(a_);
  const std::vector<Group> groups_b = groupsOf(b_);
  const Pairing pairing = pairUp(keysOf(a_, groups_a), keysOf(b_, groups_b));
  for (std::size_t i = 0; i < groups_a.size() && !isDecided(); ++i) {
    const auto partner = pairing.partners[i];
    if (partner) {
      compareGroup(groups_a[i], groups_b[*partner]);
    } else {
      reportOnly({"group", groups_a[i].group}, Side::a);
    }
  }
  for (const std::size_t i : pairing.only_b) {
    reportOnly({"group", nullptr, groups_b[i].group}, Side::b);
  }
}

void FileComparison::compareGroup(const Group& a, const Group& b) {
  ++summary_.groups;
  compareThings({"group", a.group, b.group}, a_.describer.group(*a.data_group, *a.group),
                b_.describer.group(*b.data_group, *b.group));
  compareChannels(*a.group, *b.group);
  if (!isIgnored("values") && !isDecided()) {
    compareRecords(a, b);
  }
}

void FileComparison::compareChannels(const ChannelGroup& a, const ChannelGroup& b) {
  const Keys names_a = namesOf(a.channels);
  const Keys names_b = namesOf(b.channels);
  const Pairing pairing = pairUp(names_a, names_b);
  for (std::size_t i = 0; i < names_a.size(); ++i) {
    const Thing thing{"channel", &a, &b, names_a[i].front()};
    if (pairing.partners[i]) {
      ++summary_.channels;
      const Channel& of_a = a.channels[i];
      const Channel& of_b = b.channels[*pairing.partners[i]];
      compareThings(thing, a_.describer.channel(of_a), b_.describer.channel(of_b));
      compareConversions(thing, of_a, of_b);
    } else {
      reportOnly(thing, Side::a);
    }
  }
  for (const std::size_t i : pairing.only_b) {
    reportOnly({"channel", &a, &b, names_b[i].front()}, Side::b);
  }
}

/// As lines first: tables may be long, and mostly they are the same.
void FileComparison::compareConversions(const Thing& thing, const Channel& a, const Channel& b) {
  const std::string& line_a = a_.describer.conversion(a);
  const std::string& line_b = b_.describer.conversion(b);
  if (line_a != line_b) {
    compareThings(thing, {{"conversion", a_.describer.conversionMembers(line_a)}},
                  {{"conversion", b_.describer.conversionMembers(line_b)}});
  }
}

void FileComparison::compareRecords(const Group& a, const Group& b) {
  Table* const table_a = a_.tables.of(*a.data_group, *a.group);
  Table* const table_b = b_.tables.of(*b.data_group, *b.group);
  if (table_a != nullptr && table_b != nullptr) {
    TableComparison(*table_a, *table_b, options_, {"group", a.group, b.group})
        .run([this](const Difference& difference) { report(difference); }, summary_);
  }
}

void FileComparison::compareLists(const std::string& name, const char* kind) {
  if (isIgnored(name) || isDecided()) {
    return;
  }
  const auto list_a = a_.describer.list(name, a_.tables.header(), a_.tables.dataGroups());
  const auto list_b = b_.describer.list(name, b_.tables.header(), b_.tables.dataGroups());
  const Pairing pairing = pairUp(mdf_tools::keysOf(list_a), mdf_tools::keysOf(list_b));
  for (std::size_t i = 0; i < list_a.size(); ++i) {
    const Thing thing{kind, nullptr, nullptr, list_a[i].name};
    if (pairing.partners[i]) {
      compareThings(thing, list_a[i].members, list_b[*pairing.partners[i]].members);
    } else {
      reportOnly(thing, Side::a);
    }
  }
  for (const std::size_t i : pairing.only_b) {
    reportOnly({kind, nullptr, nullptr, list_b[i].name}, Side::b);
  }
}

void FileComparison::compareThings(const Thing& thing, const Json& a, const Json& b) {
  compareMembers(a, b, options_.ignored,
                 [&](const std::string& path, const Json& of_a, const Json& of_b) {
                   report({Difference::Kind::member, thing, Side::a, path, of_a, of_b});
                 });
}

void FileComparison::reportOnly(const Thing& thing, Side side) {
  report({Difference::Kind::only, thing, side});
}

void FileComparison::report(const Difference& difference) {
  summary_.add(difference);
  report_(difference);
}

}  // namespace mdf_tools
