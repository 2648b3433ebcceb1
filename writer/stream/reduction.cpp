#include "reduction.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace mdf_writer {

using mdf_v4_10::CNBLOCK;
using mdf_v4_10::detail::storeLe;

namespace {

constexpr std::uint64_t sign_bit = std::uint64_t{1} << 63U;

double asReal(std::uint64_t bits) {
  double real = 0;
  std::memcpy(&real, &bits, sizeof real);
  return real;
}

std::uint64_t bitsOf(double real) {
  std::uint64_t bits = 0;
  std::memcpy(&bits, &real, sizeof bits);
  return bits;
}

/// The bits of negative numbers fall when the number rises.
std::uint64_t realKey(double real) {
  const std::uint64_t bits = bitsOf(real);
  return (bits & sign_bit) != 0 ? ~bits : bits | sign_bit;
}

double realOfKey(std::uint64_t key) {
  return asReal((key & sign_bit) != 0 ? key & ~sign_bit : ~key);
}

std::uint64_t lowBits(std::uint32_t count) {
  return count >= 64 ? ~std::uint64_t{0} : (std::uint64_t{1} << count) - 1;
}

/// Shifts up, or down by a negative count; all bits may leave.
std::uint64_t shifted(std::uint64_t value, int up) {
  return up >= 64 || up <= -64 ? 0 : up >= 0 ? value << up : value >> -up;
}

bool hasBit(std::string_view bytes, std::uint32_t bit) {
  return (static_cast<unsigned>(static_cast<std::uint8_t>(bytes[bit / 8]) >> (bit % 8)) & 1U) != 0;
}

}  // namespace

bool ReducedNumber::canReduce(const ChannelPlan& channel) {
  return channel.master == CNBLOCK::CN_SYNCTYPE_NONE && channel.bits <= 64 &&
         !channel.has_variable_length &&
         (channel.isInteger() || (channel.isFloat() && channel.bits >= 32));
}

ReducedNumber::ReducedNumber(const ChannelPlan& channel, std::uint64_t element)
    : is_big_endian_(channel.type == CNBLOCK::CN_DATATYPE_UINT_BE ||
                     channel.type == CNBLOCK::CN_DATATYPE_INT_BE ||
                     channel.type == CNBLOCK::CN_DATATYPE_FLOAT_BE),
      at_(channel.byte_offset + static_cast<std::uint32_t>(element) * (channel.bits / 8)),
      bit_(channel.bit_offset),
      bits_(channel.bits),
      invalidation_bit_(channel.invalidation_bit) {
  const bool is_natural =
      channel.type == CNBLOCK::CN_DATATYPE_UINT_LE || channel.type == CNBLOCK::CN_DATATYPE_UINT_BE;
  kind_ = !channel.isFloat()   ? is_natural ? Kind::natural : Kind::integer
          : channel.bits == 32 ? Kind::real_32
                               : Kind::real_64;
}

std::size_t ReducedNumber::byteAt(std::size_t from_lowest) const {
  const std::size_t bytes = (bit_ + bits_ + 7) / 8;
  return at_ + (is_big_endian_ ? bytes - 1 - from_lowest : from_lowest);
}

std::uint64_t ReducedNumber::load(std::string_view data) const {
  std::uint64_t bits = 0;
  for (std::uint32_t i = 0; 8 * i < bit_ + bits_; ++i) {
    bits |= shifted(static_cast<std::uint8_t>(data[byteAt(i)]),
                    static_cast<int>(8 * i) - static_cast<int>(bit_));
  }
  return bits & lowBits(bits_);
}

std::uint64_t ReducedNumber::keyOf(std::uint64_t bits) const {
  switch (kind_) {
    case Kind::natural:
      return bits;
    case Kind::integer: {
      const bool is_negative = ((bits >> (bits_ - 1)) & 1U) != 0;
      return (is_negative ? bits | ~lowBits(bits_) : bits) ^ sign_bit;
    }
    case Kind::real_32: {
      const auto low = static_cast<std::uint32_t>(bits);
      float real = 0;
      std::memcpy(&real, &low, sizeof real);
      return realKey(static_cast<double>(real));
    }
    case Kind::real_64:
      break;
  }
  return realKey(asReal(bits));
}

double ReducedNumber::numberOf(std::uint64_t key) const {
  switch (kind_) {
    case Kind::natural:
      return static_cast<double>(key);
    case Kind::integer:
      return static_cast<double>(static_cast<std::int64_t>(key ^ sign_bit));
    case Kind::real_32:
    case Kind::real_64:
      break;
  }
  return realOfKey(key);
}

void ReducedNumber::store(char* data, std::uint64_t key) const {
  std::uint64_t bits = key;
  if (kind_ == Kind::integer) {
    bits ^= sign_bit;
  } else if (kind_ == Kind::real_32) {
    const auto real = static_cast<float>(realOfKey(key));
    std::uint32_t low = 0;
    std::memcpy(&low, &real, sizeof low);
    bits = low;
  } else if (kind_ == Kind::real_64) {
    bits = bitsOf(realOfKey(key));
  }
  for (std::uint32_t i = 0; 8 * i < bit_ + bits_; ++i) {
    const int up = static_cast<int>(bit_) - static_cast<int>(8 * i);
    const auto mask = static_cast<std::uint8_t>(shifted(lowBits(bits_), up));
    const auto put = static_cast<std::uint8_t>(shifted(bits & lowBits(bits_), up));
    char& byte = data[byteAt(i)];
    byte = static_cast<char>((static_cast<std::uint8_t>(byte) & ~mask) | put);
  }
}

void ReducedNumber::begin() {
  has_value_ = false;
  count_ = 0;
  sum_ = 0;
}

void ReducedNumber::add(std::string_view data, std::string_view invalidation) {
  const std::uint64_t key = keyOf(load(data));
  const double number = numberOf(key);
  if (invalidation_bit_ && hasBit(invalidation, *invalidation_bit_)) {
    return;
  }
  if (std::isnan(number)) {
    if (!has_value_) {
      least_ = greatest_ = key;
    }
    has_value_ = true;
    return;
  }
  has_value_ = true;
  least_ = count_ == 0 ? key : std::min(least_, key);
  greatest_ = count_ == 0 ? key : std::max(greatest_, key);
  sum_ += number;
  ++count_;
}

/// Rounding does not lead out of what there was.
std::uint64_t ReducedNumber::meanKey() const {
  if (count_ == 0) {
    return least_;
  }
  const double mean = sum_ / static_cast<double>(count_);
  if (std::isnan(mean)) {
    return realKey(mean);
  }
  if (mean <= numberOf(least_)) {
    return least_;
  }
  if (mean >= numberOf(greatest_)) {
    return greatest_;
  }
  switch (kind_) {
    case Kind::natural:
      return static_cast<std::uint64_t>(std::round(mean));
    case Kind::integer:
      return static_cast<std::uint64_t>(static_cast<std::int64_t>(std::round(mean))) ^ sign_bit;
    case Kind::real_32:
    case Kind::real_64:
      break;
  }
  return realKey(mean);
}

void ReducedNumber::put(char* mean, char* least, char* greatest, char* invalidation) const {
  if (has_value_) {
    store(mean, meanKey());
    store(least, least_);
    store(greatest, greatest_);
  }
  if (invalidation_bit_) {
    char& byte = invalidation[*invalidation_bit_ / 8];
    const auto mask = static_cast<std::uint8_t>(1U << (*invalidation_bit_ % 8));
    const auto others = static_cast<std::uint8_t>(static_cast<std::uint8_t>(byte) & ~mask);
    byte = static_cast<char>(has_value_ ? others : others | mask);
  }
}

void ReducedNumber::set(char* data, double number) const {
  if (kind_ == Kind::real_32 || kind_ == Kind::real_64) {
    store(data, realKey(number));
    return;
  }
  const bool is_natural = kind_ == Kind::natural;
  const double most = std::ldexp(1.0, static_cast<int>(is_natural ? bits_ : bits_ - 1));
  const double rounded = std::round(number);
  if (!(rounded < most)) {
    store(data, is_natural ? lowBits(bits_) : lowBits(bits_ - 1) ^ sign_bit);
  } else if (is_natural) {
    store(data, rounded < 0 ? 0 : static_cast<std::uint64_t>(rounded));
  } else {
    store(data, static_cast<std::uint64_t>(static_cast<std::int64_t>(std::max(rounded, -most))) ^
                    sign_bit);
  }
}

Reduction::Reduction(const Group& group, double seconds, DataStream& stream)
    : stream_(&stream), seconds_(seconds), data_bytes_(group.dataBytes()) {
  for (const ChannelPlan& channel : group.channels()) {
    const std::uint64_t elements = ReducedNumber::canReduce(channel) ? channel.elements() : 0;
    for (std::uint64_t i = 0; i < elements; ++i) {
      numbers_.emplace_back(channel, i);
    }
  }
  result_.resize(3 * data_bytes_ + group.invalidationBytes());
}

void Reduction::begin(std::string_view data, std::string_view invalidation) {
  for (std::size_t i = 0; i < 3; ++i) {
    result_.replace(i * data_bytes_, data_bytes_, data);
    storeLe(&result_[i * data_bytes_], interval_ * seconds_);
  }
  result_.replace(3 * data_bytes_, invalidation.size(), invalidation);
  for (ReducedNumber& number : numbers_) {
    number.begin();
  }
  is_open_ = true;
}

void Reduction::add(std::int64_t nanoseconds, std::string_view data,
                    std::string_view invalidation) {
  if (!is_open_) {
    interval_ = intervalOf(nanoseconds);
    begin(data, invalidation);
  }
  for (ReducedNumber& number : numbers_) {
    number.add(data, invalidation);
  }
}

bool Reduction::end(std::uint64_t records) {
  if (!is_open_) {
    return true;
  }
  is_open_ = false;
  char* const mean = result_.data();
  for (const ReducedNumber& number : numbers_) {
    number.put(mean, mean + data_bytes_, mean + 2 * data_bytes_, mean + 3 * data_bytes_);
  }
  if (!hasRoom()) {
    records_at_.clear();
  }
  if (!stream_->append(result_, {})) {
    return false;
  }
  records_at_.push_back(records);
  ++cycles_;
  return true;
}

bool Reduction::cut(std::uint64_t records) {
  const std::size_t taken = stream_->taken() / result_.size();
  std::size_t kept = 0;
  while (kept < std::min(taken, records_at_.size()) && records_at_[kept] <= records) {
    ++kept;
  }
  cycles_ -= records_at_.size() - kept;
  records_at_.resize(kept);
  return stream_->cutBlock(kept * result_.size());
}

}  // namespace mdf_writer
