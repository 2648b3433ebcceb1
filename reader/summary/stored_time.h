#ifndef MDF_READER_SUMMARY_STORED_TIME_H_
#define MDF_READER_SUMMARY_STORED_TIME_H_

#include <cstdint>
#include <optional>
#include <string>

namespace mdf_reader {

struct Header;

/// A time stamp of a file together with what its time flags say of it.
class StoredTime {
 public:
  StoredTime(std::uint64_t stamp, int zone_minutes, int daylight_minutes, unsigned flags);

  /// The format stores nanoseconds since 1970, some writers store seconds. A stamp that would be
  /// less than nine seconds after the beginning of 1970 as nanoseconds is read as seconds.
  bool isInSeconds() const { return is_in_seconds_; }

  /// A stamp of 0, or of what writers store when they know no time.
  bool isUnset() const { return is_unset_; }

  /// "2026-11-21 20:15:00.123456789"; "" when the file does not say it.
  std::string utc() const;
  /// The same at the place of recording.
  std::string local() const;
  /// "+01:00"; "" when the file does not say it.
  std::string zone() const;

  /// "2026-11-21T20:15:00.123456789+01:00" so many seconds later, at the place of recording as far
  /// as the file says it: "...Z" in UTC, without a zone for a local time whose zone it does not
  /// say.
  /// "" for a time that 64 bits of nanoseconds do not hold.
  std::string isoAfter(double seconds) const;
  /// Nanoseconds since 1970 at that time, UTC or local as the stamp is; nothing beyond 64 bits.
  std::optional<std::int64_t> nanosecondsAfter(double seconds) const;

  /// The beginning of 1970 up to this time, whether of UTC or at the place of recording. Nothing
  /// for a time that is not stated, or later than nanoseconds of 64 bits can say.
  std::optional<std::int64_t> nanoseconds() const;

  /// A line for people: both times, and which unit was assumed and why.
  std::string sentence() const;

 private:
  bool hasZone() const;
  std::string shifted(int minutes) const;

  std::int64_t seconds_ = 0;
  std::uint32_t nanoseconds_ = 0;
  int zone_minutes_;
  int daylight_minutes_;
  unsigned flags_;
  bool is_in_seconds_;
  bool is_unset_;
};

/// When the measurement was started.
StoredTime startTimeOf(const Header& header);

}  // namespace mdf_reader

#endif  // MDF_READER_SUMMARY_STORED_TIME_H_
