#ifndef MDF_TOOLS_RECORDING_FILE_PLAN_H_
#define MDF_TOOLS_RECORDING_FILE_PLAN_H_

#include <functional>
#include <iosfwd>
#include <ostream>
#include <vector>

#include "mdf_v4_10.h"

namespace mdf_tools {

/// Where the blocks of a file stand: one after another, each at the next multiple of 8. First every
/// block gets its position, so that blocks can link to any other; then all are written in one go.
class FilePlan {
 public:
  /// Gives a block the next position and returns it. The block is written with the links that it
  /// has by then; it must last until then and keep its size.
  template <class Block>
  mdf_v4_10::LINK add(const Block& block) {
    return add(block, block.getSize());
  }

  template <class Block>
  mdf_v4_10::LINK add(const Block& block, mdf_v4_10::UINT64 size) {
    return add(size, [&block](std::ostream& os) { os << block; });
  }

  /// Where the last block ends.
  mdf_v4_10::UINT64 end() const { return end_; }

  /// Writes the blocks with zeros between them. The stream stands at the file's beginning.
  void write(std::ostream& os) const;

 private:
  struct Entry {
    mdf_v4_10::UINT64 position;
    mdf_v4_10::UINT64 size;
    std::function<void(std::ostream&)> write;
  };

  mdf_v4_10::LINK add(mdf_v4_10::UINT64 size, std::function<void(std::ostream&)> write);

  std::vector<Entry> entries_;
  mdf_v4_10::UINT64 end_ = 0;
};

}  // namespace mdf_tools

#endif  // MDF_TOOLS_RECORDING_FILE_PLAN_H_
