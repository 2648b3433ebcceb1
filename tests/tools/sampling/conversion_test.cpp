#include "reader/values/conversion.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "exported.h"
#include "reader/bytes/input_file.h"
#include "reader/columns/column_data.h"
#include "tools/support/temp_file.h"

using namespace mdf_reader;
using mdf_tests::Bytes;
using mdf_tests::FileBuilder;
using mdf_tests::TempFile;

namespace {

using Raw = std::variant<int, double, std::string>;

/// A conversion of a file, and what was found wrong with it.
class Converted {
 public:
  Converted(const FileBuilder& contents, std::uint64_t offset)
      : path_(contents.bytes()),
        file_(path_.path()),
        conversions_(file_, report_),
        conversion_(conversions_.at(offset)) {}

  bool isNone() const { return conversion_ == nullptr; }
  const std::vector<std::string>& findings() const { return findings_; }

  std::string of(int raw) { return of(raw, true); }
  std::string of(double raw) { return of(raw, false); }
  std::string of(const std::string& raw) {
    return conversion_ == nullptr ? raw : shown(conversion_->of(raw), raw);
  }

 private:
  std::string of(double raw, bool is_integer) {
    std::string unchanged;
    printNumber(raw, unchanged);
    return conversion_ == nullptr ? unchanged : shown(conversion_->of(raw, is_integer), unchanged);
  }

  static std::string shown(const Conversion::Result& result, const std::string& unchanged) {
    std::string number;
    printNumber(result.real, number);
    switch (result.kind) {
      case Conversion::Result::number:
        return number;
      case Conversion::Result::text:
        return *result.characters;
      default:
        return unchanged;
    }
  }

  TempFile path_;
  InputFile file_;
  std::vector<std::string> findings_;
  FindingSink report_ = [this](const Finding& finding) { findings_.push_back(finding.sentence); };
  Conversions conversions_;
  Conversion* conversion_;
};

/// A conversion with references to texts; "" is a reference that leads nowhere.
Converted converted(unsigned type, const std::vector<double>& values,
                    const std::vector<std::string>& texts = {}) {
  FileBuilder file;
  std::vector<std::uint64_t> references;
  for (const std::string& text : texts) {
    references.push_back(text.empty() ? 0 : file.text(text));
  }
  const std::uint64_t offset = file.addConversion({type, references, values});
  return {file, offset};
}

TEST(Conversion, IdentityIsNone) {
  EXPECT_TRUE(converted(0, {}).isNone());
  EXPECT_TRUE(converted(1, {0, 1}).isNone());  // and so large integers keep their digits
  EXPECT_TRUE(Converted(FileBuilder(), 0).isNone());
}

TEST(Conversion, OfEachType) {
  struct Case {
    unsigned type;
    std::vector<double> values;
    std::vector<std::string> texts;
    std::vector<std::pair<Raw, std::string>> physical;
  };
  const std::vector<Case> cases = {
      {1, {-40, 0.5}, {}, {{100, "10"}, {2.5, "-38.75"}, {"text", "text"}}},
      {2, {1, 2, 3, 0, 0, 2}, {}, {{3, "9"}}},  // (9 + 6 + 3) / 2
      {2, {0, 0, 1, 0, 1, 0}, {}, {{0, "inf"}}},
      {3, {}, {"X^2+1"}, {{3, "10"}}},
      {4, {0, 0, 10, 100}, {}, {{5, "50"}, {-5, "0"}, {50, "100"}}},
      {5, {0, 0, 10, 100}, {}, {{4, "0"}, {5, "0"}, {6, "100"}}},
      {6, {0, 10, 0.5, 11, 20, 1.5, -1}, {}, {{10, "0.5"}, {10.0, "-1"}, {11, "1.5"}, {21, "-1"}}},
      {6, {0, 10, 0.5}, {}, {{99, "99"}}},  // without a default
      {7, {0, 1}, {"off", "on", "unknown"}, {{0, "off"}, {1.0, "on"}, {2, "unknown"}}},
      {7, {0, 1}, {"off", "", ""}, {{0, "off"}, {1, "1"}, {2, "2"}}},
      {8,
       {0, 9, 10, 19},
       {"low", "high", "none"},
       {{9, "low"}, {9.0, "none"}, {10.5, "high"}, {20, "none"}}},
      {9, {10, 20, -1}, {"one", "two"}, {{"one", "10"}, {"two", "20"}, {"three", "-1"}, {1, "1"}}},
      {10, {}, {"one", "eins", "two", "zwei", "viele"}, {{"two", "zwei"}, {"three", "viele"}}},
      {10, {}, {"one", "eins", ""}, {{"three", "three"}}},
  };
  for (const Case& each : cases) {
    Converted conversion = converted(each.type, each.values, each.texts);
    for (const auto& [raw, physical] : each.physical) {
      EXPECT_EQ(std::visit([&](const auto& value) { return conversion.of(value); }, raw), physical)
          << each.type;
    }
    EXPECT_EQ(conversion.findings(), std::vector<std::string>()) << each.type;
  }
}

TEST(Conversion, FormulaThatCannotBeEvaluated) {
  Converted broken = converted(3, {}, {"X+*"});
  EXPECT_TRUE(broken.isNone());
  ASSERT_EQ(broken.findings().size(), 1U);
  EXPECT_EQ(broken.findings()[0].substr(0, 54),
            "expected a formula that can be evaluated, found \"X+*\":");
}

TEST(Conversion, ScaleConversionsLeadOnToOthers) {
  FileBuilder file;
  const std::uint64_t scale = file.addConversion({1, {}, {0, 0.1}});
  const std::uint64_t error = file.text("error");
  const std::uint64_t offset = file.addConversion({8, {error, scale}, {254, 255}});
  Converted conversion(file, offset);
  EXPECT_EQ(conversion.of(255), "error");
  EXPECT_EQ(conversion.of(20), "2");
}

TEST(Conversion, TooFewParameters) {
  for (const unsigned type : {1U, 2U, 4U, 5U, 6U, 9U}) {
    Converted conversion = converted(type, {});
    EXPECT_TRUE(conversion.isNone());
    EXPECT_EQ(conversion.findings().size(), 1U) << type;
  }
  for (const unsigned type : {3U, 7U, 8U}) {
    EXPECT_EQ(converted(type, {}).findings().size(), 1U) << type;
  }
}

TEST(Conversion, UnknownType) {
  Converted conversion = converted(11, {1});
  EXPECT_TRUE(conversion.isNone());
  EXPECT_EQ(conversion.findings(),
            std::vector<std::string>{"expected a known conversion type, found 11"});
}

TEST(Conversion, NoConversionThere) {
  const FileBuilder file;
  EXPECT_EQ(Converted(file, 64).findings(),
            std::vector<std::string>{"expected a conversion, found none"});
  EXPECT_EQ(Converted(file, 999999).findings(),
            std::vector<std::string>{"expected a conversion, found none"});
}

TEST(Conversion, ThatLeadsBackToItself) {
  FileBuilder file;
  const std::uint64_t offset = file.addConversion({7, {0, 0}, {1}});
  file.link(offset, 4, offset);
  Converted conversion(file, offset);
  EXPECT_EQ(conversion.of(1), "1");
  EXPECT_EQ(conversion.findings().size(), 1U);
}

TEST(Conversion, DeepNestingHasALimit) {
  FileBuilder file;
  std::uint64_t offset = file.addConversion({1, {}, {0, 2}});
  for (int i = 0; i < 100; ++i) {
    offset = file.addConversion({7, {offset, 0}, {1}});
  }
  Converted conversion(file, offset);
  EXPECT_EQ(conversion.of(1), "1");
  EXPECT_EQ(conversion.findings().size(), 1U);
}

TEST(Conversion, BlocksInsideOneAnotherAreNotKeptWithoutLimit) {
  FileBuilder file;
  file.text(std::string(10000, ' '));
  std::vector<std::uint64_t> references;
  for (int i = 0; i < 50; ++i) {
    // Its values go on to the end of the file, through all blocks after it.
    references.push_back(file.addConversion({1, {}, {0, 2}}));
    file.write(references.back() + 8, Bytes().u64(1000000));
    file.write(references.back() + 24 + 32 + 6, Bytes().u16(65535));
  }
  const std::uint64_t offset = file.addConversion({7, references, std::vector<double>(50, 1.0)});
  Converted conversion(file, offset);
  ASSERT_EQ(conversion.findings().size(), 1U);
  EXPECT_EQ(conversion.findings()[0],
            "expected conversions and texts that do not overlap, found more bytes in them than in "
            "the file");
  EXPECT_EQ(conversion.of(1), "2");
}

TEST(Conversion, CountsBeyondTheBlock) {
  FileBuilder file;
  const std::uint64_t offset = file.addConversion({1, {}, {5, 2}});
  file.write(offset + 24 + 32 + 6, Bytes().u16(65535));  // cc_val_count
  EXPECT_EQ(Converted(file, offset).of(1), "7");
}

}  // namespace
