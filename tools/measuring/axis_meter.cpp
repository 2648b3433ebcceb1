#include "axis_meter.h"

#include <cstddef>

#include "numbers.h"

namespace mdf_tools {

namespace {

template <class T>
class NumberAxisMeter : public AxisMeter {
 public:
  void add(const Batch& batch) override {
    const ColumnData& column = batch.column(0);
    const T* const values = column.values<T>();
    for (std::size_t row = 0; row < column.rows(); ++row) {
      if (column.isValid(row) && isFinite(values[row])) {
        add({values[row], batch.record(row), rows_ + row});
      }
    }
    rows_ += column.rows();
  }

  AxisStatistics statistics() const override {
    AxisStatistics statistics = statistics_;
    const double extent = differenceOf(last_.value, first_.value);
    if (extent > 0) {
      statistics.rate = finiteOrNone(static_cast<double>(last_.row - first_.row) / extent);
    }
    return statistics;
  }

 private:
  struct Sample {
    T value{};
    std::uint64_t record = 0;
    std::uint64_t row = 0;  ///< among the records that were taken
  };

  void add(const Sample& sample) {
    if (has_any_) {
      goOn(sample);
    } else {
      first_ = sample;
      has_any_ = true;
    }
    last_ = sample;
  }

  void goOn(const Sample& sample) {
    const double length = differenceOf(sample.value, last_.value);
    if (length < 0) {
      if (statistics_.backwards++ == 0) {
        statistics_.first_backwards = stepTo(sample, length);
      }
    } else if (!statistics_.longest_gap || length > statistics_.longest_gap->length) {
      statistics_.longest_gap = stepTo(sample, length);
    }
  }

  Step stepTo(const Sample& sample, double length) const {
    return {last_.record, valueOf(last_.value), valueOf(sample.value), length};
  }

  std::uint64_t rows_ = 0;
  bool has_any_ = false;
  Sample first_;
  Sample last_;
  AxisStatistics statistics_;
};

}  // namespace

std::unique_ptr<AxisMeter> axisMeterFor(ColumnType type) {
  if (!isNumber(type)) {
    return nullptr;
  }
  return withNumberType(type, [](auto zero) -> std::unique_ptr<AxisMeter> {
    return std::make_unique<NumberAxisMeter<decltype(zero)>>();
  });
}

}  // namespace mdf_tools
