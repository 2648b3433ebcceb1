#include "difference_output.h"

#include <array>
#include <string_view>
#include <utility>

#include "printing/style.h"
#include "reader/bytes/printable.h"
#include "reader/columns/column_data.h"

namespace mdf_tools {

namespace {

constexpr std::size_t most_of_a_text = 60;

std::string inQuotes(std::string_view text) {
  return '"' + printable(text, Harmless::utf8, most_of_a_text) + '"';
}

/// "0", or "0.1" for an element with records of its own.
std::string numberOf(const ChannelGroup& group) {
  return std::to_string(group.index) + (group.element ? '.' + std::to_string(*group.element) : "");
}

std::string groupWords(const Thing& thing) {
  const ChannelGroup& group = thing.group_a == nullptr ? *thing.group_b : *thing.group_a;
  std::string words = "group " + numberOf(group);
  if (!group.shownName().empty()) {
    words += ' ' + inQuotes(group.shownName());
  }
  if (thing.group_a != nullptr && thing.group_b != nullptr &&
      numberOf(*thing.group_a) != numberOf(*thing.group_b)) {
    words += " (" + numberOf(*thing.group_b) + " in B)";
  }
  return words;
}

std::string wordsOf(const Thing& thing) {
  const bool has_group = thing.group_a != nullptr || thing.group_b != nullptr;
  std::string words = has_group ? groupWords(thing) : thing.kind;
  if (has_group && std::string_view(thing.kind) != "group") {
    words += std::string(", ") + thing.kind;
  }
  return thing.name.empty() ? words : words + ' ' + inQuotes(thing.name);
}

std::string shown(const Json& value) {
  if (value.is_number_float()) {
    std::string text;
    printNumber(value.get<double>(), text);
    return text;
  }
  if (value.is_string()) {
    return inQuotes(value.get_ref<const std::string&>());
  }
  return value.is_null() ? "nothing" : printable(jsonLine(value), Harmless::utf8, most_of_a_text);
}

std::string inBoth(const Json& a, const Json& b) {
  return shown(a) + " in A, " + shown(b) + " in B";
}

std::string counted(std::uint64_t count, const std::string& word) {
  return std::to_string(count) + ' ' + word + (count == 1 ? "" : "s");
}

const char* letterOf(Side side) { return side == Side::a ? "A" : "B"; }

void printRecord(const RecordDifference& record, bool has_values, std::ostream& out) {
  out << "  record " << *(record.record_a ? record.record_a : record.record_b);
  if (record.record_a && record.record_b && *record.record_a != *record.record_b) {
    out << " (" << *record.record_b << " in B)";
  }
  if (!record.master.is_null()) {
    out << " at " << shown(record.master);
  }
  if (has_values) {
    out << ": " << inBoth(record.a, record.b);
  }
  out << '\n';
}

std::string sentenceOf(const Difference& difference) {
  std::string only = std::string("only in ") + letterOf(difference.side);
  switch (difference.kind) {
    case Difference::Kind::member:
      return printable(difference.member, Harmless::utf8) + ": " +
             inBoth(difference.a, difference.b);
    case Difference::Kind::only:
      return only;
    case Difference::Kind::records:
      return counted(difference.count, "record") + ' ' + only;
    case Difference::Kind::values:
      break;
  }
  return std::to_string(difference.count) + " of " + counted(difference.compared, "value") +
         (difference.count == 1 ? " differs" : " differ");
}

Json groupAsJson(const ChannelGroup* group) {
  if (group == nullptr) {
    return {};
  }
  Json json = {{"group", group->index}, {"name", group->name}};
  if (group->element) {
    json["element"] = *group->element;
  }
  return json;
}

Json recordAsJson(const RecordDifference& record) {
  const auto number = [](const std::optional<std::uint64_t>& each) {
    return each ? Json(*each) : Json();
  };
  return {{"record_a", number(record.record_a)},
          {"record_b", number(record.record_b)},
          {"master", record.master},
          {"a", record.a},
          {"b", record.b}};
}

}  // namespace

void printDifference(const Difference& difference, std::ostream& out) {
  out << Style::strong << wordsOf(difference.thing) << Style::plain << ": "
      << sentenceOf(difference) << '\n';
  for (const RecordDifference& record : difference.first) {
    printRecord(record, difference.kind == Difference::Kind::values, out);
  }
}

void printSummary(const DiffSummary& summary, std::ostream& out) {
  out << Style::strong << "Compared:" << Style::plain << "   "
      << counted(summary.groups, "channel group") << ", " << counted(summary.channels, "channel")
      << ", " << counted(summary.records, "record") << ", " << counted(summary.values, "value")
      << '\n'
      << Style::strong << "Different:" << Style::plain << "  ";
  if (summary.isSame()) {
    out << "nothing\n";
    return;
  }
  std::string words;
  const auto add = [&](std::uint64_t count, const std::string& word, const char* where) {
    if (count > 0) {
      words += (words.empty() ? "" : ", ") + counted(count, word) + where;
    }
  };
  add(summary.members, "detail", "");
  add(summary.different_values, "value", "");
  add(summary.things, "thing", " only in one");
  add(summary.lone_records, "record", " only in one");
  out << words << '\n';
}

Json differenceAsJson(const Difference& difference) {
  static constexpr std::array<const char*, 4> kinds = {"member", "only", "records", "values"};
  const bool is_member = difference.kind == Difference::Kind::member;
  const bool has_values = difference.kind == Difference::Kind::values;
  const bool has_side = !is_member && !has_values;
  Json first = Json::array();
  for (const RecordDifference& record : difference.first) {
    first.push_back(recordAsJson(record));
  }
  return {{"kind", kinds.at(static_cast<std::size_t>(difference.kind))},
          {"of", difference.thing.kind},
          {"group_a", groupAsJson(difference.thing.group_a)},
          {"group_b", groupAsJson(difference.thing.group_b)},
          {"name", textOrNull(difference.thing.name)},
          {"member", textOrNull(difference.member)},
          {"a", difference.a},
          {"b", difference.b},
          {"only_in", has_side ? Json(difference.side == Side::a ? "a" : "b") : Json()},
          {"count", difference.count},
          {"compared", difference.compared},
          {"first", std::move(first)}};
}

Json summaryAsJson(const DiffSummary& summary) {
  return {{"kind", "summary"},
          {"same", summary.isSame()},
          {"groups", summary.groups},
          {"channels", summary.channels},
          {"records", summary.records},
          {"values", summary.values},
          {"different_members", summary.members},
          {"different_values", summary.different_values},
          {"things_in_one", summary.things},
          {"records_in_one", summary.lone_records}};
}

}  // namespace mdf_tools
