#include "properties.h"

#include <cstddef>
#include <pugixml.hpp>
#include <string_view>
#include <utility>

#include "texts.h"

namespace mdf_reader {

namespace {

/// Collects the properties below an element.
class Collector {
 public:
  /// @param most bytes of all names: each is as long as those around it together.
  explicit Collector(std::size_t most) : left_(most) {}

  void addAll(const pugi::xml_node& parent, const std::string& around, std::size_t depth);
  std::vector<Property> properties() { return std::move(properties_); }

 private:
  void add(const pugi::xml_node& element, std::string name);

  std::size_t left_;
  std::vector<Property> properties_;
};

std::string nameIn(const std::string& around, const pugi::xml_node& element) {
  const std::string name = element.attribute("name").value();
  return around.empty() ? name : around + '.' + name;
}

void Collector::add(const pugi::xml_node& element, std::string name) {
  const std::string unit = element.attribute("unit").value();
  name += unit.empty() ? "" : " [" + unit + ']';
  if (name.size() <= left_) {
    left_ -= name.size();
    properties_.push_back({std::move(name), std::string(trimmed(element.text().get()))});
  }
}

void Collector::addAll(const pugi::xml_node& parent, const std::string& around, std::size_t depth) {
  constexpr std::size_t most_nested = 16;
  if (depth > most_nested) {
    return;
  }
  std::size_t number = 0;
  for (const pugi::xml_node& element : parent.children()) {
    const std::string_view tag = element.name();
    if (tag == "e") {
      add(element, nameIn(around, element));
    } else if (tag == "eli") {
      add(element, around + '[' + std::to_string(number++) + ']');
    } else if (tag == "li") {
      addAll(element, around + '[' + std::to_string(number++) + ']', depth + 1);
    } else if (tag == "tree" || tag == "list" || tag == "elist") {
      addAll(element, nameIn(around, element), depth + 1);
    }
  }
}

}  // namespace

std::vector<Property> readProperties(InputFile& file, std::uint64_t offset) {
  constexpr std::size_t times = 16;
  const std::string comment = readText(file, offset).value_or("");
  pugi::xml_document document;
  if (!document.load_buffer(comment.data(), comment.size(), pugi::parse_default,
                            pugi::encoding_utf8)) {
    return {};
  }
  Collector collector(times * comment.size());
  collector.addAll(document.document_element().child("common_properties"), "", 0);
  return collector.properties();
}

}  // namespace mdf_reader
