#ifndef MDF_TOOLS_BUS_FRAME_FILTER_H_
#define MDF_TOOLS_BUS_FRAME_FILTER_H_

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "reader/bus/bus_frame.h"

namespace mdf_tools {

using namespace mdf_reader;

/// Which frames are wanted.
class FrameFilter {
 public:
  /// Adds identifiers: "123", "0x123", "18FEF100x" with 29 bits, or two of them with a hyphen
  /// between. Returns what is wrong with that, "" for nothing.
  std::string addIds(const std::string& text);

  /// Adds buses: their name, a pattern of it, or the number in it.
  void addBus(const std::string& pattern) { buses_.push_back(pattern); }

  bool isWanted(const BusFrame& frame) const;

 private:
  struct Ids {
    std::uint32_t first;
    std::uint32_t last;
    bool are_extended;
  };

  bool hasId(const BusFrame& frame) const;
  bool hasBus(std::string_view bus) const;

  std::vector<Ids> ids_;
  std::vector<std::string> buses_;
};

}  // namespace mdf_tools

#endif  // MDF_TOOLS_BUS_FRAME_FILTER_H_
