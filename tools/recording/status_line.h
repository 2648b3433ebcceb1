#ifndef MDF_TOOLS_RECORDING_STATUS_LINE_H_
#define MDF_TOOLS_RECORDING_STATUS_LINE_H_

#include <cstdint>
#include <string>

#include "recorder.h"

namespace mdf_tools {

/// "1 record", "2 records".
std::string counted(std::uint64_t number, const std::string& noun);

/// Shows how a recording gets on, in a line on standard error, once a second if that is a terminal.
class StatusLine {
 public:
  StatusLine();
  ~StatusLine() { end(); }
  StatusLine(const StatusLine&) = delete;
  StatusLine& operator=(const StatusLine&) = delete;

  /// @param losses what was not recorded, such as "3 samples missed".
  void show(std::int64_t nanoseconds, const Recorder& recorder, const std::string& losses);

  /// A sentence that stays.
  void note(const std::string& sentence);

  /// Clears the line for what is printed next.
  void end();

 private:
  bool is_terminal_;
  bool is_shown_ = false;
  std::int64_t last_ = 0;
  std::uint64_t last_records_ = 0;
};

/// Says what a recording has become.
void summarise(const Recorder& recorder, std::int64_t nanoseconds, const std::string& losses);

}  // namespace mdf_tools

#endif  // MDF_TOOLS_RECORDING_STATUS_LINE_H_
