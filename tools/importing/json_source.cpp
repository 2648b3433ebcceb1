#include "json_source.h"

#include <cstddef>
#include <cstdint>
#include <nlohmann/json.hpp>
#include <string_view>
#include <utility>

namespace mdf_tools {

namespace {

using Json = nlohmann::json;

/// Takes the members of a line's object, or those of its object "values".
class MemberTaker : public nlohmann::json_sax<Json> {
 public:
  explicit MemberTaker(std::vector<JsonSource::Member>& members) : members_(members) {
    members_.clear();
  }

  bool hasColumns() const { return has_columns_; }
  std::size_t errorAt() const { return error_at_; }
  const std::string& problem() const { return problem_; }

  bool null() override { return add({}, Cell::Kind::missing); }
  bool boolean(bool value) override { return add(value ? "1" : "0", Cell::Kind::plain); }
  bool number_integer(std::int64_t value) override {
    return add(value == 0 ? "-0" : std::to_string(value), Cell::Kind::plain);
  }
  bool number_unsigned(std::uint64_t value) override {
    return add(std::to_string(value), Cell::Kind::plain);
  }
  bool number_float(double /*value*/, const std::string& text) override {
    return add(text, Cell::Kind::plain);
  }
  bool string(std::string& text) override { return add(std::move(text), Cell::Kind::text); }
  bool binary(Json::binary_t& /*bytes*/) override { return false; }

  bool start_object(std::size_t /*size*/) override {
    if (depth_ == 1 && key_ == "values" && !has_columns_) {
      has_values_ = true;
      members_.clear();
    } else if (depth_ > 0 && !has_columns_) {
      return refuse("expected a value, found an object");
    }
    ++depth_;
    return true;
  }
  bool end_object() override {
    --depth_;
    return true;
  }
  bool start_array(std::size_t /*size*/) override {
    if (depth_ == 1 && key_ == "columns") {
      has_columns_ = true;
    } else if (!has_columns_) {
      return refuse(depth_ == 0 ? "expected an object, found an array"
                                : "expected a value, found an array");
    }
    ++depth_;
    return true;
  }
  bool end_array() override { return end_object(); }
  bool key(std::string& name) override {
    key_ = std::move(name);
    return true;
  }
  bool parse_error(std::size_t position, const std::string& /*token*/,
                   const Json::exception& /*error*/) override {
    error_at_ = position;
    return refuse("expected an object of JSON");
  }

 private:
  bool add(std::string text, Cell::Kind kind) {
    if (depth_ == 0) {
      return refuse("expected an object, found a value");
    }
    if (has_values_ ? depth_ == 2 : !has_columns_) {
      members_.push_back({key_, std::move(text), kind});
    }
    return true;
  }

  bool refuse(const char* problem) {
    problem_ = problem;
    return false;
  }

  std::vector<JsonSource::Member>& members_;
  std::string key_;
  std::string problem_;
  std::size_t error_at_ = 1;
  std::size_t depth_ = 0;
  bool has_values_ = false;
  bool has_columns_ = false;
};

/// JSON has texts for numbers that are not finite.
ScannedNumber numberOf(const JsonSource::Member& member) {
  const bool is_word = member.text == "nan" || member.text == "inf" || member.text == "-inf";
  return member.kind == Cell::Kind::plain || is_word ? scanNumber(member.text, DecimalMark::point)
                                                     : ScannedNumber();
}

/// A member that is a text; "" where there is none.
std::string textOf(const Json& object, const char* name) {
  const auto found = object.find(name);
  return found != object.end() && found->is_string() ? found->get<std::string>() : "";
}

}  // namespace

/// Reads a line's members; false for one with the columns of a table.
bool JsonSource::nextLine() {
  const std::string_view line = lines_.text();
  MemberTaker taker(members_);
  Json::sax_parse(line.begin(), line.end(), &taker);
  if (!taker.problem().empty()) {
    refuse(taker.errorAt(), taker.problem());
  }
  return !taker.hasColumns();
}

bool JsonSource::nextTable() {
  do {
    if (!lines_.next()) {
      return false;
    }
  } while (lines_.text().empty());
  name_.clear();
  columns_.clear();
  indices_.clear();
  const std::string_view line = lines_.text();
  const bool is_head = line.find("\"columns\"") != std::string_view::npos;
  if (is_head) {
    takeHead();
  } else {
    lines_.giveBack();
  }
  return true;
}

void JsonSource::takeHead() {
  const std::string_view line = lines_.text();
  const Json head = Json::parse(line.begin(), line.end(), nullptr, false);
  if (!head.is_object() || !head.contains("columns") || !head["columns"].is_array()) {
    fail("expected an object with the columns of a table");
  }
  name_ = textOf(head, "name");
  for (const Json& column : head["columns"]) {
    const std::string name = column.is_object() ? textOf(column, "name") : "";
    if (columnOf(name) + 1 != columns_.size()) {
      fail("expected columns of different names, found \"" + name + "\" again");
    }
    columns_.back().unit = column.is_object() ? textOf(column, "unit") : "";
  }
}

std::size_t JsonSource::columnOf(const std::string& name) {
  const auto [found, is_new] = indices_.try_emplace(name, columns_.size());
  if (is_new) {
    if (columns_.size() == most_columns) {
      fail("expected at most " + std::to_string(most_columns) + " columns");
    }
    columns_.push_back({name, ""});
  }
  return found->second;
}

bool JsonSource::nextRow(std::vector<Cell>& cells) {
  do {
    if (!lines_.next()) {
      return false;
    }
  } while (lines_.text().empty());
  if (!nextLine()) {
    lines_.giveBack();
    return false;
  }
  cells.assign(columns_.size(), {});
  for (std::size_t i = 0; i < members_.size(); ++i) {
    const Member& member = members_[i];
    const bool is_next = i < columns_.size() && columns_[i].name == member.name;
    const std::size_t index = is_next ? i : columnOf(member.name);
    cells.resize(columns_.size());
    cells[index] = {member.kind, member.text, numberOf(member)};
  }
  return true;
}

}  // namespace mdf_tools
