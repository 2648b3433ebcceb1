#ifndef MDF_TESTS_TOOLS_SAMPLING_SAMPLE_FILE_H_
#define MDF_TESTS_TOOLS_SAMPLING_SAMPLE_FILE_H_

#include <cstdint>
#include <string>
#include <vector>

#include "reader/values/table.h"
#include "tools/support/file_builder.h"

namespace mdf_tests {

/// The fields of a channel block that tests set.
struct ChannelFields {
  std::string name;
  unsigned data_type = 0;
  std::uint32_t byte_offset = 0;
  std::uint32_t bit_count = 8;
  unsigned bit_offset = 0;
  unsigned type = 0;
  unsigned sync_type = 0;
  std::uint32_t flags = 0;
  std::uint32_t invalidation_bit = 0;
  std::string unit;
  std::uint64_t conversion = 0;
  std::uint64_t data = 0;
  std::uint64_t composition = 0;
};

/// A channel that is the first byte of a record.
inline ChannelFields firstByte(const std::string& name) {
  ChannelFields fields;
  fields.name = name;
  return fields;
}

/// The fields of a channel group block that tests set.
struct GroupFields {
  std::uint64_t cycles = 0;
  std::uint32_t data_bytes = 0;
  std::uint32_t invalidation_bytes = 0;
  std::uint64_t record_id = 0;
  unsigned flags = 0;
  std::uint64_t master = 0;  ///< the group with its master
};

/// A file with samples, put together by hand.
class SampleFile : public FileBuilder {
 public:
  using FileBuilder::FileBuilder;

  std::uint64_t channel(const ChannelFields& fields);

  /// A time channel of type double at a byte of the record.
  std::uint64_t time(std::uint32_t byte_offset = 0);

  std::uint64_t conversion(unsigned type, const std::vector<double>& values,
                           const std::vector<std::uint64_t>& references = {});

  /// A channel group with these channels, which get linked to one another.
  std::uint64_t group(const GroupFields& fields, const std::vector<std::uint64_t>& channels);

  /// Links blocks of one type by their first links.
  void chain(const std::vector<std::uint64_t>& blocks);

  /// A data group behind those that are there.
  std::uint64_t dataGroup(const std::vector<std::uint64_t>& groups, std::uint64_t data,
                          unsigned record_id_code = 0);

  std::uint64_t data(const std::string& records) { return add("DT", {}, records); }

  /// A list of data blocks with offsets.
  std::uint64_t list(const std::vector<std::uint64_t>& blocks, std::uint64_t next = 0);

  /// A zipped data block; the bytes in it are stored without compression.
  std::uint64_t zipped(const std::string& letters, const std::string& bytes, unsigned zip_type = 0,
                       std::uint32_t parameter = 0);

 private:
  std::uint64_t last_data_group_ = 0;
};

/// A zlib stream (RFC 1950) of a stored block: the bytes as they are.
std::string zlibStored(const std::string& bytes);

/// What came of reading a file.
struct Exported {
  std::string text;
  std::vector<std::string> findings;  ///< "OFFSET: SENTENCE"
  std::vector<std::string> notes;
};

/// The tables of a file with these bytes.
Exported csvOf(const std::string& bytes, const mdf_reader::Selection& selection = {});
Exported jsonOf(const std::string& bytes, const mdf_reader::Selection& selection = {});

/// The CSV of a file that has nothing wrong with it.
std::string healthyCsvOf(const std::string& bytes, const mdf_reader::Selection& selection = {});

/// Expects a text, and one finding with words in it.
void expectFinding(const Exported& exported, const std::string& text, const std::string& words);

}  // namespace mdf_tests

#endif  // MDF_TESTS_TOOLS_SAMPLING_SAMPLE_FILE_H_
