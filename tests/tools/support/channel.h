#ifndef MDF_TESTS_TOOLS_SUPPORT_CHANNEL_H_
#define MDF_TESTS_TOOLS_SUPPORT_CHANNEL_H_

#include <optional>
#include <string>

namespace mdf_tests {

/// An open file of this process, closed with the object.
class Descriptor {
 public:
  /// Throws std::runtime_error when the number says that opening has failed.
  explicit Descriptor(int number);
  Descriptor(Descriptor&& other) noexcept;
  ~Descriptor();
  Descriptor& operator=(Descriptor&&) = delete;

  int number() const { return number_; }

 private:
  int number_;
};

/// What a program writes to and the tests read from. No other program gets either end.
class Channel {
 public:
  static Channel pipe();
  /// A terminal that passes all bytes on unchanged.
  static Channel terminal();

  int programEnd() const { return program_end_->number(); }

  /// Without it, reading comes to its end when the last program that has this end has closed it.
  void closeProgramEnd() { program_end_.reset(); }

  /// -1 when reading has come to its end.
  int readingEnd() const { return reading_end_ ? reading_end_->number() : -1; }

  /// Reads what there is, and waits for it when there is nothing.
  void readSome();

  /// What has been read so far.
  const std::string& text() const { return text_; }

 private:
  Channel(Descriptor reading_end, Descriptor program_end);

  std::optional<Descriptor> reading_end_;
  std::optional<Descriptor> program_end_;
  std::string text_;
};

}  // namespace mdf_tests

#endif  // MDF_TESTS_TOOLS_SUPPORT_CHANNEL_H_
