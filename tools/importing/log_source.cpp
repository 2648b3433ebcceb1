#include "log_source.h"

#include "bus/candump_line.h"
#include "bus/capture_reader.h"
#include "import_failure.h"

namespace mdf_tools {

namespace {

class CandumpSource : public LogSource {
 public:
  explicit CandumpSource(LineReader& lines) : lines_(lines) { lines_.goTo({}); }

  const LoggedFrame* next() override {
    while (lines_.next()) {
      if (lines_.text().find_first_not_of(" \t") != std::string_view::npos) {
        return &line_.take(lines_.text());
      }
    }
    return nullptr;
  }

  std::string place() const override { return "line " + std::to_string(lines_.number()); }

 private:
  LineReader& lines_;
  CandumpLine line_;
};

class CaptureSource : public LogSource {
 public:
  explicit CaptureSource(LineReader& file) : file_(file) { file_.goTo({}); }

  const LoggedFrame* next() override {
    try {
      return capture_.next();
    } catch (const CaptureFault& fault) {
      throw ImportFailure(file_.name() + ": " + fault.sentence);
    }
  }

  std::string place() const override { return capture_.place(); }

 private:
  LineReader& file_;
  CaptureReader capture_{
      [this](char* bytes, std::size_t count) { return file_.take(bytes, count); }};
};

}  // namespace

LogForm logFormOf(LineReader& file) {
  char beginning[4];
  file.goTo({});
  const std::size_t size = file.take(beginning, sizeof beginning);
  file.goTo({});
  if (CaptureReader::isOne({beginning, size})) {
    return LogForm::capture;
  }
  bool is_there = file.next();
  while (is_there && file.text().empty()) {
    is_there = file.next();
  }
  const bool is_candump = is_there && CandumpLine::isOne(file.text());
  file.goTo({});
  return is_candump ? LogForm::candump : LogForm::none;
}

std::unique_ptr<LogSource> readLog(LogForm form, LineReader& file) {
  if (form == LogForm::candump) {
    return std::make_unique<CandumpSource>(file);
  }
  return std::make_unique<CaptureSource>(file);
}

}  // namespace mdf_tools
