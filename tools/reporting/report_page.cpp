#include "report_page.h"

#include <algorithm>
#include <stdexcept>
#include <string_view>

#include "base64.h"
#include "printing/json_output.h"

namespace mdf_tools {

namespace {

void replaceAll(std::string& text, std::string_view what, std::string_view by) {
  for (std::size_t at = 0; (at = text.find(what, at)) != std::string::npos; at += by.size()) {
    text.replace(at, what.size(), by);
  }
}

void replaceOnly(std::string& text, std::string_view what, std::string_view by) {
  const std::size_t at = text.find(what);
  if (at == std::string::npos) {
    throw std::logic_error("the page has no " + std::string(what));
  }
  text.replace(at, what.size(), by);
}

/// Text as it stands in markup.
std::string escaped(std::string text) {
  replaceAll(text, "&", "&amp;");
  replaceAll(text, "<", "&lt;");
  return text;
}

/// JSON that no element can end in, and no comment begin.
std::string escapedJson(std::string json) {
  replaceAll(json, "<", "\\u003c");
  return json;
}

bool endsWith(std::string_view text, std::string_view ending) {
  return text.size() >= ending.size() && text.substr(text.size() - ending.size()) == ending;
}

/// Modules are found by names of their own, since a page from a disk cannot fetch its neighbours.
std::string importMap(const std::vector<EmbeddedFile>& files) {
  Json imports = Json::object();
  for (const EmbeddedFile& file : files) {
    if (endsWith(file.name, ".js")) {
      std::string module(file.contents);
      replaceAll(module, "from './", "from 'page/");
      imports["page/" + std::string(file.name)] = "data:text/javascript;base64," + base64Of(module);
    }
  }
  return escapedJson(jsonLine({{"imports", std::move(imports)}}));
}

std::string policy(const std::string& nonce) {
  return "<meta http-equiv=\"Content-Security-Policy\" content=\"default-src 'none'; script-src "
         "'nonce-" +
         nonce + "'; style-src 'nonce-" + nonce +
         "'; img-src blob: data:; base-uri 'none'; form-action 'none'\">\n";
}

std::string dataOf(const ReportText& text) {
  std::string data = "<script type=\"application/json\" id=\"report\">" +
                     escapedJson(text.description) + "</script>\n";
  for (const std::string& block : text.blocks) {
    data += "<script type=\"text/plain\" class=\"block\">";
    data += block;
    data += "</script>\n";
  }
  return data;
}

}  // namespace

std::string reportPage(const std::vector<EmbeddedFile>& files, const ReportText& text) {
  const auto index = std::find_if(files.begin(), files.end(), [](const EmbeddedFile& file) {
    return file.name == "index.html";
  });
  if (index == files.end()) {
    throw std::logic_error("the page has no index.html");
  }
  std::string page(index->contents);
  const std::string nonce = " nonce=\"" + text.nonce + "\">";
  for (const EmbeddedFile& file : files) {
    if (endsWith(file.name, ".css")) {
      replaceOnly(page, "<link rel=\"stylesheet\" href=\"" + std::string(file.name) + "\">",
                  "<style" + nonce + std::string(file.contents) + "</style>");
    }
  }
  replaceOnly(page, "<script type=\"module\" src=\"main.js\"></script>",
              "<script type=\"importmap\"" + nonce + importMap(files) +
                  "</script>\n<script type=\"module\"" + nonce + "import 'page/main.js';</script>");
  replaceOnly(page, "<title>mdf view</title>",
              policy(text.nonce) + "<title>" + escaped(text.title) + "</title>");
  replaceOnly(page, "</body>", dataOf(text) + "</body>");
  return page;
}

}  // namespace mdf_tools
