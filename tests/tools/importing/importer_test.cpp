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

TEST(Importer, GivesTheSameHoweverManyRowsItKeeps) {
  const ScratchFolder folder;
  folder.write("in.csv", tables);
  const std::string output = (folder / "out.mf4").string();
  for (const std::size_t kept_bytes : {0U, 50U, 90U, 200U, 10000U}) {
    SCOPED_TRACE(kept_bytes);
    ImportOptions options;
    options.types = {{"m", ValueType::int8}};
    options.skips_bad_lines = true;
    options.kept_bytes = kept_bytes;
    mdf_writer::Plan plan;
    mdf_writer::FileOutput file(output, mdf_writer::Existing::replace);
    const Imported imported = importTables({(folder / "in.csv").string()}, options, plan, file);
    EXPECT_EQ(imported.rows, 9U);
    EXPECT_EQ(imported.bad_lines, 2U);
    EXPECT_EQ(run({"export", output}).output, exported);
  }
}

}  // namespace
