#ifndef MDF_TESTS_SUPPORT_TIME_ZONE_H_
#define MDF_TESTS_SUPPORT_TIME_ZONE_H_

#include <cstdlib>
#include <ctime>
#include <optional>
#include <string>

namespace mdf_tests {

/// The process's time zone, until the end of the scope.
class TimeZone {
 public:
  explicit TimeZone(const char* rule) {
    if (const char* const before = std::getenv("TZ")) {
      before_ = before;
    }
    setenv("TZ", rule, 1);
    tzset();
  }
  ~TimeZone() {
    before_ ? setenv("TZ", before_->c_str(), 1) : unsetenv("TZ");
    tzset();
  }
  TimeZone(const TimeZone&) = delete;
  TimeZone& operator=(const TimeZone&) = delete;

 private:
  std::optional<std::string> before_;
};

}  // namespace mdf_tests

#endif  // MDF_TESTS_SUPPORT_TIME_ZONE_H_
