// Importing tables of CSV, against a loop of from_chars over the same fields.

#include <charconv>
#include <cstdint>
#include <memory>
#include <random>
#include <string>

#include "importing/importer.h"
#include "support/comparison.h"
#include "support/files.h"

namespace mdf_bench {

namespace {

constexpr std::size_t rows = 200000;

/// "12.345": a number with so many decimals.
void addDecimals(std::string& text, double number, int decimals) {
  char digits[64];
  text.append(digits, std::to_chars(digits, digits + sizeof digits, number,
                                    std::chars_format::fixed, decimals)
                          .ptr);
}

void addShortest(std::string& text, double number) {
  char digits[64];
  text.append(digits, std::to_chars(digits, digits + sizeof digits, number).ptr);
}

/// The same tables in each run.
std::mt19937_64 generator() {
  return std::mt19937_64(1);  // NOLINT(cert-msc32-c,cert-msc51-cpp)
}

/// What devices write: times, quantities with a few decimals, counts.
std::string measuredTable() {
  std::mt19937_64 random = generator();
  std::uniform_real_distribution<double> number(0, 250);
  std::string text = "time [s],speed [km/h],rpm [1/min],oil [°C],gear,pressure [bar],counter\n";
  for (std::size_t row = 0; row < rows; ++row) {
    addDecimals(text, static_cast<double>(row) * 0.001, 6);
    text += ',';
    addDecimals(text, number(random), 3);
    text += ',' + std::to_string(800 + random() % 6000) + ',';
    addDecimals(text, number(random) - 40, 1);
    text += ',' + std::to_string(random() % 7) + ',';
    addDecimals(text, number(random), 5);
    text += ',' + std::to_string(row * 1000) + '\n';
  }
  return text;
}

/// What computing gives: as many digits as doubles have.
std::string computedTable() {
  std::mt19937_64 random = generator();
  std::normal_distribution<double> number(0, 10);
  std::string text = "time [s],a,b,c,d,e,f\n";
  for (std::size_t row = 0; row < rows; ++row) {
    addDecimals(text, static_cast<double>(row) * 0.001, 6);
    for (int column = 0; column < 6; ++column) {
      text += ',';
      addShortest(text, number(random));
    }
    text += '\n';
  }
  return text;
}

double sumOfFields(const std::string& text) {
  const char* at = text.data() + text.find('\n') + 1;
  const char* const end = text.data() + text.size();
  double sum = 0;
  while (at < end) {
    double value = 0;
    at = std::from_chars(at, end, value).ptr + 1;
    sum += value;
  }
  return sum;
}

struct Import {
  explicit Import(std::string table) : text(std::move(table)), input(text) {}

  void run() {
    mdf_writer::Plan plan;
    mdf_writer::FileOutput output(mdf.path(), mdf_writer::Existing::replace);
    mdf_tools::ImportOptions options;
    options.format = mdf_tools::ImportOptions::Format::csv;
    imported = mdf_tools::importFiles({input.path()}, options, plan, output);
  }

  std::string text;
  ScratchFile input;
  ScratchFile mdf{std::string()};
  mdf_tools::Imported imported;
  double sum = 0;
};

Sides importTable(const std::string& table) {
  const auto import = std::make_shared<Import>(table);
  return {[import](std::size_t times) {
            for (std::size_t i = 0; i < times; ++i) {
              import->run();
            }
          },
          [import](std::size_t times) {
            for (std::size_t i = 0; i < times; ++i) {
              import->sum = sumOfFields(import->text);
            }
          },
          [import] {
            import->run();
            import->sum = sumOfFields(import->text);
            return import->imported.rows == rows && import->sum > 0;
          },
          7 * rows};
}

}  // namespace

void registerCases() {
  const std::string loop = "from_chars of the same fields";
  compare({"import CSV/numbers as devices write them", loop, 3.5},
          [] { return importTable(measuredTable()); });
  compare({"import CSV/numbers of all digits", loop, 3.5},
          [] { return importTable(computedTable()); });
}

}  // namespace mdf_bench
