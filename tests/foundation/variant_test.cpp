#include "foundation/variant.h"

#include <gtest/gtest.h>

namespace korvex::foundation {
namespace {

const Variant kZero16(std::int16_t{0});

TEST(Variant, ATextLiteralIsAStringAndNoBoolean) {
  EXPECT_TRUE(Variant("0").isString());
  EXPECT_EQ(Variant("defrag.exe"), Variant(std::string("defrag.exe")));
}

TEST(Variant, StringFormOfEachKind) {
  EXPECT_EQ(variantText({}), "");
  EXPECT_EQ(variantText(true), "True");
  EXPECT_EQ(variantText(std::int16_t{-1}), "-1");
  EXPECT_EQ(variantText(std::int32_t{-2147483647 - 1}), "-2147483648");
  EXPECT_EQ(variantText(ByteArray{0x95, 0, 0x0A}), "95 00 0a");
}

// The tweak writer takes "0" for a value to write and false for a value to delete: the two must
// never be taken for one another.
TEST(Variant, IntegerZeroEqualsTheTextZeroButFalseDoesNot) {
  EXPECT_TRUE(looselyEqual(kZero16, "0"));
  EXPECT_TRUE(looselyEqual("0", std::int32_t{0}));
  EXPECT_FALSE(looselyEqual(false, "0"));
  EXPECT_FALSE(looselyEqual("0", false));
  EXPECT_FALSE(looselyEqual({}, "0"));
  EXPECT_FALSE(looselyEqual(ByteArray{0}, "0"));
}

TEST(Variant, FalseIsWhatIsNoStringAndEqualsFalse) {
  EXPECT_TRUE(isFalse(false));
  EXPECT_TRUE(isFalse({}));
  EXPECT_TRUE(isFalse(kZero16));
  EXPECT_FALSE(isFalse(""));
  EXPECT_FALSE(isFalse("False"));
  EXPECT_FALSE(isFalse(ByteArray{}));
  EXPECT_FALSE(isFalse(std::int16_t{1}));
}

TEST(Variant, IntegersAndTextsCompareByNumberWhereTheTextIsOne) {
  EXPECT_TRUE(looselyEqual(std::int16_t{1}, std::int32_t{1}));
  EXPECT_TRUE(looselyEqual(" 01 ", std::int16_t{1}));
  EXPECT_FALSE(looselyEqual("1x", std::int16_t{1}));
  EXPECT_FALSE(looselyEqual("", std::int16_t{0}));
  EXPECT_TRUE(looselyEqual(true, std::int16_t{-1}));
  EXPECT_FALSE(looselyEqual("yes", "Yes"));
}

}  // namespace
}  // namespace korvex::foundation
