#include "load_source.h"

#include <array>
#include <optional>

namespace mdf_tools {

namespace {

/// Seconds. The kernel works the load average out every five.
constexpr double reading_interval = 0.5;

using Loads = std::array<float, 3>;
constexpr std::array<const char*, 3> names = {"load_1min", "load_5min", "load_15min"};

std::optional<Loads> parseLoads(std::string_view text) {
  Loads loads{};
  for (float& load : loads) {
    const std::optional<float> number = takeFloat(text);
    if (!number) {
      return std::nullopt;
    }
    load = *number;
  }
  return loads;
}

}  // namespace

LoadSource::LoadSource(const std::filesystem::path& root)
    : file_(root / "proc/loadavg"), pace_(reading_interval) {
  if (const std::optional<Loads> loads = parseLoads(file_.read())) {
    for (std::size_t i = 0; i < loads->size(); ++i) {
      add(float32Signal(names[i], ""), bitsOf((*loads)[i]));
    }
  }
}

void LoadSource::sample(double seconds) {
  if (!pace_.isDue(seconds)) {
    return;
  }
  const std::optional<Loads> loads = parseLoads(file_.read());
  for (std::size_t i = 0; loads && i < signals().size(); ++i) {
    set(i, bitsOf((*loads)[i]));
  }
}

}  // namespace mdf_tools
