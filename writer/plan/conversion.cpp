#include "conversion.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace mdf_writer {

using mdf_v4_10::CCBLOCK;

namespace {

/// The block counts its numbers and its texts in 16 bits.
constexpr std::size_t longest_list = 65535;

Conversion made(CCBLOCK::MDF_CC_TYPE_t type) {
  Conversion conversion;
  conversion.type = type;
  conversion.is_stated = true;
  return conversion;
}

Conversion ofNumbers(CCBLOCK::MDF_CC_TYPE_t type, std::vector<double> numbers) {
  Conversion conversion = made(type);
  conversion.numbers = std::move(numbers);
  return conversion;
}

template <class Entries>
void sortByKey(Entries& entries) {
  std::sort(entries.begin(), entries.end(),
            [](const auto& a, const auto& b) { return a.first < b.first; });
}

bool isAscending(const std::vector<double>& numbers, std::size_t step) {
  for (std::size_t i = step; i < numbers.size(); i += step) {
    if (!(numbers[i - step] < numbers[i])) {
      return false;
    }
  }
  return true;
}

/// Ranges of `step` numbers each, of which the first two are its ends.
std::string faultOfRanges(const std::vector<double>& numbers, std::size_t step) {
  for (std::size_t i = 0; i + 1 < numbers.size(); i += step) {
    if (numbers[i + 1] < numbers[i]) {
      return "has a range that ends before it begins";
    }
    if (i >= step && numbers[i] < numbers[i - step + 1]) {
      return "has ranges that overlap";
    }
  }
  return "";
}

/// Texts that are looked up, every `step`th of those before the last.
std::string faultOfKeys(const std::vector<std::string>& texts, std::size_t count,
                        std::size_t step) {
  std::vector<std::string> keys;
  for (std::size_t i = 0; i < count; i += step) {
    keys.push_back(texts[i]);
  }
  std::sort(keys.begin(), keys.end());
  return std::adjacent_find(keys.begin(), keys.end()) == keys.end() ? "" : "has a key twice";
}

std::string faultOfParameters(const Conversion& conversion) {
  const std::vector<double>& numbers = conversion.numbers;
  const auto isZero = [](double number) { return number == 0; };
  switch (conversion.type) {
    case CCBLOCK::CC_CONVTYPE_RATIONAL:
      return std::all_of(numbers.begin() + 3, numbers.end(), isZero) ? "divides by 0" : "";
    case CCBLOCK::CC_CONVTYPE_ALGEBRAIC:
      return conversion.texts.front().empty() ? "has no formula" : "";
    case CCBLOCK::CC_CONVTYPE_V2VTAB_INTERPOL:
    case CCBLOCK::CC_CONVTYPE_V2VTAB_NOINTERPOL:
      return isAscending(numbers, 2) ? "" : "has a key twice";
    case CCBLOCK::CC_CONVTYPE_VRANGE2VTAB:
      return faultOfRanges({numbers.begin(), numbers.end() - 1}, 3);
    case CCBLOCK::CC_CONVTYPE_V2TEXT_SCALETAB:
      return isAscending(numbers, 1) ? "" : "has a key twice";
    case CCBLOCK::CC_CONVTYPE_VRANGE2TEXT_SCALETAB:
      return faultOfRanges(numbers, 2);
    case CCBLOCK::CC_CONVTYPE_TEXT2VTAB:
      return faultOfKeys(conversion.texts, conversion.texts.size(), 1);
    case CCBLOCK::CC_CONVTYPE_TEXT2TEXTTAB:
      return faultOfKeys(conversion.texts, conversion.texts.size() - 1, 2);
    default:
      return "";
  }
}

/// Whether numbers become texts, of which the last may be another conversion.
bool hasTexts(CCBLOCK::MDF_CC_TYPE_t type) {
  return type == CCBLOCK::CC_CONVTYPE_V2TEXT_SCALETAB ||
         type == CCBLOCK::CC_CONVTYPE_VRANGE2TEXT_SCALETAB;
}

/// Whether the lists have the lengths that the type asks for, with one entry of a table at least.
bool isComplete(const Conversion& conversion) {
  const std::size_t numbers = conversion.numbers.size();
  const std::size_t texts = conversion.texts.size();
  switch (conversion.type) {
    case CCBLOCK::CC_CONVTYPE_EQUAL:
      return numbers == 0 && texts == 0;
    case CCBLOCK::CC_CONVTYPE_LINEAR:
      return numbers == 2 && texts == 0;
    case CCBLOCK::CC_CONVTYPE_RATIONAL:
      return numbers == 6 && texts == 0;
    case CCBLOCK::CC_CONVTYPE_ALGEBRAIC:
      return numbers == 0 && texts == 1;
    case CCBLOCK::CC_CONVTYPE_V2VTAB_INTERPOL:
    case CCBLOCK::CC_CONVTYPE_V2VTAB_NOINTERPOL:
      return numbers >= 2 && numbers % 2 == 0 && texts == 0;
    case CCBLOCK::CC_CONVTYPE_VRANGE2VTAB:
      return numbers >= 4 && numbers % 3 == 1 && texts == 0;
    case CCBLOCK::CC_CONVTYPE_V2TEXT_SCALETAB:
      return numbers >= 1 && texts == numbers + 1;
    case CCBLOCK::CC_CONVTYPE_VRANGE2TEXT_SCALETAB:
      return numbers >= 2 && numbers % 2 == 0 && texts == numbers / 2 + 1;
    case CCBLOCK::CC_CONVTYPE_TEXT2VTAB:
      return texts >= 1 && numbers == texts + 1;
    case CCBLOCK::CC_CONVTYPE_TEXT2TEXTTAB:
      return texts >= 3 && texts % 2 == 1 && numbers == 0;
  }
  return false;
}

}  // namespace

Conversion identity() { return made(CCBLOCK::CC_CONVTYPE_EQUAL); }

Conversion linear(double offset, double factor) {
  return ofNumbers(CCBLOCK::CC_CONVTYPE_LINEAR, {offset, factor});
}

Conversion rational(double p1, double p2, double p3, double p4, double p5, double p6) {
  return ofNumbers(CCBLOCK::CC_CONVTYPE_RATIONAL, {p1, p2, p3, p4, p5, p6});
}

Conversion formula(std::string text) {
  Conversion conversion = made(CCBLOCK::CC_CONVTYPE_ALGEBRAIC);
  conversion.texts.push_back(std::move(text));
  return conversion;
}

Conversion table(std::vector<std::pair<double, double>> entries, Between between) {
  sortByKey(entries);
  Conversion conversion =
      made(between == Between::interpolate ? CCBLOCK::CC_CONVTYPE_V2VTAB_INTERPOL
                                           : CCBLOCK::CC_CONVTYPE_V2VTAB_NOINTERPOL);
  for (const auto& [key, value] : entries) {
    conversion.numbers.insert(conversion.numbers.end(), {key, value});
  }
  return conversion;
}

Conversion ranges(std::vector<RangeEntry<double>> entries, double otherwise) {
  sortByKey(entries);
  Conversion conversion = made(CCBLOCK::CC_CONVTYPE_VRANGE2VTAB);
  for (const RangeEntry<double>& entry : entries) {
    conversion.numbers.insert(conversion.numbers.end(), {entry.first, entry.last, entry.value});
  }
  conversion.numbers.push_back(otherwise);
  return conversion;
}

Conversion texts(std::vector<std::pair<double, std::string>> entries,
                 const std::string& otherwise) {
  sortByKey(entries);
  Conversion conversion = made(CCBLOCK::CC_CONVTYPE_V2TEXT_SCALETAB);
  for (auto& [key, text] : entries) {
    conversion.numbers.push_back(key);
    conversion.texts.push_back(std::move(text));
  }
  conversion.texts.push_back(otherwise);
  return conversion;
}

Conversion texts(std::vector<std::pair<double, std::string>> entries, Conversion otherwise) {
  Conversion conversion = texts(std::move(entries), "");
  conversion.rest.push_back(std::move(otherwise));
  return conversion;
}

Conversion rangeTexts(std::vector<RangeEntry<std::string>> entries, const std::string& otherwise) {
  sortByKey(entries);
  Conversion conversion = made(CCBLOCK::CC_CONVTYPE_VRANGE2TEXT_SCALETAB);
  for (RangeEntry<std::string>& entry : entries) {
    conversion.numbers.insert(conversion.numbers.end(), {entry.first, entry.last});
    conversion.texts.push_back(std::move(entry.value));
  }
  conversion.texts.push_back(otherwise);
  return conversion;
}

Conversion textNumbers(const std::vector<std::pair<std::string, double>>& entries,
                       double otherwise) {
  Conversion conversion = made(CCBLOCK::CC_CONVTYPE_TEXT2VTAB);
  for (const auto& [text, number] : entries) {
    conversion.texts.push_back(text);
    conversion.numbers.push_back(number);
  }
  conversion.numbers.push_back(otherwise);
  return conversion;
}

Conversion textTexts(const std::vector<std::pair<std::string, std::string>>& entries,
                     const std::string& otherwise) {
  Conversion conversion = made(CCBLOCK::CC_CONVTYPE_TEXT2TEXTTAB);
  for (const auto& [text, result] : entries) {
    conversion.texts.push_back(text);
    conversion.texts.push_back(result);
  }
  conversion.texts.push_back(otherwise);
  return conversion;
}

std::string faultOf(const Conversion& conversion) {
  if (!isComplete(conversion)) {
    return "lacks parameters";
  }
  if (!conversion.rest.empty()) {
    const Conversion& rest = conversion.rest.front();
    if (!hasTexts(conversion.type) || conversion.rest.size() > 1 || !rest.texts.empty()) {
      return "goes on with one that it cannot go on with";
    }
    std::string fault = faultOf(rest);
    if (!fault.empty()) {
      return fault;
    }
  }
  if (conversion.numbers.size() > longest_list || conversion.texts.size() > longest_list) {
    return "has more entries than a conversion block can count";
  }
  const auto isNumber = [](double number) { return !std::isnan(number); };
  if (!std::all_of(conversion.numbers.begin(), conversion.numbers.end(), isNumber)) {
    return "has a parameter that is no number";
  }
  return faultOfParameters(conversion);
}

}  // namespace mdf_writer
