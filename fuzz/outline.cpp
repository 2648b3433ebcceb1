#include <cmath>
#include <cstddef>
#include <optional>
#include <string>
#include <utility>

#include "expect.h"
#include "support/allocation_counter.h"
#include "targets.h"
#include "viewing/outline_file.h"
#include "viewing/series.h"

namespace mdf_fuzz {

namespace {

using namespace mdf_tools;

/// What the page asks for, of a file that lacks all its samples.
void look(Series& series) {
  const Axis& axis = series.axis();
  const double span = axis.isEmpty() ? 1 : axis.last() / 3 - axis.first() / 3;
  for (const double part : {0.0, 1.0, 2.9}) {
    const double from = axis.isEmpty() ? 0 : axis.first() + part * span;
    const double to = from + span;
    if (!std::isfinite(to) || to <= from) {
      continue;
    }
    const Trace trace = series.trace({from, to, 100});
    expect(trace.x.size() == trace.y.size(), "points with two numbers");
    series.extent(from, to);
    series.at(from);
    for (const Bands::Run& run : series.bands().runs(from, to, 100)) {
      expect(run.code >= Bands::several || run.code < series.bands().texts(),
             "runs of texts that are there");
    }
  }
}

}  // namespace

std::string tryOutline(std::string_view input) {
  constexpr std::size_t always = std::size_t{1} << 22U;
  constexpr std::size_t for_a_byte = 40;
  const mdf_tests::AllocationLimit limit(always + for_a_byte * input.size());
  const std::string key = "key";
  expect(!OutlineFile::unpack(input, key), "bytes without their checksum to be refused");
  const std::string bytes = OutlineFile::withHead(input);
  std::optional<Outline> outline = OutlineFile::unpack(bytes, key);
  if (!outline) {
    return "refused";
  }
  expect(OutlineFile::pack(key, *outline) == bytes, "an outline to be written as it was read");
  const std::uint64_t records = outline->axis().records();
  Series series([](const SampleRange& /*range*/, const SampleVisitor& /*visit*/) {},
                outline->bands().texts() > 0 ? ColumnType::text : ColumnType::float64,
                std::move(*outline));
  look(series);
  expect(records < Pyramid::bucket_size || !series.goOn(), "samples that are gone to be missed");
  return std::to_string(records) + " records";
}

}  // namespace mdf_fuzz
