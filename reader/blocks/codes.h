#ifndef MDF_READER_BLOCKS_CODES_H_
#define MDF_READER_BLOCKS_CODES_H_

#include <string>
#include <string_view>
#include <vector>

namespace mdf_reader {

enum class Severity {
  note,     ///< allowed, and worth knowing
  warning,  ///< against the format, though readers lose nothing by it; or something was left open
  error,    ///< readers lose data, or find other data than was written
};

/// What can be wrong with a file.
enum class Code {
  not_mdf,
  version_wrong,
  version_text_wrong,
  header_missing,
  file_unfinished,
  link_outside_file,
  link_misaligned,
  link_inside_block,
  link_to_no_block,
  link_wrong_type,
  link_unknown_type,
  chain_endless,
  chain_shared,
  block_misaligned,
  length_too_small,
  length_past_end,
  blocks_overlap,
  links_missing,
  link_count_wrong,
  data_with_links,
  block_unreachable,
  bytes_outside_blocks,
  count_too_large,
  work_limited,
  file_shrunk,
  request_failed,
  list_count_wrong,
  list_offsets_not_ascending,
  list_offsets_wrong,
  equal_length_broken,
  zip_length_wrong,
  zip_broken,
  zip_original_length_wrong,
  zip_type_unknown,
  text_not_terminated,
  text_not_utf8,
  xml_not_well_formed,
  attachment_length_wrong,
  attachment_digest_wrong,
  record_id_size_wrong,
  record_id_twice,
  record_id_unknown,
  record_past_end,
  record_cut_off,
  bytes_not_read,
  cycle_count_wrong,
  data_shared,
  channel_outside_record,
  invalidation_bit_outside_record,
  channel_without_bits,
  signal_data_unused,
  value_outside_signal_data,
  invalidation_data_wrong,
  data_type_unknown,
  array_unreadable,
  conversion_unreadable,
  remote_master_missing,
  master_missing,
  master_twice,
  masters_overlap,
  event_factor_zero,
};

/// What users are told of a code. docs/check.md is made of these texts.
struct CodeText {
  Code code;
  Severity severity;
  std::string_view word;     ///< never changes, since programs look for it
  std::string_view title;    ///< a sentence without its full stop
  std::string_view meaning;  ///< lines without the last one's end
  std::string_view advice;   ///< the same: what to do, or the usual cause
};

/// All codes, in the order of the enumeration.
const std::vector<CodeText>& allCodes();

const CodeText& textOf(Code code);

/// The code with this word; null when there is none.
const CodeText* findCode(std::string_view word);

/// "note", "warning" or "error".
std::string_view severityWord(Severity severity);

}  // namespace mdf_reader

#endif  // MDF_READER_BLOCKS_CODES_H_
