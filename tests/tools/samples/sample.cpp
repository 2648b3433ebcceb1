#include "sample.h"

namespace mdf_tests {

Samples together(const std::vector<Samples>& lists) {
  Samples samples;
  for (const Samples& list : lists) {
    samples.insert(samples.end(), list.begin(), list.end());
  }
  return samples;
}

const Samples& allSamples() {
  static const Samples all =
      together({dataTypeSamples(), channelTypeSamples(), conversionSamples(),
                textConversionSamples(), channelDetailSamples(), compositionSamples(),
                organisationSamples(), separateDataSamples(), unsortedSamples(),
                unfinishedSamples(), blockTypeSamples(), eventSamples(), layoutSamples()});
  return all;
}

}  // namespace mdf_tests
