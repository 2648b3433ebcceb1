#include "trigger.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <system_error>
#include <utility>

#include "quantity.h"

namespace mdf_tools {

using mdf_v4_10::CNBLOCK;

namespace {

struct Operator {
  std::string_view name;
  bool (*holds)(double value, double limit);
};

/// Those of two characters first, as two of them begin with others.
constexpr std::array<Operator, 6> operators = {
    {{">=", [](double value, double limit) { return value >= limit; }},
     {"<=", [](double value, double limit) { return value <= limit; }},
     {"==", [](double value, double limit) { return value == limit; }},
     {"!=", [](double value, double limit) { return value != limit; }},
     {">", [](double value, double limit) { return value > limit; }},
     {"<", [](double value, double limit) { return value < limit; }}}};

std::string_view trimmed(std::string_view text) {
  const std::size_t begin = std::min(text.find_first_not_of(' '), text.size());
  return text.substr(begin, text.find_last_not_of(' ') + 1 - begin);
}

double numberOf(const Signal& signal, mdf_v4_10::UINT64 bits) {
  if (signal.data_type == CNBLOCK::CN_DATATYPE_UINT_LE) {
    return static_cast<double>(bits);
  }
  return signal.bytes == sizeof(float) ? valueOf<float>(bits) : valueOf<double>(bits);
}

}  // namespace

/// Names may have the characters of operators, numbers have none.
Condition parseCondition(std::string_view text) {
  const std::size_t last = text.find_last_of("<>=");
  const std::size_t end = last == std::string_view::npos ? 0 : last + 1;
  for (const Operator& one : operators) {
    const std::size_t begin = end - std::min(end, one.name.size());
    const std::string_view name = trimmed(text.substr(0, begin));
    if (name.empty() || text.substr(begin, end - begin) != one.name) {
      continue;
    }
    double limit = 0;
    const std::string_view number = trimmed(text.substr(end));
    const char* const number_end = number.data() + number.size();
    const auto [rest, error] = std::from_chars(number.data(), number_end, limit);
    if (error == std::errc{} && rest == number_end && std::isfinite(limit)) {
      return {std::string(text), std::string(name), one.holds, limit};
    }
  }
  throw BadOption('"' + std::string(text) +
                  "\" is no condition; write a channel, one of > >= < <= == != and a number, such "
                  "as \"cpu_total > 90\"");
}

Trigger::Trigger(Condition condition, const std::vector<SignalGroup>& groups)
    : condition_(std::move(condition)) {
  for (group_ = 0; group_ < groups.size(); ++group_) {
    const std::vector<Signal>& signals = groups[group_].signals;
    const auto signal = std::find_if(signals.begin(), signals.end(), [&](const Signal& one) {
      return one.name == condition_.channel;
    });
    if (signal == signals.end()) {
      continue;
    }
    if (signal->isText()) {
      throw BadOption("cannot trigger on \"" + condition_.channel + "\": it has texts, no numbers");
    }
    index_ = static_cast<std::size_t>(signal - signals.begin());
    signal_ = *signal;
    if (signal_.bytes == sizeof(float)) {
      condition_.limit = static_cast<float>(condition_.limit);  // 0.1 is no other number there
    }
    return;
  }
  throw BadOption("cannot trigger on \"" + condition_.channel + "\": there is no such channel");
}

bool Trigger::fires(const Sample& sample) {
  const bool has_value =
      sample.group == group_ && (sample.is_missing.empty() || !sample.is_missing[index_]);
  const double value = has_value ? numberOf(signal_, sample.values[index_]) : NAN;
  if (std::isnan(value)) {
    return false;
  }
  const bool was_true = std::exchange(is_true_, condition_.holds(value, condition_.limit));
  return is_true_ && !was_true;
}

}  // namespace mdf_tools
