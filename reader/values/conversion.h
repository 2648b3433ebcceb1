#ifndef MDF_READER_VALUES_CONVERSION_H_
#define MDF_READER_VALUES_CONVERSION_H_

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "../blocks/finding.h"
#include "../bytes/input_file.h"
#include "../bytes/work_budget.h"

namespace mdf_reader {

class BlockFields;

/// How raw values become physical ones.
class Conversion {
 public:
  /// The `cc_type` of a conversion block.
  enum Type : unsigned {
    identity = 0,
    linear = 1,
    rational = 2,
    algebraic = 3,
    value_to_value_interpolated = 4,
    value_to_value = 5,
    range_to_value = 6,
    value_to_text = 7,
    range_to_text = 8,
    text_to_value = 9,
    text_to_text = 10,
  };

  Conversion() = default;
  virtual ~Conversion() = default;
  Conversion(const Conversion&) = delete;
  Conversion& operator=(const Conversion&) = delete;

  /// What becomes of all values of a kind.
  enum class Effect {
    none,     ///< they stay as they are
    numbers,  ///< numbers, as far as the conversion knows them
    texts,    ///< texts, and numbers
  };
  virtual Effect ofNumbers() const { return Effect::none; }
  virtual Effect ofTexts() const { return Effect::none; }

  /// What becomes of one value.
  struct Result {
    enum Kind { unchanged, number, text };
    Kind kind = unchanged;
    double real = 0;                          ///< a number
    const std::string* characters = nullptr;  ///< a text, which lasts as long as the conversions

    Result() = default;
    explicit Result(double value) : kind(number), real(value) {}
    explicit Result(const std::string* value) : kind(text), characters(value) {}
  };

  /// The physical value of a raw number.
  /// @param is_integer whether it is stored as one: it decides where a range ends.
  virtual Result of(double number, bool is_integer);
  /// The physical value of a raw text.
  virtual Result of(const std::string& text);

  /// Turns raw numbers into physical ones. Those whose physical value is none stay as they are.
  virtual void convert(double* numbers, std::size_t count, bool is_integer);

  /// How many decimal places suffice to write what becomes of an integer, as of 9106 with a factor
  /// of 0.0001; nothing where they are not known.
  virtual std::optional<int> decimals() const { return std::nullopt; }

  /// How deep conversions are nested, including this one.
  virtual std::size_t height() const { return 1; }
};

/// The conversions of a file, each read once, however many channels share it.
class Conversions {
 public:
  Conversions(InputFile& file, const FindingSink& report)
      : file_(file), report_(report), budget_(file.size()) {}

  /// The conversion at an offset. Null where no value changes: at offset 0, for the identity, and
  /// for a conversion that cannot be used, which is reported.
  Conversion* at(std::uint64_t offset);

 private:
  struct Entry {
    std::unique_ptr<Conversion> conversion;
    bool is_being_read = true;
  };
  friend class ConversionMaker;

  /// Text at the end of a reference, which lasts as long as this object; null when there is none.
  const std::string* textAt(std::uint64_t offset);

  /// Whether so many bytes more may be kept in memory.
  bool mayKeep(std::uint64_t bytes, std::uint64_t offset);

  InputFile& file_;
  const FindingSink& report_;
  std::unordered_map<std::uint64_t, Entry> entries_;
  std::unordered_map<std::uint64_t, std::string> texts_;
  WorkBudget budget_;  ///< for bytes that are kept in memory
  bool has_told_ = false;
  std::size_t depth_ = 0;
};

}  // namespace mdf_reader

#endif  // MDF_READER_VALUES_CONVERSION_H_
