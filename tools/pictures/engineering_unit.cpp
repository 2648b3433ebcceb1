#include "engineering_unit.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <optional>
#include <string_view>

namespace mdf_tools {

namespace {

/// A unit that takes prefixes, and those that people use with it, as powers of 1000.
struct Base {
  std::string_view spelling;
  std::string_view unit;
  int least;
  int most;
};

constexpr std::array bases = {
    Base{"bytes/s", "B/s", 0, 5},   Base{"byte/s", "B/s", 0, 5},  Base{"B/s", "B/s", 0, 5},
    Base{"bits/s", "bit/s", 0, 5},  Base{"bit/s", "bit/s", 0, 5}, Base{"bytes", "B", 0, 5},
    Base{"byte", "B", 0, 5},        Base{"Bytes", "B", 0, 5},     Base{"Byte", "B", 0, 5},
    Base{"B", "B", 0, 5},           Base{"bits", "bit", 0, 5},    Base{"bit", "bit", 0, 5},
    Base{"Hz", "Hz", -1, 4},        Base{"s", "s", -3, 0},        Base{"m", "m", -3, 1},
    Base{"g", "g", -2, 1},          Base{"V", "V", -3, 3},        Base{"A", "A", -4, 3},
    Base{"W", "W", -3, 4},          Base{"VA", "VA", -1, 4},      Base{"var", "var", -1, 4},
    Base{"Wh", "Wh", -1, 4},        Base{"Ah", "Ah", -1, 1},      Base{"J", "J", -1, 4},
    Base{"N", "N", -1, 3},          Base{"Pa", "Pa", -1, 3},      Base{"bar", "bar", -1, 0},
    Base{"Ohm", "Ohm", -1, 3},      Base{"ohm", "Ohm", -1, 3},    Base{"\u03A9", "\u03A9", -1, 3},
    Base{"\u2126", "\u03A9", -1, 3}};

struct Prefix {
  std::string_view text;
  int power;  ///< of 1000
};

/// In the order of their powers, the usual spelling of each first.
constexpr std::array prefixes = {
    Prefix{"p", -4}, Prefix{"n", -3}, Prefix{"\u00B5", -2}, Prefix{"u", -2}, Prefix{"\u03BC", -2},
    Prefix{"m", -1}, Prefix{"", 0},   Prefix{"k", 1},       Prefix{"K", 1},  Prefix{"M", 2},
    Prefix{"G", 3},  Prefix{"T", 4},  Prefix{"P", 5}};

constexpr std::array<std::string_view, 5> binary_prefixes = {"Ki", "Mi", "Gi", "Ti", "Pi"};

/// A unit taken apart.
struct Parsed {
  const Base* base;
  double factor;  ///< from the unit to its base
  int power;      ///< of 1000, about as much
};

std::optional<Parsed> parsedBy(const Base& base, std::string_view prefix) {
  const auto* const known = std::find_if(prefixes.begin(), prefixes.end(),
                                         [&](const Prefix& each) { return each.text == prefix; });
  const bool counts_bits = base.unit[0] == 'B' || base.unit.substr(0, 3) == "bit";
  if (known != prefixes.end()) {
    const bool is_usual = known->power >= base.least && known->power <= base.most;
    return is_usual && (prefix != "K" || counts_bits)
               ? std::optional<Parsed>({&base, std::pow(1000, known->power), known->power})
               : std::nullopt;
  }
  const auto* const binary = std::find(binary_prefixes.begin(), binary_prefixes.end(), prefix);
  if (!counts_bits || binary == binary_prefixes.end()) {
    return std::nullopt;
  }
  const int power = static_cast<int>(binary - binary_prefixes.begin()) + 1;
  return Parsed{&base, std::pow(1024, power), power};
}

std::optional<Parsed> parsed(std::string_view unit) {
  for (const Base& base : bases) {
    const std::size_t size = base.spelling.size();
    if (unit.size() >= size && unit.substr(unit.size() - size) == base.spelling) {
      if (const auto found = parsedBy(base, unit.substr(0, unit.size() - size))) {
        return found;
      }
    }
  }
  return std::nullopt;
}

std::string_view prefixOf(int power) {
  return std::find_if(prefixes.begin(), prefixes.end(),
                      [&](const Prefix& each) { return each.power == power; })
      ->text;
}

/// The power of 1000 that leaves one to three digits before the point.
int powerOf(double number) {
  const double power = std::floor(std::log10(number) / 3 + 1e-9);
  return static_cast<int>(power);
}

/// "10⁶"
std::string tenToThe(int power) {
  constexpr std::array<std::string_view, 10> digits = {"\u2070", "\u00B9", "\u00B2", "\u00B3",
                                                       "\u2074", "\u2075", "\u2076", "\u2077",
                                                       "\u2078", "\u2079"};
  std::string text = power < 0 ? "10\u207B" : "10";
  for (const char digit : std::to_string(std::abs(power))) {
    text += digits.at(static_cast<std::size_t>(digit - '0'));
  }
  return text;
}

/// Numbers up to a million and down to a thousandth are read as they are.
AxisUnit withPowerOfTen(const std::string& unit, double largest) {
  const bool is_readable = largest < 1e6 && largest >= 1e-3;
  if (is_readable || largest == 0) {
    return {1, unit};
  }
  const int power = powerOf(largest);
  return {std::pow(1000, -power), tenToThe(3 * power) + (unit.empty() ? "" : ' ' + unit)};
}

}  // namespace

AxisUnit axisUnitFor(const std::string& unit, double largest) {
  const auto known = parsed(unit);
  if (!known) {
    return withPowerOfTen(unit, largest);
  }
  const Base& base = *known->base;
  const double in_base = largest * known->factor;
  const int power =
      in_base == 0 ? known->power : std::clamp(powerOf(in_base), base.least, base.most);
  return {known->factor * std::pow(1000, -power),
          std::string(prefixOf(power)) + std::string(base.unit), true};
}

AxisUnit baseUnitFor(const std::string& unit) {
  const auto known = parsed(unit);
  return known ? AxisUnit{known->factor, std::string(known->base->unit), true} : AxisUnit{1, unit};
}

double roundStep(double least) {
  const double power = std::pow(10, std::floor(std::log10(least)));
  for (const double digit : {1, 2, 5}) {
    if (digit * power >= least) {
      return digit * power;
    }
  }
  return 10 * power;
}

}  // namespace mdf_tools
