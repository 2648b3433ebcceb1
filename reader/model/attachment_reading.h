#ifndef MDF_READER_MODEL_ATTACHMENT_READING_H_
#define MDF_READER_MODEL_ATTACHMENT_READING_H_

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "../bytes/inflate.h"
#include "attachments.h"

namespace mdf_reader {

class BlockFields;

/// What an attachment's data turned out to be.
struct AttachmentReading {
  AttachmentData state = AttachmentData::fine;
  Inflating inflating = Inflating::fine;
  std::uint64_t size = 0;  ///< bytes of uncompressed data, as far as they can be had
  std::string digest;      ///< of them; "" where they cannot be had
};

/// Why an attachment's data is not what it should be.
struct AttachmentDamage {
  Code code;
  std::string found;  ///< words
};

/// Nothing for data that is fine.
std::optional<AttachmentDamage> damageOf(AttachmentData state);

/// What an attachment's block says but for the texts.
Attachment attachmentOf(const BlockFields& block);

/// Reads the data of an embedded attachment as readAttachmentData() does, and compares it with what
/// the block says.
AttachmentReading verifyAttachment(InputFile& file, const Attachment& attachment,
                                   const std::function<void(std::string_view)>& take);

}  // namespace mdf_reader

#endif  // MDF_READER_MODEL_ATTACHMENT_READING_H_
