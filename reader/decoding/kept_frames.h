#ifndef MDF_READER_DECODING_KEPT_FRAMES_H_
#define MDF_READER_DECODING_KEPT_FRAMES_H_

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>
#include <vector>

#include "../columns/column_data.h"

namespace mdf_reader {

/// Frames that are kept in memory, so that they are not read from the file again. Of more than
/// there is room for, none are.
class KeptFrames {
 public:
  /// @param most_bytes of memory, in whole mebibytes.
  explicit KeptFrames(std::size_t most_bytes) : most_pieces_(most_bytes / piece_bytes) {}

  /// Keeps a frame.
  /// @param id the number of its identifier.
  void add(std::uint32_t id, double time, std::string_view data) {
    const Head head{time, id, static_cast<std::uint32_t>(data.size())};
    char* const to = are_all_ ? roomFor(sizeof head + data.size()) : nullptr;
    if (to != nullptr) {
      std::memcpy(to, &head, sizeof head);
      data.copy(to + sizeof head, data.size());
    }
  }

  /// Whether all frames that were added are here.
  bool areAll() const { return are_all_; }

  /// Visits them in their order, until a visitor says false.
  template <class Visit>
  void forEach(const Visit& visit) const {
    for (const Buffer& piece : pieces_) {
      for (std::size_t at = 0; at < piece.size();) {
        Head head;
        std::memcpy(&head, piece.data() + at, sizeof head);
        const std::string_view data(piece.data() + at + sizeof head, head.size);
        at += sizeof head + head.size;
        if (!visit(head.id, data, head.time)) {
          return;
        }
      }
    }
  }

 private:
  struct Head {
    double time;
    std::uint32_t id;
    std::uint32_t size;
  };

  static constexpr std::size_t piece_bytes = std::size_t{1} << 20U;

  /// Null where there is no room any more.
  char* roomFor(std::size_t bytes) {
    if (pieces_.empty() || pieces_.back().size() + bytes > piece_bytes) {
      if (pieces_.size() >= most_pieces_) {
        are_all_ = false;
        pieces_.clear();
        return nullptr;
      }
      pieces_.emplace_back().reserve(piece_bytes);
    }
    return pieces_.back().extend(bytes);
  }

  std::size_t most_pieces_;
  std::vector<Buffer> pieces_;
  bool are_all_ = true;
};

}  // namespace mdf_reader

#endif  // MDF_READER_DECODING_KEPT_FRAMES_H_
