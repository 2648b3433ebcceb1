// Comparing two files.

#include <cstdint>
#include <memory>
#include <string>

#include "changing/file_comparison.h"
#include "mdf_v4_10.h"
#include "support/comparison.h"
#include "support/files.h"
#include "support/recordings.h"

namespace mdf_bench {

namespace {

using namespace mdf_v4_10;
using mdf_tools::DiffSummary;

constexpr std::size_t records = 2000000;
constexpr std::size_t states = 40;

struct Pair {
  ScratchFile a{std::string()};
  ScratchFile b{std::string()};
};

/// A conversion of numbers to texts.
LINK appendStates(FileMaker& maker) {
  CCBLOCK texts(CCBLOCK::CC_CONVTYPE_V2TEXT_SCALETAB);
  for (std::size_t state = 0; state < states; ++state) {
    texts.addValue(static_cast<REAL>(state));
    texts.addReference(maker.appendText("state number " + std::to_string(state)));
  }
  return maker.append(texts);
}

void writeNumbers(const std::string& path) {
  FileMaker maker(path);
  const LINK data = maker.appendData(mixedRecords(0, records));
  maker.finish(maker.appendGroup({mixedChannels(), record_bytes, records}), data);
}

void writeTexts(const std::string& path) {
  FileMaker maker(path);
  std::string numbers;
  for (std::size_t i = 0; i < records; ++i) {
    numbers += static_cast<char>(i * i % states);
  }
  const LINK conversion = appendStates(maker);
  const LINK data = maker.appendData(numbers);
  maker.finish(maker.appendGroup({{{CNBLOCK::CN_DATATYPE_UINT_LE, 0, 8}}, 1, records, conversion}),
               data);
}

DiffSummary compareFiles(const Pair& files) {
  const mdf_reader::FindingSink report = [](const mdf_reader::Finding& finding) {
    require(false, finding.sentence);
  };
  const mdf_reader::NoteSink note = [](const std::string& /*sentence*/) {};
  mdf_reader::InputFile input_a(files.a.path());
  mdf_reader::InputFile input_b(files.b.path());
  mdf_tools::ComparedFile a(input_a, report, note);
  mdf_tools::ComparedFile b(input_b, report, note);
  return mdf_tools::FileComparison(a, b, {}, [](const mdf_tools::Difference&) {}).run();
}

Sides sidesOf(void (*write)(const std::string& path)) {
  const auto files = std::make_shared<Pair>();
  write(files->a.path());
  write(files->b.path());
  Sides sides;
  sides.units = records;
  sides.subject = [=](std::size_t times) {
    for (; times > 0; --times) {
      require(compareFiles(*files).isSame(), "equal files to be the same");
    }
  };
  sides.baseline = [=](std::size_t times) {
    for (; times > 0; --times) {
      std::size_t rows = 0;
      readColumns(files->a.path(), {},
                  [&](const mdf_reader::Batch& each, const auto&) { rows += each.rows(); });
      require(rows == records, "all rows to be read");
    }
  };
  sides.is_right = [=] { return compareFiles(*files).records == records; };
  return sides;
}

}  // namespace

void registerCases() {
  const std::string baseline = "reading the columns of one";
  compare({"diff/equal files of five numbers", baseline, 2.2},
          [] { return sidesOf(writeNumbers); });
  compare({"diff/equal files of texts", baseline, 2.2}, [] { return sidesOf(writeTexts); });
}

}  // namespace mdf_bench
