#ifndef MDF_TOOLS_BUS_DECODING_H_
#define MDF_TOOLS_BUS_DECODING_H_

#include <mdf_writer/mdf_writer.h>

#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "message_lookup.h"
#include "reader/blocks/finding.h"
#include "reader/bytes/input_file.h"
#include "reader/columns/tables.h"

namespace mdf_tools {

/// Identifiers that no database knows, with the bus.
struct UnknownId {
  std::string bus;
  std::uint32_t id;
  bool is_extended;
  std::uint64_t frames;
};

/// What became of frames.
struct Decoded {
  std::uint64_t files_with_frames = 0;
  std::uint64_t frames = 0;  ///< that became records
  std::uint64_t groups = 0;  ///< of which there are records
  std::uint64_t unknown_frames = 0;
  std::vector<UnknownId> unknown;  ///< the most frequent ones first
  bool is_complete = true;         ///< those are all identifiers of unknown frames
  std::uint64_t other_frames = 0;  ///< of other buses, and those without data
};

/// How frames are decoded.
struct Decoding {
  std::vector<NamedDatabase> databases;
  bool is_j1939 = false;
};

/// A file with frames, and where what is to be said of it goes.
struct FrameSource {
  InputFile& file;
  const FindingSink& report;
  NoteSink note;
};

/// The new file cannot be written.
class CannotDecode : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// Makes a file of signals: a channel group for each message and bus. Frames are read twice. Those
/// of several files follow one another by when these were begun, as far as they say it.
/// @throws CannotDecode
Decoded decode(const std::vector<FrameSource>& sources, const Decoding& decoding,
               mdf_writer::Plan& plan, mdf_writer::Output& output,
               const mdf_writer::Options& options);

}  // namespace mdf_tools

#endif  // MDF_TOOLS_BUS_DECODING_H_
