#include <gtest/gtest.h>

#include "reader/blocks/identification.h"
#include "tools/samples/sample.h"
#include "tools/support/file_builder.h"
#include "tools/support/temp_file.h"
#include "viewing/sample_reader.h"

namespace mdf_tests {

namespace {

using namespace mdf_tools;

std::string printed(const ColumnData& column, std::size_t row) {
  std::string text = column.isValid(row) ? "" : "none";
  column.print(row, text);
  return text + '\n';
}

/// The values of each column of each table, when the file is read as a whole.
std::vector<std::vector<std::string>> readWhole(const Measurement& file,
                                                const std::vector<ViewedTable>& tables) {
  std::vector<std::vector<std::string>> all;
  for (const ViewedTable& table : tables) {
    all.emplace_back(table.columns.size());
  }
  Batches batches = file.read({});
  while (const Batch* const batch = batches.next()) {
    for (std::size_t i = 0; i < tables.size(); ++i) {
      if (tables[i].group != batch->group().index || tables[i].element != batch->group().element) {
        continue;
      }
      for (std::size_t column = 0; column < batch->columnCount(); ++column) {
        for (std::size_t row = 0; row < batch->rows(); ++row) {
          all[i][column] += printed(batch->column(column), row);
        }
      }
    }
  }
  return all;
}

std::string readAlone(const Measurement& file, const ViewedTable& table,
                      const ViewedColumn& column) {
  std::string values;
  readSamples(file, table, column, {},
              [&](const std::vector<double>& times, const ColumnData& samples) {
                EXPECT_EQ(times.size(), samples.rows());
                for (std::size_t row = 0; row < samples.rows(); ++row) {
                  values += printed(samples, row);
                }
              });
  return values;
}

}  // namespace

TEST(ViewedSamples, EachColumnAloneIsWhatItIsAmongAll) {
  std::size_t columns = 0;
  for (const Sample& sample : allSamples()) {
    const TempFile path(sample.bytes);
    try {
      const Measurement file(path.path());
      const std::vector<ViewedTable> tables = tablesOf(file);
      const auto whole = readWhole(file, tables);
      for (std::size_t table = 0; table < tables.size(); ++table) {
        for (std::size_t i = 0; i < tables[table].columns.size(); ++i, ++columns) {
          const ViewedColumn& column = tables[table].columns[i];
          EXPECT_EQ(readAlone(file, tables[table], column), whole[table][i])
              << sample.name << ": " << column.name;
        }
      }
    } catch (const mdf_reader::Unreadable&) {
      continue;  // a sample of what cannot be read
    }
  }
  EXPECT_GT(columns, 500U);
}

TEST(ViewedSamples, AreFoundWhateverTheirChannelIsCalled) {
  for (const std::string& name :
       {std::string("Gr\xf6\xdf"), std::string(1500, 'n'), std::string("[*"), std::string()}) {
    FileBuilder builder;
    builder.addSortedGroup({2, 1}, {firstByte(name)}, builder.addData(Bytes().u8(5).u8(6)));
    const TempFile path(builder.bytes());
    const Measurement file(path.path());
    const std::vector<ViewedTable> tables = tablesOf(file);
    EXPECT_EQ(readAlone(file, tables.at(0), tables[0].columns.at(0)), "5\n6\n");
  }
}

}  // namespace mdf_tests
