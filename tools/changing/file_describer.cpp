#include "file_describer.h"

#include <array>
#include <cmath>
#include <cstddef>
#include <utility>

#include "reader/blocks/block_fields.h"
#include "reader/bytes/digest.h"
#include "reader/bytes/input_file.h"
#include "reader/columns/column_data.h"
#include "reader/model/attachment_reading.h"
#include "reader/model/channel_names.h"
#include "reader/model/events.h"
#include "reader/model/hierarchy.h"
#include "reader/model/history.h"
#include "reader/model/properties.h"
#include "reader/summary/channel_json.h"
#include "reader/summary/names.h"
#include "reader/summary/stored_time.h"

namespace mdf_tools {

namespace {

constexpr std::uint64_t times = 4;
constexpr std::uint64_t always = std::uint64_t{1} << 24U;

struct Flag {
  std::uint64_t bit;
  const char* word;
};

/// Those that say what a channel means. What is beside them is seen in the values.
constexpr std::array<Flag, 7> channel_flags = {{{64, "discrete"},
                                                {128, "calibration"},
                                                {256, "calculated"},
                                                {512, "virtual"},
                                                {1024, "bus event"},
                                                {2048, "monotonous"},
                                                {4096, "default axis"}}};
constexpr std::array<Flag, 2> group_flags = {
    {{ChannelGroup::is_bus_event, "bus event"}, {ChannelGroup::is_plain_bus_event, "plain"}}};

template <std::size_t Count>
Json wordsOf(std::uint64_t flags, const std::array<Flag, Count>& known) {
  std::string words;
  for (const Flag& flag : known) {
    if ((flags & flag.bit) != 0) {
      words += (words.empty() ? "" : ", ") + std::string(flag.word);
    }
  }
  return textOrNull(words);
}

/// JSON has no number that is not finite.
Json numberOrText(double number) {
  std::string text;
  printNumber(number, text);
  return std::isfinite(number) ? Json(number) : Json(text);
}

void addRange(const BlockFields& block, const std::string& name, std::uint64_t flag, Json& ranges) {
  if (block.hasFlag("cn_flags", flag)) {
    const std::string field = name == "value" ? "cn_val_range" : "cn_" + name;
    ranges[name] = {{"least", numberOrText(block.real(field + "_min"))},
                    {"most", numberOrText(block.real(field + "_max"))}};
  }
}

ListEntry entryOf(std::string_view name, std::string key, Json members) {
  return {std::string(name), std::move(key), std::move(members)};
}

/// Names of channels by the offsets of their blocks.
std::unordered_map<std::uint64_t, std::string> namesOf(const std::vector<DataGroup>& data_groups) {
  std::unordered_map<std::uint64_t, std::string> names;
  for (const DataGroup& data_group : data_groups) {
    for (const ChannelGroup& group : data_group.groups) {
      ChannelNames next;
      for (const Channel& channel : group.channels) {
        names.emplace(channel.offset, next.next(channel));
      }
    }
  }
  return names;
}

}  // namespace

FileDescriber::FileDescriber(InputFile& file, const FindingSink& report)
    : file_(file), report_(report), conversions_(file), budget_(file.size(), times, always) {}

bool FileDescriber::mayTake(std::uint64_t bytes) {
  const bool may = budget_.take(bytes);
  if (!may && !has_told_) {
    has_told_ = true;
    report_({Code::work_limited, header_block_offset,
             "expected texts and conversions of their own, found the same long ones again and "
             "again; the other ones are not compared"});
  }
  return may;
}

Json FileDescriber::text(std::string_view text) {
  return text.empty() || !mayTake(text.size()) ? Json() : Json(text);
}

Json FileDescriber::header(const Header& header) {
  Json properties = Json::object();
  for (const Property& property : readProperties(file_, header.comment_block)) {
    properties[property.name] = property.value;
  }
  Json json = {{"start", textOrNull(startTimeOf(header).isoAfter(0))},
               {"clock", timeClassName(header.time_class)},
               {"comment", text(header.comment)},
               {"properties", std::move(properties)}};
  if ((header.flags & Header::start_angle_valid) != 0) {
    json["start_angle"] = numberOrText(header.start_angle);
  }
  if ((header.flags & Header::start_distance_valid) != 0) {
    json["start_distance"] = numberOrText(header.start_distance);
  }
  return json;
}

const Json& FileDescriber::source(std::uint64_t offset) {
  const auto [known, is_new] = sources_.try_emplace(offset);
  if (is_new && offset != 0) {
    const Source source = readSource(file_, offset, texts_);
    known->second = {{"name", text(source.name)},
                     {"path", text(source.path)},
                     {"type", sourceTypeName(source.type)},
                     {"bus", busTypeName(source.bus_type)},
                     {"simulated", source.is_simulated}};
  }
  return known->second;
}

Json FileDescriber::reductions(std::uint64_t first) {
  Json list = Json::array();
  forEachInChain(file_, first, "SR", report_, [&](const BlockFields& block) {
    list.push_back({{"interval", numberOrText(block.real("sr_interval"))},
                    {"axis", syncTypeName(static_cast<unsigned>(block.number("sr_sync_type")))}});
  });
  return list;
}

Json FileDescriber::group(const DataGroup& data_group, const ChannelGroup& group) {
  return {{"name", text(group.name)},
          {"source", source(group.source)},
          {"comment", text(group.comment)},
          {"data_group_comment", text(data_group.comment)},
          {"flags", wordsOf(group.flags, group_flags)},
          {"reductions", reductions(group.first_reduction)}};
}

Json FileDescriber::channel(const Channel& channel) {
  Json json = {{"unit", text(channel.unit)},
               {"axis", channel.isMaster() || channel.type == Channel::synchronization
                            ? Json(syncTypeName(channel.sync_type))
                            : Json()},
               {"master", channel.isMaster()},
               {"dimensions", allDimensions(channel.array)},
               {"source", source(channel.source)},
               {"comment", text(channel.comment)},
               {"flags", wordsOf(channel.flags, channel_flags)},
               {"precision",
                (channel.flags & Channel::has_precision) != 0 ? Json(channel.precision) : Json()}};
  constexpr std::uint64_t has_values = 8;
  constexpr std::uint64_t has_limits = 16;
  constexpr std::uint64_t has_extended_limits = 32;
  Json& ranges = json["ranges"] = Json::object();
  if ((channel.flags & (has_values | has_limits | has_extended_limits)) != 0) {
    if (const auto block = readFields(file_, channel.offset, "CN")) {
      addRange(*block, "value", has_values, ranges);
      addRange(*block, "limit", has_limits, ranges);
      addRange(*block, "limit_ext", has_extended_limits, ranges);
    }
  }
  return json;
}

const std::string& FileDescriber::conversion(const Channel& channel) {
  return conversions_.at(channel.conversion);
}

Json FileDescriber::conversionMembers(const std::string& line) {
  if (line.empty() || !mayTake(line.size())) {
    return {};
  }
  Json members = Json::parse(line);
  const bool changes_nothing = members["type_number"] == 0;
  members.erase("type_number");
  return changes_nothing ? Json() : members;
}

std::vector<ListEntry> FileDescriber::list(const std::string& name, const Header& header,
                                           const std::vector<DataGroup>& data_groups) {
  return name == "events"        ? events(header)
         : name == "attachments" ? attachments(header)
         : name == "hierarchy"   ? hierarchy(header, data_groups)
                                 : history(header);
}

std::vector<ListEntry> FileDescriber::events(const Header& header) {
  std::vector<ListEntry> entries;
  for (const Event& each : readEvents(file_, header.first_event, texts_, report_)) {
    const std::string type = eventTypeName(each.type);
    entries.push_back(entryOf(each.name, type + ' ' + std::string(each.name),
                              {{"type", type},
                               {"axis", eventSyncTypeName(each.sync_type)},
                               {"position", numberOrText(each.position())},
                               {"range", eventRangeName(each.range_type)},
                               {"cause", eventCauseName(each.cause)},
                               {"comment", text(each.comment)},
                               {"scopes", each.scope_count},
                               {"attachments", each.attachment_count}}));
  }
  return entries;
}

std::vector<ListEntry> FileDescriber::attachments(const Header& header) {
  std::vector<ListEntry> entries;
  for (const Attachment& each : readAttachments(file_, header.first_attachment, texts_, report_)) {
    AttachmentReading reading;
    reading.size = each.original_size;
    reading.digest = each.has_digest ? each.digest : "";
    if (each.is_embedded) {
      reading = verifyAttachment(file_, each, [](std::string_view /*piece*/) {});
    }
    if (each.is_embedded && reading.digest.empty()) {
      report_({Code::attachment_length_wrong, each.offset,
               "expected all data of the attachment, found it cut off or damaged; it is not "
               "compared"});
    }
    entries.push_back(entryOf(each.name, std::string(each.name),
                              {{"type", text(each.mime_type)},
                               {"comment", text(each.comment)},
                               {"embedded", each.is_embedded},
                               {"size", reading.size},
                               {"md5", textOrNull(hexDigest(reading.digest))}}));
  }
  return entries;
}

std::vector<ListEntry> FileDescriber::hierarchy(const Header& header,
                                                const std::vector<DataGroup>& data_groups) {
  const auto found = readHierarchy(file_, header.first_hierarchy, texts_, report_);
  const auto names =
      found.empty() ? std::unordered_map<std::uint64_t, std::string>() : namesOf(data_groups);
  std::vector<ListEntry> entries;
  for (const HierarchyEntry& each : found) {
    Json channels = Json::array();
    for (const HierarchyElement& element : each.elements) {
      const auto name = names.find(element.channel);
      channels.push_back(name == names.end() ? Json() : text(name->second));
    }
    entries.push_back(entryOf(each.name, std::string(each.name),
                              {{"type", hierarchyTypeName(each.type)},
                               {"depth", each.depth},
                               {"comment", text(each.comment)},
                               {"channels", std::move(channels)}}));
  }
  return entries;
}

std::vector<ListEntry> FileDescriber::history(const Header& header) {
  std::vector<ListEntry> entries;
  for (const HistoryEntry& each : readHistory(file_, header.first_history, texts_, report_)) {
    const StoredTime time(each.time, each.zone_minutes, each.daylight_minutes, each.time_flags);
    const std::string shown = time.isoAfter(0);
    entries.push_back(
        entryOf(shown, shown, {{"time", textOrNull(shown)}, {"comment", text(each.comment)}}));
  }
  return entries;
}

}  // namespace mdf_tools
