#ifndef MDF_TOOLS_CHANGING_JOINED_LISTS_H_
#define MDF_TOOLS_CHANGING_JOINED_LISTS_H_

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "join_input.h"
#include "reader/columns/tables.h"

namespace mdf_tools {

using namespace mdf_reader;

/// The lists of header blocks, of files that become one: events, attachments, history and
/// hierarchies.
class JoinedLists {
 public:
  /// What it is given must outlast it.
  explicit JoinedLists(JoinInputs& inputs) : inputs_(inputs) {}

  /// Leaves out what a file before has already, and hierarchies of what has gone on in its groups.
  /// @param are_one the files are parts of one measurement, so that the same event is one.
  void plan(bool are_one, const NoteSink& note);

  /// Links the lists to one another, and moves events in time.
  /// @param history where an entry for the end of the history is.
  void link(std::uint64_t history);

 private:
  /// A block of a file.
  struct Place {
    std::size_t file;
    std::uint32_t block;
  };
  /// A block, and another that says the same.
  struct Twin {
    Place own;
    Place first;
  };
  /// An entry of a list: where it is, and what it says.
  struct Entry {
    std::uint64_t offset;
    std::string key;  ///< "" where it is like no other
  };

  void leaveOutTwins(const std::function<std::vector<Entry>(JoinInput&)>& entries_of);
  static std::vector<Entry> eventsOf(JoinInput& input);
  static std::vector<Entry> attachmentsOf(JoinInput& input);
  static std::vector<Entry> historyOf(JoinInput& input);
  void leaveOutHierarchies(std::size_t file, const NoteSink& note);
  void chain(std::size_t link, std::uint64_t last);
  static void moveEvents(JoinInput& input);

  JoinInputs& inputs_;
  std::vector<Twin> twins_;
};

}  // namespace mdf_tools

#endif  // MDF_TOOLS_CHANGING_JOINED_LISTS_H_
