#ifndef MDF_READER_BLOCKS_LATER_TYPES_H_
#define MDF_READER_BLOCKS_LATER_TYPES_H_

#include <cstdint>

/// Numbers of blocks and flags that the library's classes have no names for: those of channel
/// arrays and of version 4.2.
namespace mdf_reader {

struct CABLOCK {
  enum Link { ca_composition };
  enum Storage : std::uint64_t {
    in_records = 0,         ///< the elements stand side by side in each record
    in_channel_groups = 1,  ///< each has records of its own, with a record id that goes up by one
    in_data_groups = 2,     ///< each has records of its own, with data of their own
  };
  enum Flag : std::uint64_t {
    dynamic_size = 1,
    input_quantity = 2,
    output_quantity = 4,
    comparison_quantity = 8,
    axis = 16,
    fixed_axis = 32,
    inverse_layout = 64,  ///< the first index counts fastest
  };
};

struct LDBLOCK {
  enum Link { ld_next };
  enum Flag : std::uint64_t { equal_sample_count = 1, has_invalidation_data = 1U << 31U };
};

/// Bit of cg_flags: the group's master is that of another group.
inline constexpr unsigned cg_remote_master = 8;

}  // namespace mdf_reader

#endif  // MDF_READER_BLOCKS_LATER_TYPES_H_
