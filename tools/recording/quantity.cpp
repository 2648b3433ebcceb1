#include "quantity.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <optional>
#include <system_error>

namespace mdf_tools {

namespace {

struct Unit {
  std::string_view name;
  double factor;
};

constexpr double longest_duration = 10 * 365.25 * 86400;
constexpr double lowest_rate = 1e-5;
constexpr double highest_rate = 100e3;
constexpr double smallest_file = 100e3;
constexpr double largest_file = 1e18;

constexpr std::array<Unit, 5> time_units = {
    {{"", 1}, {"ms", 1e-3}, {"s", 1}, {"min", 60}, {"h", 3600}}};
constexpr std::array<Unit, 4> size_units = {{{"kB", 1e3}, {"MB", 1e6}, {"GB", 1e9}, {"TB", 1e12}}};
constexpr std::array<Unit, 3> rate_units = {{{"", 1}, {"Hz", 1}, {"kHz", 1e3}}};

/// A number in plain decimal notation and a unit, with or without a blank between them.
template <std::size_t Count>
std::optional<double> parse(std::string_view text, const std::array<Unit, Count>& units) {
  double number = 0;
  const char* const end = text.data() + text.size();
  const auto [rest, error] = std::from_chars(text.data(), end, number, std::chars_format::fixed);
  const bool has_digits =
      text.find_first_of("0123456789") < static_cast<std::size_t>(rest - text.data());
  if (error != std::errc{} || !has_digits) {
    return std::nullopt;
  }
  std::string_view name(rest, static_cast<std::size_t>(end - rest));
  if (name.size() > 1 && name.front() == ' ') {
    name.remove_prefix(1);
  }
  const auto* const unit = std::find_if(units.begin(), units.end(),
                                        [name](const Unit& one) { return one.name == name; });
  return unit != units.end() ? std::optional<double>(number * unit->factor) : std::nullopt;
}

std::string quoted(std::string_view text) { return '"' + std::string(text) + '"'; }

}  // namespace

double parseDuration(std::string_view text) {
  const std::optional<double> seconds = parse(text, time_units);
  if (!seconds) {
    throw BadOption(quoted(text) +
                    " is not a duration; write a number and ms, s, min or h, such as 10s or 1.5h");
  }
  if (*seconds < 0 || *seconds > longest_duration) {
    throw BadOption(quoted(text) + " is out of range; a duration is 0, for no end, to 10 years");
  }
  return *seconds;
}

double parseRate(std::string_view text) {
  const std::optional<double> hertz = parse(text, rate_units);
  if (!hertz) {
    throw BadOption(quoted(text) +
                    " is not a rate; write a number and Hz or kHz, such as 100Hz or 0.5Hz");
  }
  if (*hertz < lowest_rate || *hertz > highest_rate) {
    throw BadOption(quoted(text) + " is out of range; a rate is 0.00001Hz to 100kHz");
  }
  return *hertz;
}

FileLimit parseFileLimit(std::string_view text) {
  const std::optional<double> bytes = parse(text, size_units);
  const bool has_unit = text.find_last_not_of("0123456789.") == text.size() - 1;
  const std::optional<double> seconds = has_unit ? parse(text, time_units) : std::nullopt;
  if (!bytes && !seconds) {
    throw BadOption(
        quoted(text) +
        " is neither a size nor a time; write a number and kB, MB, GB, TB, s, min or h, "
        "such as 1GB or 10min");
  }
  const double number = bytes ? *bytes : *seconds;
  if (number < (bytes ? smallest_file : 1) || number > (bytes ? largest_file : longest_duration)) {
    throw BadOption(quoted(text) +
                    " is out of range; a file has 100kB to 1000000TB, or 1s to 10 years");
  }
  return bytes ? FileLimit{static_cast<std::uint64_t>(number), 0}
               : FileLimit{0, std::llround(number * 1e9)};
}

std::string shortNumber(double number) {
  std::array<char, 32> digits{};
  const auto [end, error] =
      std::to_chars(digits.data(), digits.data() + digits.size(), number, std::chars_format::fixed);
  return error == std::errc{} ? std::string(digits.data(), end) : std::string("?");
}

}  // namespace mdf_tools
