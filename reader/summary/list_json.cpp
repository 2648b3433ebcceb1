#include "list_json.h"

#include "../bytes/digest.h"
#include "json.h"
#include "names.h"

namespace mdf_reader {

Json attachmentAsJson(const Attachment& attachment) {
  return {{"offset", attachment.offset},
          {"name", attachment.name},
          {"mime_type", attachment.mime_type},
          {"original_size", attachment.hasSize() ? Json(attachment.original_size) : Json()},
          {"embedded_size", attachment.is_embedded ? Json(attachment.embedded_size) : Json()},
          {"embedded", attachment.is_embedded},
          {"compressed", attachment.is_compressed},
          {"md5", textOrNull(attachment.has_digest ? hexDigest(attachment.digest) : "")},
          {"comment", attachment.comment}};
}

Json eventAsJson(const Event& event) {
  return {{"offset", event.offset},
          {"position", event.position()},
          {"unit", eventSyncTypeName(event.sync_type)},
          {"sync_type", syncTypeName(event.sync_type)},
          {"sync_type_number", event.sync_type},
          {"type", eventTypeName(event.type)},
          {"type_number", event.type},
          {"range_type", eventRangeName(event.range_type)},
          {"range_type_number", event.range_type},
          {"cause", eventCauseName(event.cause)},
          {"cause_number", event.cause},
          {"flags", event.flags},
          {"name", event.name},
          {"comment", event.comment},
          {"scopes", event.scope_count},
          {"attachments", event.attachment_count}};
}

}  // namespace mdf_reader
