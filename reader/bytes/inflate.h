#ifndef MDF_READER_BYTES_INFLATE_H_
#define MDF_READER_BYTES_INFLATE_H_

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace mdf_reader {

/// The outcome of inflating.
enum class Inflating {
  fine,
  broken,    ///< the bytes are not a complete zlib stream, or their checksum is wrong
  too_long,  ///< the stream holds more than was stated; nothing of it is kept
  too_short  ///< the stream holds less than was stated; `bytes` is what there was
};

struct Inflated {
  Inflating state;
  std::string bytes;
};

/// Inflates a zlib stream (RFC 1950) to at most `stated_size` bytes. A stated size that lies costs
/// no more memory than a few times the stream or what it holds: Deflate makes at most 1032 bytes of
/// one.
/// @param room a string whose memory may be used for the result.
Inflated inflate(std::string_view stream, std::uint64_t stated_size, std::string room = {});

/// Undoes the transposition of data that was stored column by column: of `columns` bytes in each
/// row, first the first byte of all rows, then the second, and so on. Bytes after the last whole
/// row stay as they are.
/// @param rows is set to the result.
void transposeBack(std::string_view bytes, std::uint64_t columns, std::string& rows);

}  // namespace mdf_reader

#endif  // MDF_READER_BYTES_INFLATE_H_
