#include "block_id.h"

#include <array>
#include <ostream>

#include "wire.h"

namespace mdf_v4_10 {

std::ostream& operator<<(std::ostream& os, const MDF_Block_ID& id) {
  std::array<char, sizeof id.idInternal> bytes;
  detail::storeLe(bytes.data(), id.idInternal);
  return os.write(bytes.data(), bytes.size());
}

}  // namespace mdf_v4_10
