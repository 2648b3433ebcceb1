#ifndef MDF_WRITER_STREAM_ADDED_BLOCKS_H_
#define MDF_WRITER_STREAM_ADDED_BLOCKS_H_

#include <cstdint>
#include <string>

#include "../plan/attachment.h"
#include "../plan/event.h"
#include "blocks.h"
#include "storage.h"

namespace mdf_writer {

/// Adds an attachment before the one that is next.
mdf_v4_10::LINK addAttachment(Blocks& blocks, const Attachment& attachment, mdf_v4_10::LINK next);

/// The first and the last of some blocks of which each links to the next, by its first link.
struct Chained {
  mdf_v4_10::LINK first;
  mdf_v4_10::LINK last;
};

/// Adds an event; one that lasts takes two blocks. `scope` is the group that it concerns, or 0.
Chained addEvent(Blocks& blocks, const Event& event, mdf_v4_10::LINK scope);

/// A chain of blocks that grows while a file is written. As with data, a block is written where
/// nothing leads to it, and becomes a part of the file by one link.
class Chain {
 public:
  /// `link_at` is where the link to the next block stands.
  Chain(Storage& storage, std::uint64_t link_at) : storage_(&storage), link_at_(link_at) {}

  /// Where the next blocks go.
  std::uint64_t place() const { return storage_->place(); }

  /// Writes the blocks, among them those to be linked. False when the file takes no more.
  bool write(const Blocks& blocks, const Chained& linked);

  bool hasLinkToShow() const { return shown_ != 0; }
  bool showLink();

 private:
  Storage* storage_;
  std::uint64_t link_at_;
  std::uint64_t shown_at_ = 0;  ///< where the link stands that makes the new blocks a part
  std::uint64_t shown_ = 0;     ///< and what it will be; 0 for none
};

}  // namespace mdf_writer

#endif  // MDF_WRITER_STREAM_ADDED_BLOCKS_H_
