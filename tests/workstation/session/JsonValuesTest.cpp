#include "workstation/session/JsonValues.h"

#include <gtest/gtest.h>

namespace workstation::test {
namespace {

using nlohmann::ordered_json;
using pelmar::Value;

TEST(JsonValues, EveryKindComesBackAsItWas) {
  for (const char* text : {"true", "0", "-5", "4503599627370497", "1.5", "\"Wirbelsäule\"", "[]", "[1,[\"a\",false]]",
                           "{\"a\":{\"b\":[1]}}", "null"}) {
    EXPECT_EQ(jsonFromValue(valueFromJson(ordered_json::parse(text))).dump(), text);
  }
}

TEST(JsonValues, KindsAreKeptApart) {
  EXPECT_TRUE(valueFromJson(ordered_json::parse("false")).isBool());
  EXPECT_TRUE(valueFromJson(ordered_json::parse("1")).isInteger());
  EXPECT_TRUE(valueFromJson(ordered_json::parse("1.0")).isReal());
  EXPECT_TRUE(valueFromJson(ordered_json()).isNil());
}

TEST(JsonValues, ANumberBeyond64BitsBecomesAReal) {
  const Value value = valueFromJson(ordered_json::parse("18446744073709551615"));
  EXPECT_TRUE(value.isReal());
  EXPECT_EQ(value.doubleValue(), 18446744073709551616.0);
}

TEST(JsonValues, TheLargestIntegerDoesNotChangeItsSign) {
  EXPECT_GT(jsonFromValue(Value(std::int64_t{INT64_MAX})).get<double>(), 9.2e18);
}

}  // namespace
}  // namespace workstation::test
