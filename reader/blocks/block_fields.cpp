#include "block_fields.h"

#include <algorithm>
#include <array>

#include "../bytes/input_file.h"
#include "../bytes/number_texts.h"
#include "framework/wire.h"

namespace mdf_reader {

using mdf_v4_10::detail::loadLe;

namespace {

/// How many of something there may be.
std::uint64_t mostOf(const BlockFields& block, const Amount& amount) {
  const bool is_there = std::all_of(
      amount.when.begin(), amount.when.end(),
      [&](const FieldCondition& each) { return each.holdsFor(block.number(each.field)); });
  if (!is_there) {
    return 0;
  }
  switch (amount.kind) {
    case Amount::one:
      return 1;
    case Amount::counted:
      return block.number(amount.field);
    case Amount::all:
      break;
  }
  return UINT64_MAX;
}

/// How many of them its counts and flags ask for.
std::uint64_t promisedOf(const BlockFields& block, const Amount& amount) {
  const std::uint64_t most = mostOf(block, amount);
  return most == UINT64_MAX ? block.number(amount.field) : most;
}

/// A link after those that each block of a type has.
struct FoundLink {
  const MoreLinks* among = nullptr;  ///< null where nothing is known
  std::uint64_t index = 0;
  const LinkLayout& layout() const {
    return among->links[static_cast<std::size_t>(index % among->links.size())];
  }
};

FoundLink moreLink(const BlockFields& block, std::uint64_t index) {
  for (const MoreLinks& each : block.type().more_links) {
    const std::uint64_t most = mostOf(block, each.elements);
    if (index / each.links.size() < most) {
      return {&each, index};
    }
    index -= most * each.links.size();
  }
  return {};
}

std::string inBrackets(std::uint64_t index) { return '[' + std::to_string(index) + ']'; }

}  // namespace

BlockFields::BlockFields(InputFile& file, const RawBlock& block)
    : raw_(block), type_(&block.type()), file_size_(file.size()) {
  if (type_->isKnown()) {
    readLinks(file);
    readFields(file);
  }
}

void BlockFields::readLinks(InputFile& file) {
  const std::uint64_t there = linksThere(file, raw_);
  is_complete_ = there >= type_->links.size();
  std::array<char, 16 * RawBlock::link_size> bytes;
  const auto wanted = static_cast<std::size_t>(
      std::min<std::uint64_t>({there, type_->links.size(), bytes.size() / RawBlock::link_size}));
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
  const std::size_t wanted = type_->fieldsWidth();
  fields_.resize(static_cast<std::size_t>(std::min<std::uint64_t>(there, wanted)));
  fields_.resize(file.readAt(fieldsAt(), fields_.data(), fields_.size()));
  is_complete_ = is_complete_ && raw_.holdsItsLinks() && fields_.size() == wanted;
}

const FieldLayout* BlockFields::find(std::string_view field) const {
  const auto found = std::find_if(type_->fields.begin(), type_->fields.end(),
                                  [&](const FieldLayout& each) { return each.name == field; });
  return found == type_->fields.end() ? nullptr : &*found;
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

std::uint64_t BlockFields::tailAt() const { return fieldsAt() + type_->fieldsWidth(); }

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
  const std::vector<LinkLayout>& own = block.type().links;
  if (index < own.size()) {
    const LinkLayout& layout = own[static_cast<std::size_t>(index)];
    return {std::string(layout.role), layout};
  }
  const FoundLink link = moreLink(block, index - own.size());
  if (link.among == nullptr) {
    return {"link " + std::to_string(index), {"", ""}};
  }
  LinkLayout layout = link.layout();
  if (link.among->elements.kind == Amount::one) {
    return {std::string(layout.role), layout};
  }
  if (link.among->element.empty()) {
    return {std::string(layout.role) + inBrackets(link.index), layout};
  }
  const std::string part(layout.role);
  layout.role = link.among->element;
  return {std::string(layout.role) + inBrackets(link.index / link.among->links.size()) + part,
          layout};
}

std::string_view linkTargets(const BlockFields& block, std::uint64_t index) {
  const std::vector<LinkLayout>& own = block.type().links;
  if (index < own.size()) {
    return own[static_cast<std::size_t>(index)].targets;
  }
  const FoundLink link = moreLink(block, index - own.size());
  return link.among == nullptr ? "" : link.layout().targets;
}

std::uint64_t promisedLinks(const BlockFields& block) {
  std::uint64_t count = 0;
  for (const MoreLinks& each : block.type().more_links) {
    count += each.links.size() * promisedOf(block, each.elements);
  }
  return count;
}

NumberRole numberRole(const BlockFields& block, std::uint64_t index) {
  for (const MoreNumbers& each : block.type().numbers) {
    const std::uint64_t most = mostOf(block, each.amount);
    if (index < most) {
      const bool is_one = each.amount.kind == Amount::one;
      return {std::string(each.name) + (is_one ? "" : inBrackets(index)), each.kind};
    }
    index -= most;
  }
  return {"further value" + inBrackets(index), FieldKind::unsigned_number};
}

PromisedNumbers promisedNumbers(const BlockFields& block) {
  for (const MoreNumbers& each : block.type().numbers) {
    if (mostOf(block, each.amount) > 0) {
      return {each.amount.field, promisedOf(block, each.amount)};
    }
  }
  return {};
}

}  // namespace mdf_reader
