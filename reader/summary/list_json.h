#ifndef MDF_READER_SUMMARY_LIST_JSON_H_
#define MDF_READER_SUMMARY_LIST_JSON_H_

#include "../model/attachments.h"
#include "../model/events.h"
#include "json_type.h"

namespace mdf_reader {

/// What is told of an attachment, and of an event, wherever they are listed.
Json attachmentAsJson(const Attachment& attachment);
Json eventAsJson(const Event& event);

}  // namespace mdf_reader

#endif  // MDF_READER_SUMMARY_LIST_JSON_H_
