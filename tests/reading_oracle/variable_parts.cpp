#include "reading_oracle/variable_parts.h"

#include <algorithm>

namespace mdf_tests::oracle {

namespace {

/// Appends entries of the links to the lists that are written after them; returns how many.
std::uint64_t appendLinks(Attempt& attempt, std::uint64_t first, std::uint64_t count) {
  const Links& links = attempt.block.links;
  std::uint64_t appended = 0;
  for (std::uint64_t i = first; i < links.size() && appended < count; ++i, ++appended) {
    attempt.block.more_links.push_back(links[static_cast<std::size_t>(i)]);
  }
  return appended;
}

}  // namespace

void takeElements(Attempt& attempt, const std::string& /*rest*/) {
  Links& links = attempt.block.links;
  std::uint64_t elements = 0;
  for (std::size_t i = 4; links.size() >= 7 && i <= links.size() - 3; ++i, ++elements) {
    attempt.block.more_links.insert(attempt.block.more_links.end(),
                                    {links[i], links[i + 1], links[i + 2]});
  }
  setNumber(attempt.block.section, {0, 4}, elements);
  links.resize(4);
}

void takeEmbedded(Attempt& attempt, const std::string& rest) {
  const std::uint64_t size = numberAt(attempt.block.section, {32, 8});
  attempt.block.tail =
      rest.substr(0, static_cast<std::size_t>(std::min<std::uint64_t>(size, rest.size())));
  setNumber(attempt.block.section, {32, 8}, attempt.block.tail.size());
}

void takeScopesAndAttachments(Attempt& attempt, const std::string& /*rest*/) {
  std::string& section = attempt.block.section;
  const std::uint64_t scopes = numberAt(section, {8, 4});
  const std::uint64_t attachments = numberAt(section, {12, 2});
  // From the file's first link on, which stands after the five nil links.
  setNumber(section, {8, 4}, appendLinks(attempt, 5, scopes));
  setNumber(section, {12, 2}, appendLinks(attempt, 5 + scopes, attachments));
  attempt.block.links.resize(5);
}

void takeAttachmentsAndXAxis(Attempt& attempt, const std::string& /*rest*/) {
  std::string& section = attempt.block.section;
  const std::uint64_t flags = numberAt(section, {12, 4});
  // One more than there are, from the file's first link on after the eight nil links.
  setNumber(section, {22, 2}, appendLinks(attempt, 8, numberAt(section, {22, 2}) + 1));
  if ((flags & 0x1000U) != 0) {
    const Links& links = attempt.block.links;
    attempt.block.unwritten.assign(links.end() - 3, links.end());
    appendLinks(attempt, links.size() - 3, 3);
  }
  attempt.block.links.resize(8);
}

void takeReferencesAndValues(Attempt& attempt, const std::string& rest) {
  std::string& section = attempt.block.section;
  setNumber(section, {4, 2}, appendLinks(attempt, 4, numberAt(section, {4, 2})));
  const std::uint64_t values = std::min<std::uint64_t>(numberAt(section, {6, 2}), rest.size() / 8);
  setNumber(section, {6, 2}, values);
  attempt.block.tail = rest.substr(0, static_cast<std::size_t>(values) * 8);
  attempt.block.links.resize(4);
}

void takePairs(Attempt& attempt, const std::string& rest) {
  Contents& block = attempt.block;
  const bool has_equal_length = (block.section[0] & 1) != 0;
  if (has_equal_length && rest.size() < 8) {
    const Contents start = startOf(attempt.format);
    block.links = start.links;
    block.section = start.section;
    attempt.reading.state = std::ios_base::badbit;
    return;
  }
  std::uint64_t pairs = block.links.size() - 1;
  if (!has_equal_length) {
    pairs = std::min({pairs, numberAt(block.section, {4, 4}), std::uint64_t{rest.size() / 8}});
  }
  // From the file's next-list link on, which stands after the nil link.
  appendLinks(attempt, 1, pairs);
  setNumber(block.section, {4, 4}, pairs);
  block.tail = rest.substr(0, has_equal_length ? 8 : static_cast<std::size_t>(pairs) * 8);
  // The equal length, and the offset of each pair, which is the equal length where there is one.
  block.unwritten = {has_equal_length ? static_cast<std::int64_t>(numberAt(rest, {0, 8})) : 0};
  for (std::size_t i = 0; i < pairs; ++i) {
    block.unwritten.push_back(
        static_cast<std::int64_t>(numberAt(rest, {has_equal_length ? 0 : i * 8, 8})));
  }
}

}  // namespace mdf_tests::oracle
