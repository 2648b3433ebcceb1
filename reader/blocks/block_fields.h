#ifndef MDF_READER_BLOCKS_BLOCK_FIELDS_H_
#define MDF_READER_BLOCKS_BLOCK_FIELDS_H_

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "block_type.h"
#include "raw_block.h"

namespace mdf_reader {

class InputFile;

/// The links and fields of a block, read as the format defines them: the links first, each where
/// its layout says. What the block's length or the file cuts off reads as 0.
class BlockFields {
 public:
  /// Reads the links that its type always has, and its fields. A block of a type that is not known
  /// has neither.
  BlockFields(InputFile& file, const RawBlock& block);

  const RawBlock& raw() const { return raw_; }
  std::uint64_t offset() const { return raw_.offset; }
  const BlockType& type() const { return *type_; }

  /// Whether the block has all the links and fields that its type has.
  bool isComplete() const { return is_complete_; }

  /// The link at an index among those that each block of the type has; 0 for none.
  std::uint64_t link(std::size_t index) const { return index < links_.size() ? links_[index] : 0; }

  /// A field by the format's name of it; 0 when the type has none or the block is cut off.
  std::uint64_t number(std::string_view field) const;
  std::int64_t signedNumber(std::string_view field) const;
  double real(std::string_view field) const;
  std::string_view bytes(std::string_view field) const;

  /// Whether a bit is set in the type's flags ("cn_flags" and so on).
  bool hasFlag(std::string_view field, std::uint64_t bit) const {
    return (number(field) & bit) != 0;
  }

  /// Offset in the file of the first byte after the links, and of the first after the fields.
  std::uint64_t fieldsAt() const;
  std::uint64_t tailAt() const;
  /// Bytes from tailAt() to the block's end, as far as the file has them.
  std::uint64_t tailBytes() const;

 private:
  void readLinks(InputFile& file);
  void readFields(InputFile& file);
  const FieldLayout* find(std::string_view field) const;

  RawBlock raw_;
  const BlockType* type_;
  std::uint64_t file_size_;
  std::vector<std::uint64_t> links_;
  std::string fields_;  ///< as many bytes as there are
  bool is_complete_ = true;
};

/// The bytes of a field as its kind is to be shown: "12", "-60", "0.5", "00 ff 12".
/// Nothing for a field that is cut off.
std::string shownField(const FieldLayout& field, std::string_view bytes);

/// The block at an offset, if it is one of the type with these letters; nothing for offset 0.
std::optional<BlockFields> readFields(InputFile& file, std::uint64_t offset,
                                      std::string_view letters);

/// What the link at an index of a block is for: the type's own links, then those that its counts
/// and flags ask for. A link that the type does not define has the role "link N" and may lead
/// anywhere.
struct LinkRole {
  std::string name;  ///< with an index where there are several: "dl_data[2]"
  LinkLayout layout;
};
LinkRole linkRole(const BlockFields& block, std::uint64_t index);

/// The letters of the types that the link at an index may lead to, as LinkLayout has them.
std::string_view linkTargets(const BlockFields& block, std::uint64_t index);

/// How many links the block's counts and flags ask for after those that each block of the type has.
std::uint64_t promisedLinks(const BlockFields& block);

/// What the number of 8 bytes at an index after the fields is, such as "dl_offset[2]", and how its
/// bytes are understood. One that the type does not define is a "further value[N]".
struct NumberRole {
  std::string name;
  FieldKind kind;
};
NumberRole numberRole(const BlockFields& block, std::uint64_t index);

/// How many numbers the block's counts and flags ask for after its fields, and the field that does.
struct PromisedNumbers {
  std::string_view count_field;
  std::uint64_t count = 0;
};
PromisedNumbers promisedNumbers(const BlockFields& block);

}  // namespace mdf_reader

#endif  // MDF_READER_BLOCKS_BLOCK_FIELDS_H_
