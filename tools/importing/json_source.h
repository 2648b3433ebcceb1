#ifndef MDF_TOOLS_IMPORTING_JSON_SOURCE_H_
#define MDF_TOOLS_IMPORTING_JSON_SOURCE_H_

#include <string>
#include <unordered_map>
#include <vector>

#include "table_source.h"

namespace mdf_tools {

/// Tables as lines of JSON: an object with the "columns" of a table, then one with the "values" of
/// each row. Objects with neither are rows of one table, and their members the values.
class JsonSource : public TableSource {
 public:
  using TableSource::TableSource;

  bool nextTable() override;
  bool nextRow(std::vector<Cell>& cells) override;

  /// A value of an object, before its column is known.
  struct Member {
    std::string name;
    std::string text;
    Cell::Kind kind = Cell::Kind::missing;
  };

 private:
  bool nextLine();
  void takeHead();
  std::size_t columnOf(const std::string& name);

  std::vector<Member> members_;  ///< of the line
  std::unordered_map<std::string, std::size_t> indices_;
};

}  // namespace mdf_tools

#endif  // MDF_TOOLS_IMPORTING_JSON_SOURCE_H_
