#ifndef MDF_READER_MODEL_ATTACHMENTS_H_
#define MDF_READER_MODEL_ATTACHMENTS_H_

#include <array>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "../blocks/finding.h"
#include "texts.h"

namespace mdf_reader {

class InputFile;

/// What an attachment block says.
struct Attachment {
  std::uint64_t offset = 0;
  std::string_view name;  ///< as stored: a name or a path of any system
  std::string_view mime_type;
  std::string_view comment;
  bool is_embedded = false;    ///< its data is in the file
  bool is_compressed = false;  ///< as a zlib stream
  bool has_digest = false;     ///< `digest` is the MD5 digest of the uncompressed data
  std::string digest;          ///< 16 bytes
  std::uint64_t original_size = 0;
  std::uint64_t embedded_size = 0;  ///< bytes in the file, as stated
  std::uint64_t data_at = 0;        ///< where they begin
  std::uint64_t data_there = 0;     ///< how many of them the block and the file have

  /// Whether `original_size` is known: of files elsewhere it may not be.
  bool hasSize() const { return is_embedded || original_size > 0; }
};

/// Reads the chain of attachments from the first one on and reports what is wrong with it.
std::vector<Attachment> readAttachments(InputFile& file, std::uint64_t first, Texts& texts,
                                        const FindingSink& report);

/// What became of reading an attachment's data.
enum class AttachmentData {
  fine,
  cut_off,       ///< the block or the file ends before the data does
  not_inflated,  ///< the compressed data is damaged or is longer or shorter than stated
  wrong_digest
};

/// Hands the data of an embedded attachment, uncompressed, to `take` piece by piece. Data that is
/// not compressed needs no memory; compressed data is handed on only when all of it is good.
AttachmentData readAttachmentData(InputFile& file, const Attachment& attachment,
                                  const std::function<void(std::string_view)>& take);

}  // namespace mdf_reader

#endif  // MDF_READER_MODEL_ATTACHMENTS_H_
