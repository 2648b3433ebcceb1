#include "machine.h"

#include <sys/utsname.h>

#include <algorithm>
#include <set>

#include "cpu_source.h"
#include "load_source.h"
#include "memory_source.h"
#include "network_source.h"
#include "temperature_source.h"

namespace mdf_tools {

namespace {

/// The second signal of a name becomes name_2, and so on.
void makeNamesUnique(std::vector<Signal>& signals) {
  std::set<std::string> taken;
  for (Signal& signal : signals) {
    std::string name = signal.name;
    for (int number = 2; !taken.insert(name).second; ++number) {
      name = signal.name + "_" + std::to_string(number);
    }
    signal.name = name;
  }
}

}  // namespace

Machine::Machine(const std::filesystem::path& root) {
  sources_.push_back(std::make_unique<CpuSource>(root));
  sources_.push_back(std::make_unique<LoadSource>(root));
  sources_.push_back(std::make_unique<MemorySource>(root));
  sources_.push_back(std::make_unique<NetworkSource>(root));
  sources_.push_back(std::make_unique<TemperatureSource>(root));
  for (const auto& source : sources_) {
    signals_.insert(signals_.end(), source->signals().begin(), source->signals().end());
  }
  makeNamesUnique(signals_);
  values_.resize(signals_.size());
}

const std::vector<mdf_v4_10::UINT64>& Machine::sample(double seconds) {
  auto to = values_.begin();
  for (const auto& source : sources_) {
    source->sample(seconds);
    to = std::copy(source->values().begin(), source->values().end(), to);
  }
  return values_;
}

std::string Machine::description() {
  utsname system{};
  if (uname(&system) != 0) {
    return "this machine";
  }
  return std::string(system.nodename) + " (" + system.sysname + " " + system.release + ", " +
         system.machine + ")";
}

}  // namespace mdf_tools
