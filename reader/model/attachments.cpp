#include "attachments.h"

#include <utility>

#include "../blocks/block_fields.h"
#include "attachment_reading.h"
#include "description.h"
#include "fileblocks/atblock.h"

namespace mdf_reader {

using mdf_v4_10::ATBLOCK;

std::vector<Attachment> readAttachments(InputFile& file, std::uint64_t first, Texts& texts,
                                        const FindingSink& report) {
  std::vector<Attachment> attachments;
  forEachInChain(file, first, "AT", report, [&](const BlockFields& block) {
    Attachment attachment = attachmentOf(block);
    attachment.name = texts.at(file, block.link(ATBLOCK::at_tx_filename));
    attachment.mime_type = texts.at(file, block.link(ATBLOCK::at_tx_mimetype));
    attachment.comment = texts.commentAt(file, block.link(ATBLOCK::at_md_comment));
    attachments.push_back(std::move(attachment));
  });
  return attachments;
}

AttachmentData readAttachmentData(InputFile& file, const Attachment& attachment,
                                  const std::function<void(std::string_view)>& take) {
  return verifyAttachment(file, attachment, take).state;
}

}  // namespace mdf_reader
