// Property values: kinds, conversions to numbers, equality.

#include "host/Value.h"

#include <gtest/gtest.h>

#include <cmath>

#include "host/Point3D.h"

namespace pelmar {
namespace {

struct Thing : Point3D {};

TEST(ValueKind, ofNothingIsNil) {
  EXPECT_TRUE(Value().isNil());
  EXPECT_TRUE(Value(nullptr).isNil());
  EXPECT_TRUE(Value(Ref<Point3D>()).isNil()) << "a nil object is no value";
  EXPECT_FALSE(Value(false).isNil());
  EXPECT_FALSE(Value(Value::Dictionary{}).isNil());
}

TEST(ValueKind, isToldByItsAccessors) {
  EXPECT_TRUE(Value(true).isBool());
  EXPECT_TRUE(Value(1).isInteger());
  EXPECT_TRUE(Value(1.0).isReal());
  EXPECT_TRUE(Value(true).isNumber());
  EXPECT_FALSE(Value("1").isNumber());
  EXPECT_EQ(*Value("text").string(), "text");
  EXPECT_EQ(Value(1).string(), nullptr);
  EXPECT_EQ(Value(Value::Array{1, 2}).array()->size(), 2U);
  EXPECT_EQ(Value("x").array(), nullptr);
  EXPECT_EQ(Value(Value::Dictionary{{"k", 1}}).dictionary()->size(), 1U);
  const Ref<Point3D> thing = makeRef<Thing>();
  EXPECT_TRUE(Value(thing).object() == thing);
  EXPECT_FALSE(Value(1).object());
}

struct IntRow {
  const char* name;
  Value value;
  std::int32_t expected;
  friend std::ostream& operator<<(std::ostream& out, const IntRow& row) { return out << row.name; }
};

class ValueAsInt : public ::testing::TestWithParam<IntRow> {};

TEST_P(ValueAsInt, isThirtyTwoBits) { EXPECT_EQ(GetParam().value.intValue(), GetParam().expected); }

INSTANTIATE_TEST_SUITE_P(
    Rows, ValueAsInt,
    ::testing::Values(IntRow{"nil", Value(), 0}, IntRow{"yes", Value(true), 1}, IntRow{"negative", Value(-1), -1},
                      IntRow{"lowBitsOnly", Value(std::int64_t{0x100000002}), 2},
                      IntRow{"highBitIsSign", Value(std::int64_t{0xFFFFFFFF}), -1},
                      IntRow{"fractionLost", Value(2.9), 2}, IntRow{"fractionLostTowardsZero", Value(-2.9), -2},
                      IntRow{"hugeReal", Value(1e300), 0}, IntRow{"notANumber", Value(std::nan("")), 0},
                      IntRow{"string", Value("42"), 42}, IntRow{"stringWithBlanksAndRest", Value("  -7x"), -7},
                      IntRow{"stringWithPlus", Value("+3"), 3}, IntRow{"stringBeyond", Value("99999999999"), INT32_MAX},
                      IntRow{"stringBelow", Value("-99999999999"), INT32_MIN}, IntRow{"word", Value("L4"), 0},
                      IntRow{"empty", Value(""), 0}, IntRow{"array", Value(Value::Array{1}), 0}),
    [](const auto& row) { return std::string(row.param.name); });

struct BoolRow {
  const char* name;
  Value value;
  bool expected;
  friend std::ostream& operator<<(std::ostream& out, const BoolRow& row) { return out << row.name; }
};

class ValueAsBool : public ::testing::TestWithParam<BoolRow> {};

TEST_P(ValueAsBool, followsItsKind) { EXPECT_EQ(GetParam().value.boolValue(), GetParam().expected); }

INSTANTIATE_TEST_SUITE_P(
    Rows, ValueAsBool,
    ::testing::Values(BoolRow{"nil", Value(), false}, BoolRow{"zero", Value(0), false}, BoolRow{"two", Value(2), true},
                      BoolRow{"half", Value(0.5), true}, BoolRow{"yes", Value("yes"), true},
                      BoolRow{"True", Value("True"), true}, BoolRow{"no", Value("no"), false},
                      BoolRow{"leadingZeros", Value(" +007"), true}, BoolRow{"onlyZeros", Value("000"), false},
                      BoolRow{"blank", Value("  "), false}, BoolRow{"dictionary", Value(Value::Dictionary{}), false}),
    [](const auto& row) { return std::string(row.param.name); });

TEST(ValueAsDouble, isTheNumberOrZero) {
  EXPECT_EQ(Value(true).doubleValue(), 1);
  EXPECT_EQ(Value(-3).doubleValue(), -3);
  EXPECT_EQ(Value(2.5).doubleValue(), 2.5);
  EXPECT_EQ(Value("2.5").doubleValue(), 0);
}

TEST(ValueEquality, ofNumbersIsByValueWhateverTheirKind) {
  EXPECT_EQ(Value(true), Value(1));
  EXPECT_EQ(Value(2), Value(2.0));
  EXPECT_EQ(Value(false), Value(0.0));
  EXPECT_NE(Value(2), Value(2.5));
  EXPECT_NE(Value(0), Value()) << "zero is not nil";
  EXPECT_NE(Value(1), Value("1"));
  EXPECT_NE(Value(std::int64_t{9007199254740993}), Value(std::int64_t{9007199254740992}))
      << "integers are not compared as reals";
}

TEST(ValueEquality, ofArraysAndDictionariesIsElementByElement) {
  EXPECT_EQ(Value(Value::Array{1, "a"}), Value(Value::Array{1.0, "a"}));
  EXPECT_NE(Value(Value::Array{1, 2}), Value(Value::Array{2, 1}));
  EXPECT_EQ(Value(Value::Dictionary{{"k", true}}), Value(Value::Dictionary{{"k", 1}}));
  EXPECT_NE(Value(Value::Dictionary{}), Value());
  EXPECT_NE(Value(Value::Dictionary{}), Value(Value::Dictionary{{"k", Value()}}));
}

TEST(ValueEquality, ofObjectsIsIdentity) {
  const Ref<Point3D> one = makeRef<Thing>();
  const Ref<Point3D> two = makeRef<Thing>();
  EXPECT_EQ(Value(one), Value(one));
  EXPECT_NE(Value(one), Value(two));
}

}  // namespace
}  // namespace pelmar
