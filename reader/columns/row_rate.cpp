#include "row_rate.h"

#include <array>
#include <charconv>
#include <cmath>
#include <numeric>
#include <string_view>

namespace mdf_reader {

namespace {

constexpr std::uint64_t billion = 1000000000;

struct Unit {
  std::string_view name;
  double billionths;  ///< of a second, or of a hertz
  bool is_period;
};

constexpr std::array<Unit, 9> units = {{
    {"Hz", 1e9, false},
    {"mHz", 1e6, false},
    {"kHz", 1e12, false},
    {"MHz", 1e15, false},
    {"GHz", 1e18, false},
    {"s", 1e9, true},
    {"ms", 1e6, true},
    {"us", 1e3, true},
    {"ns", 1, true},
}};

const Unit* unitCalled(std::string_view name) {
  for (const Unit& unit : units) {
    if (unit.name == name) {
      return &unit;
    }
  }
  return nullptr;
}

RowRate reduced(std::uint64_t seconds, std::uint64_t rows) {
  const std::uint64_t divisor = std::gcd(seconds, rows);
  return {seconds / divisor, rows / divisor};
}

}  // namespace

double RowRate::secondsTo(std::uint64_t row) const {
  return static_cast<double>(row) * static_cast<double>(seconds) / static_cast<double>(rows);
}

std::optional<int> RowRate::decimals() const {
  std::uint64_t scaled = seconds % rows;
  for (int places = 0; places < 10; ++places) {
    if (scaled == 0) {
      return places;
    }
    scaled = scaled * 10 % rows;
  }
  return std::nullopt;
}

std::optional<RowRate> readRate(const std::string& text) {
  constexpr double least = 1;
  constexpr double most = 1e18;
  const char* const end = text.data() + text.size();
  const bool has_sign = !text.empty() && (text[0] == '-' || text[0] == '+');
  const char* const begin = text.data() + (has_sign ? 1 : 0);
  double number = 0;
  const auto parsed = std::from_chars(begin, end, number);
  const Unit* const unit = unitCalled({parsed.ptr, static_cast<std::size_t>(end - parsed.ptr)});
  const bool begins_with_digit =
      begin != end && (*begin == '.' || (*begin >= '0' && *begin <= '9'));
  if (unit == nullptr || !begins_with_digit) {
    return std::nullopt;
  }
  const double scaled = number * unit->billionths;
  const bool is_usable = parsed.ec == std::errc() && !has_sign && scaled >= least && scaled <= most;
  if (!is_usable) {
    return RowRate{};
  }
  const auto whole = static_cast<std::uint64_t>(std::llround(scaled));
  return unit->is_period ? reduced(whole, billion) : reduced(billion, whole);
}

}  // namespace mdf_reader
