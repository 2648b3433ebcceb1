#ifndef MDF_READER_SUMMARY_CONVERSION_JSON_H_
#define MDF_READER_SUMMARY_CONVERSION_JSON_H_

#include <cstddef>
#include <cstdint>
#include <string>
#include <unordered_map>

#include "../bytes/work_budget.h"
#include "json_type.h"

namespace mdf_reader {

class InputFile;

/// The conversions of a file as JSON, each made once.
class ConversionTexts {
 public:
  /// @param file must outlast this object.
  explicit ConversionTexts(InputFile& file);

  /// One line: its type, and the values and references that it has, as the block lists them. A
  /// reference is a text, another conversion, or null. The type alone where conversions have more
  /// of these together than the file has bytes. "" where there is no conversion.
  const std::string& at(std::uint64_t offset);

 private:
  Json make(std::uint64_t offset, std::size_t depth);
  Json target(std::uint64_t offset, std::size_t depth);

  InputFile& file_;
  WorkBudget budget_;
  std::unordered_map<std::uint64_t, std::string> texts_;
};

}  // namespace mdf_reader

#endif  // MDF_READER_SUMMARY_CONVERSION_JSON_H_
