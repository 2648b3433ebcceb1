#include "golden_text.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <map>
#include <sstream>
#include <stdexcept>

namespace mdf_tests {

namespace {

using Lines = std::vector<std::string>;

const std::string heading_mark = "== ";
const std::string like = " like ";
const std::string gone = " gone";

Lines linesOf(const std::string& text) {
  Lines lines;
  std::istringstream is(text);
  for (std::string line; std::getline(is, line);) {
    lines.push_back(line);
  }
  return lines;
}

bool isHeading(const std::string& line) { return line.rfind(heading_mark, 0) == 0; }

std::string joined(const Lines& lines) {
  std::string text;
  for (const std::string& line : lines) {
    if (isHeading(line)) {
      throw std::invalid_argument("a line of a text looks like a heading: " + line);
    }
    text += line + '\n';
  }
  return text;
}

/// Of each pair of positions, how many lines the rests of both texts have in common.
std::vector<std::vector<std::size_t>> commonLines(const Lines& a, const Lines& b) {
  std::vector<std::vector<std::size_t>> common(a.size() + 1,
                                               std::vector<std::size_t>(b.size() + 1, 0));
  for (std::size_t i = a.size(); i-- > 0;) {
    for (std::size_t j = b.size(); j-- > 0;) {
      common[i][j] =
          a[i] == b[j] ? common[i + 1][j + 1] + 1 : std::max(common[i + 1][j], common[i][j + 1]);
    }
  }
  return common;
}

/// Adds what stands in a text instead of the base's lines from `first` on, before `last`.
void addChange(Lines& changes, std::size_t first, std::size_t last, const Lines& now) {
  const std::string at = first == last ? std::to_string(first) + '+' : std::to_string(first + 1);
  const std::string place = last - first > 1 ? at + '-' + std::to_string(last) : at;
  if (now.empty()) {
    changes.push_back(place + gone);
  }
  for (std::size_t i = 0; i < now.size(); ++i) {
    changes.push_back((i == 0 ? place : "") + '|' + now[i]);
  }
}

/// What makes one text of the other, line by line.
Lines changesOf(const Lines& base, const Lines& text) {
  const auto common = commonLines(base, text);
  Lines changes;
  std::size_t i = 0;
  std::size_t j = 0;
  while (i < base.size() || j < text.size()) {
    const std::size_t first = i;
    Lines now;
    while ((i < base.size() || j < text.size()) &&
           !(i < base.size() && j < text.size() && base[i] == text[j])) {
      if (j == text.size() || (i < base.size() && common[i + 1][j] >= common[i][j + 1])) {
        ++i;
      } else {
        now.push_back(text[j++]);
      }
    }
    if (i > first || !now.empty()) {
      addChange(changes, first, i, now);
    }
    for (; i < base.size() && j < text.size() && base[i] == text[j]; ++i, ++j) {
    }
  }
  return changes;
}

/// The number at a position of a line; moves the position to its end.
std::size_t numberIn(const std::string& line, std::size_t& at) {
  std::size_t digits = 0;
  const std::size_t number = std::stoul(line.substr(at), &digits);
  at += digits;
  return number;
}

/// The other way round of changesOf().
Lines changed(const Lines& base, const Lines& changes) {
  Lines text;
  std::size_t next = 0;
  for (const std::string& change : changes) {
    std::size_t at = 0;
    if (change.substr(0, 1) != "|") {
      std::size_t first = numberIn(change, at);
      std::size_t last = first;
      if (change.at(at) == '+') {
        ++at;
      } else {
        --first;
        last = change.at(at) == '-' ? numberIn(change, ++at) : last;
      }
      if (first < next || last > base.size()) {
        throw std::invalid_argument("no such line: " + change);
      }
      text.insert(text.end(), base.begin() + static_cast<std::ptrdiff_t>(next),
                  base.begin() + static_cast<std::ptrdiff_t>(first));
      next = last;
    }
    if (change.at(at) == '|') {
      text.push_back(change.substr(at + 1));
    } else if (change.substr(at) != gone) {
      throw std::invalid_argument("no change of a line: " + change);
    }
  }
  text.insert(text.end(), base.begin() + static_cast<std::ptrdiff_t>(next), base.end());
  return text;
}

/// A section as it is written: what follows its name, and what stands below.
struct Written {
  std::string base;
  Lines lines;
};

/// The text itself, or the shortest changes of an earlier one that come to less than half of it.
Written writtenOf(const Lines& text, const std::vector<std::pair<std::string, Lines>>& earlier) {
  Written shortest{"", text};
  std::size_t limit = (text.size() + 1) / 2;
  for (const auto& [name, base] : earlier) {
    const Lines changes = changesOf(base, text);
    if (changes.size() < limit) {
      shortest = {like + name, changes};
      limit = changes.size();
    }
  }
  return shortest;
}

}  // namespace

std::string goldenText(const Sections& sections) {
  std::vector<std::pair<std::string, Lines>> earlier;
  std::vector<std::pair<Written, std::string>> written;  // with the headings
  for (const auto& [name, text] : sections) {
    const Lines lines = linesOf(text);
    if (lines.empty()) {
      throw std::invalid_argument("there is no text of " + name);
    }
    const auto same = std::find_if(earlier.begin(), earlier.end(),
                                   [&](const auto& each) { return each.second == lines; });
    if (same != earlier.end()) {
      written[static_cast<std::size_t>(same - earlier.begin())].second +=
          heading_mark + name + '\n';
      continue;
    }
    const Written section = writtenOf(lines, earlier);
    written.emplace_back(section, heading_mark + name + section.base + '\n');
    earlier.emplace_back(name, lines);
  }
  std::string text;
  for (const auto& [section, headings] : written) {
    text += headings + joined(section.lines);
  }
  return text;
}

Sections goldenSections(const std::string& text) {
  Sections sections;
  std::map<std::string, Lines> texts;
  Lines names;
  std::string base;
  Lines lines;
  const auto end = [&] {
    const Lines whole = base.empty() ? lines : changed(texts.at(base), lines);
    for (const std::string& name : names) {
      texts[name] = whole;
      sections.emplace_back(name, joined(whole));
    }
    names.clear();
    base.clear();
    lines.clear();
  };
  for (const std::string& line : linesOf(text)) {
    if (!isHeading(line)) {
      lines.push_back(line);
      continue;
    }
    if (!lines.empty()) {
      end();
    }
    const std::size_t name_end = std::min(line.find(like), line.size());
    names.push_back(line.substr(heading_mark.size(), name_end - heading_mark.size()));
    base = name_end == line.size() ? base : line.substr(name_end + like.size());
  }
  end();
  return sections;
}

namespace {

void replaceAll(std::string& text, const std::string& from, const std::string& to) {
  for (std::size_t at = text.find(from); at != std::string::npos;
       at = text.find(from, at + to.size())) {
    text.replace(at, from.size(), to);
  }
}

std::string placeOf(const std::string& letters, std::uint64_t offset) {
  std::ostringstream place;
  place << letters << ' ' << offset << " (0x" << std::hex << offset << ')';
  return place.str();
}

/// Visits the places of all that looks like a block, and their short forms.
template <class Visitor>
void visitPlaces(const std::string& bytes, const Visitor& visit) {
  std::map<std::string, int> counts;
  for (std::size_t at = 64; at + 24 <= bytes.size(); at += 8) {
    if (bytes.compare(at, 2, "##") == 0) {
      const std::string letters = bytes.substr(at + 2, 2);
      visit(placeOf(letters, at), letters + '#' + std::to_string(++counts[letters]));
    }
  }
}

}  // namespace

std::string withoutPlaces(std::string text, const std::string& file_name,
                          const std::string& bytes) {
  replaceAll(text, file_name, "FILE");
  visitPlaces(bytes, [&](const std::string& place, const std::string& short_form) {
    replaceAll(text, place, short_form);
  });
  return text;
}

std::string withPlaces(std::string text, const std::string& file_name, const std::string& bytes) {
  std::vector<std::pair<std::string, std::string>> places;
  visitPlaces(bytes, [&](const std::string& place, const std::string& short_form) {
    places.emplace_back(place, short_form);
  });
  // From the last to the first: CN#1 begins CN#12.
  for (std::size_t i = places.size(); i-- > 0;) {
    replaceAll(text, places[i].second, places[i].first);
  }
  replaceAll(text, "FILE", file_name);
  return text;
}

}  // namespace mdf_tests
