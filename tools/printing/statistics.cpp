#include "statistics.h"

#include <cstddef>
#include <optional>
#include <string_view>
#include <type_traits>
#include <utility>
#include <variant>

#include "json_output.h"
#include "reader/columns/column_data.h"
#include "text_table.h"

namespace mdf_tools {

using namespace mdf_reader;

namespace {

constexpr std::size_t most_of_a_text = 24;  // characters, in a table

std::string shown(double number) {
  std::string text;
  printNumber(number, text);
  return text;
}

std::string shown(const std::optional<double>& number) { return number ? shown(*number) : ""; }

std::string shown(const Value& value) {
  return std::visit(
      [](const auto& each) -> std::string {
        using T = std::decay_t<decltype(each)>;
        if constexpr (std::is_same_v<T, std::monostate>) {
          return "";
        } else if constexpr (std::is_same_v<T, std::string>) {
          return onOneLine(each, most_of_a_text);
        } else if constexpr (std::is_same_v<T, double>) {
          return shown(each);
        } else {
          return std::to_string(each);
        }
      },
      value);
}

std::string withUnit(const std::string& number, const std::string& unit) {
  return number.empty() || unit.empty() ? number : number + ' ' + unit;
}

/// "12.5 s (record 124)"
std::string placeOf(const std::optional<Step>& step, const std::string& unit) {
  return step ? withUnit(shown(step->from), unit) + " (record " + std::to_string(step->record) + ')'
              : "";
}

/// "1", or "1.0" for an element with records of its own.
std::string numberOf(const ChannelGroup& group) {
  return std::to_string(group.index) + (group.element ? '.' + std::to_string(*group.element) : "");
}

/// Groups may share a text of any length, which is not printed for each.
std::string cut(std::string_view name) { return std::string(name.substr(0, 1024)); }

std::vector<std::string> groupCells(const TableStatistics& table) {
  const ChannelGroup& group = *table.group;
  std::vector<std::string> cells = {numberOf(group), cut(group.shownName()),
                                    std::to_string(table.records), std::to_string(table.bytes())};
  if (!table.axis) {
    cells.resize(9);
    return cells;
  }
  const AxisStatistics& axis = *table.axis;
  const std::string& unit = table.columns.front().unit;
  const std::string rate = shown(axis.rate);
  cells.push_back(rate.empty() || unit.empty() ? rate : rate + '/' + unit);
  cells.push_back(axis.longest_gap ? withUnit(shown(axis.longest_gap->length), unit) : "");
  cells.push_back(placeOf(axis.longest_gap, unit));
  cells.push_back(std::to_string(axis.backwards));
  cells.push_back(placeOf(axis.first_backwards, unit));
  return cells;
}

void printGroups(const std::vector<TableStatistics>& tables, std::ostream& out) {
  using Align = TextTable::Align;
  TextTable lines({{"group", Align::right},
                   {"name"},
                   {"records", Align::right},
                   {"bytes", Align::right},
                   {"rate", Align::right},
                   {"longest gap", Align::right},
                   {"after"},
                   {"backwards", Align::right},
                   {"first after"}});
  for (const TableStatistics& table : tables) {
    lines.add(groupCells(table));
  }
  lines.print(out);
}

void printColumns(const std::vector<TableStatistics>& tables, std::ostream& out) {
  using Align = TextTable::Align;
  TextTable lines({{"group", Align::right},
                   {"channel"},
                   {"unit"},
                   {"values", Align::right},
                   {"invalid", Align::right},
                   {"not finite", Align::right},
                   {"first", Align::right},
                   {"last", Align::right},
                   {"minimum", Align::right},
                   {"maximum", Align::right},
                   {"mean", Align::right},
                   {"deviation", Align::right}});
  for (const TableStatistics& table : tables) {
    for (const ColumnStatistics& column : table.columns) {
      lines.add({numberOf(*table.group), column.name, column.unit, std::to_string(column.values),
                 std::to_string(column.invalid), std::to_string(column.not_finite),
                 shown(column.first), shown(column.last), shown(column.minimum),
                 shown(column.maximum), shown(column.mean), shown(column.deviation)});
    }
  }
  lines.print(out);
}

Json asJson(const Value& value) {
  return std::visit(
      [](const auto& each) -> Json {
        if constexpr (std::is_same_v<std::decay_t<decltype(each)>, std::monostate>) {
          return {};
        } else {
          return each;
        }
      },
      value);
}

Json asJson(const std::optional<double>& number) { return number ? Json(*number) : Json(); }

Json asJson(const std::optional<Step>& step) {
  return step ? Json({{"record", step->record},
                      {"from", asJson(step->from)},
                      {"to", asJson(step->to)},
                      {"length", step->length}})
              : Json();
}

Json columnAsJson(const ColumnStatistics& column) {
  return {{"name", column.name},
          {"unit", column.unit},
          {"values", column.values},
          {"invalid", column.invalid},
          {"not_finite", column.not_finite},
          {"first", asJson(column.first)},
          {"last", asJson(column.last)},
          {"minimum", asJson(column.minimum)},
          {"maximum", asJson(column.maximum)},
          {"mean", asJson(column.mean)},
          {"deviation", asJson(column.deviation)}};
}

}  // namespace

void printStatistics(const std::vector<TableStatistics>& tables, std::ostream& out) {
  printGroups(tables, out);
  out << '\n';
  printColumns(tables, out);
}

Json statisticsAsJson(const std::string& file, const TableStatistics& table) {
  Json json = {{"schema", json_schema}, {"file", file}, {"group", table.group->index}};
  if (table.group->element) {
    json["element"] = *table.group->element;
  }
  const AxisStatistics axis = table.axis.value_or(AxisStatistics());
  json["name"] = cut(table.group->name);
  json["records"] = table.records;
  json["record_bytes"] = table.record_bytes;
  json["bytes"] = table.bytes();
  json["master"] = table.axis ? Json(table.columns.front().name) : Json();
  json["rate"] = asJson(axis.rate);
  json["longest_gap"] = asJson(axis.longest_gap);
  json["backwards"] = table.axis ? Json(axis.backwards) : Json();
  json["first_backwards"] = asJson(axis.first_backwards);
  json["channels"] = Json::array();
  for (const ColumnStatistics& column : table.columns) {
    json["channels"].push_back(columnAsJson(column));
  }
  return json;
}

}  // namespace mdf_tools
