#include "block_check.h"

namespace mdf_fuzz {

namespace {

bool isTaken(const Layout& layout, std::size_t offset) {
  return std::none_of(layout.not_taken.begin(), layout.not_taken.end(), [=](const Range& range) {
    return offset >= range.offset && offset < range.offset + range.width;
  });
}

std::uint32_t identifier(const Layout& layout) {
  return static_cast<std::uint32_t>(0x2323U | number(layout.letters, 0, 2) << 16U);
}

}  // namespace

std::string nameOf(std::ios_base::iostate state) {
  return state == state_good ? "good" : state == state_bad ? "bad" : "end of file and fail";
}

void expectFrame(const GENERALBLOCK& block, const Layout& layout, const FileBlock& file) {
  const UINT64 link_count = file.has_header ? file.link_count : layout.nil_links;
  expect(block.header.mdfID.idInternal == identifier(layout), "the identifier of the class");
  expect(block.header.reserved == std::array<UINT8, 4>{}, "reserved bytes of the header zero");
  expect(block.header.length == (file.has_header ? file.length : layout.length), "the length");
  expect(block.header.link_count == link_count, "the link count");
  expect(block.getPadding() == 0, "no padding");

  std::vector<LINK> links(layout.nil_links, 0);
  if (file.is_whole) {
    links.insert(links.end(), file.links.begin(), file.links.end());
    if (layout.reading == Reading::low_32) {
      links.resize(layout.fixed_links);
    }
  }
  expect(same<LINK>(block.links, links), "the file's links behind the nil ones");
}

std::string_view expectForm(std::string_view bytes, const GENERALBLOCK& block, const Layout& layout,
                            const Written& form) {
  if (layout.reading == Reading::identification) {
    expect(bytes.size() == layout.fields, "64 bytes of identification");
    return bytes;
  }
  const std::size_t fields_at = header_size + form.links.size() * link_size;
  expect(bytes.size() == fields_at + layout.fields + form.rest.size(),
         "all links, all fields and all list entries, and nothing more");
  expect(number(bytes, 0, 4) == identifier(layout), "the identifier of the class");
  expect(std::equal(block.header.reserved.begin(), block.header.reserved.end(), bytes.begin() + 4,
                    [](UINT8 a, char b) { return a == static_cast<UINT8>(b); }),
         "the reserved bytes as they stand");
  expect(number(bytes, 8, 8) == form.length, "the length that the contents give");
  expect(number(bytes, 16, 8) == form.link_count, "the link count that the contents give");
  for (std::size_t i = 0; i < form.links.size(); ++i) {
    expect(
        number(bytes, header_size + i * link_size, link_size) == static_cast<UINT64>(form.links[i]),
        "every link in its place");
  }
  expect(bytes.substr(fields_at + layout.fields) == textOf(form.rest),
         "every list entry in its place");
  return bytes.substr(fields_at, layout.fields);
}

void expectFields(std::string_view fields, const Layout& layout, const FileBlock& file) {
  for (std::size_t i = 0; i < fields.size(); ++i) {
    expect(fields[i] == file.fields[i] || !isTaken(layout, i), "the file's fields");
  }
}

void expectDump(const std::string& dump, const std::string& class_name) {
  const std::string name = class_name + " ===================\n";
  const std::string begin = "[DEBUG] ==================== " + name;
  const std::string end = "[DEBUG] ==================== End of " + name;
  expect(dump.compare(0, begin.size(), begin) == 0, "a dump to begin with its banner");
  expect(dump.size() >= begin.size() + end.size() &&
             dump.compare(dump.size() - end.size(), end.size(), end) == 0,
         "a dump to end with its banner");
}

}  // namespace mdf_fuzz
