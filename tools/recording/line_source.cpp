#include "line_source.h"

#include <mdf_writer/mdf_writer.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <nlohmann/json.hpp>
#include <system_error>
#include <utility>

#include "quantity.h"

namespace mdf_tools {

using mdf_v4_10::CNBLOCK;
using Json = nlohmann::ordered_json;

namespace {

/// Times from here on, 2001, count from 1970.
constexpr double first_absolute_time = 1e9;
constexpr double last_time = 9e9;  // seconds; nanoseconds have 64 bits

std::string_view trimmed(std::string_view text) {
  const std::size_t begin = std::min(text.find_first_not_of(" \t"), text.size());
  return text.substr(begin, text.find_last_not_of(" \t") + 1 - begin);
}

std::optional<double> numberIn(std::string_view text) {
  double number = 0;
  const char* const end = text.data() + text.size();
  const auto [rest, error] = std::from_chars(text.data(), end, number);
  return error == std::errc{} && rest == end ? std::optional<double>(number) : std::nullopt;
}

/// Takes a field of CSV off the front, quoted or not, with the separator after it.
std::string takeField(std::string_view& line, char separator) {
  std::string field;
  bool is_quoted = false;
  std::size_t i = 0;
  for (; i < line.size() && (is_quoted || line[i] != separator); ++i) {
    if (line[i] != '"') {
      field += line[i];
    } else if (is_quoted && line.substr(i + 1, 1) == "\"") {
      field += line[i++];
    } else {
      is_quoted = !is_quoted;
    }
  }
  if (is_quoted) {
    throw UnfitLine("a quotation mark has no second one");
  }
  line.remove_prefix(std::min(i, line.size()));
  return std::string(trimmed(field));
}

std::vector<std::string> csvFields(std::string_view line, char separator) {
  std::vector<std::string> fields = {takeField(line, separator)};
  while (!line.empty()) {
    line.remove_prefix(1);
    fields.push_back(takeField(line, separator));
  }
  return fields;
}

/// How many of a unit a second has; 0 for another unit than one of time.
double unitsInSecond(std::string_view unit) {
  const std::pair<std::string_view, double> units[] = {{"", 1},     {"s", 1},    {"ms", 1e3},
                                                       {"us", 1e6}, {"µs", 1e6}, {"ns", 1e9}};
  for (const auto& [name, count] : units) {
    if (name == unit) {
      return count;
    }
  }
  return 0;
}

bool isText(const Signal& signal) { return signal.data_type == CNBLOCK::CN_DATATYPE_STRING_UTF8; }

}  // namespace

/// true and false are 1 and 0.
LineSource::Field LineSource::fieldOf(const std::string& name, const Json& value) {
  if (value.is_structured()) {
    throw UnfitLine("expected a number or a text for \"" + name + "\", found " + value.dump());
  }
  if (value.is_string()) {
    return {value.get<std::string>()};
  }
  if (value.is_null()) {
    return {{}, std::nullopt, true};
  }
  return {value.dump(), value.is_boolean() ? (value.get<bool>() ? 1.0 : 0.0) : value.get<double>()};
}

bool LineSource::take(std::string_view line) {
  if (trimmed(line).empty()) {
    return false;
  }
  if (!mdf_writer::isUtf8(line)) {
    throw UnfitLine("expected UTF-8, found other bytes");
  }
  if (form_ == LineForm::csv && columns_.empty()) {
    const std::size_t separator = line.find_first_of(",;\t");
    separator_ = separator == std::string_view::npos ? ',' : line[separator];
    for (const std::string& name : csvFields(line, separator_)) {
      addColumn(name);
    }
    requireTimes();
    return false;
  }
  const Fields fields = form_ == LineForm::csv ? fieldsOfCsv(line) : fieldsOfJson(line);
  settle(fields);
  put(fields);
  return true;
}

/// "speed [km/h]"
void LineSource::addColumn(std::string_view name) {
  const std::size_t bracket = name.rfind(" [");
  const bool has_unit = bracket != std::string_view::npos && name.back() == ']';
  const std::string_view unit =
      has_unit ? name.substr(bracket + 2, name.size() - bracket - 3) : std::string_view();
  columns_.push_back(float64Signal(std::string(name.substr(0, has_unit ? bracket : name.size())),
                                   std::string(unit)));
  if (hasTimes() && columns_.back().name == time_name_) {
    time_column_ = columns_.size() - 1;
    second_ = unitsInSecond(unit);
    if (second_ == 0) {
      throw BadOption("the times of \"" + time_name_ + "\" are in " + std::string(unit) +
                      "; expected s, ms, us or ns");
    }
  } else if (columns_.back().name == "time") {
    throw BadOption(
        "standard input has a channel \"time\", as the recording has; --time time takes the times "
        "from it");
  }
}

void LineSource::requireTimes() const {
  if (hasTimes() && time_column_ == SIZE_MAX) {
    throw BadOption("standard input has no channel \"" + time_name_ + "\" to take times from");
  }
}

LineSource::Fields LineSource::fieldsOfCsv(std::string_view line) const {
  Fields fields;
  for (std::string& text : csvFields(line, separator_)) {
    const std::optional<double> number = numberIn(text);
    const bool is_missing = text.empty();
    fields.push_back({std::move(text), number, is_missing});
  }
  if (fields.size() != columns_.size()) {
    throw UnfitLine("expected " + std::to_string(columns_.size()) + " fields, found " +
                    std::to_string(fields.size()));
  }
  return fields;
}

/// The members of the first object are the channels. A later one may lack some.
LineSource::Fields LineSource::fieldsOfJson(std::string_view line) {
  const Json object = Json::parse(line, nullptr, false);
  if (!object.is_object()) {
    throw UnfitLine("expected an object in JSON, found something else");
  }
  std::vector<std::pair<std::string, Field>> members;
  for (const auto& [name, value] : object.items()) {
    members.emplace_back(name, fieldOf(name, value));
  }
  if (columns_.empty()) {
    for (const auto& [name, field] : members) {
      addColumn(name);
      members_.push_back(name);
    }
    requireTimes();
  }
  Fields fields(columns_.size(), Field{{}, std::nullopt, true});
  for (auto& [name, field] : members) {
    const auto member = std::find(members_.begin(), members_.end(), name);
    if (member == members_.end()) {
      throw UnfitLine("\"" + name + "\" is not in the first line");
    }
    fields[static_cast<std::size_t>(member - members_.begin())] = std::move(field);
  }
  return fields;
}

/// What has a text in the first sample is a channel of texts.
void LineSource::settle(const Fields& fields) {
  if (is_settled_) {
    return;
  }
  for (std::size_t i = 0; i < columns_.size(); ++i) {
    if (i == time_column_) {
      continue;
    }
    const bool is_text = !fields[i].is_missing && !fields[i].number;
    groups_.front().signals.push_back(is_text ? textSignal(columns_[i].name, columns_[i].unit)
                                              : columns_[i]);
  }
  is_settled_ = true;
}

void LineSource::putTime(const Field& field) {
  const double seconds = field.number.value_or(NAN) / second_;
  if (!(std::abs(seconds) < last_time)) {
    throw UnfitLine("expected a time in \"" + time_name_ + "\", found \"" + field.text + '"');
  }
  if (last_ == INT64_MIN && seconds >= first_absolute_time) {
    origin_ = std::floor(seconds);
  }
  const std::int64_t nanoseconds = std::llround((seconds - origin_) * 1e9);
  if (nanoseconds < last_) {
    throw UnfitLine("the time " + field.text + " is before that of the line before");
  }
  sample_.nanoseconds = last_ = nanoseconds;
}

void LineSource::put(const Fields& fields) {
  sample_.values.clear();
  sample_.texts.clear();
  sample_.is_missing.clear();
  for (std::size_t i = 0; i < fields.size(); ++i) {
    if (i == time_column_) {
      continue;
    }
    const Signal& signal = groups_.front().signals[sample_.values.size()];
    const Field& field = fields[i];
    if (!isText(signal) && !field.is_missing && !field.number) {
      throw UnfitLine("expected a number for \"" + signal.name + "\", found \"" + field.text + '"');
    }
    sample_.values.push_back(bitsOf(field.number.value_or(0)));
    sample_.texts.push_back(field.text);
    sample_.is_missing.push_back(field.is_missing);
  }
  if (time_column_ != SIZE_MAX) {
    putTime(fields[time_column_]);
  }
}

}  // namespace mdf_tools
