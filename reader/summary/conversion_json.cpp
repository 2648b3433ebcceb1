#include "conversion_json.h"

#include <algorithm>
#include <cmath>

#include "../blocks/block_fields.h"
#include "../bytes/input_file.h"
#include "../bytes/number_texts.h"
#include "../model/texts.h"
#include "framework/wire.h"
#include "json.h"
#include "names.h"

namespace mdf_reader {

using mdf_v4_10::detail::loadLe;

namespace {

constexpr std::size_t most_nested = 16;

/// Conversions may share their texts.
constexpr std::uint64_t times = 4;
constexpr std::uint64_t always = std::uint64_t{1} << 24U;

/// Those that JSON lacks are texts.
Json numberAsJson(double number) {
  return std::isfinite(number) ? Json(number) : Json(shortestReal(number));
}

}  // namespace

ConversionTexts::ConversionTexts(InputFile& file)
    : file_(file), budget_(file.size(), times, always) {}

const std::string& ConversionTexts::at(std::uint64_t offset) {
  const auto [text, is_new] = texts_.try_emplace(offset);
  if (is_new) {
    const Json conversion = make(offset, 1);
    text->second = conversion.is_null() ? "" : jsonLine(conversion);
  }
  return text->second;
}

Json ConversionTexts::make(std::uint64_t offset, std::size_t depth) {
  const auto block = readFields(file_, offset, "CC");
  if (!block) {
    return {};
  }
  const auto type = static_cast<unsigned>(block->number("cc_type"));
  Json json = {{"type", conversionTypeName(type)}, {"type_number", type}};
  const std::uint64_t values = std::min(block->number("cc_val_count"), block->tailBytes() / 8);
  const std::uint64_t links = linksThere(file_, block->raw());
  if (depth > most_nested || !budget_.take(8 * (values + links))) {
    return json;
  }
  std::string bytes(static_cast<std::size_t>(8 * values), '\0');
  bytes.resize(file_.readAt(block->tailAt(), bytes.data(), bytes.size()));
  for (std::size_t at = 0; at + 8 <= bytes.size(); at += 8) {
    json["values"].push_back(numberAsJson(loadLe<double>(bytes.data() + at)));
  }
  const std::uint64_t fixed = block->type().links.size();
  const std::uint64_t references =
      std::min(block->number("cc_ref_count"), links - std::min(fixed, links));
  for (std::uint64_t i = 0; i < references; ++i) {
    json["references"].push_back(target(linkAt(file_, block->raw(), fixed + i), depth));
  }
  return json;
}

Json ConversionTexts::target(std::uint64_t offset, std::size_t depth) {
  const auto text = readText(file_, offset, budget_.left());
  if (!text) {
    return make(offset, depth + 1);
  }
  budget_.take(text->size());
  return plainText(*text);
}

}  // namespace mdf_reader
