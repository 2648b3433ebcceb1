#ifndef MDF_TESTS_WRITER_SUPPORT_EVERY_SECOND_BLOCK_H_
#define MDF_TESTS_WRITER_SUPPORT_EVERY_SECOND_BLOCK_H_

#include <mdf_writer_zip/zipper.h>

namespace mdf_tests {

/// Packs on a thread, and says of every second block that it does not get smaller.
class EverySecondBlock : public mdf_writer::Packer {
 public:
  bool transposes() const override { return zipper_.transposes(); }
  std::size_t ahead() const override { return zipper_.ahead(); }
  void give(std::string_view data, std::uint32_t row_bytes) override {
    zipper_.give(data, row_bytes);
  }
  std::string_view take() override {
    const std::string_view packed = zipper_.take();
    return ++taken_ % 2 == 0 ? packed : std::string_view();
  }

 private:
  mdf_writer::Zipper zipper_{{1, true, true}};
  std::size_t taken_ = 0;
};

}  // namespace mdf_tests

#endif  // MDF_TESTS_WRITER_SUPPORT_EVERY_SECOND_BLOCK_H_
