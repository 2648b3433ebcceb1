#include "group_choice.h"

#include <fnmatch.h>

#include <charconv>
#include <cstddef>

#include "description.h"

namespace mdf_reader {

bool isChosen(const ChannelGroup& group, const std::string& choice) {
  if (choice.empty()) {
    return true;
  }
  if (choice.find_first_not_of("0123456789") == std::string::npos) {
    std::size_t number = 0;
    const auto parsed = std::from_chars(choice.data(), choice.data() + choice.size(), number);
    return parsed.ec == std::errc() && number == group.index;
  }
  return fnmatch(choice.c_str(), std::string(group.shownName()).c_str(), 0) == 0;
}

}  // namespace mdf_reader
