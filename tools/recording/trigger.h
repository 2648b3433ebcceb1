#ifndef MDF_TOOLS_RECORDING_TRIGGER_H_
#define MDF_TOOLS_RECORDING_TRIGGER_H_

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "sample.h"

namespace mdf_tools {

/// What a channel's values are compared with.
struct Condition {
  std::string text;  ///< as it was written
  std::string channel;
  bool (*holds)(double value, double limit);
  double limit;
};

/// "cpu_total > 90": a name, one of > >= < <= == !=, and a number.
/// @throws BadOption
Condition parseCondition(std::string_view text);

/// Finds the samples with which a condition becomes true.
class Trigger {
 public:
  /// @throws BadOption where there is no such channel, or it has texts.
  Trigger(Condition condition, const std::vector<SignalGroup>& groups);

  /// Takes the next sample of any group. True when the condition is true and was not before. It is
  /// false before the first sample; a missing value and NaN leave it as it is.
  bool fires(const Sample& sample);

  const std::string& text() const { return condition_.text; }

 private:
  Condition condition_;
  std::size_t group_ = 0;
  std::size_t index_ = 0;  ///< of the signal in the group
  Signal signal_{};
  bool is_true_ = false;
};

}  // namespace mdf_tools

#endif  // MDF_TOOLS_RECORDING_TRIGGER_H_
