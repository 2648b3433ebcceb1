// Conversions from numbers to numbers.

#include <utility>

#include "sample_file.h"

namespace mdf_tests {

namespace {

enum ConversionType : unsigned {
  identity,
  linear,
  rational,
  formula,
  table_interpolated,
  table,
  range_table,
};

/// Signed bytes through a conversion.
Sample converted(const std::string& name, const std::string& shows,
                 const ConversionSpec& conversion, const std::vector<StoredValue>& values,
                 const ChannelSpec& how = stored(2, 8)) {
  SampleFile file;
  ChannelSpec channel = how;
  channel.conversion = file.addConversion(conversion);
  return valueSample(name, shows, std::move(file), channel, values);
}

Sample byFormula(const std::string& name, const std::string& shows, const std::string& text,
                 const std::vector<StoredValue>& values) {
  SampleFile file;
  ChannelSpec channel = stored(2, 8);
  channel.conversion = file.addConversion({formula, {file.text(text)}, {}, "", ""});
  return valueSample(name, shows, std::move(file), channel, values);
}

Samples algebra() {
  return {
      converted("conversion-identity", "a conversion that changes nothing",
                {identity, {}, {}, "", ""}, {{"00", "0"}, {"ff", "-1"}}),
      converted("conversion-linear", "an offset and a factor", {linear, {}, {-40, 0.5}, "", ""},
                {{"00", "-40"}, {"50", "0"}, {"7f", "23.5"}, {"80", "-104"}}),
      converted("conversion-linear-constant", "a factor of zero", {linear, {}, {1.25, 0}, "", ""},
                {{"00", "1.25"}, {"7f", "1.25"}}),
      converted("conversion-linear-of-reals", "reals are scaled too", {linear, {}, {1, -2}, "", ""},
                {{"0000000000000040", "-3"}, {"000000000000f07f", "-inf"}}, stored(4, 64)),
      // (x^2 + 2x + 3) / (2x + 4)
      converted("conversion-rational", "a quotient of two polynomials",
                {rational, {}, {1, 2, 3, 0, 2, 4}, "", ""},
                {{"00", "0.75"}, {"02", "1.375"}, {"ff", "1"}}),
      // (10 - 2x) / 4
      converted("conversion-rational-linear", "a straight line as a quotient",
                {rational, {}, {0, -2, 10, 0, 0, 4}, "", ""},
                {{"00", "2.5"}, {"05", "0"}, {"07", "-1"}}),
      converted("conversion-rational-pole", "a division by zero",
                {rational, {}, {0, 0, 1, 0, 1, 0}, "", ""},
                {{"04", "0.25"}, {"00", "inf"}, {"ff", "-1"}}),
      byFormula("conversion-formula", "a formula of X", "2 * X + 1",
                {{"00", "1"}, {"03", "7"}, {"ff", "-1"}}),
      byFormula("conversion-formula-power", "powers come before products and signs",
                "3 * X ^ 2 - X / 4", {{"00", "0"}, {"04", "47"}, {"fc", "49"}}),
      byFormula("conversion-formula-functions", "functions, brackets and constants",
                "sqrt(abs(X)) + cos(0)", {{"00", "1"}, {"10", "5"}, {"f7", "4"}}),
  };
}

ConversionSpec points(unsigned type) { return {type, {}, {-10, 0, 0, 100, 10, 50}, "", ""}; }

/// 1 to 3 and 5 to 5 as integers; from 1 up to 3 as reals.
ConversionSpec ranges(std::vector<double> default_value) {
  ConversionSpec spec{range_table, {}, {1, 3, 10.5, 5, 5, 20, 6, 9, 30}, "", ""};
  spec.values.insert(spec.values.end(), default_value.begin(), default_value.end());
  return spec;
}

Samples tables() {
  return {
      converted("conversion-table-interpolated",
                "lines between points, and nothing beyond the ends", points(table_interpolated),
                {{"f6", "0"},
                 {"fb", "50"},
                 {"00", "100"},
                 {"01", "95"},
                 {"0a", "50"},
                 {"0b", "50"},
                 {"80", "0"}}),
      converted(
          "conversion-table-interpolated-reals", "lines between points for reals",
          points(table_interpolated),
          {{"000000000000f8bf", "85"}, {"0000000000002140", "57.5"}, {"000000000000f07f", "50"}},
          stored(4, 64)),
      converted("conversion-table-of-one-point", "a table with one point is a constant",
                {table_interpolated, {}, {5, 7.5}, "", ""},
                {{"00", "7.5"}, {"05", "7.5"}, {"7f", "7.5"}}),
      converted("conversion-table", "the nearest point, the lower one in the middle of two",
                points(table),
                {{"f6", "0"},
                 {"fa", "0"},
                 {"fb", "0"},
                 {"fc", "100"},
                 {"04", "100"},
                 {"05", "100"},
                 {"06", "50"},
                 {"7f", "50"},
                 {"80", "0"}}),
  };
}

Samples rangeTables() {
  return {
      converted("conversion-range-table-integers", "both limits belong to a range of integers",
                ranges({-1}),
                {{"00", "-1"},
                 {"01", "10.5"},
                 {"03", "10.5"},
                 {"04", "-1"},
                 {"05", "20"},
                 {"06", "30"},
                 {"09", "30"},
                 {"0a", "-1"}}),
      converted("conversion-range-table-reals",
                "the upper limit does not belong to a range of reals", ranges({-1}),
                {{"000000000000f03f", "10.5"},
                 {"0000000000000740", "10.5"},
                 {"0000000000000840", "-1"},
                 {"0000000000001840", "30"},
                 {"0000000000002240", "-1"}},
                stored(4, 64)),
      converted("conversion-range-table-unsigned", "integers without a sign",
                {range_table, {}, {0, 127, 1, 128, 255, 2, 3}, "", ""},
                {{"7f", "1"}, {"80", "2"}, {"ff", "2"}}, stored(0, 8)),
  };
}

/// Two channels that share a conversion with everything that one can have.
Sample shared() {
  SampleFile file;
  const auto conversion = file.addConversion({linear, {}, {0, 0.5}, "km/h", "half"});
  const auto inverse = file.addConversion({linear, {}, {0, 2}, "", "double"});
  file.link(conversion, 2, file.metadata("<CCcomment><TX>halves</TX></CCcomment>"));
  file.link(conversion, 3, inverse);
  // Precision 1, with it and the physical range valid.
  file.write(conversion + 24 + 4 * 8, Bytes().u8s({1, 1, 3, 0}));
  file.write(conversion + 24 + 4 * 8 + 8, Bytes().f64(0).f64(127.5));
  ChannelSpec first = part("v", 8);
  first.conversion = conversion;
  ChannelSpec second = first;
  second.name = "w";
  second.byte_offset = 9;
  GroupSpec group = countingGroup(2);
  file.addSortedGroup(group, {timeMaster(), first, second},
                      file.addData(Bytes().f64(0).u8s({1, 2}).f64(0.5).u8s({255, 0})));
  return sampleOf("conversion-shared", "two channels with one conversion that has all its parts",
                  file, {{{{"t", "s"}, {"v", "km/h"}, {"w", "km/h"}}, {"0,0.5,1", "0.5,127.5,0"}}});
}

Sample convertedMaster() {
  SampleFile file;
  ChannelSpec time = stored(0, 16);
  time.name = "t";
  time.type = 2;
  time.sync_type = 1;
  time.conversion = file.addConversion({linear, {}, {0, 0.125}, "s", ""});
  ChannelSpec value = part("v", 2);
  const GroupSpec group{3, 3};
  file.addSortedGroup(group, {time, value}, file.addData(hex("000001 080002 1c0003")));
  return sampleOf("conversion-of-the-master", "time in eighths of a second", file,
                  {{{{"t", "s"}, {"v", ""}}, {"0,1", "1,2", "3.5,3"}}});
}

Samples uses() {
  return {
      shared(),
      convertedMaster(),
      converted("conversion-of-bits", "a conversion of some bits of a byte",
                {linear, {}, {1, 10}, "", ""}, {{"38", "71"}, {"c7", "1"}, {"08", "11"}},
                stored(0, 3, 3)),
      converted("conversion-of-large-integers", "integers beyond 53 bits come near",
                {linear, {}, {0, 0.5}, "", ""},
                {{"0000000000000080", "4611686018427387904"}, {"0200000000000000", "1"}},
                stored(0, 64)),
      converted("conversion-of-bytes", "what is no number is not converted",
                {linear, {}, {0, 0.5}, "", ""}, {{"0203", "0203"}}, stored(10, 16)),
  };
}

}  // namespace

Samples conversionSamples() { return together({algebra(), tables(), rangeTables(), uses()}); }

}  // namespace mdf_tests
