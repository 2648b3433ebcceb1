#include "block_fields.h"

#include <algorithm>
#include <array>

#include "../bytes/input_file.h"
#include "../bytes/number_texts.h"
#include "framework/wire.h"

namespace mdf_reader {

using mdf_v4_10::detail::loadLe;

namespace {

/// A link after those that each block of a type has.
struct AdditionalLink {
  LinkLayout layout;                                    ///< without a role where nothing is known
  std::optional<std::uint64_t> element = std::nullopt;  ///< which one of several
  std::string_view part = {};                           ///< of an element with several links
};

/// A channel hierarchy's elements, three links each.
AdditionalLink hierarchyLink(std::uint64_t index) {
  constexpr std::array<std::string_view, 3> parts = {".dg", ".cg", ".cn"};
  constexpr std::array<std::string_view, 3> targets = {"DG", "CG", "CN"};
  const auto which = static_cast<std::size_t>(index % 3);
  return {{"ch_element", targets.at(which)}, index / 3, parts.at(which)};
}

AdditionalLink channelLink(const BlockFields& block, std::uint64_t index) {
  const std::uint64_t attachments = block.number("cn_attachment_count");
  constexpr std::array<LinkLayout, 3> x_axis = {LinkLayout{"cn_default_x_dg", "DG"},
                                                LinkLayout{"cn_default_x_cg", "CG"},
                                                LinkLayout{"cn_default_x_cn", "CN"}};
  if (index < attachments) {
    return {{"cn_at_reference", "AT"}, index};
  }
  constexpr std::uint64_t has_default_x = 1U << 12U;
  if (index - attachments < x_axis.size() && block.hasFlag("cn_flags", has_default_x)) {
    return {x_axis.at(static_cast<std::size_t>(index - attachments))};
  }
  return {{"", ""}};
}

AdditionalLink eventLink(const BlockFields& block, std::uint64_t index) {
  const std::uint64_t scopes = block.number("ev_scope_count");
  if (index < scopes) {
    return {{"ev_scope", "CN CG"}, index};
  }
  if (index - scopes < block.number("ev_attachment_count")) {
    return {{"ev_at_reference", "AT"}, index - scopes};
  }
  return {{"", ""}};
}

/// An array whose elements have data of their own. Which of the links lead there cannot be told
/// without its sizes when other links follow them.
AdditionalLink arrayLink(const BlockFields& block, std::uint64_t index) {
  constexpr std::uint64_t has_further_links = 31;
  constexpr std::uint64_t in_data_groups = 2;
  return block.number("ca_storage") == in_data_groups &&
                 !block.hasFlag("ca_flags", has_further_links)
             ? AdditionalLink{{"ca_data", "DT DV DZ DL HL LD"}, index}
             : AdditionalLink{{"", ""}};
}

/// A list of values has as many links to invalidation data as to values, or none.
AdditionalLink valueListLink(const BlockFields& block, std::uint64_t index) {
  constexpr std::uint64_t has_invalidation_data = 1U << 31U;
  const std::uint64_t count = block.number("ld_count");
  if (index < count) {
    return {{"ld_data", "DV DT RV RD SD DZ"}, index};
  }
  if (index - count < count && block.hasFlag("ld_flags", has_invalidation_data)) {
    return {{"ld_invalidation_data", "DI RI DZ"}, index - count};
  }
  return {{"", ""}};
}

/// What links may follow a type's own ones.
AdditionalLink additionalLink(const BlockFields& block, std::uint64_t index) {
  const std::string_view type = block.layout()->letters;
  if (type == "DL") {
    return {{"dl_data", "DT SD RD DV RV DZ"}, index};
  }
  if (type == "LD") {
    return valueListLink(block, index);
  }
  if (type == "CN") {
    return channelLink(block, index);
  }
  if (type == "EV") {
    return eventLink(block, index);
  }
  constexpr std::uint64_t has_remote_master = 8;  // since version 4.2
  if (type == "CG" && index == 0 && block.hasFlag("cg_flags", has_remote_master)) {
    return {{"cg_cg_master", "CG"}};
  }
  if (type == "CC") {
    return {{"cc_ref", "TX MD CC"}, index};
  }
  if (type == "CA") {
    return arrayLink(block, index);
  }
  return type == "CH" ? hierarchyLink(index) : AdditionalLink{{"", ""}};
}

}  // namespace

BlockFields::BlockFields(InputFile& file, const RawBlock& block)
    : raw_(block), layout_(findLayout(block.letters())), file_size_(file.size()) {
  if (!block.hasId()) {
    layout_ = nullptr;
  }
  if (layout_ != nullptr) {
    readLinks(file);
    readFields(file);
  }
}

void BlockFields::readLinks(InputFile& file) {
  const std::uint64_t there = linksThere(file, raw_);
  is_complete_ = there >= layout_->links.size();
  std::array<char, 16 * RawBlock::link_size> bytes;
  const auto wanted = static_cast<std::size_t>(
      std::min<std::uint64_t>({there, layout_->links.size(), bytes.size() / RawBlock::link_size}));
  const std::size_t got =
      file.readAt(raw_.offset + RawBlock::header_size, bytes.data(), wanted * RawBlock::link_size);
  for (std::size_t at = 0; at + RawBlock::link_size <= got; at += RawBlock::link_size) {
    links_.push_back(loadLe<std::uint64_t>(bytes.data() + at));
  }
}

void BlockFields::readFields(InputFile& file) {
  const std::uint64_t end = std::min(raw_.length, file_size_ - raw_.offset);
  const std::uint64_t begin = fieldsAt() - raw_.offset;
  const std::uint64_t there = begin < end ? end - begin : 0;
  const std::size_t wanted = layout_->fieldsWidth();
  fields_.resize(static_cast<std::size_t>(std::min<std::uint64_t>(there, wanted)));
  fields_.resize(file.readAt(fieldsAt(), fields_.data(), fields_.size()));
  is_complete_ = is_complete_ && raw_.holdsItsLinks() && fields_.size() == wanted;
}

const FieldLayout* BlockFields::find(std::string_view field) const {
  if (layout_ == nullptr) {
    return nullptr;
  }
  const auto found = std::find_if(layout_->fields.begin(), layout_->fields.end(),
                                  [&](const FieldLayout& each) { return each.name == field; });
  return found == layout_->fields.end() ? nullptr : &*found;
}

std::string_view BlockFields::bytes(std::string_view field) const {
  const FieldLayout* found = find(field);
  if (found == nullptr || found->offset + found->width > fields_.size()) {
    return {};
  }
  return std::string_view(fields_).substr(found->offset, found->width);
}

std::uint64_t BlockFields::number(std::string_view field) const {
  return unsignedNumber(bytes(field));
}

std::int64_t BlockFields::signedNumber(std::string_view field) const {
  const std::string_view stored = bytes(field);
  return stored.empty() ? 0 : mdf_reader::signedNumber(stored);
}

double BlockFields::real(std::string_view field) const {
  const std::string_view stored = bytes(field);
  return stored.size() == sizeof(double) ? loadLe<double>(stored.data()) : 0.0;
}

std::uint64_t BlockFields::fieldsAt() const {
  constexpr std::uint64_t most = UINT64_MAX / 16;  // more links than any file holds
  return raw_.offset + RawBlock::header_size +
         std::min(raw_.linkCount(), most) * RawBlock::link_size;
}

std::uint64_t BlockFields::tailAt() const {
  return fieldsAt() + (layout_ == nullptr ? 0 : layout_->fieldsWidth());
}

std::uint64_t BlockFields::tailBytes() const {
  const std::uint64_t end =
      raw_.offset + std::min(raw_.length, file_size_ - std::min(raw_.offset, file_size_));
  return tailAt() < end ? end - tailAt() : 0;
}

std::string shownField(const FieldLayout& field, std::string_view bytes) {
  if (bytes.size() < field.width) {
    return {};
  }
  switch (field.kind) {
    case FieldKind::unsigned_number:
      return std::to_string(unsignedNumber(bytes));
    case FieldKind::signed_number:
      return std::to_string(signedNumber(bytes));
    case FieldKind::real:
      return shortestReal(loadLe<double>(bytes.data()));
    case FieldKind::bytes:
    case FieldKind::reserved:
      break;
  }
  return hexBytes(bytes);
}

std::optional<BlockFields> readFields(InputFile& file, std::uint64_t offset,
                                      std::string_view letters) {
  if (offset == 0) {
    return std::nullopt;
  }
  const auto block = readRawBlock(file, offset);
  if (!block || !block->hasId() || block->letters() != letters) {
    return std::nullopt;
  }
  return BlockFields(file, *block);
}

LinkRole linkRole(const BlockFields& block, std::uint64_t index) {
  const std::size_t own = block.layout() == nullptr ? 0 : block.layout()->links.size();
  if (index < own) {
    const LinkLayout& layout = block.layout()->links[static_cast<std::size_t>(index)];
    return {std::string(layout.role), layout};
  }
  const AdditionalLink link =
      own == 0 ? AdditionalLink{{"", ""}} : additionalLink(block, index - own);
  if (link.layout.role.empty()) {
    return {"link " + std::to_string(index), link.layout};
  }
  LinkRole role{std::string(link.layout.role), link.layout};
  if (link.element) {
    role.name += '[' + std::to_string(*link.element) + ']' + std::string(link.part);
  }
  return role;
}

std::string_view linkTargets(const BlockFields& block, std::uint64_t index) {
  if (block.layout() == nullptr || block.layout()->links.empty()) {
    return "";
  }
  const std::vector<LinkLayout>& own = block.layout()->links;
  return index < own.size() ? own[static_cast<std::size_t>(index)].targets
                            : additionalLink(block, index - own.size()).layout.targets;
}

}  // namespace mdf_reader
