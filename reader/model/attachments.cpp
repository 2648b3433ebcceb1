#include "attachments.h"

#include <algorithm>

#include "../blocks/block_fields.h"
#include "../bytes/digest.h"
#include "../bytes/inflate.h"
#include "../bytes/input_file.h"
#include "description.h"
#include "fileblocks/atblock.h"

namespace mdf_reader {

using mdf_v4_10::ATBLOCK;

namespace {

Inflated inflateAttachment(InputFile& file, const Attachment& attachment) {
  std::string stream;
  forEachPiece(file, attachment.data_at, attachment.data_there,
               [&](std::string_view piece) { stream += piece; });
  return inflate(stream, attachment.original_size);
}

}  // namespace

std::vector<Attachment> readAttachments(InputFile& file, std::uint64_t first, Texts& texts,
                                        const FindingSink& report) {
  std::vector<Attachment> attachments;
  forEachInChain(file, first, "AT", report, [&](const BlockFields& block) {
    Attachment attachment;
    attachment.offset = block.offset();
    attachment.name = texts.at(file, block.link(ATBLOCK::at_tx_filename));
    attachment.mime_type = texts.at(file, block.link(ATBLOCK::at_tx_mimetype));
    attachment.comment = texts.at(file, block.link(ATBLOCK::at_md_comment));
    attachment.is_embedded = block.hasFlag("at_flags", ATBLOCK::embedded_data);
    attachment.is_compressed = block.hasFlag("at_flags", ATBLOCK::compressed_embedded_data);
    attachment.has_digest = block.hasFlag("at_flags", ATBLOCK::md5_checksum);
    attachment.digest = block.bytes("at_md5_checksum");
    attachment.original_size = block.number("at_original_size");
    attachment.embedded_size = block.number("at_embedded_size");
    attachment.data_at = block.tailAt();
    attachment.data_there = std::min(attachment.embedded_size, block.tailBytes());
    attachments.push_back(std::move(attachment));
  });
  return attachments;
}

AttachmentData readAttachmentData(InputFile& file, const Attachment& attachment,
                                  const std::function<void(std::string_view)>& take) {
  if (attachment.data_there < attachment.embedded_size) {
    return AttachmentData::cut_off;
  }
  Md5 md5;
  if (attachment.is_compressed) {
    const Inflated inflated = inflateAttachment(file, attachment);
    if (inflated.state != Inflating::fine) {
      return AttachmentData::not_inflated;
    }
    md5.add(inflated.bytes);
    take(inflated.bytes);
  } else {
    forEachPiece(file, attachment.data_at, attachment.data_there, [&](std::string_view piece) {
      md5.add(piece);
      take(piece);
    });
  }
  return !attachment.has_digest || md5.digest() == attachment.digest ? AttachmentData::fine
                                                                     : AttachmentData::wrong_digest;
}

}  // namespace mdf_reader
