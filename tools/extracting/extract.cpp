#include "extract.h"

#include <fnmatch.h>

#include <map>
#include <optional>

#include "file_name.h"
#include "new_file.h"
#include "printing/json_output.h"
#include "reader/bytes/input_file.h"
#include "reader/model/attachment_reading.h"
#include "reader/model/description.h"

namespace mdf_tools {

using namespace mdf_reader;

namespace {

std::string quoted(const Attachment& attachment) { return '"' + printable(attachment.name) + '"'; }

class Extractor {
 public:
  Extractor(InputFile& file, const ExtractOptions& options, std::ostream& out,
            const FindingSink& report)
      : file_(file), options_(options), out_(out), report_(report) {}

  bool extract(const Attachment& attachment);

 private:
  std::string freeName(const Attachment& attachment);
  void tell(const Attachment& attachment, const std::string& path, std::uint64_t size);

  InputFile& file_;
  const ExtractOptions& options_;
  std::ostream& out_;
  const FindingSink& report_;
  std::map<std::string, std::size_t> names_;  ///< and how many attachments asked for each
};

std::string Extractor::freeName(const Attachment& attachment) {
  const std::string wanted = safeFileName(attachment.name);
  std::size_t& number = names_[wanted];
  std::string name = wanted;
  while (number++ > 0 && !names_.try_emplace(name = numbered(wanted, number), 1).second) {
  }
  return name;
}

bool Extractor::extract(const Attachment& attachment) {
  if (!attachment.is_embedded) {
    tell(attachment, "", 0);
    return true;
  }
  const std::string name = freeName(attachment);
  NewFile target(options_.folder, name);
  std::uint64_t size = 0;
  const AttachmentData state = readAttachmentData(file_, attachment, [&](std::string_view piece) {
    target.write(piece);
    size += piece.size();
  });
  if (const auto damage = damageOf(state)) {
    report_({damage->code, attachment.offset,
             "expected the data of the attachment " + quoted(attachment) + ", " + damage->found});
    return false;
  }
  const std::string path = options_.folder + '/' + name;
  if (!target.complete(options_.replaces)) {
    report_({Code::request_failed, attachment.offset,
             "expected no file " + printable(path) + ", found one; --force replaces it"});
    return false;
  }
  tell(attachment, path, size);
  return true;
}

/// Says where an attachment was written; "" for one that is not in the file.
void Extractor::tell(const Attachment& attachment, const std::string& path, std::uint64_t size) {
  if (options_.as_json) {
    Json line = {{"schema", json_schema},
                 {"file", file_.name()},
                 {"offset", attachment.offset},
                 {"name", attachment.name}};
    line["path"] = path.empty() ? Json() : Json(path);
    line["bytes"] = path.empty() ? Json() : Json(size);
    line["digest_verified"] = !path.empty() && attachment.has_digest;
    out_ << jsonLine(line) << '\n';
  } else if (path.empty()) {
    out_ << quoted(attachment) << " is not in the file\n";
  } else {
    out_ << printable(path) << ": " << size << (size == 1 ? " byte" : " bytes")
         << (attachment.has_digest ? ", digest verified" : "") << '\n';
  }
}

}  // namespace

Extracted extractAttachments(InputFile& file, const ExtractOptions& options, std::ostream& out,
                             const FindingSink& report) {
  const Description description = readDescription(file, report);
  Extractor extractor(file, options, out, report);
  Extracted extracted;
  for (const Attachment& attachment :
       readAttachments(file, description.header.first_attachment, *description.texts, report)) {
    const bool is_chosen =
        options.name_pattern.empty() ||
        fnmatch(options.name_pattern.c_str(), std::string(attachment.name).c_str(), 0) == 0;
    if (is_chosen) {
      ++extracted.chosen;
      extracted.is_complete = extractor.extract(attachment) && extracted.is_complete;
    }
  }
  return extracted;
}

}  // namespace mdf_tools
