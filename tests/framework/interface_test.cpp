/// What the framework offers to programs and to the blocks. Compiling this file is the test.

#include <cstddef>
#include <cstdint>
#include <fstream>
#include <istream>
#include <ostream>
#include <type_traits>
#include <utility>
#include <vector>

#include "mdf_v4_10.h"
#include "support/interface_checks.h"

using namespace mdf_tests;
using namespace mdf_v4_10;

// clang-format off
namespace {

static_assert(std::is_same_v<UINT8,  std::uint8_t>);
static_assert(std::is_same_v<UINT16, std::uint16_t>);
static_assert(std::is_same_v<UINT32, std::uint32_t>);
static_assert(std::is_same_v<UINT64, std::uint64_t>);
static_assert(std::is_same_v<INT16,  std::int16_t>);
static_assert(std::is_same_v<INT64,  std::int64_t>);
static_assert(std::is_same_v<REAL,   double>);
static_assert(std::is_same_v<LINK,   std::int64_t>);

namespace block_id {

using B = MDF_Block_ID;

static_assert(isPlainValue<B>());
static_assert(isConstant<std::uint16_t>(B::constantPart, 0x2323));

static_assert(has<std::uint32_t>(&B::idInternal));

static_assert(constructs<B, std::uint16_t>());

static_assert(writes<B>());

}  // namespace block_id

namespace header_section {

using B = HeaderSection;

static_assert(isPlainValue<B>());
static_assert(isConstant<std::size_t>(B::HEADER_SIZE, 24));

static_assert(has<MDF_Block_ID>(&B::mdfID));
static_assert(has<UINT8[4]>(&B::reserved));
static_assert(has<UINT64>(&B::length, &B::link_count));

static_assert(constructs<B, MDF_Block_ID>());

static_assert(hasValue<UINT64>(&B::getLength,    &B::setLength));
static_assert(hasValue<UINT64>(&B::getLinkCount, &B::setLinkCount));

// The bytes are only read: programs pass a buffer that they may change or one that they may not.
static_assert(std::is_same_v<
    decltype(std::declval<B&>().readFromByteArray(std::declval<std::uint8_t*>())), void>);

static_assert(has<void(std::ostream&) const>(&B::print));
static_assert(writes<B>());

}  // namespace header_section

namespace link_section {

using B = LinkSection;

static_assert(isPlainValue<B>());
static_assert(std::is_convertible_v<B*, std::vector<LINK>*>);

static_assert(has<UINT64() const>(&B::getValidLinkLength));

static_assert(writes<B>());

}  // namespace link_section

namespace general_block {

using B = GENERALBLOCK;

static_assert(isPlainValue<B>());

static_assert(has<HeaderSection>(&B::header));
static_assert(has<LinkSection>(&B::links));
static_assert(has<std::uint8_t>(&B::m_pad));

static_assert(constructs<B, std::uint16_t>());
static_assert(constructs<B, std::uint16_t, UINT64, UINT64>());

static_assert(has<void()>(&B::set8BytePadding));
static_assert(hasValue<std::uint8_t>(&B::getPadding, &B::setPadding));
static_assert(has<HeaderSection&()>(&B::getHeader));

/// A block class, to which the protected operations are open.
struct Block : GENERALBLOCK {
  using GENERALBLOCK::read;
  using GENERALBLOCK::seekg;
  using GENERALBLOCK::writex;
};

static_assert(has<LINK(std::ifstream&, LINK) const>(&Block::seekg));
static_assert(hasStatic<void(std::istream&, void*, std::size_t)>      (&Block::read));
static_assert(hasStatic<void(std::ostream&, const void*, std::size_t)>(&Block::writex));

constexpr auto seeks = [](auto& block)
    -> std::void_t<decltype(block.seekg(std::declval<std::ifstream&>(), LINK{}))> {};
constexpr auto reads = [](auto& block)
    -> std::void_t<decltype(block.read(std::declval<std::istream&>(), nullptr, 0))> {};
constexpr auto writes_bytes = [](auto& block)
    -> std::void_t<decltype(block.writex(std::declval<std::ostream&>(), nullptr, 0))> {};

static_assert(allows<Block>(seeks)        && !allows<B>(seeks));
static_assert(allows<Block>(reads)        && !allows<B>(reads));
static_assert(allows<Block>(writes_bytes) && !allows<B>(writes_bytes));

}  // namespace general_block

}  // namespace
// clang-format on
