#include "data_check.h"

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

#include "framework/wire.h"
#include "mdf_v4_10.h"
#include "reader/bytes/digest.h"
#include "reader/bytes/inflate.h"
#include "reader/data/data_block.h"
#include "reader/model/attachment_reading.h"

namespace mdf_tools {

using namespace mdf_reader;

using namespace mdf_v4_10;
using mdf_v4_10::detail::hostSize;

namespace {

/// Reports data that does not inflate to what its block says.
/// @param found how many bytes it came to
void reportInflating(const Subject& subject, std::uint32_t index, std::uint64_t size,
                     std::uint64_t stated, Inflating state, std::uint64_t found) {
  const std::string expected = "expected " + std::to_string(size) + " bytes that inflate to " +
                               std::to_string(stated) + ", found ";
  switch (state) {
    case Inflating::fine:
      break;
    case Inflating::broken:
      subject.report(Code::zip_broken, index, expected + "that they cannot be inflated");
      break;
    case Inflating::too_long:
      subject.report(Code::zip_original_length_wrong, index, expected + "more");
      break;
    case Inflating::too_short:
      subject.report(Code::zip_original_length_wrong, index, expected + std::to_string(found));
      break;
  }
}

/// Whether the sizes of an attachment fit each other and the block.
bool checkSizes(const Subject& subject, const Attachment& attachment, std::uint32_t index) {
  if (attachment.data_there < attachment.embedded_size) {
    subject.report(Code::attachment_length_wrong, index,
                   "expected the " + std::to_string(attachment.embedded_size) +
                       " embedded bytes in the block, found room for " +
                       std::to_string(attachment.data_there));
    return false;
  }
  if (!attachment.is_compressed && attachment.embedded_size != attachment.original_size) {
    subject.report(Code::attachment_length_wrong, index,
                   "expected as many embedded bytes as the original has, found " +
                       std::to_string(attachment.embedded_size) + " and " +
                       std::to_string(attachment.original_size));
    return false;
  }
  return true;
}

/// Goes through a list's data blocks with what it says of each.
class ListCheck {
 public:
  ListCheck(const Subject& subject, const BlockFields& list, std::uint32_t index)
      : subject_(subject), list_(list), index_(index) {}

  void checkEqualLengths() const;
  void checkOffsets() const;

 private:
  std::uint64_t dataLink(std::uint64_t number) const {
    return numberAt(subject_.file,
                    list_.offset() + RawBlock::header_size + RawBlock::link_size * (1 + number));
  }

  /// dl_equal_length, or an offset.
  std::uint64_t statedNumber(std::uint64_t number) const {
    return numberAt(subject_.file, list_.tailAt() + 8 * number);
  }

  std::uint64_t count() const { return list_.number("dl_count"); }

  const Subject& subject_;
  const BlockFields& list_;
  std::uint32_t index_;
};

void ListCheck::checkEqualLengths() const {
  const std::uint64_t stated = statedNumber(0);
  const std::uint64_t without_last =
      count() - (list_.link(DLBLOCK::dl_dl_next) == 0 && count() > 0 ? 1 : 0);
  for (std::uint64_t number = 0; number < without_last; ++number) {
    const auto bytes = dataBytesOf(subject_, dataLink(number));
    if (bytes && *bytes != stated) {
      subject_.report(Code::equal_length_broken, index_,
                      "expected " + std::to_string(stated) + " bytes of data at dl_data[" +
                          std::to_string(number) + "], found " + std::to_string(*bytes));
      return;
    }
  }
}

void ListCheck::checkOffsets() const {
  for (std::uint64_t number = 1; number < count(); ++number) {
    const std::uint64_t before = statedNumber(number - 1);
    const std::uint64_t offset = statedNumber(number);
    const std::string found = ", found " + std::to_string(before) + " and " +
                              std::to_string(offset) + " at " + std::to_string(number);
    if (offset < before) {
      subject_.report(Code::list_offsets_not_ascending, index_,
                      "expected dl_offset to go up" + found);
      return;
    }
    const auto bytes = dataBytesOf(subject_, dataLink(number - 1));
    if (bytes && *bytes != offset - before) {
      subject_.report(Code::list_offsets_wrong, index_,
                      "expected dl_offset to go up by the " + std::to_string(*bytes) +
                          " bytes of data at dl_data[" + std::to_string(number - 1) + "]" + found);
      return;
    }
  }
}

}  // namespace

std::optional<std::uint64_t> dataBytesOf(const Subject& subject, std::uint64_t offset) {
  const std::uint32_t index = subject.blocks.find(offset);
  const auto block = index == BlockTable::none ? std::nullopt : readRawBlock(subject.file, offset);
  if (!block) {
    return std::nullopt;
  }
  if (block->type().contents == Contents::zipped_data) {
    return BlockFields(subject.file, *block).number("dz_org_data_length");
  }
  return isPlainData(*block) ? std::optional(findData(subject.data_file, *block).original)
                             : std::nullopt;
}

void checkAttachment(Subject& subject, const BlockFields& block, std::uint32_t index) {
  const Attachment attachment = attachmentOf(block);
  if (!attachment.is_embedded || !checkSizes(subject, attachment, index) ||
      !(attachment.is_compressed || attachment.has_digest) ||
      !subject.contents.take(attachment.embedded_size)) {
    return;
  }
  const AttachmentReading reading =
      verifyAttachment(subject.file, attachment, [](std::string_view /*piece*/) {});
  reportInflating(subject, index, attachment.embedded_size, attachment.original_size,
                  reading.inflating, reading.size);
  if (reading.state == AttachmentData::wrong_digest) {
    subject.report(Code::attachment_digest_wrong, index,
                   "expected the digest " + hexDigest(attachment.digest) +
                       " of the embedded bytes, found " + hexDigest(reading.digest));
  }
}

void checkZippedData(Subject& subject, const BlockFields& block, std::uint32_t index) {
  constexpr std::uint64_t last_known_type = DZBLOCK::DZ_ZIPTYPE_TRANSPORTION_DEFLATE;
  const std::uint64_t size = block.number("dz_data_length");
  if (size > block.tailBytes()) {
    subject.report(Code::zip_length_wrong, index,
                   "expected the " + std::to_string(size) +
                       " compressed bytes in the block, found room for " +
                       std::to_string(block.tailBytes()));
  } else if (block.number("dz_zip_type") <= last_known_type && subject.contents.take(size)) {
    const std::uint64_t stated = block.number("dz_org_data_length");
    std::string stream(hostSize(size), '\0');
    stream.resize(subject.file.readAt(block.tailAt(), stream.data(), stream.size()));
    const Inflated inflated = inflate(stream, stated);
    reportInflating(subject, index, size, stated, inflated.state, inflated.bytes.size());
  }
}

void checkDataList(const Subject& subject, const BlockFields& block, std::uint32_t index) {
  const std::uint64_t links = block.raw().linkCount() - 1;
  const bool has_equal_length = block.hasFlag("dl_flags", DLBLOCK::equal_length);
  if (subject.data_file.isUnfinished() || subject.blocks[index].has_few_links) {
    return;
  }
  if (block.number("dl_count") != links) {
    subject.report(Code::list_count_wrong, index,
                   "expected dl_count to be the number of " + std::to_string(links) +
                       " links to data, found " + std::to_string(block.number("dl_count")));
    return;
  }
  if (block.tailBytes() / 8 < (has_equal_length ? 1 : links)) {
    return;
  }
  const ListCheck list(subject, block, index);
  if (has_equal_length) {
    list.checkEqualLengths();
  } else {
    list.checkOffsets();
  }
}

}  // namespace mdf_tools
