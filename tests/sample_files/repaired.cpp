#include "repaired.h"

#include <fcntl.h>

#include "changing/copy_failure.h"
#include "fuzz/memory_file.h"
#include "reader/blocks/identification.h"
#include "reader/blocks/unreadable.h"
#include "reader/bytes/descriptor.h"
#include "reader/bytes/input_file.h"
#include "writer/files/file_output.h"

namespace mdf_tests {

namespace {

using namespace mdf_reader;
using namespace mdf_tools;

/// A file in memory that is written and read.
class MemoryScratch {
 public:
  MemoryScratch() : descriptor_(open(file_.path().c_str(), O_RDWR | O_CLOEXEC)) {}

  Scratch scratch() { return {output_, file_.path()}; }
  void clear() const { file_.hold(""); }
  std::string bytes() const {
    InputFile file(file_.path());
    std::string bytes(static_cast<std::size_t>(file.size()), '\0');
    file.readAt(0, bytes.data(), bytes.size());
    return bytes;
  }

 private:
  mdf_fuzz::MemoryFile file_;
  Descriptor descriptor_;
  mdf_writer::FileOutput output_{descriptor_.number()};
};

std::string lines(const std::vector<std::string>& sentences) {
  std::string text;
  for (const std::string& sentence : sentences) {
    text += sentence + '\n';
  }
  return text;
}

}  // namespace

std::string RepairedBytes::putBack() const {
  std::vector<std::string> sentences;
  for (const auto& each : rescue.relinking.put_back) {
    sentences.push_back(sentenceOf(each));
  }
  return lines(sentences);
}

std::string RepairedBytes::lost() const {
  std::vector<std::string> sentences;
  for (const Finding& each : losses) {
    sentences.push_back(std::to_string(each.offset) + ": " + each.sentence);
  }
  return lines(sentences);
}

RepairedBytes repairedBytes(const std::string& bytes) {
  static const mdf_fuzz::MemoryFile memory;
  static MemoryScratch scratch;
  static MemoryScratch output;
  memory.hold(bytes);
  scratch.clear();
  output.clear();
  InputFile file(memory.path());
  CopyOptions options;
  options.history = "repaired";
  RepairedBytes result;
  const FindingSink keep = [&](const Finding& finding) { result.losses.push_back(finding); };
  const auto work = readIdentification(file).isUnfinished() ? finishFile : rescueFile;
  try {
    result.rescue = work(file, scratch.scratch(), options, output.scratch(), keep);
    result.is_saved = true;
    result.bytes = output.bytes();
  } catch (const Unreadable& /*error*/) {
  } catch (const CopyFailure& /*failure*/) {
  }
  return result;
}

std::vector<Finding> problemsOf(const std::string& bytes) {
  static const mdf_fuzz::MemoryFile memory;
  memory.hold(bytes);
  InputFile file(memory.path());
  std::vector<Finding> problems;
  findProblems(file, [&](const Finding& finding) { problems.push_back(finding); });
  return problems;
}

}  // namespace mdf_tests
