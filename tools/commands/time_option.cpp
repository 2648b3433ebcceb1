#include "time_option.h"

#include "command_line/command_line.h"

namespace mdf_tools {

void addTimeOption(CommandLine& command, std::string& time) {
  command
      .addOption("--time", time,
                 "Times as seconds since the measurement began, dates, or ns since 1970")
      .choice({"seconds", "iso", "ns"});
}

ValueForm timeFormOf(const std::string& time, const Header& header, const NoteSink& note) {
  ValueForm form;
  if (time != "seconds") {
    form.time = time == "iso" ? ValueForm::Time::iso : ValueForm::Time::nanoseconds;
    const StoredTime start = startTimeOf(header);
    if (start.isUnset()) {
      note("the file does not say when it was begun; times are in seconds since then");
    } else {
      form.start = start;
    }
  }
  return form;
}

}  // namespace mdf_tools
