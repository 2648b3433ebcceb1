#ifndef MDF_TOOLS_BUS_FRAME_WRITER_H_
#define MDF_TOOLS_BUS_FRAME_WRITER_H_

#include <memory>
#include <string>

#include "printing/value_form.h"
#include "reader/bus/bus_frame.h"

namespace mdf_tools {

using namespace mdf_reader;

/// Turns the frames of one file into text or bytes.
class FrameWriter {
 public:
  FrameWriter() = default;
  virtual ~FrameWriter() = default;
  FrameWriter(const FrameWriter&) = delete;
  FrameWriter& operator=(const FrameWriter&) = delete;

  /// Appends what stands before the frames.
  virtual void begin(std::string& /*out*/) {}

  /// Appends a frame. False for one that this form has no place for.
  virtual bool add(const BusFrame& frame, std::string& out) = 0;
};

/// Lines for people: time, bus, identifier, direction and flags, length, data.
class TextFrameWriter : public FrameWriter {
 public:
  explicit TextFrameWriter(ValueForm form) : form_(form) {}
  bool add(const BusFrame& frame, std::string& out) override;

 private:
  ValueForm form_;
};

/// Comma-separated values with a line of names.
class CsvFrameWriter : public FrameWriter {
 public:
  explicit CsvFrameWriter(ValueForm form) : form_(form) {}
  void begin(std::string& out) override;
  bool add(const BusFrame& frame, std::string& out) override;

 private:
  ValueForm form_;
};

/// An object of JSON a line.
class JsonFrameWriter : public FrameWriter {
 public:
  /// @param file what each line calls the file.
  JsonFrameWriter(const std::string& file, ValueForm form);
  bool add(const BusFrame& frame, std::string& out) override;

 private:
  std::string beginning_;
  ValueForm form_;
};

/// The log of candump: absolute times in microseconds, "(1345212884.318850) can0 123#0011".
class CandumpWriter : public FrameWriter {
 public:
  /// @param start of the measurement; none where the file does not say it.
  explicit CandumpWriter(std::optional<StoredTime> start) : start_(start) {}
  bool add(const BusFrame& frame, std::string& out) override;

 private:
  std::optional<StoredTime> start_;
};

/// Nanoseconds since 1970; or, of a measurement whose start is not known, since it.
/// Nothing for a time that 64 bits do not hold.
std::optional<std::int64_t> nanosecondsOf(const BusFrame& frame,
                                          const std::optional<StoredTime>& start);

}  // namespace mdf_tools

#endif  // MDF_TOOLS_BUS_FRAME_WRITER_H_
