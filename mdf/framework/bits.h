#ifndef MDF_FRAMEWORK_BITS_H_
#define MDF_FRAMEWORK_BITS_H_

namespace mdf_v4_10::detail {

/// Sets or clears one flag of a bit field and leaves the others alone.
template <class Bits, class Flag>
void setBit(Bits& bits, Flag flag, bool set) {
  const auto mask = static_cast<Bits>(flag);
  bits = static_cast<Bits>(set ? bits | mask : bits & ~mask);
}

template <class Bits, class Flag>
bool hasBit(Bits bits, Flag flag) {
  return (bits & static_cast<Bits>(flag)) != 0;
}

}  // namespace mdf_v4_10::detail

#endif  // MDF_FRAMEWORK_BITS_H_
