#ifndef MDF_WRITER_STREAM_PACKER_H_
#define MDF_WRITER_STREAM_PACKER_H_

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace mdf_writer {

/// Makes full data blocks smaller. A recording gives one block after another and takes them packed
/// in the same order, from one thread; when it has ended, it has taken all of them. A packer serves
/// one recording at a time.
class Packer {
 public:
  Packer() = default;
  virtual ~Packer() = default;
  Packer(const Packer&) = delete;
  Packer& operator=(const Packer&) = delete;

  /// Whether records of one length are transposed before they are deflated.
  virtual bool transposes() const = 0;

  /// How many blocks may be on their way while the next one fills; each takes memory of a block's
  /// size. 0 where give() packs.
  virtual std::size_t ahead() const = 0;

  /// Takes a block's data, which stays as it is until it was taken. At most one block more than
  /// ahead() is on its way. The data is transposed in rows of so many bytes, unless these are 0:
  /// first the first byte of all rows, then the second, and so on.
  virtual void give(std::string_view data, std::uint32_t row_bytes) = 0;

  /// The first of the blocks on their way, as a zlib stream (RFC 1950), valid until the next call
  /// of give(). Waits for it. Empty where it is no smaller than the data.
  virtual std::string_view take() = 0;
};

}  // namespace mdf_writer

#endif  // MDF_WRITER_STREAM_PACKER_H_
