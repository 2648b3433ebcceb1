#include "column.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <type_traits>
#include <utility>

#include "../bytes/work_budget.h"
#include "../values/text_encoding.h"
#include "text_loader.h"

namespace mdf_reader {

namespace {

constexpr std::size_t longest_unit = 256;

std::string_view slice(std::string_view record, std::uint64_t begin, std::uint64_t count) {
  if (begin > record.size() || count > record.size() - begin) {
    return {};
  }
  return record.substr(static_cast<std::size_t>(begin), static_cast<std::size_t>(count));
}

RawType typeOf(const Channel& channel) {
  return {channel.data_type, channel.bit_offset, channel.bit_count};
}

/// Integers of up to 64 bits.
bool isUnsignedNumber(const RawType& type) {
  return type.isUnsigned() && isInteger(columnTypeOf(type));
}

constexpr std::size_t known_places = 256;

/// Where a number that was converted is kept. Integers that stand for texts mostly follow one
/// another, or are flags: neither shall meet.
template <class Number>
std::size_t placeOf(Number number) {
  std::uint64_t bits = 0;
  if constexpr (std::is_integral_v<Number>) {
    bits = static_cast<std::make_unsigned_t<Number>>(number);
    bits ^= bits >> 8U;
  } else {
    const auto real = static_cast<double>(number);
    std::memcpy(&bits, &real, sizeof bits);
    bits = (bits * 0x9E3779B97F4A7C15U) >> 56U;
  }
  return static_cast<std::size_t>(bits % known_places);
}

}  // namespace

Column::Column(std::string name, ColumnSource source, const FindingSink& report)
    : source_(std::move(source)),
      report_(report),
      type_(typeOf(*source_.channel)),
      raw_(ColumnType::bytes) {
  const Channel& channel = *source_.channel;
  const std::int64_t begin = std::int64_t{channel.byte_offset} + source_.byte_shift;
  begin_ = static_cast<std::uint64_t>(begin);
  is_inside_ = begin >= 0 && begin_ + type_.bytes() <= source_.group->data_bytes;
  if (!channel.isVirtual() && !type_.isKnown()) {
    tell(Code::data_type_unknown,
         "expected a known data type, found " + std::to_string(channel.data_type));
  } else if (!channel.isVirtual() && !is_inside_) {
    tell(Code::channel_outside_record, "expected the value inside the record's " +
                                           std::to_string(source_.group->data_bytes) +
                                           " bytes, found byte " + std::to_string(begin) + " and " +
                                           std::to_string(type_.bit_count) + " bits");
  }
  const ColumnType raw = rawColumnType();
  raw_ = ColumnData(raw);
  head_ = {std::move(name), fromUtf8(channel.unit.substr(0, longest_unit)), physicalType(raw),
           &channel};
  if (source_.conversion != nullptr && isInteger(raw)) {
    head_.decimals = source_.conversion->decimals();
  }
  chooseLoader(raw);
}

ColumnType Column::rawColumnType() const {
  if (source_.channel->isVirtual()) {
    return ColumnType::uint64;
  }
  const bool has_own_width = source_.channel->type != Channel::variable_length;
  if (has_own_width || !type_.isNumber() || type_.isComplex()) {
    return columnTypeOf(type_);
  }
  // Numbers of variable length are as wide as each is.
  return type_.isReal()     ? ColumnType::float64
         : type_.isSigned() ? ColumnType::int64
                            : ColumnType::uint64;
}

/// The type after the conversion. One that changes no value of the kind is forgotten.
ColumnType Column::physicalType(ColumnType raw) {
  using Effect = Conversion::Effect;
  Effect effect = Effect::none;
  if (source_.conversion != nullptr && isNumber(raw)) {
    effect = source_.conversion->ofNumbers();
    effect = source_.numbers && effect == Effect::texts ? Effect::numbers : effect;
  } else if (source_.conversion != nullptr && raw == ColumnType::text) {
    effect = source_.conversion->ofTexts();
  }
  if (effect == Effect::none) {
    source_.conversion = nullptr;
    return raw;
  }
  return effect == Effect::numbers ? ColumnType::float64 : ColumnType::text;
}

void Column::chooseLoader(ColumnType raw) {
  const Channel& channel = *source_.channel;
  const bool are_numbers_in_place = isNumber(raw) && !channel.isVirtual() &&
                                    channel.type != Channel::variable_length &&
                                    source_.length_channel == nullptr;
  loads_physical_ = are_numbers_in_place && source_.conversion != nullptr && isNumber(head_.type);
  if (are_numbers_in_place) {
    loader_.emplace(type_, loads_physical_ ? ColumnType::float64 : raw);
  }
}

/// Reports the first problem of the column only: every sample may have it.
void Column::tell(Code code, const std::string& sentence) {
  if (!has_told_) {
    report_({code, source_.channel->offset, sentence});
    has_told_ = true;
  }
}

bool Column::hasInvalidationBit() const {
  return (source_.channel->flags & Channel::has_invalidation_bit) != 0;
}

bool Column::isValid(std::string_view record) const {
  if (!hasInvalidationBit()) {
    return true;
  }
  const std::uint64_t bit = invalidationBit();
  const std::string_view byte = slice(record, source_.group->data_bytes + bit / 8, 1);
  return byte.empty() ||
         ((std::uint64_t{static_cast<unsigned char>(byte[0])} >> (bit % 8)) & 1U) == 0;
}

void Column::append(const RecordSpan& records, ColumnData& to) {
  if (source_.elsewhere == nullptr) {
    appendOwn(records, to);
    return;
  }
  const RecordSpan copies = source_.elsewhere->copy(records, gathered_);
  appendOwn(copies, to);
  to.addNulls(records.count - copies.count);
}

/// Values from records of the column's own group.
void Column::appendOwn(const RecordSpan& records, ColumnData& to) {
  const bool is_all_invalid = (source_.channel->flags & Channel::all_invalid) != 0;
  const bool has_bytes = is_inside_ && begin_ + type_.bytes() <= records.size;
  if (is_all_invalid || !(has_bytes || source_.channel->isVirtual())) {
    to.addNulls(records.count);
  } else if (source_.conversion == nullptr || loads_physical_) {
    appendRaw(records, to);
  } else {
    raw_.clear();
    appendRaw(records, raw_);
    appendConverted(to);
  }
}

void Column::appendRaw(const RecordSpan& records, ColumnData& to) {
  const std::size_t first_row = to.rows();
  if (loader_) {
    char* const numbers = to.extendBytes(records.count);
    loader_->load(records, static_cast<std::size_t>(begin_), numbers);
    if (loads_physical_) {
      source_.conversion->convert(reinterpret_cast<double*>(numbers), records.count,
                                  isInteger(raw_.type()));
    }
  } else if (source_.channel->isVirtual()) {
    auto* const numbers = to.extend<std::uint64_t>(records.count);
    for (std::size_t i = 0; i < records.count; ++i) {
      numbers[i] = records.number(i);
    }
  } else {
    appendEach(records, to);
    return;
  }
  if (hasInvalidationBit()) {
    setInvalid(records, first_row, to);
  }
}

/// Rows whose invalidation bit is set have no value.
void Column::setInvalid(const RecordSpan& records, std::size_t first_row, ColumnData& to) const {
  const std::uint64_t bit = invalidationBit();
  const std::uint64_t byte = source_.group->data_bytes + bit / 8;
  if (byte >= records.size) {
    return;
  }
  const unsigned mask = 1U << (bit % 8);
  const auto at = static_cast<std::size_t>(byte);
  for (std::size_t i = 0; i < records.count; ++i) {
    if ((static_cast<unsigned char>(records.at(i)[at]) & mask) != 0) {
      to.setNull(first_row + i);
    }
  }
}

/// The same one by one: values whose lengths differ, and what is no number.
void Column::appendEach(const RecordSpan& records, ColumnData& to) {
  if (to.type() == ColumnType::bytes && !hasInvalidationBit() &&
      source_.channel->type != Channel::variable_length) {
    for (std::size_t i = 0; i < records.count; ++i) {
      to.add(stored(records.at(i)));
    }
    return;
  }
  for (std::size_t i = 0; i < records.count; ++i) {
    const std::string_view record = records.at(i);
    const bool is_here = source_.channel->type != Channel::variable_length;
    const auto bytes = !isValid(record) ? std::optional<std::string_view>()
                       : is_here        ? std::optional(stored(record))
                                        : found(record, records.number(i));
    if (bytes) {
      appendValue(is_here ? type_ : RawType{type_.data_type, 0, std::uint64_t{bytes->size()} * 8},
                  *bytes, to);
    } else {
      to.addNulls(1);
    }
  }
}

void Column::appendValue(const RawType& type, std::string_view bytes, ColumnData& to) {
  if (!isNumber(to.type())) {
    addValue(type, bytes, to);
  } else if (isNumber(columnTypeOf(type))) {
    withNumberType(to.type(), [&](auto zero) {
      *to.extend<decltype(zero)>(1) = numberIn<decltype(zero)>(type, bytes);
    });
  } else {
    tell(Code::value_outside_signal_data,
         "expected numbers of at most 8 bytes, found one of " + std::to_string(bytes.size()));
    to.addNulls(1);
  }
}

/// Adds the physical values of the raw ones.
void Column::appendConverted(ColumnData& to) {
  const bool are_numbers = isNumber(raw_.type());
  if (are_numbers && to.type() == ColumnType::text) {
    appendCodes(to);
    return;
  }
  for (std::size_t row = 0; row < raw_.rows(); ++row) {
    if (!raw_.isValid(row)) {
      to.addNulls(1);
    } else if (are_numbers) {
      addResult(knownOf(raw_.real(row), placeOf(raw_.real(row))).result, row, to);
    } else {
      text_ = raw_.text(row);
      addResult(source_.conversion->of(text_), row, to);
    }
  }
}

/// The same of numbers whose physical values are texts.
void Column::appendCodes(ColumnData& to) {
  const bool has_other_table = coded_ != &to || to.textCount() == 0;
  for (std::size_t i = 0; has_other_table && i < known_.size(); ++i) {
    known_[i].code = Known::no_code;
  }
  coded_ = &to;
  const std::uint32_t none = raw_.nullCount() > 0 ? to.addText("") : 0;
  codes_.resize(raw_.rows());
  withNumberType(raw_.type(), [&](auto zero) {
    const auto* const numbers = raw_.values<decltype(zero)>();
    for (std::size_t row = 0; row < codes_.size(); ++row) {
      Known& known = knownOf(static_cast<double>(numbers[row]), placeOf(numbers[row]));
      codes_[row] = raw_.isValid(row) ? codeOf(known, row, to) : none;
    }
  });
  const std::size_t first_row = to.rows();
  to.addCodes(codes_.data(), codes_.size());
  for (std::size_t row = 0; raw_.nullCount() > 0 && row < codes_.size(); ++row) {
    if (!raw_.isValid(row)) {
      to.setNull(first_row + row);
    }
  }
}

/// Channels whose values have texts have few different ones, most of which are found here again.
Column::Known& Column::knownOf(double number, std::size_t place) {
  if (known_.empty()) {
    known_.resize(known_places, {std::numeric_limits<double>::quiet_NaN(), {}});
  }
  Known& known = known_[place];
  if (known.number != number) {
    known = {number, source_.conversion->of(number, isInteger(raw_.type()))};
  }
  return known;
}

/// Large integers that differ may be the same number here: what is printed of them has a text each
/// time.
std::uint32_t Column::codeOf(Known& known, std::size_t row, ColumnData& to) {
  if (known.code != Known::no_code) {
    return known.code;
  }
  const std::uint32_t code = to.addText(textOf(known.result, row));
  if (known.result.kind != Conversion::Result::unchanged) {
    known.code = code;
  }
  return code;
}

void Column::addResult(const Conversion::Result& result, std::size_t row, ColumnData& to) {
  using Result = Conversion::Result;
  if (to.type() == ColumnType::float64) {
    *to.extend<double>(1) = result.kind == Result::number ? result.real : raw_.real(row);
  } else {
    to.add(textOf(result, row));
  }
}

std::string_view Column::textOf(const Conversion::Result& result, std::size_t row) {
  using Result = Conversion::Result;
  if (result.kind == Result::text) {
    return *result.characters;
  }
  text_.clear();
  if (result.kind == Result::number) {
    printNumber(result.real, text_);
  } else {
    raw_.print(row, text_);
  }
  return text_;
}

/// The bytes of the value in the record.
std::string_view Column::stored(std::string_view record) const {
  std::uint64_t count = type_.bytes();
  if (source_.length_channel != nullptr) {
    const Channel& channel = *source_.length_channel;
    const RawType length = typeOf(channel);
    const std::string_view bytes = slice(record, channel.byte_offset, length.bytes());
    if (bytes.size() == length.bytes() && isUnsignedNumber(length)) {
      count = std::min(count, numberIn<std::uint64_t>(length, bytes));
    }
  }
  return slice(record, begin_, count);
}

void Column::look(const RecordSpan& records) {
  for (std::size_t i = 0; i < records.count; ++i) {
    if (source_.elsewhere != nullptr) {
      source_.elsewhere->at(records.number(i));
    } else if (source_.channel->type == Channel::variable_length && is_inside_ &&
               (source_.channel->flags & Channel::all_invalid) == 0 && isValid(records.at(i))) {
      found(records.at(i), records.number(i));
    }
  }
}

/// A value that stands elsewhere: the record has its offset there.
std::optional<std::string_view> Column::found(std::string_view record, std::uint64_t number) {
  if (source_.values == nullptr) {
    return std::nullopt;
  }
  const RawType offset_type{Channel::unsigned_le, type_.bit_offset, type_.bit_count};
  const bool is_number = isUnsignedNumber(offset_type);
  const std::uint64_t offset = is_number ? numberIn<std::uint64_t>(offset_type, stored(record)) : 0;
  const auto bytes = is_number ? source_.values->at(offset) : std::nullopt;
  if (!bytes) {
    tell(Code::value_outside_signal_data,
         "expected a value of variable length for each record, found none at offset " +
             (is_number ? std::to_string(offset) : "?") + " of the signal data for record " +
             std::to_string(number));
    return std::nullopt;
  }
  return mayGive(bytes->size()) ? bytes : std::nullopt;
}

/// Many records may share a value. Reading a long one again must have a limit.
bool Column::mayGive(std::size_t bytes) {
  constexpr std::size_t is_long = 4096;
  constexpr std::uint64_t always = std::uint64_t{1} << 24U;
  constexpr std::uint64_t times = 4;
  if (bytes <= is_long) {
    return true;
  }
  given_ += bytes;
  if (given_ > always && !WorkBudget(source_.values->size(), times).take(given_)) {
    tell(Code::work_limited,
         "expected a value of variable length for each record, found the same long ones again and "
         "again");
    return false;
  }
  return true;
}

}  // namespace mdf_reader
