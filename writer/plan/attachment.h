#ifndef MDF_WRITER_PLAN_ATTACHMENT_H_
#define MDF_WRITER_PLAN_ATTACHMENT_H_

#include <string>

namespace mdf_writer {

/// A file that belongs to the measurement: its bytes, or where it lies.
struct Attachment {
  std::string name;            ///< of the file; with its path where it is external
  std::string mime_type = {};  ///< such as "text/plain"
  std::string comment = {};
  std::string bytes = {};
  bool is_external = false;  ///< the bytes are in that file and not in this one
  std::string md5 = {};      ///< 16 bytes: the digest of the bytes; empty where it is not known

  /// What is wrong with it, as a sentence; empty for nothing.
  std::string fault() const;
};

}  // namespace mdf_writer

#endif  // MDF_WRITER_PLAN_ATTACHMENT_H_
