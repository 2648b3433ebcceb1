#include "join_report.h"

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <optional>

#include "printing/json_output.h"
#include "printing/shown_number.h"

namespace mdf_tools {

namespace {

std::string counted(std::uint64_t number, const std::string& word) {
  return withCommas(number) + ' ' + word + (number == 1 ? "" : "s");
}

std::string seconds(double number) { return shownNumber(number) + " s"; }

/// ", 0.01 s after the files before"
std::string gapWords(std::optional<double> gap) {
  if (!gap || !std::isfinite(*gap)) {
    return "";
  }
  return *gap > 0   ? ", after a gap of " + seconds(*gap)
         : *gap < 0 ? ", overlaps by " + seconds(-*gap)
                    : ", without a gap";
}

std::string fileLine(const JoinSummary::File& file) {
  std::string line = file.name + ": " + counted(file.records, "record");
  if (file.first && file.last) {
    line += " from " + seconds(*file.first) + " to " + seconds(*file.last);
  } else if (file.later != 0) {
    line += ", begins at " + seconds(file.later);
  }
  return line + gapWords(file.gap);
}

Json numberOrNull(std::optional<double> number) {
  return number && std::isfinite(*number) ? Json(*number) : Json();
}

}  // namespace

std::string joinText(const std::string& output, const JoinSummary& summary) {
  std::string text = "joined " + output + ": " + counted(summary.records(), "record") + " in " +
                     counted(summary.groups.size(), "group") + " of " +
                     counted(summary.files.size(), "file") + '\n';
  for (const JoinSummary::File& file : summary.files) {
    text += fileLine(file) + '\n';
  }
  for (const std::string& note : summary.notes) {
    text += "note: " + note + '\n';
  }
  return text;
}

std::string joinJson(const std::string& output, const JoinSummary& summary) {
  Json files = Json::array();
  for (const JoinSummary::File& file : summary.files) {
    files.push_back({{"file", file.name},
                     {"start", file.later},
                     {"records", file.records},
                     {"first", numberOrNull(file.first)},
                     {"last", numberOrNull(file.last)},
                     {"gap", numberOrNull(file.gap)}});
  }
  Json groups = Json::array();
  for (const JoinSummary::Group& group : summary.groups) {
    groups.push_back(
        {{"name", textOrNull(group.name)}, {"files", group.files}, {"records", group.records}});
  }
  Json line;
  line["schema"] = json_schema;
  line["output"] = output;
  line["files"] = std::move(files);
  line["groups"] = std::move(groups);
  line["notes"] = summary.notes;
  return jsonLine(line) + '\n';
}

}  // namespace mdf_tools
