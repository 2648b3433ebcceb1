#ifndef MDF_TESTS_TOOLS_SUPPORT_SIGNALS_H_
#define MDF_TESTS_TOOLS_SUPPORT_SIGNALS_H_

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "recording/signal_source.h"
#include "scratch_folder.h"

namespace mdf_tests {

/// Names, units, data types and widths, one signal a line.
std::string linesOf(const std::vector<mdf_tools::Signal>& signals);

/// Names and values, one signal a line.
std::string valuesOf(const std::vector<mdf_tools::Signal>& signals,
                     const std::vector<mdf_v4_10::UINT64>& values);

inline std::string valuesOf(const mdf_tools::SignalSource& source) {
  return valuesOf(source.signals(), source.values());
}

/// A file that a source reads when it is sampled, and the values that the source has then.
struct SampledText {
  double seconds;
  std::string text;
  std::string values;
};

/// Expects the values that a source has when a file below its folder changes.
template <class Source>
void expectSampled(const std::string& name, const std::string& text_at_first,
                   const std::vector<SampledText>& samples) {
  const ScratchFolder root;
  root.write(name, text_at_first);
  Source source(root.path());
  for (const SampledText& sample : samples) {
    root.write(name, sample.text);
    source.sample(sample.seconds);
    EXPECT_EQ(valuesOf(source), sample.values) << sample.seconds << " s, " << sample.text;
  }
}

}  // namespace mdf_tests

#endif  // MDF_TESTS_TOOLS_SUPPORT_SIGNALS_H_
