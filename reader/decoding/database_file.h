#ifndef MDF_READER_DECODING_DATABASE_FILE_H_
#define MDF_READER_DECODING_DATABASE_FILE_H_

#include <functional>
#include <string>

#include "decoded.h"
#include "message_lookup.h"

namespace mdf_reader {

using DatabaseFaultSink = std::function<void(const DatabaseFault&)>;

/// Reads a database.
/// @param word its file: "car.dbc", or "car.dbc@can1" for one bus. Its name may have an @ in it.
/// @param report gets what is wrong with it.
/// @throws CannotDecode when it cannot be read, or has no messages.
NamedDatabase readDatabase(const std::string& word, const DatabaseFaultSink& report);

}  // namespace mdf_reader

#endif  // MDF_READER_DECODING_DATABASE_FILE_H_
