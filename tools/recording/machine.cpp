#include "machine.h"

#include <fnmatch.h>
#include <sys/utsname.h>

#include <algorithm>
#include <set>

#include "cpu_source.h"
#include "load_source.h"
#include "memory_source.h"
#include "network_source.h"
#include "quantity.h"
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

bool matches(const std::string& pattern, const Signal& signal) {
  return fnmatch(pattern.c_str(), signal.name.c_str(), 0) == 0;
}

bool isChosen(const std::vector<std::string>& patterns, const Signal& signal) {
  return patterns.empty() || std::any_of(patterns.begin(), patterns.end(),
                                         [&](const auto& one) { return matches(one, signal); });
}

void requireMatches(const std::vector<std::string>& patterns, const std::vector<Signal>& signals) {
  for (const std::string& pattern : patterns) {
    if (std::none_of(signals.begin(), signals.end(),
                     [&](const Signal& signal) { return matches(pattern, signal); })) {
      throw BadOption("no signal of this machine matches \"" + pattern + '"');
    }
  }
}

/// In the order of the names.
std::vector<std::unique_ptr<SignalSource>> allSources(const std::filesystem::path& root) {
  std::vector<std::unique_ptr<SignalSource>> sources;
  sources.push_back(std::make_unique<CpuSource>(root));
  sources.push_back(std::make_unique<LoadSource>(root));
  sources.push_back(std::make_unique<MemorySource>(root));
  sources.push_back(std::make_unique<NetworkSource>(root));
  sources.push_back(std::make_unique<TemperatureSource>(root));
  return sources;
}

}  // namespace

const std::vector<std::string>& Machine::sourceNames() {
  static const std::vector<std::string> names = {"cpu", "load", "memory", "network", "temperature"};
  return names;
}

Machine::Machine(const MachineOptions& options, const std::filesystem::path& root) {
  auto sources = allSources(root);
  std::vector<Signal> signals;
  for (const auto& source : sources) {
    signals.insert(signals.end(), source->signals().begin(), source->signals().end());
  }
  makeNamesUnique(signals);
  requireMatches(options.patterns, signals);
  groups_.push_back({{"system signals", {}}, options.rate, {}});
  auto signal = signals.begin();
  for (std::size_t i = 0; i < sources.size(); ++i) {
    const auto own_rate = options.rates.find(sourceNames()[i]);
    if (own_rate != options.rates.end()) {
      groups_.push_back({{own_rate->first, {}}, own_rate->second, {}});
    }
    Group& group = own_rate != options.rates.end() ? groups_.back() : groups_.front();
    Source source{std::move(sources[i]), {}};
    for (std::size_t k = 0; k < source.source->signals().size(); ++k, ++signal) {
      if (isChosen(options.patterns, *signal)) {
        group.channels.signals.push_back(*signal);
        source.chosen.push_back(k);
      }
    }
    if (!source.chosen.empty()) {
      group.sources.push_back(std::move(source));
    }
  }
  dropEmptyGroups();
}

void Machine::dropEmptyGroups() {
  const auto is_empty = [](const Group& group) { return group.sources.empty(); };
  const auto first_empty = std::remove_if(groups_.begin(), groups_.end(), is_empty);
  groups_.erase(std::max(first_empty, groups_.begin() + 1), groups_.end());
}

std::vector<SignalGroup> Machine::groups() const {
  std::vector<SignalGroup> groups;
  for (const Group& group : groups_) {
    groups.push_back(group.channels);
  }
  return groups;
}

std::vector<double> Machine::rates() const {
  std::vector<double> rates;
  for (const Group& group : groups_) {
    rates.push_back(group.rate);
  }
  return rates;
}

const std::vector<mdf_v4_10::UINT64>& Machine::sample(std::size_t group, double seconds) {
  values_.clear();
  for (const Source& source : groups_[group].sources) {
    source.source->sample(seconds);
    for (const std::size_t signal : source.chosen) {
      values_.push_back(source.source->values()[signal]);
    }
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
