#ifndef MDF_TOOLS_CHANGING_DIFFERENCE_H_
#define MDF_TOOLS_CHANGING_DIFFERENCE_H_

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "printing/json_output.h"
#include "reader/model/description.h"

namespace mdf_tools {

using namespace mdf_reader;

/// Which of the two files.
enum class Side { a, b };

/// How far apart numbers may be that count as equal: either will do.
struct Tolerance {
  double absolute = 0;
  double relative = 0;  ///< of the one that is farther from 0

  bool isSet() const { return absolute > 0 || relative > 0; }
  bool allows(double a, double b) const;
};

struct DiffOptions {
  Tolerance tolerance;
  Tolerance time_tolerance;       ///< of the values of master channels
  std::set<std::string> ignored;  ///< see ignorableParts()
  std::size_t samples = 3;        ///< to show of each channel
  bool compares_history = false;
  bool stops_at_first = false;  ///< one difference is enough
};

/// Something that both files may have.
struct Thing {
  const char* kind;                       ///< "header", "group", "channel", "event" and so on
  const ChannelGroup* group_a = nullptr;  ///< that it is, or is in
  const ChannelGroup* group_b = nullptr;
  std::string name{};  ///< none of groups, and of the header
};

/// A record that differs, or that one file lacks.
// JSON moves without throwing, whatever the analysis finds below its checks.
// NOLINTNEXTLINE(bugprone-exception-escape)
struct RecordDifference {
  std::optional<std::uint64_t> record_a;
  std::optional<std::uint64_t> record_b;
  Json master;  ///< the value of its master channel
  Json a;       ///< the values of another channel; null for invalid ones
  Json b;
};

struct Difference {
  enum class Kind {
    member,   ///< what the files say of a thing
    only,     ///< a thing that one file has
    records,  ///< those that one file has
    values,
  };

  Kind kind;
  Thing thing;
  Side side = Side::a;  ///< the file that has it
  std::string member{};
  Json a{};  ///< of the member; null where there is none
  Json b{};
  std::uint64_t count = 0;                ///< of the records or values that differ
  std::uint64_t compared = 0;             ///< values
  std::vector<RecordDifference> first{};  ///< of them
};

using DifferenceSink = std::function<void(const Difference&)>;

/// What was compared, and how much of it differs.
struct DiffSummary {
  std::uint64_t groups = 0;
  std::uint64_t channels = 0;
  std::uint64_t records = 0;
  std::uint64_t values = 0;
  std::uint64_t members = 0;
  std::uint64_t things = 0;  ///< that only one file has
  std::uint64_t lone_records = 0;
  std::uint64_t different_values = 0;

  void add(const Difference& difference);
  bool isSame() const { return members + things + lone_records + different_values == 0; }
};

}  // namespace mdf_tools

#endif  // MDF_TOOLS_CHANGING_DIFFERENCE_H_
