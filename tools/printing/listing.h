#ifndef MDF_TOOLS_PRINTING_LISTING_H_
#define MDF_TOOLS_PRINTING_LISTING_H_

#include <functional>
#include <ostream>
#include <string>
#include <vector>

#include "reader/blocks/finding.h"

namespace mdf_reader {
class InputFile;
}  // namespace mdf_reader

namespace mdf_tools {

using namespace mdf_reader;

/// What a list holds and how it looks. What is not set chooses everything.
struct ListOptions {
  std::string group;               ///< see isChosen(); "" for all channel groups
  std::string name_pattern;        ///< with * ? [...] as in a shell; "" for any
  std::vector<std::string> types;  ///< as the list shows them, or letters of blocks
  std::string sort_column;         ///< a column's title; "" leaves the file's order
  bool as_json = false;            ///< an object on each line
  bool names_file = false;         ///< in each line of a table, where there are several files
  std::function<void()> no_such_group = [] {};  ///< called when no group with channels is chosen
};

/// The columns that a list can be sorted by.
std::vector<std::string> channelColumns();
std::vector<std::string> blockColumns();
std::vector<std::string> attachmentColumns();
std::vector<std::string> eventColumns();

void listChannels(InputFile& file, const ListOptions& options, std::ostream& out,
                  const FindingSink& report);
/// Blocks come in file order. However many there are, they are not kept unless they are sorted.
void listBlocks(InputFile& file, const ListOptions& options, std::ostream& out,
                const FindingSink& report);
void listAttachments(InputFile& file, const ListOptions& options, std::ostream& out,
                     const FindingSink& report);
void listEvents(InputFile& file, const ListOptions& options, std::ostream& out,
                const FindingSink& report);

}  // namespace mdf_tools

#endif  // MDF_TOOLS_PRINTING_LISTING_H_
