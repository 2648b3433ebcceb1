#include "block_writer.h"

namespace mdf_v4_10::detail {

template class BlockWriterTo<std::ostream>;

}  // namespace mdf_v4_10::detail
