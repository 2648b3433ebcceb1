#ifndef MDF_READER_DECODING_DECODING_H_
#define MDF_READER_DECODING_DECODING_H_

#include <mdf_writer/mdf_writer.h>

#include <cstddef>
#include <vector>

#include "../blocks/finding.h"
#include "../bytes/descriptor.h"
#include "../bytes/input_file.h"
#include "../columns/tables.h"
#include "decoded.h"
#include "message_lookup.h"

namespace mdf_reader {

/// How frames are decoded.
struct Decoding {
  std::vector<NamedDatabase> databases;
  bool is_j1939 = false;
  /// Memory for frames that are read once; more than fit there are read twice.
  std::size_t most_kept = sizeof(void*) > 4 ? std::size_t{1} << 28U : std::size_t{1} << 25U;
};

/// A file with frames, and where what is to be said of it goes.
struct FrameSource {
  InputFile& file;
  const FindingSink& report;
  NoteSink note;
};

/// Makes a file of signals: a channel group for each message and bus. Frames are read twice, unless
/// memory holds all of them. Those of several files follow one another by when these were begun, as
/// far as they say it.
/// @throws CannotDecode
Decoded decode(const std::vector<FrameSource>& sources, const Decoding& decoding,
               mdf_writer::Plan& plan, mdf_writer::Output& output,
               const mdf_writer::Options& options);

/// Decodes a file into one without a name.
/// @param decoded is set to what became of its frames.
/// @throws CannotDecode
Descriptor signalFile(const FrameSource& source, const Decoding& decoding, Decoded& decoded);

}  // namespace mdf_reader

#endif  // MDF_READER_DECODING_DECODING_H_
