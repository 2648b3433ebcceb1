#ifndef MDF_TOOLS_BUS_PCAPNG_WRITER_H_
#define MDF_TOOLS_BUS_PCAPNG_WRITER_H_

#include <cstdint>
#include <map>
#include <optional>
#include <string>

#include "frame_writer.h"

namespace mdf_tools {

/// A capture file: an interface for each bus, of the link type of SocketCAN, with times in
/// nanoseconds. Several files become sections that follow one another.
class PcapngWriter : public FrameWriter {
 public:
  /// @param start of the measurement; none where the file does not say it.
  explicit PcapngWriter(std::optional<StoredTime> start) : start_(start) {}

  void begin(std::string& out) override;
  bool add(const BusFrame& frame, std::string& out) override;

 private:
  std::uint32_t interfaceOf(std::string_view bus, std::string& out);

  std::optional<StoredTime> start_;
  std::map<std::string, std::uint32_t, std::less<>> interfaces_;
};

}  // namespace mdf_tools

#endif  // MDF_TOOLS_BUS_PCAPNG_WRITER_H_
