// In what blocks the records of a data group with one channel group lie.

#include <functional>
#include <utility>

#include "sample_file.h"
#include "tools/support/data_blocks.h"

namespace mdf_tests {

namespace {

/// Places data in a file; returns what a data group links to.
using Place = std::function<std::uint64_t(SampleFile& file, const std::string& data)>;

Sample counting(const std::string& name, const std::string& shows, std::size_t records,
                const Place& place) {
  SampleFile file;
  const std::uint64_t data = place(file, countingRecords(records));
  file.addSortedGroup(countingGroup(records), countingChannels(), data);
  return {name, shows, file.bytes(), {countingTable(records)}};
}

/// Two lists, one after another. The blocks hold the data in pieces of 20 bytes.
std::uint64_t twoLists(FileBuilder& file, const std::vector<std::uint64_t>& blocks,
                       bool are_equal) {
  const std::vector<std::uint64_t> front(blocks.begin(), blocks.begin() + 2);
  const std::vector<std::uint64_t> back(blocks.begin() + 2, blocks.end());
  std::vector<std::uint64_t> offsets;
  for (std::size_t i = 0; i < back.size(); ++i) {
    offsets.push_back(40 + 20 * i);
  }
  const std::uint64_t second =
      are_equal ? addEqualList(file, back, 20) : addOffsetList(file, back, offsets);
  const std::uint64_t first =
      are_equal ? addEqualList(file, front, 20) : addOffsetList(file, front, {0, 20});
  file.link(first, 0, second);
  return first;
}

Samples plainData() {
  return {
      counting("organisation-one-block", "all records in one data block", 10,
               [](SampleFile& file, const std::string& data) { return file.add("DT", {}, data); }),
      counting("organisation-one-record", "a single record", 1,
               [](SampleFile& file, const std::string& data) { return file.add("DT", {}, data); }),
      counting("organisation-no-data", "a group without a link to data", 0,
               [](SampleFile&, const std::string&) { return 0; }),
      counting("organisation-empty-block", "a data block without a byte", 0,
               [](SampleFile& file, const std::string& data) { return file.add("DT", {}, data); }),
  };
}

/// The records after everything else, so that the link to them leads forwards.
Sample dataAtTheEnd() {
  SampleFile file;
  const std::uint64_t data_group = file.addSortedGroup(countingGroup(3), countingChannels(), 0);
  file.link(data_group, 2, file.add("DT", {}, countingRecords(3)));
  return {"organisation-data-at-the-end",
          "the data block ends the file",
          file.bytes(),
          {countingTable(3)}};
}

Samples listedData() {
  return {
      counting("organisation-list-of-equal-length", "blocks of one length, the last one shorter", 9,
               [](SampleFile& file, const std::string& data) {
                 return addEqualList(file, addPieces(file, "DT", data, 40), 40);
               }),
      counting("organisation-list-with-offsets", "blocks of different lengths", 5,
               [](SampleFile& file, const std::string& data) {
                 const std::uint64_t first = file.add("DT", {}, data.substr(0, 10));
                 const std::uint64_t second = file.add("DT", {}, data.substr(10, 30));
                 const std::uint64_t third = file.add("DT", {}, data.substr(40));
                 return addOffsetList(file, {first, second, third}, {0, 10, 40});
               }),
      counting("organisation-list-of-one-block", "a list with a single block", 3,
               [](SampleFile& file, const std::string& data) {
                 return addEqualList(file, {file.add("DT", {}, data)}, 30);
               }),
      counting("organisation-list-without-blocks", "an empty list", 0,
               [](SampleFile& file, const std::string&) { return addOffsetList(file, {}, {}); }),
      counting("organisation-list-with-an-empty-block", "a block without a byte among others", 4,
               [](SampleFile& file, const std::string& data) {
                 const std::uint64_t first = file.add("DT", {}, data.substr(0, 20));
                 const std::uint64_t empty = file.add("DT", {});
                 const std::uint64_t last = file.add("DT", {}, data.substr(20));
                 return addOffsetList(file, {first, empty, last}, {0, 20, 20});
               }),
  };
}

Samples splitData() {
  return {
      counting("organisation-records-across-blocks",
               "records that begin in one block and end in another", 6,
               [](SampleFile& file, const std::string& data) {
                 return addEqualList(file, addPieces(file, "DT", data, 16), 16);
               }),
      counting("organisation-blocks-within-records", "blocks smaller than a record", 3,
               [](SampleFile& file, const std::string& data) {
                 return addEqualList(file, addPieces(file, "DT", data, 3), 3);
               }),
      counting("organisation-chain-of-lists-of-equal-length", "two lists, one after another", 9,
               [](SampleFile& file, const std::string& data) {
                 return twoLists(file, addPieces(file, "DT", data, 20), true);
               }),
      counting("organisation-chain-of-lists-with-offsets", "offsets go on in the next list", 9,
               [](SampleFile& file, const std::string& data) {
                 return twoLists(file, addPieces(file, "DT", data, 20), false);
               }),
      counting("organisation-blocks-in-reverse-order", "the last records come first in the file", 8,
               [](SampleFile& file, const std::string& data) {
                 std::vector<std::uint64_t> blocks;
                 for (const std::size_t at : {60U, 40U, 20U, 0U}) {
                   blocks.insert(blocks.begin(), file.add("DT", {}, data.substr(at, 20)));
                 }
                 return addEqualList(file, blocks, 20);
               }),
      counting("organisation-header-list", "a header in front of the list", 9,
               [](SampleFile& file, const std::string& data) {
                 const std::uint64_t list = addEqualList(file, addPieces(file, "DT", data, 40), 40);
                 return addHeaderList(file, list, 1, 0);
               }),
  };
}

/// Streams of a real compressor: of 10 records with the codes of the format, of 40 with their own,
/// and of 10 transposed.
std::string compressedTen() {
  return hex(
      "78da636040050fecd9a1ac0ff67c50d60f7b5198b4830c94c1e2a00c6571386841593c0e8650968083059425"
      "e460cf00005486067b");
}
std::string compressedForty() {
  return hex(
      "78da55c92d4c4201004561986c32c7983a658c31a6a0c88f020f0aed9d64a3d168369b8dc628349acd46b3d1"
      "6c361b8d66a3d11c85cd4020bc43e0a66fe7c662c75b85a76a13a6d57f787db8c98b042595a4a65204ea9cae"
      "ba2454573cab0c3d95a5af720c549e1755e055ddf0a66e19aa22235562a2ee98aa7bde55990ff5c04c55f854"
      "55e6aac697aaf3ad1ef9514f2c5483a56af2ab5aac228c5bac6d017fb680adadcdced6e6241eb1c359a47187"
      "8bf81edcfe25b1");
}
std::string compressedTransposed() {
  return hex("78da6360a0003cf8f083818583474088c1dedede010c18d8f9446594b50c2dec11ca00ba0f067b");
}

Samples zippedData() {
  return {
      counting(
          "organisation-zipped-stored", "a zlib stream of bytes as they are", 3,
          [](SampleFile& file, const std::string& data) { return addZipped(file, "DT", data); }),
      counting("organisation-zipped-stored-in-pieces", "a zlib stream of several parts", 3,
               [](SampleFile& file, const std::string& data) {
                 return file.add("DZ", {}, zippedFields(30, storedStream(data, 7)));
               }),
      counting("organisation-zipped", "compressed by the codes of the format", 10,
               [](SampleFile& file, const std::string&) {
                 return file.add("DZ", {}, zippedFields(100, compressedTen()));
               }),
      counting("organisation-zipped-with-own-codes", "compressed by codes that the stream brings",
               40,
               [](SampleFile& file, const std::string&) {
                 return file.add("DZ", {}, zippedFields(400, compressedForty()));
               }),
      counting("organisation-zipped-transposed",
               "the first bytes of all records, then the second ones", 10,
               [](SampleFile& file, const std::string&) {
                 return file.add("DZ", {}, zippedFields(100, compressedTransposed(), "DT", 1, 10));
               }),
      counting("organisation-zipped-transposed-with-a-rest",
               "rows of which the last one is incomplete", 4,
               [](SampleFile& file, const std::string& data) {
                 return addZipped(file, "DT", data, 12);
               }),
      counting("organisation-zipped-empty", "a zlib stream of no bytes", 0,
               [](SampleFile& file, const std::string&) { return addZipped(file, "DT", ""); }),
  };
}

Samples zippedLists() {
  return {
      counting("organisation-list-of-zipped", "zipped blocks under the header of a list", 9,
               [](SampleFile& file, const std::string& data) {
                 const auto blocks = addZippedPieces(file, "DT", data, 40);
                 return addHeaderList(file, addEqualList(file, blocks, 40), 1, 0);
               }),
      counting("organisation-list-of-zipped-transposed", "each block is transposed for itself", 9,
               [](SampleFile& file, const std::string& data) {
                 const auto blocks = addZippedPieces(file, "DT", data, 40, 10);
                 return addHeaderList(file, addEqualList(file, blocks, 40), 1, 1);
               }),
      counting("organisation-zipped-across-blocks",
               "records that begin in one zipped block and end in another", 6,
               [](SampleFile& file, const std::string& data) {
                 const auto blocks = addZippedPieces(file, "DT", data, 17, 10);
                 return addHeaderList(file, addEqualList(file, blocks, 17), 1, 1);
               }),
      counting("organisation-zipped-beside-plain", "zipped blocks and others in one list", 6,
               [](SampleFile& file, const std::string& data) {
                 const std::uint64_t first = addZipped(file, "DT", data.substr(0, 25));
                 const std::uint64_t second = file.add("DT", {}, data.substr(25, 10));
                 const std::uint64_t third = addZipped(file, "DT", data.substr(35), 10);
                 const auto list = addOffsetList(file, {first, second, third}, {0, 25, 35});
                 return addHeaderList(file, list, 0, 1);
               }),
      counting("organisation-chain-of-zipped-lists", "two lists of zipped blocks under one header",
               9,
               [](SampleFile& file, const std::string& data) {
                 const auto blocks = addZippedPieces(file, "DT", data, 20, 10);
                 return addHeaderList(file, twoLists(file, blocks, false), 0, 1);
               }),
  };
}

/// Texts of variable length whose signal data is placed.
Sample signals(const std::string& name, const std::string& shows, const Place& place) {
  SampleFile file;
  ChannelSpec channel = stored(7, 64);
  channel.type = 1;
  channel.data =
      place(file, Bytes().u32(5).text("first").u32(0).u32(6).text("second").u32(1).text("3"));
  return valueSample(name, shows, std::move(file), channel,
                     {{"0000000000000000", "first"},
                      {"0900000000000000", ""},
                      {"0d00000000000000", "second"},
                      {"1700000000000000", "3"}});
}

Samples signalData() {
  return {
      signals("organisation-signal-data", "values of variable length in one block",
              [](SampleFile& file, const std::string& data) { return file.add("SD", {}, data); }),
      signals("organisation-signal-data-list", "values that cross the borders of blocks",
              [](SampleFile& file, const std::string& data) {
                return addEqualList(file, addPieces(file, "SD", data, 10), 10);
              }),
      signals(
          "organisation-signal-data-zipped", "values of variable length in a zipped block",
          [](SampleFile& file, const std::string& data) { return addZipped(file, "SD", data); }),
      signals("organisation-signal-data-list-of-zipped", "values in zipped blocks",
              [](SampleFile& file, const std::string& data) {
                const auto blocks = addZippedPieces(file, "SD", data, 12);
                return addHeaderList(file, addOffsetList(file, blocks, {0, 12, 24}), 0, 0);
              }),
  };
}

Sample severalGroups() {
  SampleFile file;
  std::vector<ValueTable> tables;
  for (const std::size_t records : {3U, 0U, 5U, 1U}) {
    const std::uint64_t data = records == 0 ? 0 : file.add("DT", {}, countingRecords(records));
    file.addSortedGroup(countingGroup(records), countingChannels(), data);
    tables.push_back(countingTable(records));
  }
  return {"organisation-several-data-groups", "each data group has its own data", file.bytes(),
          tables};
}

}  // namespace

Samples organisationSamples() {
  return together({plainData(),
                   {dataAtTheEnd()},
                   listedData(),
                   splitData(),
                   zippedData(),
                   zippedLists(),
                   signalData(),
                   {severalGroups()}});
}

}  // namespace mdf_tests
