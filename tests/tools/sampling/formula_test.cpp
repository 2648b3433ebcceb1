#include "reader/values/formula.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>

using mdf_reader::Formula;

namespace {

double at(const std::string& formula, double x) { return Formula(formula).at(x); }

TEST(Formula, ArithmeticOfX) {
  EXPECT_EQ(at("2*X+1", 3), 7);
  EXPECT_EQ(at("(X-1)/4", 3), 0.5);
  EXPECT_EQ(at("X^2 - x1 + X1", 3), 9);
  EXPECT_EQ(at("1e3*x", 2), 2000);
  EXPECT_EQ(at("-X", 2), -2);
}

TEST(Formula, FunctionsInSmallAndCapitalLetters) {
  EXPECT_EQ(at("sqrt(X)+SQRT(X)", 9), 6);
  EXPECT_EQ(at("sin(0)+cos(0)+tan(0)", 0), 1);
  EXPECT_DOUBLE_EQ(at("asin(X)+acos(X)", 0.3), at("pi/2", 0));
  EXPECT_EQ(at("arctan(0)+arcsin(0)+atan(X)", 0), 0);
  EXPECT_EQ(at("exp(0)+sinh(0)+cosh(0)+tanh(0)", 0), 2);
  EXPECT_DOUBLE_EQ(at("exp(ln(X))", 5), 5);
  EXPECT_EQ(at("abs(X)+ABS(X)", -2), 4);
  EXPECT_EQ(at("floor(X)+ceil(X)+trunc(X)", -1.5), -4);
  EXPECT_EQ(at("pow(X,3)+mod(X,2)", 3), 28);
  EXPECT_EQ(at("min(X,2)+max(X,2)", 3), 5);
}

TEST(Formula, LogIsToTheBaseTen) {
  EXPECT_EQ(at("log(X)", 1000), 3);
  EXPECT_EQ(at("log10(X)", 1000), 3);
  EXPECT_EQ(at("log2(X)", 8), 3);
}

TEST(Formula, BitsOfIntegers) {
  EXPECT_EQ(at("X & 6", 12), 4);
  EXPECT_EQ(at("X | 6", 12), 14);
  EXPECT_EQ(at("X XOR 6", 12), 10);
  EXPECT_EQ(at("X << 2", 3), 12);
  EXPECT_EQ(at("X >> 2", 13), 3);
  EXPECT_EQ(at("X > 2 && X < 4", 3), 1);
  EXPECT_EQ(at("X > 2 ? 10 : 20", 1), 20);
}

TEST(Formula, WhereThereIsNoValue) {
  EXPECT_TRUE(std::isnan(at("sqrt(X)", -1)));
  EXPECT_TRUE(std::isinf(at("1/X", 0)));
}

TEST(Formula, WhatIsNoFormulaIsRefused) {
  EXPECT_NE(Formula("").problem(), "");
  EXPECT_NE(Formula("2*").problem(), "");
  EXPECT_NE(Formula("Y+1").problem(), "");
  EXPECT_NE(Formula("system(1)").problem(), "");
  EXPECT_NE(Formula(std::string(5000, '1')).problem(), "");
}

TEST(Formula, DeepNestingIsEitherAFormulaOrRefused) {
  const std::string brackets = std::string(2000, '(') + "X" + std::string(2000, ')');
  EXPECT_EQ(at(brackets, 7), 7);
}

}  // namespace
