#ifndef MDF_TOOLS_RECORDING_SAMPLE_LINES_H_
#define MDF_TOOLS_RECORDING_SAMPLE_LINES_H_

#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string_view>
#include <vector>

#include "sample.h"

namespace mdf_tools {

/// A line that is no sample. The message says why.
class UnfitLine : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// Makes samples from lines of some form.
class SampleLines {
 public:
  SampleLines() = default;
  virtual ~SampleLines() = default;
  SampleLines(const SampleLines&) = delete;
  SampleLines& operator=(const SampleLines&) = delete;

  /// Takes a line. True when it is a sample; false for another one that belongs to the form.
  /// @throws UnfitLine
  /// @throws BadOption when lines are not as was asked for.
  virtual bool take(std::string_view line) = 0;

  /// The last one, with its own time where it has one, in nanoseconds since start().
  virtual Sample& sample() = 0;

  /// The groups of all samples so far.
  virtual const std::vector<SignalGroup>& groups() const = 0;

  /// Whether later samples may bring groups.
  virtual bool canBringGroups() const = 0;

  virtual bool hasTimes() const = 0;

  /// What its times count from, in nanoseconds since 1970; none when they count from any moment.
  virtual std::optional<std::uint64_t> start() const = 0;
};

}  // namespace mdf_tools

#endif  // MDF_TOOLS_RECORDING_SAMPLE_LINES_H_
