#include "importing/importer.h"

#include <gtest/gtest.h>

#include <string>

#include "tools/support/program.h"
#include "tools/support/scratch_folder.h"

using namespace mdf_tests;
using namespace mdf_tools;

namespace {

/// Numbers of each kind, texts, lines of several lines, bad ones, and a column of numbers that ends
/// with a text.
const std::string tables =
    "time [s],a,b\n"
    "0,-0,\"x\ny\"\n"
    "0.25,,\n"
    "1,2,3,4\n"
    "0.5,-0.12345678901234567,z\n"
    "0.625,-18446744073709551616,z\n"
    "0.75,nan,\"q\"\"r\"\n"
    "\n"
    "time [s],n,m\n"
    "2024-05-17T13:45:12Z,007,-127\n"
    "2024-05-17T13:45:20Z,8,128\n"
    "2024-05-17T13:45:13Z,8,127\n"
    "\n"
    "n\n"
    "1\n"
    "x\n";

const std::string exported =
    "time [s],a,b\n"
    "0,-0,\"x\ny\"\n"
    "0.25,,\n"
    "0.5,-0.12345678901234566,z\n"
    "0.625,-18446744073709551616,z\n"
    "0.75,nan,\"q\"\"r\"\n"
    "\n"
    "time [s],n,m\n"
    "0,007,-127\n"
    "1,8,127\n"
    "\n"
    "index,n\n"
    "0,1\n"
    "1,x\n";

/// What an import says, and what the file exports as.
std::string imported(const std::string& text, ImportOptions options) {
  const ScratchFolder folder;
  folder.write("in.csv", text);
  const std::string output = (folder / "out.mf4").string();
  mdf_writer::Plan plan;
  mdf_writer::FileOutput file(output, mdf_writer::Existing::keep);
  options.skips_bad_lines = true;
  const Imported imported = importFiles({(folder / "in.csv").string()}, options, plan, file);
  return std::to_string(imported.rows) + " rows, " + std::to_string(imported.bad_lines) +
         " bad lines\n" + run({"export", output}).output;
}

TEST(Importer, GivesTheSameHoweverManyRowsItKeeps) {
  for (const std::size_t kept_bytes : {0U, 50U, 90U, 200U, 10000U}) {
    SCOPED_TRACE(kept_bytes);
    ImportOptions options;
    options.types = {{"m", ValueType::int8}};
    options.kept_bytes = kept_bytes;
    EXPECT_EQ(imported(tables, options), "9 rows, 2 bad lines\n" + exported);
  }
}

TEST(Importer, LetsAnOpenQuoteTakeNoMoreThanItsLine) {
  constexpr std::size_t buffer = 262144;
  for (std::size_t bytes = buffer - 8; bytes < buffer; ++bytes) {
    SCOPED_TRACE(bytes);
    const std::string first = ",a\n0," + std::string(bytes - 6, 'x') + '\n';
    const std::string others = "2,z\n3," + std::string(1100000, 'y') + "\n4,\"\"\"\"\n";
    const std::string found = imported('t' + first + "1,\"z\n" + others, {});
    EXPECT_TRUE(found == "4 rows, 1 bad lines\nt [s]" + first + others) << found.substr(0, 40);
  }
}

}  // namespace
