#include "reporting/report.h"

#include <gtest/gtest.h>

#include "reader/measurement/measurement.h"
#include "tools/support/file_builder.h"
#include "tools/support/temp_file.h"

namespace mdf_tests {

using namespace mdf_tools;

namespace {

std::vector<EmbeddedFile> page() {
  return {{"index.html",
           "<title>mdf view</title><script type=\"module\" src=\"main.js\"></script></body>"}};
}

/// Times that fall once, and a channel of bytes.
std::string fiveSamples() {
  FileBuilder file;
  const std::uint64_t data =
      file.addData(Bytes().f64(NAN).u8(9).f64(0.5).u8(1).f64(2).u8(2).f64(1).u8(3).f64(2.5).u8(4));
  ChannelSpec level = channelOf("</script>", 0, 8, 8);
  level.unit = "V";
  file.addSortedGroup({5, 9}, {timeChannel(), level}, data);
  return file.bytes();
}

/// A channel that is hard to pack.
std::string manySamples(int count) {
  FileBuilder file;
  Bytes records;
  for (int i = 0; i < count; ++i) {
    records.f64(0.001 * i).f64(i * 0.1 * (i % 7));
  }
  file.addSortedGroup({static_cast<std::uint64_t>(count), 16},
                      {timeChannel(), channelOf("n", 4, 8, 64)}, file.addData(records));
  return file.bytes();
}

std::string written(const std::string& file, std::size_t most) {
  const TempFile stored(file);
  const Measurement measurement(stored.path());
  Report report(most);
  report.beginFile();
  Batches batches = measurement.read({});
  report.beginTable(batches.heads().front());
  while (const Batch* const batch = batches.next()) {
    report.add(*batch);
  }
  report.endFile(
      {{"info", {{"groups", Json::array({{{"group", 0}, {"records", 99}}, {{"group", 1}}})}}}});
  EXPECT_FALSE(report.isEmpty());
  return report.write(page(), {"title", true, false});
}

std::string between(const std::string& text, const std::string& begin, const std::string& end) {
  const std::size_t from = text.find(begin) + begin.size();
  return text.substr(from, text.find(end, from) - from);
}

}  // namespace

TEST(Report, HasTheChannelsOfATable) {
  const std::string text = written(fiveSamples(), 1U << 20U);
  EXPECT_EQ(
      between(text, "id=\"report\">", "</script>\n"),
      R"({"title":"title","clock":true,"steps":false,"files":[{"info":{"groups":[)"
      R"({"group":0,"records":5,"span":{"from":0.5,"to":2.5,"source":"records"}}],)"
      R"("group_count":2},"tables":[{"group":0,"element":null,"name":"",)"
      R"("has_master":false,"columns":[{"name":"\u003c/script>","unit":"V","text":false,)"
      R"("single":false}],"master":{"name":"time","unit":"s","decimals":null}}]}],"samples":[[{"width":1,)"
      R"("records":5,"out_of_order":2,"lists":[[{"type":"f4","count":4,"block":0},)"
      R"({"type":"f4","count":4,"block":1}]]}]]})");
  // 0.5, 2, 2 and 2.5; 1, 2, a gap and 4.
  EXPECT_EQ(text.substr(text.find("<script type=\"text/plain\"")),
            "<script type=\"text/plain\" class=\"block\">AAAAPwAAAEAAAABAAAAgQA==</script>\n"
            "<script type=\"text/plain\" class=\"block\">AACAPwAAAEAAAMB/AACAQA==</script>\n"
            "</body>");
}

TEST(Report, TakesNoMoreRoomThanThereIs) {
  const std::string file = manySamples(100000);
  const std::string whole = written(file, 3000000);
  EXPECT_TRUE(whole.find(R"("width":1,)") != std::string::npos);
  EXPECT_GT(whole.size(), 2000000U);
  const std::string half = written(file, 1000000);
  EXPECT_TRUE(half.find(R"("width":8,)") != std::string::npos);
  EXPECT_LE(half.size(), 1000000U);
  const std::string small = written(file, 60000);
  EXPECT_TRUE(small.find(R"("width":128,)") != std::string::npos);
  EXPECT_LE(small.size(), 60000U);
}

TEST(Report, ThatCannotBeSmallEnoughIsRefused) {
  EXPECT_THROW(written(fiveSamples(), 800), ReportTooLarge);
  EXPECT_THROW(written(manySamples(100000), 10000), ReportTooLarge);
}

}  // namespace mdf_tests
