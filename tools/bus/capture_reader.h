#ifndef MDF_TOOLS_BUS_CAPTURE_READER_H_
#define MDF_TOOLS_BUS_CAPTURE_READER_H_

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "logged_frame.h"
#include "socket_can.h"

namespace mdf_tools {

/// Why the rest of a capture cannot be read, a sentence.
struct CaptureFault {
  std::string sentence;
};

/// Reads the frames of a capture, pcapng or pcap, whose packets have the link type of SocketCAN.
class CaptureReader {
 public:
  /// Reads so many bytes of the file that follow, or as many as there are.
  using Source = std::function<std::size_t(char* bytes, std::size_t count)>;

  /// Whether a file that begins so is a capture.
  static bool isOne(std::string_view beginning);

  explicit CaptureReader(Source source) : source_(std::move(source)) {}

  /// The next frame, until the next call; null after the last one.
  /// @throws UnfitFrame for a packet that is none; those after it can be read.
  /// @throws CaptureFault
  const LoggedFrame* next();

  /// Which block was read last, such as "the block at offset 1000".
  std::string place() const;

 private:
  struct Interface {
    std::uint16_t link_type = 0;
    std::string name;
    std::uint64_t units = 1'000'000;  ///< of times, that make a second
    unsigned binary_digits = 0;       ///< where those are 2 to the power of that; 0 for no
    std::int64_t offset_seconds = 0;
  };

  static std::string refusalOf(const Interface& interface);
  template <class T>
  T numberAt(std::size_t at) const;
  bool read(std::size_t count);
  bool begin();
  bool readPacket();
  bool readBlock();
  template <class Take>
  void forEachOption(std::size_t at, const Take& take) const;
  void addInterface();
  std::string nameIn(std::string_view text) const;
  void setResolution(std::uint8_t stored, Interface& interface) const;
  void takeEnhanced();
  void setTime(const Interface& interface, std::uint64_t time);
  void takePacket(const Interface& interface, std::string_view packet, std::uint64_t whole);

  Source source_;
  bool has_begun_ = false;
  bool is_pcapng_ = false;
  bool is_swapped_ = false;            ///< numbers are in big-endian order
  std::vector<Interface> interfaces_;  ///< of the section; one of a pcap
  std::string bytes_;                  ///< of the block or packet
  std::uint64_t position_ = 0;         ///< in the file, after those
  std::uint64_t at_ = 0;               ///< where they begin
  bool has_frame_ = false;
  SocketCanFrame socket_;
  LoggedFrame logged_;
};

}  // namespace mdf_tools

#endif  // MDF_TOOLS_BUS_CAPTURE_READER_H_
