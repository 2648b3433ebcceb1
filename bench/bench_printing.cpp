// Dumping blocks of every class into memory.

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "support/comparison.h"
#include "support/sample_blocks.h"

namespace mdf_bench {

namespace {

/// A line of a dump as one call of snprintf prints it: the words are the format, the numbers are
/// the values.
class FormattedLine {
 public:
  explicit FormattedLine(const std::string& line) : is_real_(line.find('.') != std::string::npos) {
    addWordsAndNumbers(line);
    if (printed(line.size()) != line) {
      // What looks like a number is text.
      format_.clear();
      addWords(line);
    }
  }

  /// Returns how many characters were printed.
  std::size_t print(char* at, std::size_t room) const {
    const auto& i = integers_;
    const auto& r = reals_;
    const int count =
        is_real_ ? std::snprintf(at, room, format_.c_str(), r[0], r[1], r[2], r[3], r[4], r[5])
                 : std::snprintf(at, room, format_.c_str(), i[0], i[1], i[2], i[3], i[4], i[5]);
    return static_cast<std::size_t>(count);
  }

 private:
  static constexpr std::size_t most_values = 6;

  std::string printed(std::size_t most) const {
    std::string line(most + 1, '\0');
    line.resize(std::min(print(line.data(), line.size()), most));
    return line;
  }

  void addWordsAndNumbers(const std::string& line) {
    for (std::size_t i = 0; i < line.size();) {
      const bool number = isNumberAt(line, i) && values_ < most_values;
      i = number ? addNumber(line, i) : addWord(line, i);
    }
  }

  void addWords(const std::string& line) {
    for (std::size_t i = 0; i < line.size(); ++i) {
      addWord(line, i);
    }
  }

  static bool isNumberAt(const std::string& line, std::size_t i) {
    const auto is_digit = [&](std::size_t at) {
      return at < line.size() && std::isdigit(static_cast<unsigned char>(line[at])) != 0;
    };
    const bool in_word = i > 0 && std::isalpha(static_cast<unsigned char>(line[i - 1])) != 0;
    return !in_word && (is_digit(i) || (line[i] == '-' && is_digit(i + 1)));
  }

  std::size_t addNumber(const std::string& line, std::size_t i) {
    char* end = nullptr;
    if (is_real_) {
      format_ += "%g";
      reals_[values_] = std::strtod(line.c_str() + i, &end);
    } else {
      format_ += "%lld";
      integers_[values_] = std::strtoll(line.c_str() + i, &end, 10);
    }
    ++values_;
    return static_cast<std::size_t>(end - line.c_str());
  }

  std::size_t addWord(const std::string& line, std::size_t i) {
    format_ += line[i] == '%' ? "%%" : std::string(1, line[i]);
    return i + 1;
  }

  std::string format_;
  std::array<long long, most_values> integers_{};
  std::array<double, most_values> reals_{};
  std::size_t values_ = 0;
  bool is_real_;
};

template <class Block>
struct Dumps {
  explicit Dumps(const Block& block_to_print) : block(block_to_print) {
    std::ostringstream dump;
    block.print(dump);
    text = dump.str();
    memory.resize(text.size() + 1);
    stream.str(std::string(text.size(), ' '));
    for (std::size_t begin = 0; begin < text.size();) {
      const std::size_t end = std::min(text.find('\n', begin), text.size() - 1) + 1;
      lines.emplace_back(text.substr(begin, end - begin));
      begin = end;
    }
  }

  void print() {
    stream.seekp(0);
    stream.setf(std::ios_base::dec, std::ios_base::basefield);
    block.print(stream);
  }

  void format() {
    char* at = memory.data();
    for (const FormattedLine& line : lines) {
      at += line.print(at, static_cast<std::size_t>(memory.data() + memory.size() - at));
    }
    benchmark::DoNotOptimize(at);
  }

  bool isRight() const { return stream.str() == text && memory.data() == text; }

  Block block;
  std::string text;
  std::vector<FormattedLine> lines;
  std::vector<char> memory;
  std::ostringstream stream;
};

template <class Block>
Sides sidesOf(const Block& block) {
  const auto dumps = std::make_shared<Dumps<Block>>(block);
  return {[dumps](std::size_t times) {
            for (std::size_t i = 0; i < times; ++i) {
              dumps->print();
            }
          },
          [dumps](std::size_t times) {
            for (std::size_t i = 0; i < times; ++i) {
              dumps->format();
            }
          },
          [dumps] { return dumps->isRight(); }};
}

}  // namespace

void registerCases() {
  const auto add = [](const std::string& name, const auto& block) {
    compare({"print to memory/" + name, "one snprintf for each line of the same text", 1.5},
            [block = block] { return sidesOf(block); });
  };
  forEachFixedBlock(add);
  forEachBlockOfBytes(40, add);
  forEachBlockOfEntries(4, add);
}

}  // namespace mdf_bench
