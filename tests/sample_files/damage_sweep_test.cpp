// Ten thousand damaged files, always the same ones: what repairing makes of them is sound.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <random>
#include <set>
#include <string>

#include "repaired.h"
#include "tools/samples/sample.h"

using namespace mdf_tests;
using mdf_reader::Finding;

namespace {

constexpr std::size_t word = 8;

class Damage {
 public:
  /// Random bytes, bits, ends cut off, words overwritten, and words exchanged.
  std::string to(std::string bytes) {
    switch (below(5)) {
      case 0:
        bytes.resize(64 + below(bytes.size() - 64));
        return bytes;
      case 1:
        for (std::size_t left = 1 + below(4); left > 0; --left) {
          bytes[64 + below(bytes.size() - 64)] = static_cast<char>(below(256));
        }
        return bytes;
      case 2:
        bytes[64 + below(bytes.size() - 64)] ^= static_cast<char>(1U << below(8));
        return bytes;
      case 3: {
        const std::size_t at = aWordOf(bytes);
        return bytes.replace(at, word, std::string(word, static_cast<char>(below(2) * 255)));
      }
      default:
        const std::size_t one = aWordOf(bytes);
        const std::size_t other = aWordOf(bytes);
        std::swap_ranges(bytes.begin() + static_cast<std::ptrdiff_t>(one),
                         bytes.begin() + static_cast<std::ptrdiff_t>(one + word),
                         bytes.begin() + static_cast<std::ptrdiff_t>(other));
        return bytes;
    }
  }

 private:
  std::size_t below(std::size_t count) { return static_cast<std::size_t>(random_()) % count; }
  std::size_t aWordOf(const std::string& bytes) {
    return 64 + word * below((bytes.size() - 64) / word);
  }

  std::minstd_rand random_{1};
};

/// What repairing leaves as it is, and reports: fields, counts and bytes that nobody can restore,
/// and links that lead back into a list.
const std::set<std::string> may_remain = {"attachment-digest-wrong",
                                          "attachment-length-wrong",
                                          "chain-endless",
                                          "chain-shared",
                                          "channel-outside-record",
                                          "conversion-unreadable",
                                          "count-too-large",
                                          "cycle-count-wrong",
                                          "data-type-unknown",
                                          "invalidation-bit-outside-record",
                                          "invalidation-data-wrong",
                                          "length-too-small",
                                          "links-missing",
                                          "masters-overlap",
                                          "record-id-size-wrong",
                                          "record-id-unknown",
                                          "record-past-end",
                                          "remote-master-missing",
                                          "signal-data-unused",
                                          "value-outside-signal-data",
                                          "zip-broken",
                                          "zip-original-length-wrong",
                                          "zip-type-unknown"};

TEST(DamageSweep, RepairingMakesSoundFiles) {
  constexpr std::size_t files = 10000;
  Damage damage;
  std::set<std::string> kinds;
  std::size_t saved = 0;
  std::size_t sound = 0;
  for (std::size_t i = 0; i < files; ++i) {
    const Sample& sample = allSamples()[i % allSamples().size()];
    const RepairedBytes repaired = repairedBytes(damage.to(sample.bytes));
    if (!repaired.is_saved) {
      continue;
    }
    ++saved;
    std::size_t errors = 0;
    for (const Finding& problem : problemsOf(repaired.bytes)) {
      if (textOf(problem.code).severity == mdf_reader::Severity::error) {
        ++errors;
        kinds.insert(std::string(textOf(problem.code).word));
        EXPECT_NE(repaired.lost().find(problem.sentence), std::string::npos)
            << sample.name << ", damage number " << i << ": " << problem.sentence;
      }
    }
    sound += errors == 0 ? 1U : 0U;
  }
  EXPECT_TRUE(std::includes(may_remain.begin(), may_remain.end(), kinds.begin(), kinds.end()))
      << testing::PrintToString(kinds);
  EXPECT_GT(saved, files * 3 / 4);
  EXPECT_GT(sound, saved * 9 / 10) << saved;
}

}  // namespace
