#include "frame_filter.h"

#include <algorithm>
#include <charconv>
#include <optional>

namespace mdf_tools {

namespace {

struct Id {
  std::uint32_t number;
  bool is_extended;
};

std::optional<Id> idIn(std::string_view text) {
  constexpr std::uint32_t most_standard = 0x7FF;
  constexpr std::uint32_t most_extended = 0x1FFFFFFF;
  if (text.substr(0, 2) == "0x" || text.substr(0, 2) == "0X") {
    text.remove_prefix(2);
  }
  const bool is_marked = !text.empty() && text.back() == 'x';
  const char* const end = text.data() + text.size() - (is_marked ? 1 : 0);
  std::uint32_t number = 0;
  const auto [rest, error] = std::from_chars(text.data(), end, number, 16);
  if (error != std::errc{} || rest != end || number > most_extended) {
    return std::nullopt;
  }
  return Id{number, is_marked || number > most_standard};
}

}  // namespace

std::string FrameFilter::addIds(const std::string& text) {
  const std::size_t hyphen = std::min(text.find('-'), text.size());
  const auto first = idIn(std::string_view(text).substr(0, hyphen));
  const auto last = hyphen < text.size() ? idIn(std::string_view(text).substr(hyphen + 1)) : first;
  if (!first || !last) {
    return "expected an identifier such as 123, 18FEF100x or 700-7FF, found \"" + text + '"';
  }
  if (first->number > last->number) {
    return "the identifiers " + text + " end before they begin";
  }
  ids_.push_back({first->number, last->number, first->is_extended || last->is_extended});
  return "";
}

bool FrameFilter::isWanted(const BusFrame& frame) const {
  return (ids_.empty() || hasId(frame)) && (buses_.empty() || hasBus(frame.bus));
}

bool FrameFilter::hasId(const BusFrame& frame) const {
  return frame.hasId() && std::any_of(ids_.begin(), ids_.end(), [&](const Ids& ids) {
           return ids.are_extended == frame.is_extended && frame.id >= ids.first &&
                  frame.id <= ids.last;
         });
}

bool FrameFilter::hasBus(std::string_view bus) const {
  return std::any_of(buses_.begin(), buses_.end(),
                     [&](const std::string& pattern) { return isBus(pattern, bus); });
}

}  // namespace mdf_tools
