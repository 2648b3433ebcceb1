#include "conversion.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <map>
#include <utility>

#include "../blocks/block_fields.h"
#include "../bytes/input_file.h"
#include "../model/texts.h"
#include "formula.h"
#include "framework/wire.h"
#include "lookup.h"
#include "text_encoding.h"

namespace mdf_reader {

using mdf_v4_10::detail::loadLe;

namespace {

constexpr std::size_t most_nested = 16;
constexpr std::size_t longest_text = 1024;

/// The decimal places of a number's shortest text; nothing for one that has many.
std::optional<int> decimalsOf(double number) {
  constexpr std::ptrdiff_t most = 9;
  std::array<char, 400> text;
  const auto* const end =
      std::to_chars(text.data(), text.data() + text.size(), number, std::chars_format::fixed).ptr;
  const char* const point = std::find<const char*>(text.data(), end, '.');
  const std::ptrdiff_t decimals = point == end ? 0 : end - point - 1;
  return std::isfinite(number) && decimals <= most ? std::optional(static_cast<int>(decimals))
                                                   : std::nullopt;
}

/// A conversion of each number by itself, with a function `double at(double)` of the derived class.
template <class Derived>
class NumberConversion : public Conversion {
 public:
  Effect ofNumbers() const final { return Effect::numbers; }

  using Conversion::of;
  Result of(double number, bool /*is_integer*/) final { return Result(self().at(number)); }

  void convert(double* numbers, std::size_t count, bool /*is_integer*/) override {
    for (std::size_t i = 0; i < count; ++i) {
      numbers[i] = self().at(numbers[i]);
    }
  }

 private:
  Derived& self() { return static_cast<Derived&>(*this); }
};

class Linear : public NumberConversion<Linear> {
 public:
  Linear(double offset, double factor) : offset_(offset), factor_(factor) {}
  double at(double x) const { return offset_ + factor_ * x; }

  std::optional<int> decimals() const override {
    const auto of_offset = decimalsOf(offset_);
    const auto of_factor = decimalsOf(factor_);
    return of_offset && of_factor ? std::optional(std::max(*of_offset, *of_factor)) : std::nullopt;
  }

  void convert(double* numbers, std::size_t count, bool /*is_integer*/) override {
    // What is in variables of its own cannot change with the numbers, so that several are converted
    // at a time.
    const double offset = offset_;
    const double factor = factor_;
    for (std::size_t i = 0; i < count; ++i) {
      numbers[i] = offset + factor * numbers[i];
    }
  }

 private:
  double offset_;
  double factor_;
};

class Rational : public NumberConversion<Rational> {
 public:
  explicit Rational(std::vector<double> p) : p_(std::move(p)) {}
  double at(double x) const {
    return (p_[0] * x * x + p_[1] * x + p_[2]) / (p_[3] * x * x + p_[4] * x + p_[5]);
  }

 private:
  std::vector<double> p_;
};

class Algebraic : public NumberConversion<Algebraic> {
 public:
  explicit Algebraic(const std::string& formula) : formula_(formula) {}
  double at(double x) { return formula_.at(x); }

  const std::string& problem() const { return formula_.problem(); }

 private:
  Formula formula_;
};

class ValueTable : public NumberConversion<ValueTable> {
 public:
  ValueTable(const std::vector<double>& pairs, bool interpolates)
      : points_(pairs), interpolates_(interpolates) {}
  double at(double x) const {
    if (points_.isEmpty() || std::isnan(x)) {
      return x;
    }
    return interpolates_ ? points_.between(x) : points_.nearest(x);
  }

 private:
  PointTable points_;
  bool interpolates_;
};

class RangeToValue : public Conversion {
 public:
  RangeToValue(RangeTable ranges, std::vector<double> values)
      : ranges_(std::move(ranges)), values_(std::move(values)) {}

  Effect ofNumbers() const override { return Effect::numbers; }

  using Conversion::of;
  Result of(double number, bool is_integer) override {
    const std::size_t index = ranges_.find(number, is_integer);
    return index < values_.size() ? Result(values_[index]) : Result();
  }

 private:
  RangeTable ranges_;
  std::vector<double> values_;  ///< one for each range, and the default
};

/// What a reference leads to: a text, a conversion to go on with, or nothing.
struct Target {
  const std::string* text = nullptr;
  Conversion* conversion = nullptr;

  Conversion::Effect ofNumbers() const {
    if (text != nullptr) {
      return Conversion::Effect::texts;
    }
    return conversion == nullptr ? Conversion::Effect::none : conversion->ofNumbers();
  }

  Conversion::Result of(double number, bool is_integer) const {
    if (text != nullptr) {
      return Conversion::Result(text);
    }
    return conversion == nullptr ? Conversion::Result() : conversion->of(number, is_integer);
  }
};

/// A conversion that may lead on to others.
class ScaleConversion : public Conversion {
 public:
  /// @param targets those of the entries, and the default one.
  explicit ScaleConversion(std::vector<Target> targets) : targets_(std::move(targets)) {
    for (const Target& target : targets_) {
      effect_ = std::max(effect_, target.ofNumbers());
      height_ =
          std::max(height_, target.conversion == nullptr ? 1 : 1 + target.conversion->height());
    }
  }

  Effect ofNumbers() const override { return effect_; }
  std::size_t height() const override { return height_; }

  using Conversion::of;
  Result of(double number, bool is_integer) final {
    const std::size_t index = indexOf(number, is_integer);
    return index < targets_.size() ? targets_[index].of(number, is_integer) : Result();
  }

  /// Numbers that have texts lie on the same scale as the others.
  void convert(double* numbers, std::size_t count, bool is_integer) final {
    for (std::size_t i = 0; i < count; ++i) {
      Result result = of(numbers[i], is_integer);
      if (result.kind == Result::text && !targets_.empty() &&
          targets_.back().conversion != nullptr) {
        result = targets_.back().of(numbers[i], is_integer);
      }
      numbers[i] = result.kind == Result::number ? result.real : numbers[i];
    }
  }

 private:
  virtual std::size_t indexOf(double number, bool is_integer) const = 0;

  std::vector<Target> targets_;
  Effect effect_ = Effect::none;
  std::size_t height_ = 1;
};

class ValueToText : public ScaleConversion {
 public:
  ValueToText(const std::vector<double>& keys, std::vector<Target> targets)
      : ScaleConversion(std::move(targets)), keys_(keys) {}

 private:
  std::size_t indexOf(double number, bool /*is_integer*/) const override {
    return keys_.find(number);
  }

  KeyTable keys_;
};

class RangeToText : public ScaleConversion {
 public:
  RangeToText(RangeTable ranges, std::vector<Target> targets)
      : ScaleConversion(std::move(targets)), ranges_(std::move(ranges)) {}

 private:
  std::size_t indexOf(double number, bool is_integer) const override {
    return ranges_.find(number, is_integer);
  }

  RangeTable ranges_;
};

/// A conversion of texts by a table whose default comes last.
class TextTable : public Conversion {
 public:
  TextTable(const std::vector<const std::string*>& keys, std::vector<Result> results, Effect effect)
      : results_(std::move(results)), effect_(effect) {
    for (std::size_t i = 0; i < keys.size(); ++i) {
      if (keys[i] != nullptr) {
        indices_.try_emplace(*keys[i], i);
      }
    }
  }

  Effect ofTexts() const override { return effect_; }

  using Conversion::of;
  Result of(const std::string& text) override {
    const auto found = indices_.find(text);
    return found == indices_.end() ? results_.back() : results_.at(found->second);
  }

 private:
  std::map<std::string, std::size_t> indices_;
  std::vector<Result> results_;
  Effect effect_;
};

}  // namespace

Conversion::Result Conversion::of(double /*number*/, bool /*is_integer*/) { return {}; }

Conversion::Result Conversion::of(const std::string& /*text*/) { return {}; }

void Conversion::convert(double* numbers, std::size_t count, bool is_integer) {
  for (std::size_t i = 0; i < count; ++i) {
    const Result result = of(numbers[i], is_integer);
    numbers[i] = result.kind == Result::number ? result.real : numbers[i];
  }
}

/// Makes the conversion of one block.
class ConversionMaker {
 public:
  ConversionMaker(Conversions& conversions, const BlockFields& block)
      : all_(conversions), block_(block) {}

  std::unique_ptr<Conversion> make() {
    const std::uint64_t room = block_.tailBytes() + 8 * linksThere(all_.file_, block_.raw());
    if (!all_.mayKeep(room, block_.offset())) {
      return nullptr;
    }
    readReferences();
    readValues();
    auto conversion = ofType(static_cast<unsigned>(block_.number("cc_type")));
    if (conversion != nullptr && conversion->height() > most_nested) {
      report("expected at most " + std::to_string(most_nested) + " nested conversions, found more");
      return nullptr;
    }
    return conversion;
  }

 private:
  void readReferences();
  void readValues();
  std::unique_ptr<Conversion> ofType(unsigned type);
  std::unique_ptr<Conversion> ofNumbers(unsigned type);
  std::unique_ptr<Conversion> algebraic();
  std::unique_ptr<Conversion> rangeToValue();
  std::unique_ptr<Conversion> rangeToText();
  std::unique_ptr<Conversion> textToValue();
  std::unique_ptr<Conversion> textToText();
  std::vector<Target> targets(std::size_t entries);
  RangeTable ranges(std::size_t count, std::size_t step) const;
  bool has(std::size_t values, std::size_t references);
  void report(const std::string& sentence) const {
    all_.report_({Code::conversion_unreadable, block_.offset(), sentence});
  }

  Conversions& all_;
  const BlockFields& block_;
  std::vector<double> values_;
  std::vector<std::uint64_t> references_;
};

void ConversionMaker::readReferences() {
  const std::uint64_t fixed = block_.type().links.size();
  const std::uint64_t count = block_.number("cc_ref_count");
  forEachLink(all_.file_, block_.raw(), [&](std::uint64_t index, std::int64_t link) {
    if (index >= fixed && index - fixed < count) {
      references_.push_back(static_cast<std::uint64_t>(link));
    }
  });
}

void ConversionMaker::readValues() {
  const std::uint64_t count = std::min(block_.number("cc_val_count"), block_.tailBytes() / 8);
  std::string bytes(static_cast<std::size_t>(8 * count), '\0');
  bytes.resize(all_.file_.readAt(block_.tailAt(), bytes.data(), bytes.size()));
  for (std::size_t at = 0; at + 8 <= bytes.size(); at += 8) {
    values_.push_back(loadLe<double>(bytes.data() + at));
  }
}

/// Whether there are as many parameters as the type needs at least.
bool ConversionMaker::has(std::size_t values, std::size_t references) {
  if (values_.size() >= values && references_.size() >= references) {
    return true;
  }
  report("expected " + std::to_string(values) + " values and " + std::to_string(references) +
         " references for the conversion's type " + std::to_string(block_.number("cc_type")) +
         ", found " + std::to_string(values_.size()) + " and " +
         std::to_string(references_.size()));
  return false;
}

std::unique_ptr<Conversion> ConversionMaker::ofType(unsigned type) {
  switch (type) {
    case Conversion::identity:
      return nullptr;
    case Conversion::algebraic:
      return algebraic();
    case Conversion::range_to_value:
      return rangeToValue();
    case Conversion::value_to_text:
      return has(0, 1) ? std::make_unique<ValueToText>(values_, targets(values_.size())) : nullptr;
    case Conversion::range_to_text:
      return rangeToText();
    case Conversion::text_to_value:
      return textToValue();
    case Conversion::text_to_text:
      return textToText();
    default:
      return ofNumbers(type);
  }
}

std::unique_ptr<Conversion> ConversionMaker::ofNumbers(unsigned type) {
  switch (type) {
    case Conversion::linear:
      if (!has(2, 0) || (values_[0] == 0 && values_[1] == 1)) {  // integers stay exact
        return nullptr;
      }
      return std::make_unique<Linear>(values_[0], values_[1]);
    case Conversion::rational:
      return has(6, 0) ? std::make_unique<Rational>(values_) : nullptr;
    case Conversion::value_to_value_interpolated:
    case Conversion::value_to_value:
      return has(2, 0) ? std::make_unique<ValueTable>(
                             values_, type == Conversion::value_to_value_interpolated)
                       : nullptr;
    default:
      report("expected a known conversion type, found " + std::to_string(type));
      return nullptr;
  }
}

std::unique_ptr<Conversion> ConversionMaker::algebraic() {
  if (!has(0, 1)) {
    return nullptr;
  }
  const std::string* text = all_.textAt(references_[0]);
  auto conversion = std::make_unique<Algebraic>(text == nullptr ? "" : *text);
  if (conversion->problem().empty()) {
    return conversion;
  }
  report("expected a formula that can be evaluated, found " +
         printable(text == nullptr ? "none" : "\"" + *text + "\"") + ": " +
         printable(conversion->problem()));
  return nullptr;
}

RangeTable ConversionMaker::ranges(std::size_t count, std::size_t step) const {
  std::vector<std::pair<double, double>> ranges;
  for (std::size_t i = 0; i < count; ++i) {
    ranges.emplace_back(values_[step * i], values_[step * i + 1]);
  }
  return RangeTable(std::move(ranges));
}

std::unique_ptr<Conversion> ConversionMaker::rangeToValue() {
  if (!has(1, 0)) {
    return nullptr;
  }
  const std::size_t count = values_.size() / 3;
  std::vector<double> results;
  for (std::size_t i = 0; i < count; ++i) {
    results.push_back(values_[3 * i + 2]);
  }
  if (values_.size() % 3 != 0) {
    results.push_back(values_[3 * count]);
  }
  return std::make_unique<RangeToValue>(ranges(count, 3), std::move(results));
}

std::unique_ptr<Conversion> ConversionMaker::rangeToText() {
  const std::size_t count = values_.size() / 2;
  return has(0, 1) ? std::make_unique<RangeToText>(ranges(count, 2), targets(count)) : nullptr;
}

/// The targets of a table's entries and the default one, with none for those that are missing.
std::vector<Target> ConversionMaker::targets(std::size_t entries) {
  std::vector<Target> targets(entries + 1);
  for (std::size_t i = 0; i < std::min(targets.size(), references_.size()); ++i) {
    targets[i].text = all_.textAt(references_[i]);
    if (targets[i].text == nullptr) {
      targets[i].conversion = all_.at(references_[i]);
    }
  }
  return targets;
}

std::unique_ptr<Conversion> ConversionMaker::textToValue() {
  if (!has(1, 0)) {
    return nullptr;
  }
  std::vector<const std::string*> keys;
  for (std::size_t i = 0; i < std::min(references_.size(), values_.size() - 1); ++i) {
    keys.push_back(all_.textAt(references_[i]));
  }
  std::vector<Conversion::Result> results;
  for (const double value : values_) {
    results.emplace_back(value);
  }
  return std::make_unique<TextTable>(keys, std::move(results), Conversion::Effect::numbers);
}

std::unique_ptr<Conversion> ConversionMaker::textToText() {
  std::vector<const std::string*> keys;
  std::vector<Conversion::Result> results;
  const auto result = [&](std::uint64_t reference) {
    const std::string* text = all_.textAt(reference);
    results.push_back(text == nullptr ? Conversion::Result() : Conversion::Result(text));
  };
  for (std::size_t i = 0; i + 1 < references_.size(); i += 2) {
    keys.push_back(all_.textAt(references_[i]));
    result(references_[i + 1]);
  }
  result(references_.size() % 2 == 0 ? 0 : references_.back());
  return std::make_unique<TextTable>(keys, std::move(results), Conversion::Effect::texts);
}

Conversion* Conversions::at(std::uint64_t offset) {
  if (offset == 0) {
    return nullptr;
  }
  if (depth_ >= most_nested) {
    report_(
        {Code::conversion_unreadable, std::min(offset, file_.size()),
         "expected at most " + std::to_string(most_nested) + " nested conversions, found more"});
    return nullptr;
  }
  const auto [entry, is_new] = entries_.try_emplace(offset);
  Entry& kept = entry->second;
  if (!is_new) {
    if (kept.is_being_read) {
      report_({Code::conversion_unreadable, offset,
               "expected the conversions to end, found that this one leads back to itself"});
    }
    return kept.conversion.get();
  }
  ++depth_;
  const auto block = readFields(file_, offset, "CC");
  if (block) {
    kept.conversion = ConversionMaker(*this, *block).make();
  } else {
    report_({Code::conversion_unreadable, std::min(offset, file_.size()),
             "expected a conversion, found none"});
  }
  kept.is_being_read = false;
  --depth_;
  return kept.conversion.get();
}

const std::string* Conversions::textAt(std::uint64_t offset) {
  const auto found = texts_.find(offset);
  if (found != texts_.end()) {
    return &found->second;
  }
  const auto block = offset == 0 ? std::nullopt : readRawBlock(file_, offset);
  if (!block || block->type().contents != Contents::text || !block->holdsItsLinks()) {
    return nullptr;
  }
  const std::uint64_t head = RawBlock::header_size + block->linkCount() * RawBlock::link_size;
  std::string text(
      static_cast<std::size_t>(std::min<std::uint64_t>(block->length - head, longest_text)), '\0');
  text.resize(file_.readAt(offset + head, text.data(), text.size()));
  text = fromUtf8(block->letters() == "MD" ? plainText(text.substr(0, text.find('\0'))) : text);
  if (!mayKeep(text.size(), offset)) {
    return nullptr;
  }
  return &texts_.emplace(offset, std::move(text)).first->second;
}

bool Conversions::mayKeep(std::uint64_t bytes, std::uint64_t offset) {
  if (budget_.spend(bytes)) {
    return true;
  }
  if (!has_told_) {
    report_({Code::work_limited, offset,
             "expected conversions and texts that do not overlap, found more bytes in them than "
             "in the file"});
    has_told_ = true;
  }
  return false;
}

}  // namespace mdf_reader
