#ifndef MDF_READER_SUMMARY_DECODED_JSON_H_
#define MDF_READER_SUMMARY_DECODED_JSON_H_

#include "../decoding/decoded.h"
#include "json_type.h"

namespace mdf_reader {

/// What became of frames, as an object for programs.
Json decodedAsJson(const Decoded& decoded);

}  // namespace mdf_reader

#endif  // MDF_READER_SUMMARY_DECODED_JSON_H_
