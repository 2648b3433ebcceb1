#include "view_request.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <string_view>
#include <utility>

#include "wrong_request.h"

namespace mdf_tools {

namespace {

template <class Number>
std::optional<Number> readNumber(std::string_view text) {
  Number number{};
  const char* const end = text.data() + text.size();
  const auto read = std::from_chars(text.data(), end, number);
  return read.ec == std::errc() && read.ptr == end ? std::optional(number) : std::nullopt;
}

}  // namespace

ViewRequest::ViewRequest(std::function<std::optional<std::string>(const std::string& name)> find)
    : find_(std::move(find)) {}

std::string ViewRequest::text(const std::string& name) const {
  if (auto found = find_(name)) {
    return *found;
  }
  throw WrongRequest("the parameter \"" + name + "\" is missing");
}

std::size_t ViewRequest::count(const std::string& name, std::size_t most) const {
  const auto number = readNumber<std::size_t>(text(name));
  if (!number || *number > most) {
    throw WrongRequest("\"" + name + "\" is no number from 0 to " + std::to_string(most));
  }
  return *number;
}

std::vector<std::size_t> ViewRequest::counts(const std::string& name) const {
  constexpr std::size_t most = 64;
  const std::string all = text(name);
  std::vector<std::size_t> numbers;
  for (std::size_t begin = 0; begin <= all.size();) {
    const std::size_t comma = std::min(all.find(',', begin), all.size());
    const auto number = readNumber<std::size_t>(std::string_view(all).substr(begin, comma - begin));
    if (!number || numbers.size() == most) {
      throw WrongRequest("\"" + name +
                         "\" is no list of up to 64 numbers with commas between them");
    }
    numbers.push_back(*number);
    begin = comma + 1;
  }
  return numbers;
}

double ViewRequest::number(const std::string& name) const {
  const auto number = readNumber<double>(text(name));
  if (!number || !std::isfinite(*number)) {
    throw WrongRequest("\"" + name + "\" is no number");
  }
  return *number;
}

std::optional<double> ViewRequest::numberIfGiven(const std::string& name) const {
  return find_(name) ? std::optional(number(name)) : std::nullopt;
}

Window ViewRequest::window() const {
  constexpr std::size_t most_pixels = 20000;
  const Window window{number("from"), number("to"), count("pixels", most_pixels)};
  if (window.from >= window.to || !std::isfinite(window.to - window.from)) {
    throw WrongRequest("\"from\" is not less than \"to\"");
  }
  if (window.pixels == 0) {
    throw WrongRequest("\"pixels\" is 0");
  }
  return window;
}

}  // namespace mdf_tools
