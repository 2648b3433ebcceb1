#ifndef MDF_READER_SUMMARY_NAMES_H_
#define MDF_READER_SUMMARY_NAMES_H_

#include <string>

namespace mdf_reader {

/// Common names for the values of the format's enumerations: "master", "uint LE", "linear". A value
/// that the format does not know is shown as "type 17".
std::string channelTypeName(unsigned type);
std::string syncTypeName(unsigned type);
std::string dataTypeName(unsigned type);
std::string conversionTypeName(unsigned type);
std::string sourceTypeName(unsigned type);
std::string busTypeName(unsigned type);
std::string eventTypeName(unsigned type);
std::string eventSyncTypeName(unsigned type);
std::string eventRangeName(unsigned type);
std::string eventCauseName(unsigned cause);
std::string hierarchyTypeName(unsigned type);
std::string timeClassName(unsigned time_class);

}  // namespace mdf_reader

#endif  // MDF_READER_SUMMARY_NAMES_H_
