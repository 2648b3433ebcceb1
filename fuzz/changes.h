#ifndef MDF_FUZZ_CHANGES_H_
#define MDF_FUZZ_CHANGES_H_

#include <bitset>
#include <cstddef>
#include <ctime>
#include <initializer_list>
#include <string>
#include <tuple>
#include <type_traits>

#include "block_check.h"
#include "expect.h"
#include "input.h"

/// What can be done with a block: operations with arguments from an input, each with the expected
/// result.
namespace mdf_fuzz {

/// One call of an operation of a block, with arguments from the input.
template <class Block>
using Change = void (*)(Block& block, Input& input);

template <class Block>
void changeOneWay(Block& block, Input& input, std::initializer_list<Change<Block>> ways) {
  ways.begin()[input.take<UINT8>() % ways.size()](block, input);
}

/// Calls an operation with arguments that come from the input from left to right.
template <class Block, class... Parameters>
void call(Block& block, void (Block::*operation)(Parameters...), Input& input) {
  std::apply([&](auto... arguments) { (block.*operation)(arguments...); },
             std::tuple<std::decay_t<Parameters>...>{input.take<std::decay_t<Parameters>>()...});
}

template <auto Set, auto Get, class Block>
void set(Block& block, Input& input) {
  const auto value = input.take<decltype((block.*Get)())>();
  (block.*Set)(value);
  expect(same((block.*Get)(), value), "a getter to return what was set");
}

inline std::size_t differentBits(const std::string& a, const std::string& b) {
  std::size_t count = 0;
  for (std::size_t i = 0; i < a.size(); ++i) {
    count += std::bitset<8>(static_cast<unsigned char>(a[i] ^ b[i])).count();
  }
  return count;
}

/// Flags share a field. One that brings links with it changes more of the file than its bit.
template <auto Set, auto Get, class Block>
void setFlag(Block& block, Input& input) {
  const std::string before = bytesOf(block);
  set<Set, Get>(block, input);
  const std::string after = bytesOf(block);
  expect(before.size() != after.size() || differentBits(before, after) <= 1,
         "no flag to change another");
}

/// For changes that a rule of the block may refuse.
template <auto Set, auto Get, class Block>
void setOrClear(Block& block, Input& input) {
  const auto value = input.take<decltype((block.*Get)())>();
  (block.*Set)(value);
  expect((block.*Get)() == value || (block.*Get)() == decltype(value){},
         "what was set, or nothing");
}

template <auto List, auto Add, class Block>
void add(Block& block, Input& input) {
  using Entry = typename std::decay_t<decltype(block.*List)>::value_type;
  auto expected = block.*List;
  expected.push_back(input.take<Entry>());
  (block.*Add)(expected.back());
  expect(same(block.*List, expected), "one more entry at the end");
}

template <auto List, auto Remove, class Block>
void remove(Block& block, Input& input) {
  const auto index = input.take<UINT8>();
  auto expected = block.*List;
  if (index < expected.size()) {
    expected.erase(expected.begin() + index);
  }
  (block.*Remove)(index);
  expect(same(block.*List, expected), "the entry gone, if there was one");
}

template <class Block>
void changeTime(Block& block, Input& input) {
  std::tm time{};
  for (int* member : {&time.tm_year, &time.tm_mon, &time.tm_mday, &time.tm_hour, &time.tm_min,
                      &time.tm_sec, &time.tm_isdst}) {
    *member = input.take<int>();
  }
  block.setDateAndTime(time);
  block.getDateAndTime(time);
  block.setDST(input.take<bool>());
  block.getDateAndTime(time);
}

inline const UINT8* dataOf(const std::string& text) {
  return reinterpret_cast<const UINT8*>(text.data());
}

template <class Block>
void setUpText(Block& block, Input& input) {
  const std::string text = input.takeText();
  block.setup(text.data(), text.size());
  expect(block.getData().size() == text.size() + 1 && block.getData().back() == 0,
         "the text and a zero");
}

template <class Block>
void setUpData(Block& block, Input& input) {
  const std::string data = input.takeText();
  block.setup(dataOf(data), data.size());
  expect(block.getData().size() == data.size(), "the data");
}

template <class Block>
void growData(Block& block, Input& input) {
  block.addData(input.take<UINT8>());
  if (input.take<bool>()) {
    block.clearData();
  }
}

/// What all classes have from their base.
inline void changeFrame(GENERALBLOCK& block, Input& input) {
  block.getHeader().setLength(input.take<UINT64>());
  block.getHeader().setLinkCount(input.take<bool>() ? block.links.size() : input.take<UINT64>());
  block.header.reserved[input.take<UINT8>() % 4] = input.take<UINT8>();
  block.set8BytePadding();
  expect((block.header.length + block.getPadding()) % 8 == 0, "padding up to a multiple of 8");
  if (input.take<bool>()) {
    block.links.push_back(input.take<LINK>());
  }
}

}  // namespace mdf_fuzz

#endif  // MDF_FUZZ_CHANGES_H_
