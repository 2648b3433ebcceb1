#include "group_writer.h"

#include <algorithm>
#include <cmath>

namespace mdf_tools {

namespace {

using mdf_v4_10::CNBLOCK;
using mdf_writer::ChannelPlan;
using Form = TimeColumn::Form;

constexpr std::size_t longest_in_record = 32;  // bytes of texts

/// A channel without its type.
mdf_writer::ChannelRef refOf(const mdf_writer::ChannelRef& channel) { return channel; }

/// A master channel that counts the records, which takes no bytes of them.
ChannelPlan counter(const std::string& name) {
  ChannelPlan plan;
  plan.name = name;
  plan.master = CNBLOCK::CN_SYNCTYPE_INDEX;
  return plan;
}

/// "index", or another name that no column has.
std::string nameOfCounter(const std::vector<ColumnName>& names) {
  std::string name = "index";
  for (int number = 2; std::any_of(names.begin(), names.end(),
                                   [&](const ColumnName& each) { return each.name == name; });
       ++number) {
    name = "index (" + std::to_string(number) + ')';
  }
  return name;
}

}  // namespace

GroupWriter::GroupWriter(mdf_writer::Plan& plan, const std::string& name, TableFacts& facts)
    : group_(plan.addGroup(name, mdf_writer::Group::Order::own)),
      facts_(facts),
      has_time_(facts.time().form() != Form::none) {
  if (!has_time_) {
    group_.addField(counter(nameOfCounter(facts.names())));
  }
  for (std::size_t i = 0; i < facts.names().size(); ++i) {
    if (has_time_ && i == facts.timeIndex()) {
      addTime(facts.names()[i]);
    } else {
      addChannel(facts.names()[i], facts.columns()[i]);
    }
  }
}

void GroupWriter::addTime(const ColumnName& name) {
  const Form form = facts_.time().form();
  Channel& channel = channels_.emplace_back();
  if (form == Form::counter) {
    channel.ref = group_.addField(counter(name.name));
    return;
  }
  const bool is_real = form == Form::real;
  channel.at = group_.dataBytes();
  channel.type = is_real ? ValueType::float64 : ValueType::int64;
  ChannelPlan plan;
  plan.name = name.name;
  plan.unit = "s";
  plan.type = is_real ? CNBLOCK::CN_DATATYPE_FLOAT_LE : CNBLOCK::CN_DATATYPE_INT_LE;
  plan.byte_offset = channel.at;
  plan.bits = 64;
  plan.master = CNBLOCK::CN_SYNCTYPE_TIME;
  if (!is_real) {
    plan.conversion = mdf_writer::linear(0, 1 / std::pow(10, facts_.time().places()));
  }
  channel.ref = group_.addField(std::move(plan));
}

void GroupWriter::addChannel(const ColumnName& name, const ColumnFacts& facts) {
  Channel& channel = channels_.emplace_back();
  channel.at = group_.dataBytes();
  channel.type = facts.type();
  channel.range = rangeOf(channel.type);
  channel.is_variable = channel.type == ValueType::text && facts.longest > longest_in_record;
  if (channel.is_variable) {
    channel.ref = group_.addText(name.name);
    ++variable_channels_;
  } else if (channel.type == ValueType::text) {
    channel.ref = group_.addText(
        name.name, static_cast<std::uint32_t>(std::max<std::size_t>(1, facts.longest)));
  } else {
    channel.ref = addNumber(channel.type, name.name);
  }
  group_.describe(channel.ref).unit = name.unit;
  channel.may_be_missing = facts.has_missing;
  if (facts.has_missing) {
    group_.mayBeInvalid(channel.ref);
  }
}

mdf_writer::ChannelRef GroupWriter::addNumber(ValueType type, const std::string& name) {
  switch (type) {
    case ValueType::uint8:
      return refOf(group_.addChannel<std::uint8_t>(name));
    case ValueType::uint16:
      return refOf(group_.addChannel<std::uint16_t>(name));
    case ValueType::uint32:
      return refOf(group_.addChannel<std::uint32_t>(name));
    case ValueType::uint64:
      return refOf(group_.addChannel<std::uint64_t>(name));
    case ValueType::int8:
      return refOf(group_.addChannel<std::int8_t>(name));
    case ValueType::int16:
      return refOf(group_.addChannel<std::int16_t>(name));
    case ValueType::int32:
      return refOf(group_.addChannel<std::int32_t>(name));
    case ValueType::int64:
      return refOf(group_.addChannel<std::int64_t>(name));
    case ValueType::float32:
      return refOf(group_.addChannel<float>(name));
    default:
      return refOf(group_.addChannel<double>(name));
  }
}

template <class T, class Value>
bool GroupWriter::put(const Channel& channel, Value value) {
  mdf_writer::Channel<T> typed;
  static_cast<mdf_writer::ChannelRef&>(typed) = channel.ref;
  typed.at = channel.at;
  return group_.set(typed, static_cast<T>(value));
}

bool GroupWriter::setValue(const Channel& channel, const Cell& cell) {
  const ScannedNumber& number = cell.number;
  const std::uint64_t integer = number.is_negative ? 0 - number.magnitude : number.magnitude;
  const bool is_missing = cell.kind == Cell::Kind::missing;
  if (channel.type <= ValueType::int64 && !is_missing && !channel.range.has(number)) {
    return false;
  }
  switch (channel.type) {
    case ValueType::uint8:
    case ValueType::int8:
      return put<std::uint8_t>(channel, integer);
    case ValueType::uint16:
    case ValueType::int16:
      return put<std::uint16_t>(channel, integer);
    case ValueType::uint32:
    case ValueType::int32:
      return put<std::uint32_t>(channel, integer);
    case ValueType::uint64:
    case ValueType::int64:
      return put<std::uint64_t>(channel, integer);
    case ValueType::float32:
      return (is_missing || canHold(channel.type, cell)) && put<float>(channel, cell.real());
    case ValueType::float64:
      return (is_missing || number.kind != ScannedNumber::Kind::none) &&
             put<double>(channel, cell.real());
    case ValueType::text:
      break;
  }
  return channel.is_variable ? group_.set(mdf_writer::VariableChannel{channel.ref}, cell.text)
                             : group_.set(mdf_writer::FixedChannel{channel.ref}, cell.text);
}

void GroupWriter::setTime(const Channel& channel, const IsoTime& start) {
  const TimeColumn& time = facts_.time();
  if (time.form() == Form::real) {
    put<double>(channel, time.seconds());
  } else if (time.form() != Form::counter) {
    put<std::int64_t>(channel, time.integer(start));
  }
}

/// The time comes last: one of a bad line would be that of the row above the next one.
void GroupWriter::set(std::uint64_t line, const std::vector<Cell>& cells, const IsoTime& start) {
  static const Cell missing;
  const std::size_t time = has_time_ ? facts_.timeIndex() : channels_.size();
  for (std::size_t i = 0; i < channels_.size(); ++i) {
    const Channel& channel = channels_[i];
    const Cell& cell = i < cells.size() ? cells[i] : missing;
    if (i != time && !setValue(channel, cell)) {
      throw BadLine{line, i + 1, faultOf(channel.type, cell)};
    }
    if (channel.may_be_missing) {
      group_.setValid(channel.ref, cell.kind != Cell::Kind::missing);
    }
  }
  if (has_time_) {
    const std::string fault = facts_.time().add(time < cells.size() ? cells[time] : missing);
    if (!fault.empty()) {
      throw BadLine{line, time + 1, fault};
    }
    setTime(channels_[time], start);
  }
}

}  // namespace mdf_tools
