#ifndef MDF_READER_DECODING_DECODED_H_
#define MDF_READER_DECODING_DECODED_H_

#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

namespace mdf_reader {

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

/// A fault in a database. The rest of it is used.
struct DatabaseFault {
  std::string path;
  std::size_t line;      ///< from 1
  std::size_t column;    ///< from 1, in bytes
  std::string sentence;  ///< "expected a start bit, found 'x'"
};

/// There are no frames, a database cannot be read, or the signals cannot be written.
class CannotDecode : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

}  // namespace mdf_reader

#endif  // MDF_READER_DECODING_DECODED_H_
