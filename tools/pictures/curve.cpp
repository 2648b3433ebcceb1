#include "curve.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>
#include <set>
#include <utility>

#include "reader/values/text_encoding.h"

namespace mdf_tools {

namespace {

constexpr double no_number = std::numeric_limits<double>::quiet_NaN();

constexpr unsigned time_axis = 1;  // synchronisation types
constexpr unsigned index_axis = 4;

std::string labelOf(const ColumnHead& column) {
  return column.unit.empty() ? column.name : column.name + " [" + column.unit + ']';
}

/// What the curves of a table have in common.
Curve patternOf(const TableHead& table, std::size_t columns, const CurveSource& source) {
  Curve curve{source.prefix, "", "sample", Decimator(columns), source.file};
  curve.axis = index_axis;
  if (table.has_master) {
    const ColumnHead& master = table.columns[0];
    curve.x_label = labelOf(master);
    curve.axis = master.channel == nullptr ? 0 : master.channel->sync_type;
  }
  if (table.has_master && curve.axis == time_axis && source.clock) {
    curve.clock = source.clock;
    curve.x_label = table.columns[0].name + " [" + source.clock->zone + ']';
  }
  if (const ChannelGroup* const group = table.group) {
    constexpr std::size_t longest = 200;
    curve.group = fromUtf8(group->shownName().substr(0, longest));
    curve.group_number = std::to_string(group->index) +
                         (group->element ? '.' + std::to_string(*group->element) : "");
  }
  return curve;
}

}  // namespace

void CurveCollector::begin(const TableHead& table) {
  first_ = curves_.size();
  const std::vector<ColumnHead>& columns = table.columns;
  const Curve pattern = patternOf(table, columns_, source_);
  for (std::size_t i = table.has_master ? 1 : 0; i < columns.size(); ++i) {
    if (curves_.size() >= most_curves) {
      left_out_ += columns.size() - i;
      return;
    }
    Curve& curve = curves_.emplace_back(pattern);
    curve.channel = columns[i].name;
    curve.name += columns[i].name;
    curve.unit = columns[i].unit;
    curve.is_state = curve.unit.empty() && isInteger(columns[i].type);
  }
}

void CurveCollector::addAboveZero(Curve& curve, const Abscissa& x, std::vector<double> values) {
  for (double& value : values) {
    if (value <= 0) {
      value = no_number;
      ++not_above_zero_;
    }
  }
  curve.points.add(x, values.data());
}

bool CurveCollector::take(const Batch& batch) {
  const bool has_master = batch.head().has_master;
  const std::size_t first_column = has_master ? 1 : 0;
  const ColumnData* const master = has_master ? &batch.column(0) : nullptr;
  const bool is_as_it_is =
      has_master && master->type() == ColumnType::float64 && master->nullCount() == 0;
  std::vector<double> numbers;
  if (has_master && !is_as_it_is) {
    numbers = master->reals();
  }
  for (std::size_t row = 0; !has_master && row < batch.rows(); ++row) {
    numbers.push_back(static_cast<double>(batch.record(row)));
  }
  const Abscissa x(is_as_it_is ? master->values<double>() : numbers.data(), batch.rows());
  for (std::size_t i = first_; i < curves_.size(); ++i) {
    const ColumnData& y = batch.column(first_column + i - first_);
    if (is_logarithmic_) {
      addAboveZero(curves_[i], x, y.reals());
    } else if (isNumber(y.type()) && y.nullCount() == 0) {
      withNumberType(y.type(),
                     [&](auto zero) { curves_[i].points.add(x, y.values<decltype(zero)>()); });
    } else {
      curves_[i].points.add(x, y.reals().data());
    }
  }
  return first_ < curves_.size();
}

bool hasNumbers(const Curve& curve) {
  const std::vector<Point> points = curve.points.points();
  return std::any_of(points.begin(), points.end(),
                     [](const Point& point) { return !std::isnan(point.y); });
}

void tellApart(std::vector<Curve>& curves) {
  std::map<std::string, std::set<std::string>> groups;        // by the curves' names
  std::map<std::string, std::set<std::string>> groups_named;  // by those of groups of a file
  for (const Curve& curve : curves) {
    groups[curve.name].insert(curve.group_number);
    groups_named[curve.file + '\n' + curve.group].insert(curve.group_number);
  }
  for (Curve& curve : curves) {
    if (groups[curve.name].size() > 1) {
      const bool is_alone = groups_named[curve.file + '\n' + curve.group].size() == 1;
      const std::string& group =
          is_alone && !curve.group.empty() ? curve.group : curve.group_number;
      curve.name.insert(curve.name.size() - curve.channel.size(), group + '.');
    }
  }
}

}  // namespace mdf_tools
