#include "frame_table.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <limits>
#include <string_view>
#include <type_traits>
#include <utility>

namespace mdf_reader {

namespace {

using Kind = BusFrame::Kind;

constexpr std::uint32_t extended_flag = 0x80000000;
constexpr std::uint32_t most_extended = 0x1FFFFFFF;
constexpr std::uint32_t most_standard = 0x7FF;

/// Names of structures and what their frames are.
constexpr std::pair<std::string_view, Kind> kinds[] = {
    {"CAN_DataFrame", Kind::data},   {"CAN_RemoteFrame", Kind::remote},
    {"CAN_ErrorFrame", Kind::error}, {"CAN_OverloadFrame", Kind::overload},
    {"LIN_Frame", Kind::lin},
};

/// None for another event than a frame. All other events of LIN are errors.
std::optional<Kind> kindOf(std::string_view name) {
  const auto* const found = std::find_if(std::begin(kinds), std::end(kinds),
                                         [&](const auto& each) { return each.first == name; });
  if (found != std::end(kinds)) {
    return found->second;
  }
  return name.substr(0, 4) == "LIN_" ? std::optional(Kind::lin_error) : std::nullopt;
}

template <class Number>
std::uint64_t wholeNumber(Number number, std::uint64_t none) {
  if constexpr (std::is_floating_point_v<Number>) {
    constexpr auto limit = static_cast<Number>(18446744073709551616.0);
    return number >= 0 && number < limit ? static_cast<std::uint64_t>(number) : none;
  } else {
    return number >= Number{0} ? static_cast<std::uint64_t>(number) : none;
  }
}

/// Turns a column into whole numbers from 0 on.
/// @param none for rows without such a number.
void readNumbers(const ColumnData& column, std::uint64_t none, std::vector<std::uint64_t>& to) {
  to.resize(column.rows());
  withNumberType(column.type(), [&](auto zero) {
    const auto* const values = column.values<decltype(zero)>();
    std::transform(values, values + column.rows(), to.begin(),
                   [none](auto value) { return wholeNumber(value, none); });
  });
  for (std::size_t row = 0; column.nullCount() > 0 && row < column.rows(); ++row) {
    to[row] = column.isValid(row) ? to[row] : none;
  }
}

/// "CAN 2" as a word: "CAN_2".
std::string wordOf(std::string_view name) {
  std::string word(name);
  for (char& character : word) {
    if (std::isalnum(static_cast<unsigned char>(character)) == 0 && character != '-' &&
        character != '.') {
      character = '_';
    }
  }
  return word;
}

}  // namespace

std::uint64_t dataLengthOf(std::uint64_t code, bool is_fd) {
  constexpr std::uint64_t lengths[] = {12, 16, 20, 24, 32, 48, 64};
  if (code <= 8 || !is_fd) {
    return std::min<std::uint64_t>(code, 8);
  }
  return lengths[std::min<std::uint64_t>(code, 15) - 9];
}

FrameTable::FrameTable(std::unique_ptr<Table> table) : table_(std::move(table)) {
  takeColumns();
  nameBus();
  frame_.name = name_;
  frame_.time = -std::numeric_limits<double>::infinity();
  const auto kind = kindOf(name_);
  holds_frames_ = kind.has_value();
  frame_.kind = kind.value_or(Kind::lin_error);
  is_usable_ = holds_frames_ && table_->head().has_master &&
               isNumber(table_->head().columns[0].type) &&
               (!frame_.hasId() || columns_[identifier]);
  if (is_usable_) {
    frame_.time_decimals = table_->head().columns[0].decimals;
  }
}

/// A column is called "CAN_DataFrame.ID", whether its channel has the structure's name in front or
/// not.
void FrameTable::takeColumns() {
  constexpr std::pair<std::string_view, Role> members[] = {
      {"BusChannel", channel},
      {"ID", identifier},
      {"IDE", is_extended},
      {"Dir", direction},
      {"DLC", length_code},
      {"DataLength", length},
      {"EDL", is_fd},
      {"BRS", bit_rate_switch},
      {"ESI", error_state},
      {"ErrorType", error_type},
      {"ErrorClass", error_class},
      {"FrameNumber", frame_number},
      {"ReceivedDataByteCount", length},
  };
  const std::vector<ColumnHead>& heads = table_->head().columns;
  for (std::size_t i = table_->head().has_master ? 1U : 0U; i < heads.size(); ++i) {
    const std::string_view name = heads[i].channel->name;
    const std::string_view member = name.substr(name.rfind('.') + 1);
    if (name_.empty()) {
      name_ = wordOf(heads[i].name.substr(0, heads[i].name.find('.')));
    }
    if (member == "DataBytes") {
      data_columns_.push_back(i);
    }
    for (const auto& [known, role] : members) {
      if (member == known && isNumber(heads[i].type) && !columns_[role]) {
        columns_[role] = i;
      }
    }
  }
}

/// Where no member says which bus it is, or group and source have the same name, all frames of the
/// group are of one that is called so.
void FrameTable::nameBus() {
  family_ = name_.substr(0, 3) == "LIN" ? "lin" : "can";
  const std::string_view shown = group().shownName();
  bus_ = shown.empty() || shown == name_ ? family_ : wordOf(shown);
  is_one_bus_ = !shown.empty() && shown != name_ && group().name == group().source_name;
}

bool FrameTable::next() {
  while (is_usable_) {
    if (batch_ == nullptr || ++row_ >= batch_->rows()) {
      batch_ = table_->next();
      row_ = 0;
      if (batch_ == nullptr) {
        return false;
      }
      readBatch();
    }
    if (take()) {
      return true;
    }
    ++left_out_;
  }
  return false;
}

void FrameTable::readBatch() {
  times_ = batch_->column(0).reals();
  const bool is_one = data_columns_.size() == 1;
  const ColumnData* const first = is_one ? &batch_->column(data_columns_[0]) : nullptr;
  recorded_ = is_one && !isNumber(first->type()) ? first : nullptr;
  for (std::size_t role = 0; role < role_count; ++role) {
    if (columns_[role]) {
      readNumbers(batch_->column(*columns_[role]), none, members_[role]);
    }
  }
}

bool FrameTable::take() {
  const double time = times_[row_];
  if (!std::isfinite(time) || (frame_.hasId() && number(identifier) == none)) {
    return false;
  }
  backwards_ += time < frame_.time ? 1U : 0U;
  frame_.time = time;
  frame_.direction = directionOf();
  frame_.is_fd = isSet(Role::is_fd);
  frame_.has_bit_rate_switch = isSet(bit_rate_switch);
  frame_.has_error_state = isSet(error_state);
  frame_.error = static_cast<BusFrame::Error>(std::min<std::uint64_t>(numberOr0(error_type), 5));
  takeId();
  takeBus();
  takeData();
  takeLogged();
  return true;
}

BusFrame::Direction FrameTable::directionOf() const {
  const std::uint64_t stored = number(direction);
  if (stored == none) {
    return BusFrame::Direction::unknown;
  }
  return stored == 0 ? BusFrame::Direction::received : BusFrame::Direction::sent;
}

/// Some writers mark extended identifiers by their highest bit alone.
void FrameTable::takeId() {
  const auto id = static_cast<std::uint32_t>(numberOr0(identifier));
  const bool is_marked = (id & extended_flag) != 0 || (id & most_extended) > most_standard;
  frame_.is_extended = columns_[Role::is_extended] ? isSet(Role::is_extended) : is_marked;
  frame_.is_extended = frame_.is_extended && !frame_.isLin();
  frame_.id = id & most_extended;
}

void FrameTable::takeBus() {
  const std::uint64_t bus = is_one_bus_ ? none : number(channel);
  if (bus != none && bus != bus_number_) {
    bus_number_ = bus;
    bus_ = family_ + std::to_string(bus);
  }
  frame_.bus = bus_;
}

void FrameTable::takeData() {
  const std::string_view recorded = bytes();
  const std::uint64_t stated = number(length);
  const std::uint64_t code = number(length_code);
  frame_.length = stated != none ? stated
                  : code != none ? dataLengthOf(code, frame_.is_fd)
                                 : recorded.size();
  frame_.data = recorded.substr(
      0, static_cast<std::size_t>(std::min<std::uint64_t>(frame_.length, recorded.size())));
  if (frame_.kind == Kind::remote) {
    frame_.data = {};  // it asks for so many
  } else {
    shortened_ += frame_.data.size() < frame_.length ? 1U : 0U;
  }
}

/// What the log had that the file was made of.
void FrameTable::takeLogged() {
  const std::uint64_t bits = number(error_class);
  const std::uint64_t count = number(frame_number);
  frame_.error_class = bits != none && frame_.kind == Kind::error
                           ? std::optional(static_cast<std::uint32_t>(bits) & most_extended)
                           : std::nullopt;
  frame_.number = count != none ? std::optional(static_cast<std::uint16_t>(count)) : std::nullopt;
}

std::string_view FrameTable::bytes() {
  if (recorded_ != nullptr) {
    return recorded_->text(row_);
  }
  data_.clear();
  for (const std::size_t column : data_columns_) {
    data_ += static_cast<char>(
        static_cast<unsigned char>(std::clamp(batch_->column(column).real(row_), 0.0, 255.0)));
  }
  return data_;
}

}  // namespace mdf_reader
