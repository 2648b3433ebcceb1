#ifndef MDF_TOOLS_IMPORTING_LOG_SOURCE_H_
#define MDF_TOOLS_IMPORTING_LOG_SOURCE_H_

#include <memory>
#include <string>
#include <string_view>

#include "bus/logged_frame.h"
#include "line_reader.h"

namespace mdf_tools {

/// The frames in a log, one after another.
class LogSource {
 public:
  LogSource() = default;
  virtual ~LogSource() = default;
  LogSource(const LogSource&) = delete;
  LogSource& operator=(const LogSource&) = delete;

  /// The next frame, until the next call; null after the last one.
  /// @throws UnfitFrame; the next call goes on after that.
  /// @throws ImportFailure
  virtual const LoggedFrame* next() = 0;

  /// Where that stands, such as "line 7".
  virtual std::string place() const = 0;
};

enum class LogForm { none, candump, capture };

/// Which form of log a file has by its first bytes. It stands at its beginning then.
LogForm logFormOf(LineReader& file);

/// Reads a log from its beginning.
std::unique_ptr<LogSource> readLog(LogForm form, LineReader& file);

}  // namespace mdf_tools

#endif  // MDF_TOOLS_IMPORTING_LOG_SOURCE_H_
