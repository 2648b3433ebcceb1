#include "block_dump.h"

#include <new>
#include <stdexcept>
#include <string>

#include "library_classes.h"
#include "mdf_v4_10.h"
#include "reader/blocks/identification.h"
#include "reader/bytes/input_file.h"
#include "style.h"

namespace mdf_tools {

using namespace mdf_reader;

namespace {

/// Whether the file holds all the bytes that the class reads. This is what keeps a length
/// that lies from costing memory.
bool bytesAreThere(const InputFile& file, const RawBlock& block, const LibraryClass& type) {
  if (type.fixed_size == LibraryClass::by_length) {
    return block.length >= RawBlock::header_size && isWhole(file, block);
  }
  return type.fixed_size <= file.sizeFrom(block.offset);
}

void writeDump(InputFile& file, const RawBlock& block, const LibraryClass& type, std::ostream& os,
               const FindingSink& report) {
  std::string problem = bytesAreThere(file, block, type)
                            ? type.dump(block, file.streamAt(block.offset), os)
                            : misfit(block);
  if (problem.empty() && block.length < type.fixed_size) {
    problem = misfit(block);
  }
  // The walk has reported what is wrong with length and links in themselves.
  if (!problem.empty() && block.holdsItsLinks() && isWhole(file, block)) {
    report({Code::length_too_small, block.offset, problem});
  }
}

void beginHeadline(const RawBlock& block, std::ostream& os) {
  os << Style::strong << decimalAndHex(block.offset) << ' ' << block.name() << Style::plain
     << " length " << block.length << " links " << block.link_count;
}

void reportTooLarge(const RawBlock& block, const FindingSink& report) {
  report({Code::work_limited, block.offset,
          "expected memory for the " + std::to_string(block.length) + " bytes of " + block.name() +
              ", found too little"});
}

}  // namespace

void writeHeadline(const BlockFields& fields, std::ostream& os) {
  beginHeadline(fields.raw(), os);
  os << '\n';
}

void writeHeadlineWithLinks(InputFile& file, const BlockFields& fields, std::ostream& os) {
  const RawBlock& block = fields.raw();
  beginHeadline(block, os);
  const char* separator = ": ";
  forEachLink(file, block, [&](std::uint64_t index, std::int64_t link) {
    const LinkRole role = linkRole(fields, index);
    os << separator << (role.layout.role.empty() ? "" : role.name + '=') << link;
    separator = " ";
  });
  os << '\n';
}

void writeIdentificationLine(std::ostream& os) {
  os << Style::strong << decimalAndHex(0) << " identification" << Style::plain << " length "
     << header_block_offset << '\n';
}

void dumpIdentification(InputFile& file, std::ostream& os) {
  if (file.size() < header_block_offset) {
    return;
  }
  writeIdentificationLine(os);
  mdf_v4_10::IDBLOCK(file.streamAt(0)).print(os);
}

void dumpBlock(InputFile& file, const RawBlock& block, std::ostream& os,
               const FindingSink& report) {
  writeHeadlineWithLinks(file, BlockFields(file, block), os);
  const LibraryClass* type = findLibraryClass(block.letters());
  if (type == nullptr) {
    return;
  }
  try {
    writeDump(file, block, *type, os, report);
  } catch (const std::bad_alloc&) {
    reportTooLarge(block, report);
  } catch (const std::length_error&) {
    reportTooLarge(block, report);
  }
}

}  // namespace mdf_tools
