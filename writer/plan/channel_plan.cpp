#include "channel_plan.h"

#include <algorithm>
#include <cstddef>

#include "texts.h"

namespace mdf_writer {

using mdf_v4_10::CCBLOCK;
using mdf_v4_10::CNBLOCK;

namespace {

/// Records whose length does not fit the group's 32 bits are refused; this is far below.
constexpr std::uint64_t most_bits = std::uint64_t{1} << 30U;
// Beyond these readers show a larger array as one value of bytes.
constexpr std::uint64_t most_elements = 65536;
constexpr std::size_t most_dimensions = 16;
constexpr std::uint32_t most_bits_of_invalidation = 1U << 20U;

bool isWholeBytes(const ChannelPlan& channel) {
  return channel.bit_offset == 0 && channel.bits % 8 == 0;
}

std::string faultOfWidth(const ChannelPlan& channel) {
  if (channel.isVirtual()) {
    return "";
  }
  if (channel.bits == 0) {
    return " has no bits";
  }
  if (channel.bit_offset > 7) {
    return " begins at bit " + std::to_string(channel.bit_offset) + " of a byte";
  }
  if (channel.isInteger() && channel.bits > 64) {
    return " is an integer of " + std::to_string(channel.bits) + " bits";
  }
  if (channel.isFloat() && channel.bits != 16 && channel.bits != 32 && channel.bits != 64) {
    return " is a floating-point number of " + std::to_string(channel.bits) + " bits";
  }
  const bool needs_bytes =
      !channel.isInteger() || channel.has_variable_length || !channel.dimensions.empty();
  return needs_bytes && !isWholeBytes(channel) ? " does not fill whole bytes" : "";
}

std::string faultOfRole(const ChannelPlan& channel) {
  if (channel.has_variable_length && (channel.bits != 64 || !channel.dimensions.empty())) {
    return " has values of variable length, but not 64 bits for where they are";
  }
  if (channel.has_variable_length && channel.isFloat()) {
    return " has values of variable length that are floating-point numbers";
  }
  if (channel.master != CNBLOCK::CN_SYNCTYPE_NONE &&
      (channel.invalidation_bit || channel.has_variable_length || !channel.dimensions.empty() ||
       channel.isText())) {
    return " is a master channel, which has one valid number in each record";
  }
  return "";
}

std::string faultOfConversion(const ChannelPlan& channel) {
  if (!channel.conversion.is_stated) {
    return "";
  }
  const std::string fault = faultOf(channel.conversion);
  if (!fault.empty()) {
    return " has a conversion that " + fault;
  }
  const auto type = channel.conversion.type;
  const bool of_texts =
      type == CCBLOCK::CC_CONVTYPE_TEXT2VTAB || type == CCBLOCK::CC_CONVTYPE_TEXT2TEXTTAB;
  if (of_texts != channel.isText() && type != CCBLOCK::CC_CONVTYPE_EQUAL) {
    return of_texts ? " has a conversion of texts, but numbers"
                    : " has a conversion of numbers, but none";
  }
  return "";
}

bool isReversed(const std::optional<Range>& range) {
  return range && !(range->least <= range->greatest);
}

std::string faultOfTexts(const ChannelPlan& channel) {
  for (const std::string& text : channel.conversion.texts) {
    if (!isUtf8(text)) {
      return " has a conversion with a text that is not UTF-8";
    }
  }
  return isUtf8(channel.name) && isUtf8(channel.unit) && isUtf8(channel.comment) &&
                 channel.source.isUtf8()
             ? ""
             : " has a name, a unit, a comment or a source that is not UTF-8";
}

}  // namespace

bool Source::isUtf8() const {
  return mdf_writer::isUtf8(name) && mdf_writer::isUtf8(path) && mdf_writer::isUtf8(comment);
}

std::uint64_t ChannelPlan::elements() const {
  std::uint64_t count = 1;
  for (const std::uint32_t dimension : dimensions) {
    count = std::min(count * dimension, most_bits + 1);
  }
  return count;
}

bool ChannelPlan::isVirtual() const {
  return master == CNBLOCK::CN_SYNCTYPE_INDEX && bits == 0 && isInteger();
}

bool ChannelPlan::isText() const {
  return type >= CNBLOCK::CN_DATATYPE_STRING_ISO8859 &&
         type <= CNBLOCK::CN_DATATYPE_STRING_UTF16_BE;
}

bool ChannelPlan::isFloat() const {
  return type == CNBLOCK::CN_DATATYPE_FLOAT_LE || type == CNBLOCK::CN_DATATYPE_FLOAT_BE;
}

bool ChannelPlan::isInteger() const { return type <= CNBLOCK::CN_DATATYPE_INT_BE; }

std::string ChannelPlan::fault() const {
  if (name.empty()) {
    return "a channel has no name";
  }
  std::string fault = faultOfTexts(*this);
  if (fault.empty()) {
    fault = faultOfWidth(*this);
  }
  if (fault.empty()) {
    fault = faultOfRole(*this);
  }
  if (fault.empty()) {
    fault = faultOfConversion(*this);
  }
  if (fault.empty() && invalidation_bit && *invalidation_bit >= most_bits_of_invalidation) {
    fault = " has an invalidation bit beyond what a record can have";
  }
  if (fault.empty() && ((recordBits() == 0 && !isVirtual()) || elements() > most_elements ||
                        dimensions.size() > most_dimensions)) {
    fault = " is an array of no or too many elements";
  }
  if (fault.empty() && std::uint64_t{8} * byte_offset + recordBits() > most_bits) {
    fault = " lies beyond what a record can have";
  }
  if (fault.empty() && (isReversed(range) || isReversed(limits) || isReversed(extended_limits))) {
    fault = " has a range that ends before it begins";
  }
  return fault.empty() ? "" : "channel \"" + name + "\"" + fault;
}

}  // namespace mdf_writer
