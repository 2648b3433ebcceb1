#ifndef MDF_TOOLS_RECORDING_SAMPLE_RING_H_
#define MDF_TOOLS_RECORDING_SAMPLE_RING_H_

#include <mdf_writer/mdf_writer.h>

#include <cstddef>
#include <cstdint>
#include <deque>
#include <limits>
#include <variant>

#include "sample.h"

namespace mdf_tools {

/// The latest samples and events of a recording, in the order in which they came.
class SampleRing {
 public:
  using Entry = std::variant<Sample, mdf_writer::Event>;

  /// @param nanoseconds how much older than the newest entry one may be.
  /// @param bytes how much memory they take at most.
  SampleRing(std::int64_t nanoseconds, std::size_t bytes)
      : nanoseconds_(nanoseconds), limit_(bytes) {}

  void add(Entry entry);

  std::size_t size() const { return entries_.size(); }

  /// When the first entry was; 0 without one.
  std::int64_t begin() const { return entries_.empty() ? 0 : timeOf(entries_.front()); }

  /// How many samples were dropped for lack of memory so far; 0 when the last of them would be too
  /// old by now.
  std::uint64_t missing() const;

  /// The entries; none are left.
  std::deque<Entry> take();

 private:
  static std::int64_t timeOf(const Entry& entry);
  static std::size_t bytesOf(const Entry& entry);
  bool isOld(std::int64_t time) const { return newest_ - time > nanoseconds_; }
  void dropFirst();

  std::int64_t nanoseconds_;
  std::size_t limit_;
  std::deque<Entry> entries_;
  std::size_t bytes_ = 0;
  std::int64_t newest_ = std::numeric_limits<std::int64_t>::min();
  std::uint64_t dropped_ = 0;      ///< before they were old
  std::int64_t last_dropped_ = 0;  ///< when the last of these was
};

}  // namespace mdf_tools

#endif  // MDF_TOOLS_RECORDING_SAMPLE_RING_H_
