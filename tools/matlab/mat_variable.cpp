#include "mat_variable.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <limits>
#include <new>

namespace mdf_tools {

namespace {

/// Bytes of an array's tags, flags, dimensions and padding.
constexpr std::uint64_t array_bytes = 64;

/// Bytes of a field's name.
constexpr std::uint64_t name_bytes = 64;

struct NumberClass {
  matio_classes in_memory;
  matio_types in_file;
};

/// By ColumnType.
constexpr std::array<NumberClass, 10> number_classes{{{MAT_C_UINT8, MAT_T_UINT8},
                                                      {MAT_C_UINT16, MAT_T_UINT16},
                                                      {MAT_C_UINT32, MAT_T_UINT32},
                                                      {MAT_C_UINT64, MAT_T_UINT64},
                                                      {MAT_C_INT8, MAT_T_INT8},
                                                      {MAT_C_INT16, MAT_T_INT16},
                                                      {MAT_C_INT32, MAT_T_INT32},
                                                      {MAT_C_INT64, MAT_T_INT64},
                                                      {MAT_C_SINGLE, MAT_T_SINGLE},
                                                      {MAT_C_DOUBLE, MAT_T_DOUBLE}}};

MatVariable owned(matvar_t* variable, std::uint64_t bytes) {
  if (variable == nullptr) {
    throw std::bad_alloc();
  }
  return {std::unique_ptr<matvar_t, MatVariable::Deleter>(variable), array_bytes + bytes};
}

enum class Values { copied, kept_outside };

MatVariable array(NumberClass number, std::array<std::size_t, 2> size, std::size_t width,
                  const void* values, Values where = Values::copied) {
  // It wants an address even of no values.
  static const double nothing = 0;
  const std::size_t count = size[0] * size[1];
  void* const data = const_cast<void*>(count == 0 ? &nothing : values);
  return owned(MatLibrary::get().createVariable(
                   nullptr, number.in_memory, number.in_file, 2, size.data(), data,
                   where == Values::kept_outside ? int{MAT_F_DONT_COPY_DATA} : 0),
               std::uint64_t{count} * width);
}

/// The size of a row; MATLAB's empty one has no rows.
std::array<std::size_t, 2> rowSize(std::size_t length) {
  return {length == 0 ? std::size_t{0} : 1, length};
}

/// Well-formed UTF-8 as UTF-16.
std::u16string toUtf16(std::string_view utf8) {
  std::u16string text;
  for (std::size_t i = 0; i < utf8.size();) {
    const auto first = static_cast<unsigned char>(utf8[i]);
    const std::size_t length = first < 0x80 ? 1 : first < 0xE0 ? 2 : first < 0xF0 ? 3 : 4;
    std::uint32_t code = length == 1 ? first : first & (0x7FU >> length);
    for (std::size_t k = 1; k < length && i + k < utf8.size(); ++k) {
      code = (code << 6U) | (static_cast<unsigned char>(utf8[i + k]) & 0x3FU);
    }
    if (code >= 0x10000) {
      text += static_cast<char16_t>(0xD7C0 + (code >> 10U));
      code = 0xDC00 + (code & 0x3FFU);
    }
    text += static_cast<char16_t>(code);
    i += length;
  }
  return text;
}

MatVariable matBytes(std::string_view bytes) {
  return array({MAT_C_UINT8, MAT_T_UINT8}, rowSize(bytes.size()), 1, bytes.data());
}

MatVariable matCells(const ColumnData& values) {
  std::vector<MatVariable> cells;
  std::uint64_t bytes = 0;
  for (std::size_t row = 0; row < values.rows(); ++row) {
    cells.push_back(values.type() == ColumnType::text ? matText(values.text(row))
                                                      : matBytes(values.text(row)));
    bytes += cells.back().bytes;
  }
  std::vector<matvar_t*> released(std::max<std::size_t>(cells.size(), 1));
  std::transform(cells.begin(), cells.end(), released.begin(),
                 [](MatVariable& cell) { return cell.variable.release(); });
  std::array<std::size_t, 2> size{cells.size(), 1};
  return owned(MatLibrary::get().createVariable(nullptr, MAT_C_CELL, MAT_T_CELL, 2, size.data(),
                                                released.data(), 0),
               bytes);
}

/// Numbers of which some are missing.
template <class T>
MatVariable matGaps(const ColumnData& values) {
  std::vector<T> numbers(values.rows());
  for (std::size_t row = 0; row < numbers.size(); ++row) {
    numbers[row] = static_cast<T>(values.real(row));
  }
  return array(number_classes[static_cast<std::size_t>(typeOf<T>())], {numbers.size(), 1},
               sizeof(T), numbers.data());
}

}  // namespace

MatVariable matText(std::string_view utf8) {
  // Rows of 16-bit numbers are what MATLAB writes itself, and Octave reads.
  const std::u16string text = toUtf16(utf8);
  return array({MAT_C_CHAR, MAT_T_UINT16}, rowSize(text.size()), 2, text.data());
}

MatVariable matNumber(double number) {
  return array({MAT_C_DOUBLE, MAT_T_DOUBLE}, {1, 1}, sizeof number, &number);
}

MatVariable matColumn(const ColumnData& values) {
  if (!isNumber(values.type())) {
    return matCells(values);
  }
  if (values.nullCount() > 0) {
    return values.type() == ColumnType::float32 ? matGaps<float>(values) : matGaps<double>(values);
  }
  return array(number_classes[static_cast<std::size_t>(values.type())], {values.rows(), 1},
               widthOf(values.type()), values.bytes(), Values::kept_outside);
}

MatVariable matStructure(const std::string& name, std::vector<MatField> fields) {
  std::vector<const char*> names;
  std::uint64_t bytes = 0;
  for (const MatField& field : fields) {
    names.push_back(field.name.c_str());
    bytes += name_bytes + field.value.bytes;
  }
  std::array<std::size_t, 2> size{1, 1};
  MatVariable structure =
      owned(MatLibrary::get().createStructure(name.empty() ? nullptr : name.c_str(), 2, size.data(),
                                              names.data(), static_cast<unsigned>(names.size())),
            bytes);
  for (std::size_t i = 0; i < fields.size(); ++i) {
    MatLibrary::get().setField(structure.variable.get(), i, 0, fields[i].value.variable.release());
  }
  return structure;
}

}  // namespace mdf_tools
