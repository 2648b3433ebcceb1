#include "file_json.h"

#include <cmath>
#include <string>

#include "../bytes/input_file.h"
#include "json.h"
#include "names.h"
#include "stored_time.h"

namespace mdf_reader {

namespace {

Json spanAsJson(const AxisSpan& span) {
  const char* source = "stated range";
  if (span.source != AxisSpan::Source::range) {
    source = span.source == AxisSpan::Source::records ? "records" : "record numbers";
  }
  return {{"from", span.from}, {"to", span.to}, {"source", source}};
}

/// JSON has no number that is not finite.
Json reductionsAsJson(const GroupSummary& group) {
  Json list = Json::array();
  for (const ReductionSummary& each : group.reductions) {
    list.push_back({{"interval", std::isfinite(each.interval) ? Json(each.interval) : Json()},
                    {"unit", textOrNull(each.unit())},
                    {"records", each.records}});
  }
  return list;
}

Json groupAsJson(const GroupSummary& each) {
  const ChannelGroup& group = *each.group;
  Json json = {{"group", group.index},
               {"data_group", each.data_group->index},
               {"offset", group.offset},
               {"name", group.name},
               {"source", each.source},
               {"comment", group.comment},
               {"records", each.records.records ? Json(*each.records.records) : Json()},
               {"records_counted", each.records.is_counted},
               {"record_bytes", group.holdsVariableLength() ? Json() : Json(group.recordBytes())},
               {"variable_length", group.holdsVariableLength()},
               {"channels", each.channels.count}};
  json["span"] = each.span ? spanAsJson(*each.span) : Json();
  json["extent"] = each.extent() ? Json(*each.extent()) : Json();
  json["rate"] = each.rate() ? Json(*each.rate()) : Json();
  json["master_unit"] = each.master() == nullptr ? Json() : Json(each.masterUnit());
  json["reductions"] = reductionsAsJson(each);
  return json;
}

Json startAsJson(const Header& header) {
  const StoredTime start = startTimeOf(header);
  return {{"stored", header.start_time},      {"unit", start.isInSeconds() ? "s" : "ns"},
          {"utc", textOrNull(start.utc())},   {"local", textOrNull(start.local())},
          {"zone", textOrNull(start.zone())}, {"class", timeClassName(header.time_class)},
          {"class_number", header.time_class}};
}

}  // namespace

Json fileAsJson(InputFile& file, Depth depth, const FindingSink& report) {
  const FileSummary summary = summarise(file, depth, report);
  const Identification& id = summary.description.identification;
  const bool is_stated = id.isFinished() || id.isUnfinished();
  Json json = {{"file", file.name()},
               {"bytes", file.size()},
               {"identifier", withoutTrailingBlanks(id.file_word)},
               {"version", id.version},
               {"version_text", withoutTrailingBlanks(id.version_text)},
               {"program", withoutTrailingBlanks(id.program)},
               {"finished", is_stated ? Json(id.isFinished()) : Json()},
               {"still_open", id.openParts()},
               {"start", startAsJson(summary.description.header)}};
  json["duration"] = summary.duration ? Json(*summary.duration) : Json();
  json["comment"] = summary.description.header.comment;
  json["properties"] = Json::object();
  for (const Property& property : summary.properties) {
    json["properties"][property.name] = property.value;
  }
  json["data_groups"] = summary.description.data_groups.size();
  json["channels"] = summary.channel_count;
  json["attachments"] = summary.attachment_count;
  json["events"] = summary.event_count;
  json["hierarchy_entries"] = summary.hierarchy_count;
  json["history_entries"] = summary.history_count;
  json["groups"] = Json::array();
  for (const GroupSummary& group : summary.groups) {
    json["groups"].push_back(groupAsJson(group));
  }
  json["blocks"] = Json::object();
  for (const auto& [letters, count] : summary.blocks) {
    json["blocks"][letters] = {{"blocks", count.blocks}, {"bytes", count.bytes}};
  }
  json["bytes_outside_blocks"] = summary.gap_bytes;
  return json;
}

}  // namespace mdf_reader
