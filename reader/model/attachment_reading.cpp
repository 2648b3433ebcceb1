#include "attachment_reading.h"

#include <algorithm>

#include "../blocks/block_fields.h"
#include "../bytes/digest.h"
#include "../bytes/input_file.h"
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

std::optional<AttachmentDamage> damageOf(AttachmentData state) {
  switch (state) {
    case AttachmentData::cut_off:
      return AttachmentDamage{Code::attachment_length_wrong, "found less in the block"};
    case AttachmentData::not_inflated:
      return AttachmentDamage{
          Code::zip_broken,
          "found a compressed stream that is damaged or has another size than stated"};
    case AttachmentData::wrong_digest:
      return AttachmentDamage{Code::attachment_digest_wrong,
                              "found another MD5 digest than stated"};
    case AttachmentData::fine:
      break;
  }
  return std::nullopt;
}

Attachment attachmentOf(const BlockFields& block) {
  Attachment attachment;
  attachment.offset = block.offset();
  attachment.is_embedded = block.hasFlag("at_flags", ATBLOCK::embedded_data);
  attachment.is_compressed = block.hasFlag("at_flags", ATBLOCK::compressed_embedded_data);
  attachment.has_digest = block.hasFlag("at_flags", ATBLOCK::md5_checksum);
  attachment.digest = block.bytes("at_md5_checksum");
  attachment.original_size = block.number("at_original_size");
  attachment.embedded_size = block.number("at_embedded_size");
  attachment.data_at = block.tailAt();
  attachment.data_there = std::min(attachment.embedded_size, block.tailBytes());
  return attachment;
}

AttachmentReading verifyAttachment(InputFile& file, const Attachment& attachment,
                                   const std::function<void(std::string_view)>& take) {
  AttachmentReading reading;
  if (attachment.data_there < attachment.embedded_size) {
    reading.state = AttachmentData::cut_off;
    return reading;
  }
  Md5 md5;
  const auto hand_on = [&](std::string_view piece) {
    md5.add(piece);
    reading.size += piece.size();
    take(piece);
  };
  if (attachment.is_compressed) {
    const Inflated inflated = inflateAttachment(file, attachment);
    reading.inflating = inflated.state;
    if (inflated.state != Inflating::fine) {
      reading.state = AttachmentData::not_inflated;
      reading.size = inflated.bytes.size();
      return reading;
    }
    hand_on(inflated.bytes);
  } else {
    forEachPiece(file, attachment.data_at, attachment.data_there, hand_on);
  }
  reading.digest = md5.digest();
  if (attachment.has_digest && reading.digest != attachment.digest) {
    reading.state = AttachmentData::wrong_digest;
  }
  return reading;
}

}  // namespace mdf_reader
