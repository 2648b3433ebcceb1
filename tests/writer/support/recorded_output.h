#ifndef MDF_TESTS_WRITER_SUPPORT_RECORDED_OUTPUT_H_
#define MDF_TESTS_WRITER_SUPPORT_RECORDED_OUTPUT_H_

#include <cstdint>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "writer/files/output.h"

namespace mdf_tests {

/// A file in memory that remembers what was done to it, and in which order.
class RecordedOutput : public mdf_writer::Output {
 public:
  struct Step {
    enum class Kind { write, cut, publish, sync };
    Kind kind;
    std::uint64_t at = 0;  ///< of a write; the size of a cut
    std::string bytes;
  };

  /// `room` is how large the file can get; a file without a way back is a pipe.
  explicit RecordedOutput(std::uint64_t room = std::numeric_limits<std::uint64_t>::max(),
                          bool is_seekable = true)
      : room_(room), is_seekable_(is_seekable) {}

  bool isSeekable() const override { return is_seekable_; }
  std::size_t write(std::uint64_t offset, const char* bytes, std::size_t count) override;
  bool cut(std::uint64_t size) override;
  bool publish() override;
  bool sync() override;
  std::string cause() const override { return "the medium is full"; }

  /// Lets one write fail, counted from 1; the others succeed.
  void failWrite(std::size_t number) { failing_ = number; }
  void failSync(std::size_t number) { failing_sync_ = number; }

  const std::vector<Step>& steps() const { return steps_; }
  const std::string& bytes() const { return bytes_; }

  static void apply(const Step& step, std::string& file);

 private:
  std::uint64_t room_;
  bool is_seekable_;
  std::size_t failing_ = 0;
  std::size_t writes_ = 0;
  std::size_t failing_sync_ = 0;
  std::size_t syncs_ = 0;
  std::string bytes_;
  std::vector<Step> steps_;
};

/// What a medium may hold after the power went away when so many steps were done: everything up to
/// the last sync, and of what came later any part, in sectors of 512 bytes.
std::string afterPowerLoss(const std::vector<RecordedOutput::Step>& steps, std::size_t done,
                           std::mt19937& random);

}  // namespace mdf_tests

#endif  // MDF_TESTS_WRITER_SUPPORT_RECORDED_OUTPUT_H_
