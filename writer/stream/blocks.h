#ifndef MDF_WRITER_STREAM_BLOCKS_H_
#define MDF_WRITER_STREAM_BLOCKS_H_

#include <cstdint>
#include <map>
#include <sstream>
#include <string>
#include <string_view>

#include "../../mdf/mdf_v4_10.h"

namespace mdf_writer {

/// A block as the file has it.
template <class Block>
std::string blockBytes(const Block& block) {
  std::ostringstream bytes;
  bytes << block;
  return bytes.str();
}

/// Blocks one after another, as the bytes that a file has from some place on. Text that occurs
/// again is stored once.
class Blocks {
 public:
  /// `at` is that place, a multiple of 8.
  explicit Blocks(std::uint64_t at) : at_(at) {}

  /// Adds anything that can be inserted into a stream; returns where it stands in the file.
  template <class Block>
  mdf_v4_10::LINK add(const Block& block) {
    const mdf_v4_10::LINK link = place();
    out_ << block;
    return link;
  }

  /// Where the next block stands.
  mdf_v4_10::LINK place();

  /// 0 for no text.
  mdf_v4_10::LINK addText(std::string_view text);
  mdf_v4_10::LINK addXml(const std::string& xml);

  /// The comment of a block, in an element such as CNcomment; 0 for no text.
  mdf_v4_10::LINK addComment(std::string_view element, std::string_view text);

  std::string bytes() const { return out_.str(); }

 private:
  std::uint64_t at_;
  std::ostringstream out_;
  std::map<std::string, mdf_v4_10::LINK, std::less<>> texts_;
};

}  // namespace mdf_writer

#endif  // MDF_WRITER_STREAM_BLOCKS_H_
