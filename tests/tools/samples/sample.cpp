#include "sample.h"

#include <iterator>
#include <utility>

namespace mdf_tests {

const Samples& allSamples() {
  static const Samples all = [] {
    Samples samples;
    for (const auto part :
         {dataTypeSamples, channelTypeSamples, conversionSamples, textConversionSamples,
          channelDetailSamples, compositionSamples, organisationSamples, unsortedSamples,
          unfinishedSamples, blockTypeSamples, eventSamples, layoutSamples}) {
      Samples some = part();
      std::move(some.begin(), some.end(), std::back_inserter(samples));
    }
    return samples;
  }();
  return all;
}

}  // namespace mdf_tests
