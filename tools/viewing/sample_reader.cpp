#include "sample_reader.h"

#include <stdexcept>
#include <unordered_map>

#include "reader/columns/column_list.h"

namespace mdf_tools {

namespace {

/// A pattern that matches this name alone.
std::string patternOf(std::string_view name) {
  std::string pattern;
  for (const char character : name) {
    if (std::string_view("*?[]\\").find(character) != std::string_view::npos) {
      pattern += '\\';
    }
    pattern += character;
  }
  return pattern;
}

ViewedTable tableOf(const TableHead& head) {
  const ChannelGroup& group = *head.group;
  ViewedTable table{
      group.index, group.element, std::string(group.shownName()), head.has_master, {}};
  std::unordered_map<std::uint64_t, std::size_t> parts;
  for (const ColumnHead& column : head.columns) {
    const Channel& channel = *column.channel;
    table.columns.push_back({column.name, column.unit, column.type, patternOf(ownNameOf(channel)),
                             channel.offset, parts[channel.offset]++});
  }
  // The master may be a channel of another group: it comes with any channel of this one.
  if (table.has_master && table.columns.size() > 1) {
    table.columns[0].pattern = table.columns[1].pattern;
  }
  return table;
}

Query queryOf(const ViewedTable& table, const ViewedColumn& column, const SampleRange& range) {
  Query query;
  query.channels = {column.pattern};
  query.group = std::to_string(table.group);
  query.element = table.element;
  query.skip = range.begin;
  query.first = range.end - range.begin;
  return query;
}

/// Which column of a table that was read is meant; as many as there are for none.
std::size_t indexOf(const ViewedColumn& column, const TableHead& head) {
  std::size_t part = 0;
  for (std::size_t i = 0; i < head.columns.size(); ++i) {
    if (head.columns[i].channel->offset == column.channel && part++ == column.part) {
      return i;
    }
  }
  return head.columns.size();
}

}  // namespace

std::vector<double> timesOf(const Batch& batch) {
  if (batch.head().has_master) {
    return batch.column(0).reals();
  }
  std::vector<double> numbers(batch.rows());
  for (std::size_t row = 0; row < numbers.size(); ++row) {
    numbers[row] = static_cast<double>(batch.record(row));
  }
  return numbers;
}

std::vector<ViewedTable> tablesOf(const Measurement& file) {
  std::vector<ViewedTable> tables;
  Batches batches = file.read({});
  for (const TableHead& head : batches.heads()) {
    tables.push_back(tableOf(head));
  }
  return tables;
}

void readSamples(const Measurement& file, const ViewedTable& table, const ViewedColumn& column,
                 const SampleRange& range, const SampleVisitor& visit) {
  Batches batches = file.read(queryOf(table, column, range));
  while (const Batch* const batch = batches.next()) {
    const std::size_t index = indexOf(column, batch->head());
    if (batch->group().element != table.element) {
      continue;
    }
    if (index == batch->columnCount()) {
      throw std::runtime_error("the channel is not among what was read");
    }
    visit(timesOf(*batch), batch->column(index));
  }
}

}  // namespace mdf_tools
