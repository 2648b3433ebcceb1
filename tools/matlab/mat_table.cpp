#include "mat_table.h"

#include <cstdint>
#include <type_traits>
#include <utility>

#include "matlab_names.h"
#include "reader/values/text_encoding.h"

namespace mdf_tools {

namespace {

/// Whether some integers must be doubles, for others are missing, and are not the same ones then.
bool isRounded(const ColumnData& values) {
  if (values.nullCount() == 0 || !isInteger(values.type())) {
    return false;
  }
  return withNumberType(values.type(), [&](auto zero) {
    using Number = decltype(zero);
    constexpr double beyond = 18446744073709551616.0;  // all 64-bit integers
    const Number* const numbers = values.values<Number>();
    for (std::size_t row = 0; row < values.rows(); ++row) {
      const double real = static_cast<double>(numbers[row]);
      if (real >= (std::is_signed_v<Number> ? beyond / 2 : beyond) ||
          static_cast<Number>(real) != numbers[row]) {
        return true;
      }
    }
    return false;
  });
}

}  // namespace

MatTable::MatTable(const TableHead& head, const ValueForm& form) : head_(head), form_(form) {
  for (std::size_t i = 0; i < head.columns.size(); ++i) {
    columns_.emplace_back(!isTime(i)             ? head.columns[i].type
                          : form.isDate(head, i) ? ColumnType::text
                                                 : ColumnType::int64);
  }
}

void MatTable::add(const Batch& batch) {
  for (std::size_t i = 0; i < columns_.size(); ++i) {
    if (isTime(i)) {
      addTimes(batch, i);
    } else {
      columns_[i].append(batch.column(i), 0, batch.rows());
    }
  }
}

void MatTable::addTimes(const Batch& batch, std::size_t column) {
  ColumnData& times = columns_[column];
  std::string text;
  for (std::size_t row = 0; row < batch.rows(); ++row) {
    const double seconds = batch.column(column).real(row);
    const auto nanoseconds = form_.start->nanosecondsAfter(seconds);
    if (!nanoseconds) {
      times.addNulls(1);
    } else if (times.type() == ColumnType::int64) {
      *times.extend<std::int64_t>(1) = *nanoseconds;
    } else {
      times.add(form_.start->isoAfter(seconds));
    }
  }
}

std::string MatTable::name() const {
  if (head_.group == nullptr) {
    return "table";
  }
  const ChannelGroup& group = *head_.group;
  std::string name = group.shownName().empty() ? "group_" + std::to_string(group.index)
                                               : std::string(group.shownName());
  return group.element ? name + '_' + std::to_string(*group.element) : name;
}

std::vector<std::string> MatTable::rounded() const {
  std::vector<std::string> names;
  for (std::size_t i = 0; i < columns_.size(); ++i) {
    if (isRounded(columns_[i])) {
      names.push_back(head_.columns[i].name);
    }
  }
  return names;
}

std::string_view MatTable::unit(std::size_t column) const {
  if (!isTime(column)) {
    return head_.columns[column].unit;
  }
  return form_.isDate(head_, column) ? "" : "ns";
}

MatVariable MatTable::structure(const std::string& name) const {
  MatlabNames given;
  given.add("info");
  std::vector<MatField> fields;
  std::vector<MatField> names;
  std::vector<MatField> units;
  for (std::size_t i = 0; i < columns_.size(); ++i) {
    const std::string field = given.add(head_.columns[i].name);
    fields.push_back({field, matColumn(columns_[i])});
    names.push_back({field, matText(head_.columns[i].name)});
    units.push_back({field, matText(unit(i))});
  }
  std::vector<MatField> info;
  if (head_.group != nullptr) {
    info.push_back({"name", matText(fromUtf8(head_.group->shownName()))});
    info.push_back({"number", matNumber(static_cast<double>(head_.group->index))});
  }
  if (!columns_.empty()) {  // libmatio writes no structure without a field
    info.push_back({"names", matStructure("", std::move(names))});
    info.push_back({"units", matStructure("", std::move(units))});
  }
  fields.push_back({"info", matStructure("", std::move(info))});
  return matStructure(name, std::move(fields));
}

}  // namespace mdf_tools
