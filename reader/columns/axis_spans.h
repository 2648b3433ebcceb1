#ifndef MDF_READER_VALUES_AXIS_SPANS_H_
#define MDF_READER_VALUES_AXIS_SPANS_H_

#include <cmath>
#include <cstdint>
#include <functional>
#include <optional>
#include <string_view>
#include <unordered_map>

#include "../blocks/finding.h"
#include "../data/record_facts.h"
#include "../model/description.h"
#include "../values/conversion.h"

namespace mdf_reader {

class InputFile;

/// From where to where the axis of a channel group goes: physical values of its master channel.
struct AxisSpan {
  enum class Source {
    range,    ///< that the master channel states
    records,  ///< the first and the last
    numbers,  ///< of the records, since the master has no values in them
  };
  double from = 0;
  double to = 0;
  Source source = Source::range;

  /// Nothing where the last record's value is less than the first one's: the two do not tell
  /// whether the axis falls or has begun anew.
  std::optional<double> extent() const {
    return from <= to || source == Source::numbers ? std::optional(std::abs(to - from))
                                                   : std::nullopt;
  }
};

/// Finds the spans of master channels. What is not certain has none.
class AxisSpans {
 public:
  AxisSpans(InputFile& file, const FindingSink& report);
  ~AxisSpans() = default;
  AxisSpans(const AxisSpans&) = delete;
  AxisSpans& operator=(const AxisSpans&) = delete;

  /// Reads the first and the last records of groups whose masters state no range: two small reads
  /// for data with records side by side, all of it for other data.
  /// @param master_of the master in the group itself, null for none.
  void readEnds(RecordFacts& facts,
                const std::function<const Channel*(const ChannelGroup&)>& master_of);

  /// The span of the channel group at an offset, with so many records and this master of its own.
  std::optional<AxisSpan> of(std::uint64_t group, std::uint64_t records, const Channel& master);

 private:
  struct Ends {
    std::optional<double> first;
    std::optional<double> last;
    std::uint64_t last_number = 0;
  };

  static std::optional<AxisSpan> spanOf(const Ends& ends, AxisSpan::Source source);
  std::optional<AxisSpan> statedRange(const Channel& master);
  std::optional<double> physical(const ChannelGroup& group, const Channel& master,
                                 const RecordEnd& record);
  bool isUsable(std::uint64_t conversion);

  InputFile& file_;
  FindingSink silent_;
  FindingSink report_;  ///< of conversions
  bool has_failed_ = false;
  Conversions conversions_;
  std::unordered_map<std::uint64_t, Ends> ends_;  ///< by the offsets of their groups
};

}  // namespace mdf_reader

#endif  // MDF_READER_VALUES_AXIS_SPANS_H_
