#include "checked.h"

#include <cstddef>
#include <map>
#include <regex>

#include "checking/file_check.h"
#include "reader/bytes/input_file.h"
#include "temp_file.h"

namespace mdf_tests {

namespace {

void check(const std::string& bytes, const mdf_reader::FindingSink& report) {
  const TempFile file(bytes);
  mdf_reader::InputFile input(file.path());
  mdf_tools::checkFile(input, report);
}

std::string wordOf(const mdf_reader::Finding& problem) {
  return std::string(mdf_reader::textOf(problem.code).word);
}

}  // namespace

std::string problemLine(const mdf_reader::Finding& problem) {
  const mdf_reader::CodeText& code = mdf_reader::textOf(problem.code);
  std::string line = std::to_string(problem.offset) + ' ' +
                     std::string(mdf_reader::severityWord(code.severity)) + ' ' +
                     std::string(code.word) + ": " + problem.sentence;
  return line + (problem.path.empty() ? "\n" : " [" + problem.path + "]\n");
}

std::string checkedBytes(const std::string& bytes) {
  std::string lines;
  check(bytes, [&](const mdf_reader::Finding& problem) { lines += problemLine(problem); });
  return lines;
}

std::string problemsIn(const std::string& bytes) {
  static const std::regex in_parentheses(" \\(0x[0-9a-f]+\\)");
  static const std::regex number("[0-9]+");
  std::string lines;
  check(bytes, [&](const mdf_reader::Finding& problem) {
    lines += std::to_string(problem.offset) + ' ' + wordOf(problem);
    const std::string sentence = std::regex_replace(problem.sentence, in_parentheses, "");
    for (std::sregex_iterator each(sentence.begin(), sentence.end(), number), end; each != end;
         ++each) {
      lines += ' ' + each->str();
    }
    lines += '\n';
  });
  return lines;
}

std::string checkedCodes(const std::string& bytes) {
  std::map<std::string, std::size_t> counts;
  check(bytes, [&](const mdf_reader::Finding& problem) { ++counts[wordOf(problem)]; });
  std::string lines;
  for (const auto& [word, count] : counts) {
    lines += word + ' ' + std::to_string(count) + '\n';
  }
  return lines;
}

}  // namespace mdf_tests
