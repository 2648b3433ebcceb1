// Conversions to texts and from texts.

#include <utility>

#include "sample_file.h"

namespace mdf_tests {

namespace {

enum ConversionType : unsigned {
  linear = 1,
  value_to_text = 7,
  range_to_text,
  text_to_value,
  text_to_text,
};

using Refs = std::vector<std::uint64_t>;

Refs texts(SampleFile& file, const std::vector<std::string>& words) {
  Refs refs;
  for (const std::string& word : words) {
    refs.push_back(word.empty() ? 0 : file.text(word));
  }
  return refs;
}

/// A conversion whose references are texts; "" is a link that leads nowhere.
Sample byTexts(const std::string& name, const std::string& shows, unsigned type,
               const std::vector<std::string>& words, const std::vector<double>& numbers,
               const ChannelSpec& how, const std::vector<StoredValue>& values) {
  SampleFile file;
  ChannelSpec channel = how;
  channel.conversion = file.addConversion({type, texts(file, words), numbers, "", ""});
  return valueSample(name, shows, std::move(file), channel, values);
}

Samples toText() {
  return {
      byTexts("conversion-value-to-text", "a text for each value, and one for all others",
              value_to_text, {"off", "on", "?"}, {0, 1}, stored(2, 8),
              {{"00", "off"}, {"01", "on"}, {"02", "?"}, {"ff", "?"}}),
      byTexts("conversion-value-to-text-negative", "keys in no order, with signs", value_to_text,
              {"up", "down", "rest", "broken"}, {1, -1, 0}, stored(2, 8),
              {{"ff", "down"}, {"00", "rest"}, {"01", "up"}, {"80", "broken"}}),
      byTexts("conversion-value-to-text-of-reals", "keys that are no integers", value_to_text,
              {"half", "other"}, {0.5}, stored(4, 64),
              {{"000000000000e03f", "half"}, {"000000000000f03f", "other"}}),
      byTexts("conversion-value-to-text-without-default", "what has no text stays a number",
              value_to_text, {"off", "on", ""}, {0, 1}, stored(0, 8), {{"01", "on"}, {"07", "7"}}),
      byTexts("conversion-range-to-text-integers", "both limits belong to a range of integers",
              range_to_text, {"low", "high", "outside"}, {0, 9, 10, 20}, stored(0, 8),
              {{"00", "low"}, {"09", "low"}, {"0a", "high"}, {"14", "high"}, {"15", "outside"}}),
      byTexts("conversion-range-to-text-reals",
              "the upper limit does not belong to a range of reals", range_to_text,
              {"low", "high", "outside"}, {0, 10, 10, 20}, stored(4, 64),
              {{"0000000000000000", "low"},
               {"cdcccccccccc2340", "low"},
               {"0000000000002440", "high"},
               {"0000000000003440", "outside"},
               {"00000000000000c0", "outside"}}),
      byTexts("conversion-to-text-that-needs-quotes", "texts with commas, quotes and line ends",
              value_to_text, {"a, b", "say \"hi\"", "two\nlines", " "}, {0, 1, 2}, stored(0, 8),
              {{"00", "\"a, b\""},
               {"01", "\"say \"\"hi\"\"\""},
               {"02", "\"two\nlines\""},
               {"03", "\" \""}}),
  };
}

Samples fromText() {
  return {
      byTexts("conversion-text-to-value", "a number for each text, and one for all others",
              text_to_value, {"one", "two"}, {1, 2, -1}, stored(7, 32),
              {{"6f6e6500", "1"}, {"74776f00", "2"}, {"00000000", "-1"}, {"4f6e6500", "-1"}}),
      byTexts("conversion-text-to-text", "a text for each text, and one for all others",
              text_to_text, {"yes", "ja", "no", "nein", "?"}, {}, stored(7, 32),
              {{"79657300", "ja"}, {"6e6f0000", "nein"}, {"78787878", "?"}}),
      byTexts("conversion-text-to-text-without-default", "what has no other text stays",
              text_to_text, {"yes", "ja", ""}, {}, stored(7, 32),
              {{"79657300", "ja"}, {"6e6f0000", "no"}}),
      byTexts("conversion-text-to-text-of-utf16", "texts are compared as characters", text_to_text,
              {"\u00FC", "ue", "?"}, {}, stored(8, 16), {{"fc00", "ue"}, {"c3bc", "?"}}),
  };
}

/// Up to 100 a number in percent, above a text.
Sample nestedDefault() {
  SampleFile file;
  const std::uint64_t percent = file.addConversion({linear, {}, {0, 0.5}, "%", ""});
  Refs refs = texts(file, {"invalid", "no sensor"});
  refs.push_back(percent);
  ChannelSpec channel = stored(0, 8);
  channel.unit = "%";
  channel.conversion = file.addConversion({value_to_text, refs, {255, 254}, "", ""});
  return valueSample("conversion-value-to-text-with-numbers",
                     "a linear conversion for the values without a text", std::move(file), channel,
                     {{"00", "0"}, {"63", "49.5"}, {"fe", "no sensor"}, {"ff", "invalid"}});
}

/// Ranges of which one leads to another conversion.
Sample nestedRange() {
  SampleFile file;
  const std::uint64_t scaled = file.addConversion({linear, {}, {-100, 1}, "", ""});
  Refs inner = texts(file, {"hot", "warm"});
  Refs refs = {scaled, file.addConversion({value_to_text, inner, {200}, "", ""}),
               file.text("error")};
  ChannelSpec channel = stored(0, 8);
  channel.conversion = file.addConversion({range_to_text, refs, {0, 199, 200, 210}, "", ""});
  return valueSample(
      "conversion-range-to-text-nested", "ranges that lead to other conversions", std::move(file),
      channel, {{"00", "-100"}, {"c7", "99"}, {"c8", "hot"}, {"c9", "warm"}, {"ff", "error"}});
}

/// A conversion with texts of its own.
Sample named() {
  SampleFile file;
  ChannelSpec channel = stored(0, 8);
  channel.conversion =
      file.addConversion({value_to_text, texts(file, {"first", "others"}), {1}, "", "status"});
  file.link(channel.conversion, 2, file.metadata("<CCcomment><TX>states</TX></CCcomment>"));
  return valueSample("conversion-with-name-and-comment", "a conversion that is named and described",
                     std::move(file), channel, {{"01", "first"}, {"02", "others"}});
}

/// Many keys, far apart.
Sample manyKeys() {
  SampleFile file;
  ConversionSpec conversion;
  conversion.type = value_to_text;
  for (int i = 0; i < 40; ++i) {
    conversion.refs.push_back(file.text("state " + std::to_string(i)));
    conversion.values.push_back(1000.0 * i);
  }
  conversion.refs.push_back(file.text("no state"));
  ChannelSpec channel = stored(0, 16);
  channel.conversion = file.addConversion(conversion);
  return valueSample(
      "conversion-value-to-text-of-40-keys", "a large table", std::move(file), channel,
      {{"0000", "state 0"}, {"e803", "state 1"}, {"5898", "state 39"}, {"0100", "no state"}});
}

}  // namespace

Samples textConversionSamples() {
  return together({toText(), fromText(), {nestedDefault(), nestedRange(), named(), manyKeys()}});
}

}  // namespace mdf_tests
