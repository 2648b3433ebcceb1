#ifndef MDF_WRITER_STREAM_PACKING_H_
#define MDF_WRITER_STREAM_PACKING_H_

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "packer.h"

namespace mdf_writer {

class DataStream;

/// A full block without its place in the file.
struct FullBlock {
  DataStream* stream;
  std::vector<char> buffer;
  std::size_t used;      ///< bytes of data
  std::uint64_t begins;  ///< bytes of data in the blocks before
};

/// The full blocks of all streams on their way through the packer, in the order in which they
/// became full. As many buffers as the packer works ahead are there for streams to go on with.
class Packing {
 public:
  Packing(Packer& packer, std::size_t buffer_bytes)
      : packer_(packer), spare_(packer.ahead(), std::vector<char>(buffer_bytes)) {}

  bool transposes() const { return packer_.transposes(); }

  /// Takes a block, whose data this is, and gives an empty buffer for it. False when the file takes
  /// no more.
  bool add(FullBlock block, std::string_view data, std::uint32_t row_bytes,
           std::vector<char>& empty);

  /// Returns when every block has its place in the file; false when the file takes no more.
  bool placeAll() { return placeUpTo(0); }

  /// Gives the blocks without a place back to their streams, after the file took no more.
  void giveBack();

 private:
  bool placeUpTo(std::size_t left);

  Packer& packer_;
  std::vector<FullBlock> waiting_;
  std::size_t given_ = 0;  ///< of those waiting, the last ones, which the packer has
  std::vector<std::vector<char>> spare_;
};

}  // namespace mdf_writer

#endif  // MDF_WRITER_STREAM_PACKING_H_
