#ifndef MDF_READER_BYTES_DESCRIPTOR_H_
#define MDF_READER_BYTES_DESCRIPTOR_H_

#include <unistd.h>

#include <utility>

namespace mdf_reader {

/// An open file's number, closed with the object; negative for none.
class Descriptor {
 public:
  explicit Descriptor(int number) : number_(number) {}
  Descriptor(Descriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
  ~Descriptor() {
    if (number_ >= 0) {
      close(number_);
    }
  }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  Descriptor& operator=(Descriptor&&) = delete;

  int number() const { return number_; }

 private:
  int number_;
};

}  // namespace mdf_reader

#endif  // MDF_READER_BYTES_DESCRIPTOR_H_
