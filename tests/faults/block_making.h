#ifndef MDF_TESTS_FAULTS_BLOCK_MAKING_H_
#define MDF_TESTS_FAULTS_BLOCK_MAKING_H_

#include <cstddef>
#include <cstdint>
#include <map>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "mdf_v4_10.h"
#include "support/blocks.h"
#include "support/bytes.h"
#include "support/golden_blocks.h"

namespace mdf_tests {

/// The ways in which blocks of a class come to be and take memory, other than by being read.
template <class Block>
struct BlockMaking {
  using Change = void (*)(Block&);

  std::vector<Block (*)()> constructors;
  /// Each puts one more entry into a list, or sets the last link, or leaves the block as it was.
  std::vector<Change> additions;
  /// Each fills the block with parameters in place of those it has.
  std::vector<Change> setups;
};

template <class Block>
BlockMaking<Block> making();

/// The bytes up to which a block goes into one write.
inline constexpr std::size_t largest_write = 1024;

inline const std::string long_text(largest_write, 'x');
inline const auto* const long_data = reinterpret_cast<const std::uint8_t*>(long_text.data());

inline const std::map<mdf_v4_10::REAL, mdf_v4_10::REAL> numbers = {{1, 2}, {3, 4}};
inline const std::map<mdf_v4_10::REAL, mdf_v4_10::LINK> texts = {{1, 2}, {3, 4}};
inline const std::map<mdf_v4_10::LINK, mdf_v4_10::REAL> text_numbers = {{1, 2}, {3, 4}};
inline const std::map<mdf_v4_10::LINK, mdf_v4_10::LINK> text_texts = {{1, 2}, {3, 4}};
using Range = std::pair<mdf_v4_10::REAL, mdf_v4_10::REAL>;
inline const std::map<Range, mdf_v4_10::REAL> range_numbers = {{{1, 2}, 3}, {{4, 5}, 6}};
inline const std::map<Range, mdf_v4_10::LINK> range_texts = {{{1, 2}, 3}, {{4, 5}, 6}};

template <>
inline BlockMaking<mdf_v4_10::IDBLOCK> making() {
  using B = mdf_v4_10::IDBLOCK;
  return {{[] { return B("TESTPROG"); }}, {}, {}};
}

template <>
inline BlockMaking<mdf_v4_10::HDBLOCK> making() {
  using B = mdf_v4_10::HDBLOCK;
  return {{[] { return B(1, 2, 3, 4, B::TIME_LOCAL_PC, 0, 0); }},
          {[](B& block) { block.setMDCommentblock(5); }},
          {}};
}

template <class B>
BlockMaking<B> makingOfText() {
  return {{[] { return B(); }, [] { return B("abc", 3); }}, {}, {[](B& block) {
            block.setup(long_text.data(), long_text.size());
          }}};
}

template <>
inline BlockMaking<mdf_v4_10::TXBLOCK> making() {
  return makingOfText<mdf_v4_10::TXBLOCK>();
}

template <>
inline BlockMaking<mdf_v4_10::MDBLOCK> making() {
  return makingOfText<mdf_v4_10::MDBLOCK>();
}

template <>
inline BlockMaking<mdf_v4_10::FHBLOCK> making() {
  using B = mdf_v4_10::FHBLOCK;
  return {{[] { return B(1, 2, 3, 4); }}, {[](B& block) { block.setMDBlock(5); }}, {}};
}

template <>
inline BlockMaking<mdf_v4_10::CHBLOCK> making() {
  using B = mdf_v4_10::CHBLOCK;
  return {{[] { return B(B::CH_TYPE_GROUP); }, [] { return B(B::CH_TYPE_MAP_LIST); }},
          {[](B& block) { block.addChannelElement(1, 2, 3); },
           [](B& block) {
             block.addChannelElement({4, 5, 6});
           },
           [](B& block) { block.setMDBlock(7); }},
          {[](B& block) { block.setType(B::CH_TYPE_MAP_LIST); },
           [](B& block) { block.setType(B::CH_TYPE_IN_MEASUREMENT); }}};
}

template <>
inline BlockMaking<mdf_v4_10::ATBLOCK> making() {
  using B = mdf_v4_10::ATBLOCK;
  return {{[] { return B(); }, [] { return B("abc", 3); }},
          {[](B& block) { block.setNextATBlock(1); }, [](B& block) { block.setMDBlock(2); }},
          {[](B& block) { block.setup(long_text.data(), long_text.size()); }}};
}

template <>
inline BlockMaking<mdf_v4_10::EVBLOCK> making() {
  using B = mdf_v4_10::EVBLOCK;
  return {{[] {
            return B(B::EV_TYPE_MARKER, B::EV_SYNCTYPE_SECONDS, B::EV_RANGETYPE_POINT,
                     B::EV_CAUSETYPE_USER);
          }},
          {[](B& block) { block.addScope(1); }, [](B& block) { block.addAttachment(2); },
           [](B& block) { block.setMDBlock(3); }},
          {}};
}

template <>
inline BlockMaking<mdf_v4_10::DGBLOCK> making() {
  using B = mdf_v4_10::DGBLOCK;
  return {{[] { return B(1, 2, 3, B::DG_UINT8); }}, {[](B& block) { block.setComment(4); }}, {}};
}

template <>
inline BlockMaking<mdf_v4_10::CGBLOCK> making() {
  using B = mdf_v4_10::CGBLOCK;
  return {{[] { return B(); },
           [] { return B(1, B::no_flag, 2, 3, 4, 5, 6, 7, B::CG_PATHSEPARATOR_POINT, 8, 9); }},
          {[](B& block) { block.setComment(10); }},
          {[](B& block) {
            block.setup(1, B::no_flag, 2, 3, 4, 5, 6, 7, B::CG_PATHSEPARATOR_POINT, 8, 9);
          }}};
}

template <>
inline BlockMaking<mdf_v4_10::SIBLOCK> making() {
  using B = mdf_v4_10::SIBLOCK;
  return {{[] { return B(B::SI_SOURCETYPE_ECU, B::SI_BUSTYPE_CAN, true, 1, 2); }},
          {[](B& block) { block.setComment(3); }},
          {}};
}

template <>
inline BlockMaking<mdf_v4_10::CNBLOCK> making() {
  using B = mdf_v4_10::CNBLOCK;
  return {{[] {
            return B(B::CN_CHANNELTYPE_MASTER, B::CN_SYNCTYPE_TIME, B::CN_DATATYPE_UINT_LE, 1, 2,
                     3);
          }},
          {[](B& block) { block.addAttachement(4); }, [](B& block) { block.setCommentblock(5); }},
          {[](B& block) {
             block.setup(B::CN_CHANNELTYPE_MASTER, B::CN_SYNCTYPE_TIME, B::CN_DATATYPE_UINT_LE, 1,
                         2, 3, 4, 5, 6, 7, 8, 9, 10, 11, true, true, true, true, true, true, true,
                         true, true, true, true, true, true, 12, 13, 14, 15, 16, 17, 18);
           },
           [](B& block) { block.setupDefaultXAxis(1, 2, 3); }}};
}

template <>
inline BlockMaking<mdf_v4_10::CCBLOCK> making() {
  using B = mdf_v4_10::CCBLOCK;
  return {{[] { return B(B::CC_CONVTYPE_EQUAL); }},
          {[](B& block) { block.addReference(1); }, [](B& block) { block.addValue(2); },
           [](B& block) { block.setInverseCcblock(3); }},
          {[](B& block) { block.setupEqualConversion(); },
           [](B& block) { block.setupLinearConversion(1, 2); },
           [](B& block) { block.setupRationalConversion(1, 2, 3, 4, 5, 6); },
           [](B& block) { block.setupAlgebraicConversion(1); },
           [](B& block) { block.setupV2VTABConversion(true, numbers); },
           [](B& block) { block.setupVRANGE2VTABConversion(range_numbers, 1); },
           [](B& block) { block.setupV2TEXT_SCALETABConversion(texts, 1); },
           [](B& block) { block.setupVRANGE2TEXT_SCALETABConversion(range_texts, 1); },
           [](B& block) { block.setupTEXT2VTABConversion(text_numbers, 1); },
           [](B& block) { block.setupTEXT2TEXTTABConversion(text_texts, 1); }}};
}

template <class B>
BlockMaking<B> makingOfGrowingData() {
  return {{[] { return B(); }, [] { return B(long_data, 3); }},
          {[](B& block) { block.addData(1); }},
          {[](B& block) { block.setup(long_data, long_text.size()); }}};
}

template <>
inline BlockMaking<mdf_v4_10::DTBLOCK> making() {
  return makingOfGrowingData<mdf_v4_10::DTBLOCK>();
}

template <>
inline BlockMaking<mdf_v4_10::SDBLOCK> making() {
  return makingOfGrowingData<mdf_v4_10::SDBLOCK>();
}

template <>
inline BlockMaking<mdf_v4_10::RDBLOCK> making() {
  using B = mdf_v4_10::RDBLOCK;
  return {{[] { return B(long_data, 3); }}, {}, {[](B& block) {
            block.setup(long_data, long_text.size());
          }}};
}

template <>
inline BlockMaking<mdf_v4_10::DLBLOCK> making() {
  using B = mdf_v4_10::DLBLOCK;
  return {{[] { return B(false, 1); }, [] { return B(true, 1); }},
          {[](B& block) { block.addData(1, 2); }, [](B& block) { block.setNextDlblock(3); }},
          {}};
}

template <>
inline BlockMaking<mdf_v4_10::DZBLOCK> making() {
  using B = mdf_v4_10::DZBLOCK;
  return {{[] { return B(mdf_v4_10::DTBLOCK::MDF_DT_ID, B::DZ_ZIPTYPE_DEFLATE, long_data, 3); }},
          {},
          {[](B& block) { block.setupZipData(long_data, long_text.size()); }}};
}

template <>
inline BlockMaking<mdf_v4_10::HLBLOCK> making() {
  using B = mdf_v4_10::HLBLOCK;
  return {{[] { return B(1, true, mdf_v4_10::DZBLOCK::DZ_ZIPTYPE_DEFLATE); }},
          {[](B& block) { block.setFirstDlblock(2); }},
          {}};
}

template <>
inline BlockMaking<mdf_v4_10::SRBLOCK> making() {
  using B = mdf_v4_10::SRBLOCK;
  return {{[] { return B(1, 0.5, B::SR_SYNCTYPE_TIME_SECONDS, 2, 3); }},
          {[](B& block) { block.setDatablock(4); }},
          {}};
}

/// A block from each constructor after one round of every addition.
template <class Block>
std::vector<Block> smallBlocks() {
  const BlockMaking<Block> ways = making<Block>();
  std::vector<Block> blocks;
  for (const auto construct : ways.constructors) {
    blocks.push_back(construct());
    for (const auto add : ways.additions) {
      add(blocks.back());
    }
  }
  return blocks;
}

/// A block after every set-up and so many rounds of every addition that it does not go into one
/// write, if it can become so large.
template <class Block>
Block largeBlock() {
  constexpr int enough_rounds = 110;
  const BlockMaking<Block> ways = making<Block>();
  Block block = ways.constructors.front()();
  for (const auto set_up : ways.setups) {
    set_up(block);
  }
  for (int i = 0; i < enough_rounds && written(block).size() <= largest_write; ++i) {
    for (const auto add : ways.additions) {
      add(block);
    }
  }
  return block;
}

/// What a stream must hold for reading each of the class's golden blocks: the block, and for a
/// zipped block's reader, which takes the data from after it, as much again.
template <class Block>
std::vector<std::string> goldenStreams() {
  std::vector<std::string> streams;
  for (const std::string& block : goldenBlocks<Block>()) {
    streams.push_back(block + block);
  }
  return streams;
}

/// A block whose body is read in several pieces.
inline std::string longAttachment() {
  constexpr std::size_t size = 200000;
  return Bytes()
      .header("AT", mdf_v4_10::ATBLOCK::ATBLOCK_CONSTANT_SIZE + size, 4)
      .links({1, 2, 3, 4})
      .zeros(32)
      .u64(size)
      .text(std::string(size, 'x'));
}

/// Every golden block, read, and blocks from every constructor.
template <class Block>
std::vector<Block> sampleBlocks() {
  std::vector<Block> blocks = smallBlocks<Block>();
  for (const std::string& stream : goldenStreams<Block>()) {
    std::istringstream is(stream);
    blocks.push_back(Block(is));
  }
  return blocks;
}

}  // namespace mdf_tests

#endif  // MDF_TESTS_FAULTS_BLOCK_MAKING_H_
