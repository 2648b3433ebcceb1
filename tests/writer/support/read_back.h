#ifndef MDF_TESTS_WRITER_SUPPORT_READ_BACK_H_
#define MDF_TESTS_WRITER_SUPPORT_READ_BACK_H_

#include <string>
#include <vector>

namespace mdf_tests {

/// What `mdf check` finds in a file of these bytes, a line each. Of an unfinished file without that
/// it is one, and without data that no link leads to yet.
std::vector<std::string> findingsOf(const std::string& bytes);

/// A group's table as text: a line of names, then one for each record, with commas between values
/// and nothing for an invalid one. Without the group, or with a table that has findings, what is
/// wrong stands in the last line.
std::string tableOf(const std::string& bytes, const std::string& group);

/// The file's events by name and time, and its attachments by name and bytes, a line each.
struct Added {
  std::string events;
  std::string attachments;
};

Added addedTo(const std::string& bytes);

}  // namespace mdf_tests

#endif  // MDF_TESTS_WRITER_SUPPORT_READ_BACK_H_
