#include "info.h"

#include <string>

#include "reader/blocks/block_type.h"
#include "reader/bytes/input_file.h"
#include "reader/summary/names.h"
#include "reader/summary/stored_time.h"
#include "shown_number.h"
#include "style.h"
#include "text_table.h"

namespace mdf_tools {

using namespace mdf_reader;

namespace {

std::string stateSentence(const Identification& id) {
  if (!id.isUnfinished()) {
    return id.isFinished() ? "finished" : "not stated";
  }
  std::string sentence = "unfinished";
  const char* separator = ", still open: ";
  for (const std::string& part : id.openParts()) {
    sentence += separator + part;
    separator = ", ";
  }
  if (id.custom_flags != 0) {
    sentence += "; custom flags " + std::to_string(id.custom_flags);
  }
  return sentence;
}

/// Where angles and distances begin, "" when neither is stated.
std::string startPosition(const Header& header) {
  std::string position;
  if ((header.flags & Header::start_angle_valid) != 0) {
    position = shownNumber(header.start_angle) + " rad";
  }
  if ((header.flags & Header::start_distance_valid) != 0) {
    position += (position.empty() ? "" : ", ") + shownNumber(header.start_distance) + " m";
  }
  return position;
}

std::string countOf(std::size_t count, const std::string& one, const std::string& several) {
  return std::to_string(count) + ' ' + (count == 1 ? one : several);
}

std::string contentsSentence(const FileSummary& summary) {
  return countOf(summary.description.data_groups.size(), "data group", "data groups") + ", " +
         countOf(summary.groups.size(), "channel group", "channel groups") + ", " +
         countOf(summary.channel_count, "channel", "channels") + ", " +
         countOf(summary.attachment_count, "attachment", "attachments") + ", " +
         countOf(summary.event_count, "event", "events") + ", " +
         countOf(summary.hierarchy_count, "hierarchy entry", "hierarchy entries") + ", " +
         countOf(summary.history_count, "history entry", "history entries");
}

/// What was counted in place of what the file states; "" where it leaves nothing open.
std::string countedSentence(const FileSummary& summary) {
  std::uint64_t counted = 0;
  std::uint64_t stated = 0;
  bool has_any = false;
  for (const GroupSummary& each : summary.groups) {
    if (each.records.is_counted && each.records.records && !each.group->holdsVariableLength()) {
      counted += *each.records.records;
      stated += each.group->cycles;
      has_any = true;
    }
  }
  return has_any ? "unfinished; " + withCommas(counted) +
                       (counted == 1 ? " record was" : " records were") +
                       " counted, the file states " + withCommas(stated)
                 : "";
}

void printLine(std::ostream& out, std::string_view label, std::string_view value) {
  constexpr std::size_t label_width = 11;
  out << Style::strong << label << Style::plain << std::string(label_width - label.size(), ' ')
      << onOneLine(value) << '\n';
}

void printGroups(const FileSummary& summary, std::ostream& out) {
  using Align = TextTable::Align;
  TextTable table({{"group", Align::right},
                   {"data", Align::right},
                   {"name"},
                   {"source"},
                   {"records", Align::right},
                   {"span"},
                   {"rate"},
                   {"record bytes", Align::right},
                   {"channels", Align::right}});
  for (const GroupSummary& each : summary.groups) {
    const ChannelGroup& group = *each.group;
    const std::string unit = each.masterUnit();
    const auto extent = each.extent();
    const auto rate = each.rate();
    const bool is_variable = group.holdsVariableLength();
    table.add(
        {std::to_string(group.index), std::to_string(each.data_group->index),
         is_variable && group.name.empty() ? "(variable-length data)" : std::string(group.name),
         each.source, shownRecords(each.records),
         extent ? shownNumber(*extent) + (unit.empty() ? "" : ' ' + unit) : "",
         rate ? shownNumber(*rate) + (unit.empty() ? "" : '/' + unit) : "",
         is_variable ? "variable" : std::to_string(group.recordBytes()),
         std::to_string(each.channels.count)});
  }
  if (!table.isEmpty()) {
    out << '\n';
    table.print(out);
  }
}

void printReductions(const FileSummary& summary, std::ostream& out) {
  using Align = TextTable::Align;
  TextTable table(
      {{"group", Align::right}, {"reduced to", Align::right}, {"records", Align::right}});
  for (const GroupSummary& each : summary.groups) {
    for (const ReductionSummary& reduction : each.reductions) {
      const std::string unit = reduction.unit();
      table.add({std::to_string(each.group->index),
                 shownNumber(reduction.interval) + (unit.empty() ? "" : ' ' + unit),
                 withCommas(reduction.records)});
    }
  }
  if (!table.isEmpty()) {
    out << '\n';
    table.print(out);
  }
}

void printBlocks(const FileSummary& summary, std::ostream& out) {
  TextTable table(
      {{"type"}, {"blocks", TextTable::Align::right}, {"bytes", TextTable::Align::right}, {""}});
  for (const auto& [letters, count] : summary.blocks) {
    const BlockType& type = typeOf(letters);
    table.add({letters, std::to_string(count.blocks), std::to_string(count.bytes),
               type.isKnown() ? std::string(type.title) : "(unknown type)"});
  }
  table.add({"", "", std::to_string(summary.gap_bytes), "outside blocks"});
  out << '\n';
  table.print(out);
}

}  // namespace

void printInfo(InputFile& file, Depth depth, std::ostream& out, const FindingSink& report) {
  const FileSummary summary = summarise(file, depth, report);
  const Identification& id = summary.description.identification;
  const Header& header = summary.description.header;
  printLine(out, "File:", file.name() + ", " + std::to_string(file.size()) + " bytes");
  printLine(out, "Format:",
            '"' + printable(withoutTrailingBlanks(id.file_word)) + "\" version \"" +
                printable(withoutTrailingBlanks(id.version_text)) + "\" (" +
                std::to_string(id.version) + "), written by \"" +
                printable(withoutTrailingBlanks(id.program)) + '"');
  printLine(out, "State:", stateSentence(id));
  printLine(out, "Start:",
            startTimeOf(header).sentence() + ", clock: " + timeClassName(header.time_class));
  if (const std::string position = startPosition(header); !position.empty()) {
    printLine(out, "Begins at:", position);
  }
  printLine(out,
            "Duration:", summary.duration ? shownNumber(*summary.duration) + " s" : "not known");
  if (!header.comment.empty()) {
    printLine(out, "Comment:", header.comment);
  }
  for (const Property& property : summary.properties) {
    printLine(out, "Property:", property.name + ": " + property.value);
  }
  printLine(out, "Contents:", contentsSentence(summary));
  if (const std::string counted = countedSentence(summary); !counted.empty()) {
    printLine(out, "Records:", counted);
  }
  printGroups(summary, out);
  printReductions(summary, out);
  printBlocks(summary, out);
}

}  // namespace mdf_tools
