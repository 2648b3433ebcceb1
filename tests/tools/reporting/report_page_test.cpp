#include "reporting/report_page.h"

#include <gtest/gtest.h>

namespace mdf_tests {

using namespace mdf_tools;

TEST(ReportPage, HasAllInOneFileAndNoMarkupOfOthers) {
  const std::vector<EmbeddedFile> files = {
      {"index.html",
       "<title>mdf view</title>\n<link rel=\"stylesheet\" href=\"a.css\">\n"
       "<script type=\"module\" src=\"main.js\"></script>\n<body></body>"},
      {"main.js", "import {a} from './b.js';"},
      {"b.js", "a"},
      {"a.css", "b{}"}};
  const ReportText text{"<b>A & B</b>", "N", R"({"x":"</script><!--"})", {"AAAA", "BBBB"}};
  EXPECT_EQ(
      reportPage(files, text),
      R"(<meta http-equiv="Content-Security-Policy" content="default-src 'none'; )"
      R"(script-src 'nonce-N'; style-src 'nonce-N'; img-src blob: data:; )"
      R"(base-uri 'none'; form-action 'none'">
<title>&lt;b>A &amp; B&lt;/b></title>
<style nonce="N">b{}</style>
<script type="importmap" nonce="N">{"imports":{)"
      // import {a} from 'page/b.js';
      R"("page/main.js":"data:text/javascript;base64,aW1wb3J0IHthfSBmcm9tICdwYWdlL2IuanMnOw==",)"
      R"("page/b.js":"data:text/javascript;base64,YQ=="}}</script>
<script type="module" nonce="N">import 'page/main.js';</script>
<body><script type="application/json" id="report">{"x":"\u003c/script>\u003c!--"}</script>
<script type="text/plain" class="block">AAAA</script>
<script type="text/plain" class="block">BBBB</script>
</body>)");
}

}  // namespace mdf_tests
