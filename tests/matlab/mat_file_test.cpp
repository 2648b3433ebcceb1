#include "matlab/mat_file.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>
#include <utility>
#include <vector>

#include "extracting/new_file.h"
#include "tools/support/file_size_limit.h"
#include "tools/support/scratch_folder.h"

using namespace mdf_tests;
using namespace mdf_tools;

/// What the sanitizers do not report: HDF5 loses its buffers when it cannot write.
extern "C" const char* __lsan_default_suppressions();
extern "C" const char* __lsan_default_suppressions() { return "leak:libhdf5"; }

namespace {

template <class T>
void showNumbers(const matvar_t& variable, std::string& text) {
  for (std::size_t i = 0; i < variable.dims[0] * variable.dims[1]; ++i) {
    text += ' ';
    printNumber(static_cast<double>(static_cast<const T*>(variable.data)[i]), text);
  }
}

void showText(const matvar_t& variable, std::string& text) {
  for (std::size_t i = 0; i < variable.dims[1]; ++i) {
    const unsigned unit = variable.data_type == MAT_T_UINT16
                              ? static_cast<const std::uint16_t*>(variable.data)[i]
                              : static_cast<const std::uint8_t*>(variable.data)[i];
    text +=
        unit < 0x80 ? std::string(1, static_cast<char>(unit)) : '<' + std::to_string(unit) + '>';
  }
}

/// A line for each array: where it is, its size, its class, and the values.
void show(const std::string& path, matvar_t& variable, std::string& text) {
  if (variable.class_type == MAT_C_STRUCT) {
    const std::size_t count = Mat_VarGetNumberOfFields(&variable);
    for (std::size_t i = 0; i < count; ++i) {
      show(path + '.' + Mat_VarGetStructFieldnames(&variable)[i],
           *Mat_VarGetStructFieldByIndex(&variable, i, 0), text);
    }
    return;
  }
  text += path + ' ' + std::to_string(variable.dims[0]) + 'x' + std::to_string(variable.dims[1]);
  switch (variable.class_type) {
    case MAT_C_CELL:
      text += " cell\n";
      for (std::size_t i = 0; i < variable.dims[0]; ++i) {
        show(path + '{' + std::to_string(i + 1) + '}',
             *Mat_VarGetCell(&variable, static_cast<int>(i)), text);
      }
      return;
    case MAT_C_CHAR:
      text += " char ";
      showText(variable, text);
      break;
    case MAT_C_DOUBLE:
      text += " double";
      showNumbers<double>(variable, text);
      break;
    case MAT_C_SINGLE:
      text += " single";
      showNumbers<float>(variable, text);
      break;
    case MAT_C_UINT8:
      text += " uint8";
      showNumbers<std::uint8_t>(variable, text);
      break;
    case MAT_C_INT64:
      text += " int64";
      showNumbers<std::int64_t>(variable, text);
      break;
    default:
      text += " class " + std::to_string(variable.class_type);
  }
  text += '\n';
}

std::string shown(const std::string& path) {
  std::string text;
  mat_t* const file = Mat_Open(path.c_str(), MAT_ACC_RDONLY);
  if (file == nullptr) {
    return "no MATLAB file";
  }
  while (matvar_t* const variable = Mat_VarReadNext(file)) {
    show(variable->name, *variable, text);
    Mat_VarFree(variable);
  }
  (void)Mat_Close(file);
  return text;
}

/// "5.0" or "7.3", as the first line of the file says.
std::string versionOf(const std::string& path) {
  std::string header(30, ' ');
  std::ifstream(path, std::ios::binary).read(header.data(), 30);
  return header.substr(7, 3);
}

template <class T>
ColumnData numbers(const std::vector<T>& values) {
  ColumnData column(typeOf<T>());
  std::copy(values.begin(), values.end(), column.extend<T>(values.size()));
  return column;
}

ColumnData texts(ColumnType type, const std::vector<std::string>& values) {
  ColumnData column(type);
  for (const std::string& value : values) {
    column.add(value);
  }
  return column;
}

/// A structure with one field.
MatVariable structure(const std::string& name, const std::string& field, MatVariable value) {
  std::vector<MatField> fields;
  fields.push_back({field, std::move(value)});
  return matStructure(name, std::move(fields));
}

MatVariable engine(const ColumnData& counts, const ColumnData& levels) {
  std::vector<MatField> fields;
  fields.push_back({"counts", matColumn(counts)});
  fields.push_back({"levels", matColumn(levels)});
  fields.push_back({"none", matColumn(numbers<double>({}))});
  fields.push_back({"bytes", matColumn(texts(ColumnType::bytes, {std::string("\0\xFF", 2), ""}))});
  fields.push_back({"info", structure("", "unit",
                                      matText("\xC2\xB0"
                                              "C \xF0\x9F\x98\x80"))});
  return matStructure("engine", std::move(fields));
}

/// Writes three structures, of which the second one takes most bytes.
void writeThree(const std::string& path, std::uint64_t limit) {
  const ColumnData counts = numbers<std::int64_t>({-3, 1LL << 40, 5});
  ColumnData levels = numbers<float>({0.5F, 2, 3});
  levels.setNull(1);
  MatFile file(path, path, limit);
  file.add(structure("clock", "states",
                     matColumn(texts(ColumnType::text, {"on", "",
                                                        "gr\xC3\xB6\xC3\x9F"
                                                        "er"}))));
  file.add(engine(counts, levels));
  file.add(structure("gearbox", "number", matNumber(0.25)));
  file.close();
}

const std::string three =
    "clock.states 3x1 cell\n"
    "clock.states{1} 1x2 char on\n"
    "clock.states{2} 0x0 char \n"
    "clock.states{3} 1x6 char gr<246><223>er\n"
    "engine.counts 3x1 int64 -3 1099511627776 5\n"
    "engine.levels 3x1 single 0.5 nan 3\n"
    "engine.none 0x1 double\n"
    "engine.bytes 2x1 cell\n"
    "engine.bytes{1} 1x2 uint8 0 255\n"
    "engine.bytes{2} 0x0 uint8\n"
    "engine.info.unit 1x5 char <176>C <55357><56832>\n"
    "gearbox.number 1x1 double 0.25\n";

TEST(MatFile, Version5) {
  const ScratchFolder folder;
  const std::string path = (folder / "three.mat").string();
  writeThree(path, MatFile::version_5_limit);
  EXPECT_EQ(versionOf(path), "5.0");
  EXPECT_EQ(shown(path), three);
}

TEST(MatFile, BecomesOneOfVersion73WithAVariableThatIsTooLarge) {
  const ScratchFolder folder;
  const std::string path = (folder / "three.mat").string();
  writeThree(path, 600);
  EXPECT_EQ(versionOf(path), "7.3");
  EXPECT_EQ(shown(path), three);
}

TEST(MatFile, SaysWhyItCannotBeWritten) {
  const ScratchFolder folder;
  const std::string path = (folder / "three.mat").string();
  for (const std::uint64_t limit : {MatFile::version_5_limit, std::uint64_t{600}}) {
    writeThree(path, limit);
    const std::uint64_t size = std::filesystem::file_size(path);
    for (const std::uint64_t room : {std::uint64_t{0}, size / 2, size - 1}) {
      std::string message;
      try {
        const FileSizeLimit full_disk(room);
        writeThree(path, limit);
      } catch (const Unwritable& error) {
        message = error.what();
      }
      EXPECT_EQ(message, "cannot write to " + path + ": File too large") << room << " of " << size;
    }
  }
}

}  // namespace
