#ifndef MDF_WRITER_ZIP_ZIPPER_H_
#define MDF_WRITER_ZIP_ZIPPER_H_

#include <mdf_writer/stream/packer.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>

namespace mdf_writer {

/// How a Zipper packs. What is said nowhere else stays as it is here.
struct ZipOptions {
  /// 1 for the fastest to 12 for the smallest.
  int level = 6;

  /// Transposes records of one length first: as a rule they become smaller then. Other data is
  /// deflated as it is.
  bool is_transposed = true;

  /// Packs on a thread of its own, which takes memory of two more blocks: appending a record waits
  /// for it only when a block is full before the one before it is packed. Where there is no thread
  /// to be had, the caller's own does it.
  bool has_own_thread = false;
};

/// Packs the blocks of a recording with libdeflate.
class Zipper : public Packer {
 public:
  explicit Zipper(const ZipOptions& options = {});
  ~Zipper() override;
  Zipper(const Zipper&) = delete;
  Zipper& operator=(const Zipper&) = delete;

  bool transposes() const override;
  std::size_t ahead() const override;
  void give(std::string_view data, std::uint32_t row_bytes) override;
  std::string_view take() override;

 private:
  class Worker;
  std::unique_ptr<Worker> worker_;
};

}  // namespace mdf_writer

#endif  // MDF_WRITER_ZIP_ZIPPER_H_
