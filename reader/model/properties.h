#ifndef MDF_READER_MODEL_PROPERTIES_H_
#define MDF_READER_MODEL_PROPERTIES_H_

#include <cstdint>
#include <string>
#include <vector>

namespace mdf_reader {

class InputFile;

/// A named property in a comment, such as a logger's serial number.
struct Property {
  std::string name;   ///< with those of trees and lists around it, and a unit: "device.mass [kg]"
  std::string value;  ///< trimmed
};

/// The named properties of the comment at an offset, in its order; none where it is no XML. Of a
/// list they have a number from 0 on, "ports[0].name".
std::vector<Property> readProperties(InputFile& file, std::uint64_t offset);

}  // namespace mdf_reader

#endif  // MDF_READER_MODEL_PROPERTIES_H_
