#ifndef MDF_READER_COLUMNS_UNIQUE_NAMES_H_
#define MDF_READER_COLUMNS_UNIQUE_NAMES_H_

#include <cstddef>
#include <string>
#include <unordered_map>
#include <unordered_set>

namespace mdf_reader {

/// Makes the names of columns different from one another.
class UniqueNames {
 public:
  /// The name or, where it is taken, "name (2)" with the next number that is free.
  std::string unique(const std::string& name) {
    std::string candidate = name;
    while (!taken_.insert(candidate).second) {
      std::size_t& number = numbers_.try_emplace(name, 1).first->second;
      candidate = name + " (" + std::to_string(++number) + ')';
    }
    return candidate;
  }

 private:
  std::unordered_set<std::string> taken_;
  std::unordered_map<std::string, std::size_t> numbers_;
};

}  // namespace mdf_reader

#endif  // MDF_READER_COLUMNS_UNIQUE_NAMES_H_
