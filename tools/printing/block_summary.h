#ifndef MDF_TOOLS_PRINTING_BLOCK_SUMMARY_H_
#define MDF_TOOLS_PRINTING_BLOCK_SUMMARY_H_

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "reader/blocks/raw_block.h"
#include "reader/data/record_facts.h"
#include "reader/model/channel_names.h"
#include "reader/summary/json_type.h"

namespace mdf_tools {

using namespace mdf_reader;

/// A property of a block that tells it from others.
struct BlockFact {
  std::string_view key;                     ///< for programs: "bits"
  std::string words;                        ///< "16 bits"
  std::optional<std::uint64_t> number;      ///< of what is counted
  std::optional<unsigned> enumerator = {};  ///< that the words name

  /// The words; a unit in brackets.
  std::string forPeople() const;
};

/// What a block is in a few words.
struct BlockSummary {
  std::string name;  ///< as the file has it, or how a text begins; on one line
  std::vector<BlockFact> facts;
  bool are_records_counted = false;  ///< in the data, for the file leaves their count open

  /// The facts, separated by commas.
  std::string words() const;
};

/// Adds name and facts to an object for programs.
void addSummary(const BlockSummary& summary, mdf_reader::Json& object);

/// What blocks do not say themselves.
struct FileFacts {
  FileFacts(InputFile& file, const FindingSink& report) : records(file, report), members(file) {}

  RecordFacts records;
  MemberNames members;
};

/// Reads what it takes: the block's fields and the beginnings of its texts.
/// @param facts of the file that the block is in
BlockSummary summarize(InputFile& file, const RawBlock& block, FileFacts& facts);

}  // namespace mdf_tools

#endif  // MDF_TOOLS_PRINTING_BLOCK_SUMMARY_H_
