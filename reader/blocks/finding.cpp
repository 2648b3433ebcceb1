#include "finding.h"

#include "../bytes/number_texts.h"

namespace mdf_reader {

std::string decimalAndHex(std::uint64_t number) {
  return std::to_string(number) + " (0x" + hexDigits(number) + ')';
}

std::string upToTheEnd(std::uint64_t bytes) {
  return "found " + std::to_string(bytes) + " up to the file's end";
}

std::string notRead(std::uint64_t bytes) {
  if (bytes == 0) {
    return "";
  }
  return "; " + std::to_string(bytes) + (bytes == 1 ? " byte was" : " bytes were") + " not read";
}

}  // namespace mdf_reader
