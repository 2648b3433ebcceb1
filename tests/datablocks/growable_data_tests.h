#ifndef MDF_TESTS_DATABLOCKS_GROWABLE_DATA_TESTS_H_
#define MDF_TESTS_DATABLOCKS_GROWABLE_DATA_TESTS_H_

#include <gtest/gtest.h>

#include "datablocks/plain_data_tests.h"

/// What those plain data blocks have in common that start empty and grow byte by byte.
namespace mdf_tests {

template <class Kind>
class GrowableData : public PlainData<Kind> {};

TYPED_TEST_SUITE_P(GrowableData);

TYPED_TEST_P(GrowableData, DefaultBlockIsTheEmptyBlock) {
  this->expectEmptyBlock(typename TypeParam::Block());
}

TYPED_TEST_P(GrowableData, BytesAreAddedAtTheEnd) {
  typename TypeParam::Block block;
  block.addData(0);
  block.addData(255);
  block.addData(1);
  EXPECT_EQ(block.header.length, 24U);
  EXPECT_EQ(block.getSize(), 27U);
  EXPECT_BYTES(written(block), Bytes().header(TypeParam::letters(), 27, 0).u8s({0, 255, 1}));
}

TYPED_TEST_P(GrowableData, BytesAreAddedBehindThoseThatWereRead) {
  auto block = this->readBlock(this->fileBytes("abc", 2));
  block.addData('d');
  EXPECT_EQ(block.header.length, 27U);
  EXPECT_BYTES(written(block), this->fileBytes("abcd", 2));
}

TYPED_TEST_P(GrowableData, ClearingRemovesTheDataAndLeavesTheHeader) {
  auto block = this->readBlock(this->fileBytes("abc", 2));
  block.clearData();
  EXPECT_EQ(block.header.length, 27U);
  EXPECT_EQ(block.getSize(), 24U);
  EXPECT_TRUE(block.getData().empty());
  EXPECT_BYTES(written(block), this->fileBytes("", 2));
  block.clearData();
  block.addData('e');
  EXPECT_BYTES(written(block), this->fileBytes("e", 2));
}

REGISTER_TYPED_TEST_SUITE_P(GrowableData, DefaultBlockIsTheEmptyBlock, BytesAreAddedAtTheEnd,
                            BytesAreAddedBehindThoseThatWereRead,
                            ClearingRemovesTheDataAndLeavesTheHeader);

}  // namespace mdf_tests

#endif  // MDF_TESTS_DATABLOCKS_GROWABLE_DATA_TESTS_H_
