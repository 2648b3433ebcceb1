#include "sample_file.h"

#include <gtest/gtest.h>

#include <sstream>

#include "printing/table_writers.h"
#include "reader/bytes/input_file.h"
#include "tools/support/temp_file.h"

namespace mdf_tests {

std::uint64_t SampleFile::channel(const ChannelFields& fields) {
  const std::uint64_t name = text(fields.name);
  const std::uint64_t unit = fields.unit.empty() ? 0 : text(fields.unit);
  return add("CN", {0, fields.composition, name, 0, fields.conversion, fields.data, unit, 0},
             Bytes()
                 .u8(static_cast<std::uint8_t>(fields.type))
                 .u8(static_cast<std::uint8_t>(fields.sync_type))
                 .u8(static_cast<std::uint8_t>(fields.data_type))
                 .u8(static_cast<std::uint8_t>(fields.bit_offset))
                 .u32(fields.byte_offset)
                 .u32(fields.bit_count)
                 .u32(fields.flags)
                 .u32(fields.invalidation_bit)
                 .u8(255)
                 .zeros(3 + 48));
}

std::uint64_t SampleFile::time(std::uint32_t byte_offset) {
  ChannelFields fields;
  fields.name = "time";
  fields.data_type = 4;
  fields.byte_offset = byte_offset;
  fields.bit_count = 64;
  fields.type = 2;
  fields.sync_type = 1;
  fields.unit = "s";
  return channel(fields);
}

std::uint64_t SampleFile::conversion(unsigned type, const std::vector<double>& values,
                                     const std::vector<std::uint64_t>& references) {
  std::vector<std::uint64_t> links = {0, 0, 0, 0};
  links.insert(links.end(), references.begin(), references.end());
  Bytes contents;
  contents.u8(static_cast<std::uint8_t>(type))
      .u8(255)
      .u16(0)
      .u16(static_cast<std::uint16_t>(references.size()))
      .u16(static_cast<std::uint16_t>(values.size()))
      .zeros(16);
  for (const double value : values) {
    contents.f64(value);
  }
  return add("CC", links, contents);
}

void SampleFile::chain(const std::vector<std::uint64_t>& blocks) {
  for (std::size_t i = 0; i + 1 < blocks.size(); ++i) {
    link(blocks[i], 0, blocks[i + 1]);
  }
}

std::uint64_t SampleFile::group(const GroupFields& fields,
                                const std::vector<std::uint64_t>& channels) {
  chain(channels);
  std::vector<std::uint64_t> links = {0, channels.empty() ? 0 : channels[0], 0, 0, 0, 0};
  if (fields.master != 0) {
    links.push_back(fields.master);
  }
  return add("CG", links,
             Bytes()
                 .u64(fields.record_id)
                 .u64(fields.cycles)
                 .u16(static_cast<std::uint16_t>(fields.flags))
                 .zeros(6)
                 .u32(fields.data_bytes)
                 .u32(fields.invalidation_bytes));
}

std::uint64_t SampleFile::dataGroup(const std::vector<std::uint64_t>& groups, std::uint64_t data,
                                    unsigned record_id_code) {
  chain(groups);
  const std::uint64_t offset = add("DG", {0, groups[0], data, 0},
                                   Bytes().u8(static_cast<std::uint8_t>(record_id_code)).zeros(7));
  link(last_data_group_ == 0 ? header : last_data_group_, 0, offset);
  last_data_group_ = offset;
  return offset;
}

std::uint64_t SampleFile::list(const std::vector<std::uint64_t>& blocks, std::uint64_t next) {
  std::vector<std::uint64_t> links = {next};
  links.insert(links.end(), blocks.begin(), blocks.end());
  return add(
      "DL", links,
      Bytes().zeros(4).u32(static_cast<std::uint32_t>(blocks.size())).zeros(8 * blocks.size()));
}

std::uint64_t SampleFile::zipped(const std::string& letters, const std::string& bytes,
                                 unsigned zip_type, std::uint32_t parameter) {
  const std::string stream = zlibStored(bytes);
  return add("DZ", {},
             Bytes()
                 .text(letters)
                 .u8(static_cast<std::uint8_t>(zip_type))
                 .u8(0)
                 .u32(parameter)
                 .u64(bytes.size())
                 .u64(stream.size())
                 .text(stream));
}

std::string zlibStored(const std::string& bytes) {
  std::uint32_t a = 1;
  std::uint32_t b = 0;
  for (const char byte : bytes) {
    a = (a + static_cast<unsigned char>(byte)) % 65521;
    b = (b + a) % 65521;
  }
  const auto size = static_cast<std::uint16_t>(bytes.size());
  Bytes stream;
  stream.u8s({0x78, 0x01, 0x01}).u16(size).u16(static_cast<std::uint16_t>(~size)).text(bytes);
  for (const std::uint32_t half : {b, a}) {
    stream.u8(static_cast<std::uint8_t>(half >> 8U)).u8(static_cast<std::uint8_t>(half));
  }
  return stream;
}

namespace {

template <class Writer>
Exported exportedBy(const std::string& bytes, const mdf_reader::Selection& selection) {
  const TempFile path(bytes);
  mdf_reader::InputFile file(path.path());
  Exported exported;
  std::ostringstream out;
  bool is_first = true;
  Writer writer([&](const mdf_reader::Table&) {
    out << (is_first ? "" : "\n");
    is_first = false;
    return &out;
  });
  mdf_reader::visitTables(
      file, selection, writer,
      [&](const mdf_reader::Finding& finding) {
        exported.findings.push_back(std::to_string(finding.offset) + ": " + finding.sentence);
      },
      [&](const std::string& note) { exported.notes.push_back(note); });
  exported.text = out.str();
  return exported;
}

}  // namespace

Exported csvOf(const std::string& bytes, const mdf_reader::Selection& selection) {
  return exportedBy<mdf_tools::CsvWriter>(bytes, selection);
}

Exported jsonOf(const std::string& bytes, const mdf_reader::Selection& selection) {
  return exportedBy<mdf_tools::JsonLinesWriter>(bytes, selection);
}

std::string healthyCsvOf(const std::string& bytes, const mdf_reader::Selection& selection) {
  const Exported exported = csvOf(bytes, selection);
  EXPECT_EQ(exported.findings, std::vector<std::string>());
  return exported.text;
}

void expectFinding(const Exported& exported, const std::string& text, const std::string& words) {
  EXPECT_EQ(exported.text, text);
  ASSERT_EQ(exported.findings.size(), 1U);
  EXPECT_NE(exported.findings[0].find(words), std::string::npos) << exported.findings[0];
}

}  // namespace mdf_tests
