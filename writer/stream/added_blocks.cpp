#include "added_blocks.h"

#include <algorithm>
#include <iterator>

#include "places.h"

namespace mdf_writer {

using mdf_v4_10::ATBLOCK;
using mdf_v4_10::EVBLOCK;
using mdf_v4_10::LINK;

namespace {

EVBLOCK blockOf(Blocks& blocks, const Event& event, std::int64_t nanoseconds,
                EVBLOCK::MDF_EV_RANGETYPE_t range, LINK scope) {
  constexpr double seconds_of_a_nanosecond = 1e-9;
  EVBLOCK block(event.type, EVBLOCK::EV_SYNCTYPE_SECONDS, range, event.cause);
  block.setTXNameBlock(blocks.addText(event.name));
  block.setMDBlock(blocks.addComment("EVcomment", event.comment));
  block.setSyncBaseValue(nanoseconds);
  block.setSyncBaseFactor(seconds_of_a_nanosecond);
  if (scope != 0) {
    block.addScope(scope);
  }
  return block;
}

}  // namespace

LINK addAttachment(Blocks& blocks, const Attachment& attachment, LINK next) {
  ATBLOCK block(attachment.bytes.data(), attachment.bytes.size());
  block.setEmbeddedDataFlag(!attachment.is_external);
  block.setNextATBlock(next);
  block.setTXFilenameBlock(blocks.addText(attachment.name));
  block.setTXMimetypeBlock(blocks.addText(attachment.mime_type));
  block.setMDBlock(blocks.addComment("ATcomment", attachment.comment));
  block.setOriginalSize(attachment.bytes.size());
  block.setMD5ChecksumFlag(!attachment.md5.empty());
  std::copy(attachment.md5.begin(), attachment.md5.end(), std::begin(block.at_md5_checksum));
  return blocks.add(block);
}

Chained addEvent(Blocks& blocks, const Event& event, LINK scope) {
  if (!event.nanoseconds_at_end) {
    const LINK link =
        blocks.add(blockOf(blocks, event, event.nanoseconds, EVBLOCK::EV_RANGETYPE_POINT, scope));
    return {link, link};
  }
  // Each of the two has a link to the other, so the place of the second must be known before.
  EVBLOCK begin = blockOf(blocks, event, event.nanoseconds, EVBLOCK::EV_RANGETYPE_BEGIN, scope);
  EVBLOCK end = blockOf(blocks, event, *event.nanoseconds_at_end, EVBLOCK::EV_RANGETYPE_END, scope);
  const LINK first = blocks.place();
  begin.setNextEVBlock(first + static_cast<LINK>(begin.getSize()));
  end.setEVRangeBlock(first);
  blocks.add(begin);
  return {first, blocks.add(end)};
}

bool Chain::write(const Blocks& blocks, const Chained& linked) {
  const std::string bytes = blocks.bytes();
  const std::uint64_t at = storage_->allocate(bytes.size());
  const auto first = static_cast<std::uint64_t>(linked.first);
  const bool is_written = storage_->write(at, bytes.data(), bytes.size()) == bytes.size();
  if (!is_written || (shown_ != 0 && !storage_->put(link_at_, first))) {
    storage_->giveBack(at);
    return false;
  }
  if (shown_ == 0) {
    shown_at_ = link_at_;
    shown_ = first;
  }
  link_at_ = static_cast<std::uint64_t>(linked.last) + placeOfLink(0);
  return true;
}

bool Chain::showLink() {
  if (shown_ != 0 && !storage_->put(shown_at_, shown_)) {
    return false;
  }
  shown_ = 0;
  return true;
}

}  // namespace mdf_writer
