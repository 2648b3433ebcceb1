#include "table_writers.h"

#include <csv.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <future>
#include <string_view>
#include <vector>

#include "json_output.h"
#include "reader/values/text_encoding.h"

namespace mdf_tools {

using namespace mdf_reader;

namespace {

constexpr std::uint64_t each_byte = 0x0101010101010101U;

/// Whether one of eight bytes is this character.
bool has(std::uint64_t bytes, char character) {
  const std::uint64_t different = bytes ^ (each_byte * static_cast<unsigned char>(character));
  return ((different - each_byte) & ~different & (each_byte << 7U)) != 0;
}

bool isSpecial(std::uint64_t bytes) {
  return has(bytes, ',') || has(bytes, '"') || has(bytes, '\r') || has(bytes, '\n');
}

/// Looks at eight characters at a time: most fields need no quotes.
bool needsQuotes(std::string_view field) {
  if (field.empty()) {
    return false;
  }
  std::uint64_t bytes = 0;
  bool needs_them = field.front() == ' ' || field.back() == ' ';
  if (field.size() < sizeof bytes) {
    std::memcpy(&bytes, field.data(), field.size());
    return needs_them || isSpecial(bytes);
  }
  const std::size_t last = field.size() - sizeof bytes;
  for (std::size_t at = 0; at < last; at += sizeof bytes) {
    std::memcpy(&bytes, field.data() + at, sizeof bytes);
    needs_them = needs_them || isSpecial(bytes);
  }
  std::memcpy(&bytes, field.data() + last, sizeof bytes);
  return needs_them || isSpecial(bytes);
}

void addQuoted(std::string_view field, std::string& line) {
  const std::size_t before = line.size();
  line.resize(before + 2 * field.size() + 2);
  const std::size_t size =
      csv_write(line.data() + before, line.size() - before, field.data(), field.size());
  line.resize(before + size);
}

void addJsonString(std::string_view text, std::string& line) {
  line += '"';
  for (const char character : text) {
    if (character == '"' || character == '\\') {
      line += {'\\', character};
    } else if (static_cast<unsigned char>(character) < 0x20) {
      std::array<char, 8> code;
      (void)std::snprintf(code.data(), code.size(), "\\u%04x",
                          static_cast<unsigned>(static_cast<unsigned char>(character)));
      line += code.data();
    } else {
      line += character;
    }
  }
  line += '"';
}

/// Whether JSON has such values: others are strings.
bool isJsonNumber(const ColumnData& column, std::size_t row) {
  return isInteger(column.type()) || (isNumber(column.type()) && std::isfinite(column.real(row)));
}

void addJson(const ValueForm& form, const Batch& batch, std::size_t index, std::size_t row,
             std::string& line) {
  const ColumnData& column = batch.column(index);
  if (!column.isValid(row)) {
    line += "null";
  } else if (column.type() == ColumnType::text) {
    addJsonString(column.text(row), line);
  } else if (isJsonNumber(column, row) && !form.isDate(batch.head(), index)) {
    form.print(batch, index, row, line);
  } else {
    line += '"';
    form.print(batch, index, row, line);
    line += '"';
  }
}

void addField(std::string_view field, std::string& line) {
  if (needsQuotes(field)) {
    addQuoted(field, line);
  } else {
    line += field;
  }
  line += ',';
}

/// Ends a line, from its beginning on, whose fields have a comma after each.
void endLine(std::size_t begin, std::string& text) {
  if (text.size() == begin + 1) {
    text.insert(begin, "\"\"");  // an empty line would be the end of the table
  }
  text.back() = '\n';
}

/// The texts of a column's table as fields, each put in quotes once however many rows have it.
class CodedFields {
 public:
  /// @param rows how many there are. For few rows, or many texts, the fields are not worth it.
  CodedFields(const ColumnData& column, std::size_t rows) {
    if (column.codes() == nullptr || column.textCount() > rows / 2) {
      return;
    }
    ends_.push_back(0);
    for (std::size_t code = 0; code < column.textCount(); ++code) {
      addField(column.textAt(code), fields_);
      ends_.push_back(fields_.size());
    }
  }

  bool areMade() const { return !ends_.empty(); }
  std::string_view at(std::uint32_t code) const {
    return {fields_.data() + ends_[code], ends_[code + 1] - ends_[code]};
  }

 private:
  std::string fields_;
  std::vector<std::size_t> ends_;
};

}  // namespace

void forEachText(const TableWriter& writer, const Batch& batch, std::size_t threads,
                 const std::function<void(const std::string& text)>& take) {
  constexpr std::size_t at_once = 4096;  // rows, which are worth another thread
  const auto textOf = [&](std::size_t begin) {
    std::string text;
    writer.addRows(batch, begin, std::min(begin + at_once, batch.rows()), text);
    return text;
  };
  for (std::size_t row = 0; row < batch.rows(); row += threads * at_once) {
    std::vector<std::future<std::string>> others;
    for (std::size_t i = 1; i < threads && row + i * at_once < batch.rows(); ++i) {
      others.push_back(std::async(std::launch::async, textOf, row + i * at_once));
    }
    take(textOf(row));
    for (std::future<std::string>& text : others) {
      take(text.get());
    }
  }
}

void CsvWriter::begin(const TableHead& table, std::string& text) {
  const std::size_t begin = text.size();
  for (const ColumnHead& column : table.columns) {
    addField(column.unit.empty() ? column.name : column.name + " [" + column.unit + ']', text);
  }
  endLine(begin, text);
}

void CsvWriter::addRows(const Batch& batch, std::size_t begin, std::size_t end,
                        std::string& text) const {
  std::vector<CodedFields> coded;
  for (std::size_t i = 0; i < batch.columnCount(); ++i) {
    coded.emplace_back(batch.column(i), end - begin);
  }
  for (std::size_t row = begin; row < end; ++row) {
    const std::size_t line = text.size();
    for (std::size_t i = 0; i < batch.columnCount(); ++i) {
      const ColumnData& column = batch.column(i);
      if (coded[i].areMade() && column.isValid(row)) {
        text += coded[i].at(column.codes()[row]);
      } else if (column.type() == ColumnType::text && column.isValid(row)) {
        addField(column.text(row), text);
      } else {
        form_.print(batch, i, row, text);
        text += ',';
      }
    }
    endLine(line, text);
  }
}

void JsonLinesWriter::begin(const TableHead& table, std::string& text) {
  const ChannelGroup* const group = table.group;
  beginning_ = "{\"schema\":" + std::to_string(json_schema) + ",\"file\":";
  addJsonString(fromUtf8(file_), beginning_);
  beginning_ += ",\"group\":" + (group == nullptr ? "null" : std::to_string(group->index));
  if (group != nullptr && group->element) {
    beginning_ += ",\"element\":" + std::to_string(*group->element);
  }
  text += beginning_ + ",\"name\":";
  addJsonString(group == nullptr ? "" : fromUtf8(group->name.substr(0, 1024)), text);
  text += ",\"columns\":[";
  names_.clear();
  for (const ColumnHead& column : table.columns) {
    names_.emplace_back();
    addJsonString(column.name, names_.back());
    text += "{\"name\":" + names_.back() + ",\"unit\":";
    addJsonString(column.unit, text);
    text += "},";
  }
  text.back() = ']';
  text += "}\n";
}

void JsonLinesWriter::addRows(const Batch& batch, std::size_t begin, std::size_t end,
                              std::string& text) const {
  for (std::size_t row = begin; row < end; ++row) {
    text += beginning_;
    text += ",\"values\":{";
    for (std::size_t i = 0; i < names_.size(); ++i) {
      text += names_[i];
      text += ':';
      addJson(form_, batch, i, row, text);
      text += ',';
    }
    text.back() = '}';
    text += "}\n";
  }
}

}  // namespace mdf_tools
