#include "row.h"

#include <limits>

#include "../values/table.h"

namespace mdf_reader {

const ChannelGroup& Row::group() const { return table_.group(); }

std::uint64_t Row::number() const { return sample_.number; }

std::size_t Row::size() const { return table_.columns().size(); }

const std::string& Row::name(std::size_t column) const { return table_.columns()[column].name(); }

const std::string& Row::unit(std::size_t column) const { return table_.columns()[column].unit(); }

Value Row::value(std::size_t column) const { return table_.columns()[column].value(sample_); }

double Row::real(std::size_t column) const {
  return numberOf(value(column)).value_or(std::numeric_limits<double>::quiet_NaN());
}

std::string Row::text(std::size_t column) const {
  std::string text;
  appendText(value(column), text);
  return text;
}

}  // namespace mdf_reader
