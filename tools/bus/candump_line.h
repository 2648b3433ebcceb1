#ifndef MDF_TOOLS_BUS_CANDUMP_LINE_H_
#define MDF_TOOLS_BUS_CANDUMP_LINE_H_

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "logged_frame.h"
#include "socket_can.h"

namespace mdf_tools {

/// Reads the lines of candump's log: "(1345212884.318850) can0 123#0011", with R or T after it for
/// a frame that was received or sent.
class CandumpLine {
 public:
  /// Whether a line begins as such lines do.
  static bool isOne(std::string_view line);

  /// The frame in a line, until the next call.
  /// @throws UnfitFrame
  const LoggedFrame& take(std::string_view line);

 private:
  [[noreturn]] void refuse(const std::string& expected) const;
  bool skip(char character);
  void skipBlanks();
  void takeTime();
  void takeBus();
  void takeId();
  void takeContents();
  void takeRemote();
  void takeData(std::size_t most);
  void takeDirection();

  std::string_view line_;
  std::size_t at_ = 0;
  SocketCanFrame socket_;
  std::string bus_;
  LoggedFrame logged_;
};

}  // namespace mdf_tools

#endif  // MDF_TOOLS_BUS_CANDUMP_LINE_H_
