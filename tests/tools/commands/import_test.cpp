#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "../support/program.h"
#include "../support/scratch_folder.h"

using namespace mdf_tests;

namespace {

/// A table that is imported, and what comes of it.
struct Case {
  std::string what;
  std::string text;
  std::vector<std::string> options;
  int exit_code;
  std::string message;
  std::string exported;  ///< "" for no file
};

std::string without(const std::string& part, std::string text) {
  for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at)) {
    text.erase(at, part.size());
  }
  return text;
}

/// Expects that importing a file comes to what it should, and that nothing else is left.
void expectImport(const Case& each, const std::string& name, std::vector<std::string> exporting) {
  SCOPED_TRACE(each.what);
  const ScratchFolder folder;
  folder.write(name, each.text);
  const std::string output = (folder / "out.mf4").string();
  std::vector<std::string> arguments = {"import", (folder / name).string(), "-o", output};
  arguments.insert(arguments.end(), each.options.begin(), each.options.end());
  const RunResult import = run(arguments);
  EXPECT_EQ(import.exit_code, each.exit_code);
  EXPECT_EQ(without(folder.path().string() + '/', import.messages), each.message + '\n');
  const auto files = std::distance(std::filesystem::directory_iterator(folder.path()), {});
  EXPECT_EQ(files, each.exported.empty() ? 1 : 2);
  if (!each.exported.empty()) {
    exporting.insert(exporting.begin(), {"export", output, "--empty"});
    EXPECT_EQ(run(exporting).output, each.exported);
    const RunResult check = run({"check", output});
    EXPECT_EQ(check.exit_code, 0);
    EXPECT_EQ(check.output, "");
  }
}

const std::string fine = "imported 2 rows of 1 table to out.mf4";

TEST(ImportCommand, TablesOfCsv) {
  const std::vector<Case> cases = {
      {"a semicolon, decimal commas, CRLF, quotes and an empty field",
       "time [s];a [V];b\r\n0;1,5;x\r\n1;;\"q;\"\"r\"\r\n",
       {},
       0,
       fine,
       "time [s],a [V],b\n0,1.5,x\n1,,\"q;\"\"r\"\n"},
      {"a decimal comma in quotes",
       "t [s],a\n0,\"1,5\"\n1,\"-2,25\"\n",
       {"--decimal-comma"},
       0,
       fine,
       "t [s],a\n0,1.5\n1,-2.25\n"},
      {"tabs, a byte order mark, blanks around fields",
       "\xEF\xBB\xBFt\ta\n0\t 7 \n2\t8\n",
       {},
       0,
       fine,
       "t [s],a\n0,7\n2,8\n"},
      {"a stated separator",
       "t:a,b\n0:1\n1:2\n",
       {"--separator", ":"},
       0,
       fine,
       "t [s],\"a,b\"\n0,1\n1,2\n"},
      {"a time by its name, in its unit, which comes first",
       "a,clock [ms]\n5,0.5\n6,20\n",
       {"--time", "clock"},
       0,
       fine,
       "clock [s],a\n0.0005,5\n0.02,6\n"},
      {"lines in a quoted field",
       "t,a\n0,\"x\ny\"\n1,\"\r\n\"\n",
       {},
       0,
       fine,
       "t [s],a\n0,\"x\ny\"\n1,\"\r\n\"\n"},
      {"two tables",
       "t [s],a\n0,1\n\nt [s],b\n0,x\n",
       {},
       0,
       "imported 2 rows of 2 tables to out.mf4",
       "t [s],a\n0,1\n\nt [s],b\n0,x\n"},
      {"numbers of all kinds",
       "t,a,b,c,d\n0,18446744073709551615,-0,1e999,0.1234567890123456789\n"
       "1,0,nan,007,1.7976931348623157e+308\n",
       {},
       0,
       fine,
       "t [s],a,b,c,d\n0,18446744073709551615,-0,1e999,0.12345678901234568\n"
       "1,0,nan,007,1.7976931348623157e+308\n"},
      {"times with too many digits for integers",
       "t [s]\n1e-05\n0.30000000000000004\n",
       {},
       0,
       fine,
       "t [s]\n1e-05\n0.30000000000000004\n"},
      {"names twice and none",
       "t,x,x,\n0,1,2,3\n1,4,5,6\n",
       {},
       0,
       fine,
       "t [s],x,x (2),column 4\n0,1,2,3\n1,4,5,6\n"},
      {"rows that are counted by the first column",
       "n,x\n0,1\n1,2\n",
       {},
       0,
       fine,
       "n,x\n0,1\n1,2\n"},
      {"no times", "index,b\n5,1\n4,2\n", {}, 0, fine, "index (2),index,b\n0,5,1\n1,4,2\n"},
      {"times that go back",
       "time [s],b\n5,1\n4,2\n",
       {},
       0,
       "mdf: in.csv: note: the first column does not become the master channel: line 3: expected "
       "no "
       "time before that of the row above, found \"4\"\n" +
           fine,
       "index,time [s],b\n0,5,1\n1,4,2\n"},
      {"no rows", "time [s],b\n", {}, 0, "imported 0 rows of 1 table to out.mf4", "time [s],b\n"},
      {"long texts, short ones and none",
       "t,a\n0," + std::string(70000, 'x') + "\n1,\n",
       {},
       0,
       fine,
       "t [s],a\n0," + std::string(70000, 'x') + "\n1,\n"},
  };
  for (const Case& each : cases) {
    expectImport(each, "in.csv", {});
  }
}

TEST(ImportCommand, LinesThatCannotBeImported) {
  const std::string bad = "time [s],a\n0,1\n1,x\n0.5,2\n2,3,4\n3\n4,300\n5,6\n";
  const std::vector<Case> cases = {
      {"a type",
       bad,
       {"--type", "a=uint8"},
       1,
       "mdf: in.csv: line 3, column 2: expected uint8, found \"x\"",
       ""},
      {"a time",
       bad,
       {"--time", "time"},
       1,
       "mdf: in.csv: line 4, column 1: expected no time before that of the row above, found "
       "\"0.5\"",
       ""},
      {"fields", bad, {}, 1, "mdf: in.csv: line 5, column 2: expected 2 fields, found 3", ""},
      {"all of them",
       bad,
       {"--type", "?=uint8", "--time", "time", "--skip-bad"},
       0,
       "imported 3 rows of 1 table to out.mf4, 4 bad lines skipped",
       "time [s],a\n0,1\n0.5,2\n5,6\n"},
      {"a stated type that is too narrow",
       "a\n1e39\n",
       {"--type", "a=float32"},
       1,
       "mdf: in.csv: line 2, column 1: expected float32, found \"1e39\"",
       ""},
      {"nothing", "", {}, 1, "mdf: in.csv: expected a table, found nothing", ""},
      {"no names",
       "1,2\n3,4\n",
       {},
       1,
       "mdf: in.csv: line 1: expected the names of columns, found numbers",
       ""},
      {"an open quote",
       "a\n\"b\nc\n",
       {},
       1,
       "mdf: in.csv: line 2, column 1: expected a quote at the end of the field, found none",
       ""},
      {"an open quote after a field of two lines",
       "a,b\n1,2\n\"x\ny\",\"z\n3,4\n",
       {},
       1,
       "mdf: in.csv: line 4, column 2: expected a quote at the end of the field, found none",
       ""},
      {"an open quote far before the next one",
       "a\n\"b\n" + std::string(1100000, 'c') + "\n\"d\"\n",
       {},
       1,
       "mdf: in.csv: line 2, column 1: expected a quote at the end of the field, found none in 1 "
       "MiB",
       ""},
      {"only the line of the quote",
       "t,a\n0,x\n\"1\n1\",\"y\n2,z\n3,\"q\"\"\nr\"\n",
       {"--skip-bad"},
       0,
       "imported 3 rows of 1 table to out.mf4, 1 bad line skipped",
       "t [s],a\n0,x\n2,z\n3,\"q\"\"\nr\"\n"},
      {"more after a quote",
       "a\n\"b\"c\n",
       {},
       1,
       "mdf: in.csv: line 2, column 1: expected a separator after the field in quotes",
       ""},
      {"a zero",
       std::string("a\nb\0\n", 5),
       {},
       1,
       "mdf: in.csv: line 2, column 1: expected text in UTF-8 without control characters, found "
       "\"b\\x00\"",
       ""},
      {"names that are no UTF-8",
       "\xFF\n1\n",
       {},
       1,
       "mdf: in.csv: expected names and units in UTF-8, found \"\\xff\"",
       ""},
      {"no such column", "a\n1\n", {"--time", "t"}, 1, "mdf: in.csv: no column is named \"t\"", ""},
      {"a unit of something else",
       "a [m]\n1\n",
       {"--time", "a"},
       1,
       "mdf: the unit of the time \"a\" must be s, ms, us or ns; it is \"m\"",
       ""},
  };
  for (const Case& each : cases) {
    expectImport(each, "in.csv", {});
  }
}

TEST(ImportCommand, TypesThatAreFoundOutAndStated) {
  const ScratchFolder folder;
  folder.write("in.csv",
               "t,u8,u16,u32,u64,i8,i16,i32,i64,f,g,text,none\n"
               "0,255,256,65536,4294967296,-1,-129,-32769,-2147483649,0.5,1,007,\n");
  const std::string output = (folder / "out.mf4").string();
  ASSERT_EQ(run({"import", (folder / "in.csv").string(), "-o", output, "--type", "[fg]=float64",
                 "--type", "g=float32"})
                .exit_code,
            0);
  EXPECT_EQ(
      run({"list", "channels", output}).output,
      R"(group  name  unit  kind    sync  data          bits    at  conversion  records  source  comment
    0  t     s     master  time  int LE          64   0.0  linear            1
    0  u8          fixed   none  uint LE          8   8.0                    1
    0  u16         fixed   none  uint LE         16   9.0                    1
    0  u32         fixed   none  uint LE         32  11.0                    1
    0  u64         fixed   none  uint LE         64  15.0                    1
    0  i8          fixed   none  int LE           8  23.0                    1
    0  i16         fixed   none  int LE          16  24.0                    1
    0  i32         fixed   none  int LE          32  26.0                    1
    0  i64         fixed   none  int LE          64  30.0                    1
    0  f           fixed   none  real LE         64  38.0                    1
    0  g           fixed   none  real LE         32  46.0                    1
    0  text        fixed   none  string UTF-8    24  50.0                    1
    0  none        fixed   none  real LE         64  53.0                    1
)");
}

TEST(ImportCommand, DatesAndNanosecondsSince1970) {
  const std::string dates =
      "t [s],a\n2024-05-17T13:45:12.500000000+02:00,1\n2024-05-17T13:45:13+02:00,2\n";
  const std::string nanoseconds = "t [s],a\n1715946312500000000,1\n1715946313000000000,2\n";
  expectImport({"dates", dates, {}, 0, fine, dates}, "in.csv", {"--time", "iso"});
  expectImport({"dates, in seconds", dates, {}, 0, fine, "t [s],a\n0,1\n0.5,2\n"}, "in.csv", {});
  expectImport({"nanoseconds", nanoseconds, {}, 0, fine, nanoseconds}, "in.csv", {"--time", "ns"});
}

TEST(ImportCommand, LinesOfJson) {
  const std::string exported =
      R"({"schema":2,"file":"out.mf4","group":0,"name":"engine","columns":[{"name":"time","unit":"s"},{"name":"a","unit":"V"}]})"
      "\n"
      R"({"schema":2,"file":"out.mf4","group":0,"values":{"time":0,"a":"nan"}})"
      "\n"
      R"({"schema":2,"file":"out.mf4","group":0,"values":{"time":1,"a":-0}})"
      "\n";
  const std::string flat = "{\"t\":0,\"b\":\"7\"}\n\n{\"t\":1,\"c\":true}\n";
  const std::string wrong = "{\"a\":1}\n{\"a\":[1]}\n{\"a\":\n7\n{\"a\":2}\n";
  expectImport({"objects", flat, {}, 0, fine, "t [s],b,c\n0,7,\n1,,1\n"}, "in.txt", {});
  expectImport({"an array",
                wrong,
                {},
                1,
                "mdf: in.jsonl: line 2, column 1: expected a value, found an array",
                ""},
               "in.jsonl", {});
  expectImport({"wrong lines",
                wrong,
                {"--skip-bad"},
                0,
                fine + ", 3 bad lines skipped",
                "index,a\n0,1\n1,2\n"},
               "in.jsonl", {});
  const ScratchFolder folder;
  const std::string output = (folder / "out.mf4").string();
  RunOptions options;
  options.input = exported;
  ASSERT_EQ(run({"import", "-", "-o", output}, options).exit_code, 0);
  EXPECT_EQ(without(folder.path().string() + '/', run({"export", "--json", output}).output),
            exported);
}

TEST(ImportCommand, OutputsThatCannotBeWritten) {
  const ScratchFolder folder;
  const std::string input = (folder / "in.csv").string();
  folder.write("in.csv", "a\n1\n");
  folder.write("there.mf4", "as it was");
  const std::string there = (folder / "there.mf4").string();
  EXPECT_EQ(run({"import", input, "-o", there}),
            said(2, "cannot write " + there + ": File exists; --force replaces it"));
  EXPECT_EQ(run({"import", input, "--force", "-o", input}),
            said(2, "the output " + input + " is one of the files to read"));
  EXPECT_EQ(run({"import", input, "-o", "/dev/full"}),
            said(1, "cannot write the new file: No space left on device"));
  EXPECT_EQ(run({"import", input + "x", "-o", there, "--force"}),
            said(2, "cannot open " + input + "x: No such file or directory"));
  RunOptions without_room;
  without_room.environment = {"TMPDIR=" + input};
  EXPECT_EQ(run({"import", input, "-o", "-"}, without_room),
            said(2, "cannot make a temporary file in " + input + ": Not a directory"));
  EXPECT_EQ(bytesOf(there), "as it was");
  EXPECT_EQ(run({"import", input, input, "-o", there, "--force"}).exit_code, 0);
  EXPECT_EQ(run({"export", there}).output, "index,a\n0,1\n\nindex,a\n0,1\n");
}

TEST(ImportCommand, StandardOutputGetsTheWholeFile) {
  const ScratchFolder folder;
  folder.write("in.csv", "time [s],a\n0,1\n2,-3\n");
  const RunResult import = run({"import", (folder / "in.csv").string(), "-o", "-"});
  EXPECT_EQ(import.messages, "imported 2 rows of 1 table to standard output\n");
  folder.write("out.mf4", import.output);
  EXPECT_EQ(run({"check", (folder / "out.mf4").string()}).exit_code, 0);
  EXPECT_EQ(run({"export", (folder / "out.mf4").string()}).output, "time [s],a\n0,1\n2,-3\n");
}

TEST(ImportCommand, ATableMayBeVeryWide) {
  constexpr int columns = 20000;
  std::string text = "t [s]";
  for (const std::string line : {"c", "", "-"}) {
    text += line == "c" ? "" : line.empty() ? "0" : "1";
    for (int column = 0; column < columns; ++column) {
      text += ',' + line + std::to_string(column + 1);
    }
    text += '\n';
  }
  expectImport({"columns", text, {}, 0, fine, text}, "in.csv", {});
}

}  // namespace
