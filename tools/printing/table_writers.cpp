#include "table_writers.h"

#include <csv.h>

#include <array>
#include <cmath>
#include <cstdio>
#include <string_view>
#include <utility>
#include <variant>

#include "json_output.h"
#include "reader/values/text_encoding.h"

namespace mdf_tools {

using namespace mdf_reader;

namespace {

bool needsQuotes(std::string_view field) {
  return field.find_first_of(",\"\r\n") != std::string_view::npos ||
         (!field.empty() && (field.front() == ' ' || field.back() == ' '));
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

bool isJsonNumber(const Value& value) {
  const auto* real = std::get_if<double>(&value);
  return real != nullptr ? std::isfinite(*real)
                         : std::holds_alternative<std::uint64_t>(value) ||
                               std::holds_alternative<std::int64_t>(value);
}

void addJson(const Value& value, std::string& line) {
  if (isNone(value)) {
    line += "null";
  } else if (isJsonNumber(value)) {
    appendText(value, line);
  } else {
    std::string text;
    appendText(value, text);
    addJsonString(text, line);
  }
}

bool write(std::ostream& out, std::string& line) {
  line += '\n';
  out.write(line.data(), static_cast<std::streamsize>(line.size()));
  return out.good();
}

}  // namespace

bool FilledTables::sample(Table& table, const Sample& sample) {
  if (!std::exchange(has_samples_, true)) {
    next_.begin(table);
  }
  return next_.sample(table, sample);
}

void FilledTables::end() {
  if (has_samples_) {
    next_.end();
  } else {
    ++left_out_;
  }
}

void CsvWriter::begin(Table& table) {
  out_ = output_(table);
  line_.clear();
  for (const Column& column : table.columns()) {
    addField(column.unit().empty() ? column.name() : column.name() + " [" + column.unit() + ']');
  }
  writeLine();
}

bool CsvWriter::sample(Table& table, const Sample& sample) {
  line_.clear();
  for (Column& column : table.columns()) {
    field_.clear();
    appendText(column.value(sample), field_);
    addField(field_);
  }
  return writeLine();
}

void CsvWriter::addField(const std::string& text) {
  if (needsQuotes(text)) {
    addQuoted(text, line_);
  } else {
    line_ += text;
  }
  line_ += ',';
}

bool CsvWriter::writeLine() {
  if (out_ == nullptr) {
    return false;
  }
  line_.pop_back();
  if (line_.empty()) {
    line_ = "\"\"";  // an empty line would be the end of the table
  }
  return write(*out_, line_);
}

void JsonLinesWriter::begin(Table& table) {
  out_ = output_(table);
  if (out_ == nullptr) {
    return;
  }
  beginning_ = "{\"schema\":" + std::to_string(json_schema) + ",\"file\":";
  addJsonString(fromUtf8(file_), beginning_);
  beginning_ += ",\"group\":" + std::to_string(table.group().index);
  if (table.group().element) {
    beginning_ += ",\"element\":" + std::to_string(*table.group().element);
  }
  line_ = beginning_ + ",\"name\":";
  addJsonString(fromUtf8(table.group().name.substr(0, 1024)), line_);
  line_ += ",\"columns\":[";
  names_.clear();
  for (const Column& column : table.columns()) {
    names_.emplace_back();
    addJsonString(column.name(), names_.back());
    line_ += "{\"name\":" + names_.back() + ",\"unit\":";
    addJsonString(column.unit(), line_);
    line_ += "},";
  }
  line_.back() = ']';
  line_ += '}';
  write(*out_, line_);
}

bool JsonLinesWriter::sample(Table& table, const Sample& sample) {
  if (out_ == nullptr) {
    return false;
  }
  line_ = beginning_ + ",\"values\":{";
  for (std::size_t i = 0; i < names_.size(); ++i) {
    line_ += names_[i];
    line_ += ':';
    addJson(table.columns()[i].value(sample), line_);
    line_ += ',';
  }
  line_.back() = '}';
  line_ += '}';
  return write(*out_, line_);
}

}  // namespace mdf_tools
