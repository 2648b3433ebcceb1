#ifndef MDF_TESTS_TOOLS_SAMPLES_SAMPLE_H_
#define MDF_TESTS_TOOLS_SAMPLES_SAMPLE_H_

#include <cstdint>
#include <string>
#include <vector>

namespace mdf_tests {

/// A column of exported values.
struct Column {
  std::string name;
  std::string unit;
};

/// The physical values of a channel group, as they follow from how the sample is defined.
struct ValueTable {
  std::vector<Column> columns;
  std::vector<std::string> rows;  ///< cells with commas between, quoted where they must be
};

/// What exporting a sample complains of.
struct Complaint {
  std::uint64_t offset;
  std::string sentence;
};

/// A measurement file that shows a feature of the format, and what there is to read in it.
struct Sample {
  std::string name;   ///< also the file's name, without ".mf4"
  std::string shows;  ///< the feature
  std::string bytes;
  std::vector<ValueTable> tables;  ///< of each channel group with values, in file order
  std::vector<Complaint> complaints{};
};

using Samples = std::vector<Sample>;

/// The samples of several lists, one after another.
Samples together(const std::vector<Samples>& lists);

/// The samples of each part of the format.
Samples dataTypeSamples();
Samples channelTypeSamples();
Samples conversionSamples();
Samples textConversionSamples();
Samples channelDetailSamples();
Samples compositionSamples();
Samples organisationSamples();
Samples separateDataSamples();
Samples unsortedSamples();
Samples unfinishedSamples();
Samples blockTypeSamples();
Samples eventSamples();
Samples layoutSamples();

/// All of them.
const Samples& allSamples();

}  // namespace mdf_tests

#endif  // MDF_TESTS_TOOLS_SAMPLES_SAMPLE_H_
