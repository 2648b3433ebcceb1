#include "text_levels.h"

#include <cstdint>
#include <string>

#include "printing/json_output.h"

namespace mdf_tools {

namespace {

constexpr std::string_view more = "…";

/// The beginning of a text, up to a character's end.
std::string_view beginningOf(std::string_view text) {
  std::size_t size = Bands::longest_text - more.size();
  while (size > 0 && (static_cast<unsigned char>(text[size]) & 0xC0U) == 0x80U) {
    --size;
  }
  return text.substr(0, size);
}

}  // namespace

void TextLevels::add(double time, std::string_view text) {
  const bool is_long = text.size() > Bands::longest_text;
  addCode(time, is_long ? bands_.codeOf(std::string(beginningOf(text)).append(more))
                        : bands_.codeOf(text));
}

void TextLevels::addGap(double time) { addCode(time, Bands::no_text); }

void TextLevels::addCode(double time, std::uint32_t code) {
  first_ = runs_ == 0 ? time : first_;
  last_ = time;
  runs_ += runs_ == 0 || code != last_code_ ? 1 : 0;
  last_code_ = code;
  bands_.add(time, code);
}

std::vector<Bands::Run> TextLevels::runs(std::size_t columns) const {
  return runs_ == 0 ? std::vector<Bands::Run>() : bands_.runs(first_, last_, columns);
}

/// Each column of a picture has up to two changes.
void TextLevels::coarsen() {
  const std::vector<Bands::Run> kept = runs(runs_ / 4);
  Bands thinned;
  for (const Bands::Run& run : kept) {
    thinned.add(run.time,
                run.code >= Bands::several ? run.code : thinned.codeOf(bands_.text(run.code)));
  }
  bands_ = std::move(thinned);
  runs_ = kept.size();
  last_code_ = bands_.at(last_);
}

std::vector<PackedNumbers> TextLevels::pack() const {
  std::vector<double> times;
  std::vector<double> codes;
  for (const Bands::Run& run : runs(SIZE_MAX)) {
    times.push_back(run.time);
    codes.push_back(run.code == Bands::no_text   ? -1
                    : run.code == Bands::several ? -2
                                                 : static_cast<double>(run.code));
  }
  Json texts = Json::array();
  for (std::uint32_t code = 0; code < bands_.texts(); ++code) {
    texts.push_back(bands_.text(code));
  }
  return {
      mdf_tools::pack(times), mdf_tools::pack(codes), {"text", texts.size(), 0, jsonLine(texts)}};
}

}  // namespace mdf_tools
