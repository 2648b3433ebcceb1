#include "read_back.h"

#include <mdf_reader/mdf_reader.h>

#include <set>
#include <sstream>

#include "../tools/support/temp_file.h"
#include "reader/bytes/input_file.h"
#include "tools/checking/file_check.h"

namespace mdf_tests {

namespace {

std::string lineOf(const mdf_reader::Batch& batch, std::size_t row) {
  std::string line;
  for (std::size_t i = 0; i < batch.columnCount(); ++i) {
    line += i == 0 ? "" : ",";
    if (batch.column(i).isValid(row)) {
      batch.column(i).print(row, line);
    }
  }
  return line + '\n';
}

std::string namesOf(const mdf_reader::Batch& batch) {
  std::string line;
  for (std::size_t i = 0; i < batch.columnCount(); ++i) {
    line += (i == 0 ? "" : ",") + batch.name(i);
  }
  return line + '\n';
}

}  // namespace

std::vector<std::string> findingsOf(const std::string& bytes) {
  const TempFile file(bytes);
  mdf_reader::InputFile input(file.path());
  std::vector<std::string> lines;
  // What an unfinished file may have: data that no link leads to yet.
  const bool is_unfinished = bytes.substr(0, 2) == "Un";
  const std::set<mdf_reader::Code> open = {mdf_reader::Code::file_unfinished,
                                           mdf_reader::Code::bytes_outside_blocks,
                                           mdf_reader::Code::block_unreachable};
  mdf_tools::checkFile(input, [&](const mdf_reader::Finding& finding) {
    if (!is_unfinished || open.count(finding.code) == 0) {
      lines.push_back(std::to_string(finding.offset) + ": " + finding.sentence);
    }
  });
  return lines;
}

std::string tableOf(const std::string& bytes, const std::string& group) {
  const TempFile file(bytes);
  try {
    const mdf_reader::Measurement measurement(file.path());
    mdf_reader::Query query;
    query.group = group;
    auto batches = measurement.read(query);
    std::string table;
    while (const auto* batch = batches.next()) {
      table += table.empty() ? namesOf(*batch) : "";
      for (std::size_t row = 0; row < batch->rows(); ++row) {
        table += lineOf(*batch, row);
      }
    }
    for (const mdf_reader::Finding& finding : measurement.findings()) {
      table += finding.sentence;
    }
    return table;
  } catch (const mdf_reader::Unreadable& error) {
    return error.what();
  }
}

Added addedTo(const std::string& bytes) {
  const TempFile file(bytes);
  const mdf_reader::Measurement measurement(file.path());
  std::ostringstream events;
  for (const mdf_reader::Event& event : measurement.events()) {
    events << event.name << ' ' << event.position() << '\n';
  }
  std::ostringstream attachments;
  for (const mdf_reader::Attachment& attachment : measurement.attachments()) {
    attachments << attachment.name << ' '
                << bytes.substr(static_cast<std::size_t>(attachment.data_at),
                                static_cast<std::size_t>(attachment.data_there))
                << '\n';
  }
  return {events.str(), attachments.str()};
}

}  // namespace mdf_tests
