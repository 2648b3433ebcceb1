#ifndef MDF_READER_BUS_TEXT_FAULTS_H_
#define MDF_READER_BUS_TEXT_FAULTS_H_

#include <cstddef>
#include <string>
#include <vector>

#include "dbc_reader.h"

namespace mdf_reader {

/// The faults of a text. Of a great many, those that were found first are kept, and the rest is
/// counted.
class TextFaults {
 public:
  void add(TextFault fault);
  /// In the order of the text, with one more at the end that says how many there are besides.
  void report(const TextFaultSink& sink) &&;

 private:
  static constexpr std::size_t most = 100;

  std::vector<TextFault> faults_;
  std::size_t others_ = 0;
  TextFault first_other_;
};

}  // namespace mdf_reader

#endif  // MDF_READER_BUS_TEXT_FAULTS_H_
