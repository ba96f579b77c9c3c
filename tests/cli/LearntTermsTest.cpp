#include "cli/LearntTerms.h"

#include <gtest/gtest.h>

namespace cli::test {
namespace {

using pelmar::Value;

Value recordOf(int region, const Value::Array& terms) {
  return Value(Value::Dictionary{{"anatomicalRegion", Value(region)}, {"terms", Value(terms)}});
}

Value threeRegions() {
  return Value(Value::Array{recordOf(0, {Value("hws"), Value("neck\x1b[2J")}), recordOf(1, {}),
                            recordOf(2, {Value("LWS nativ"), Value("")})});
}

TEST(LearntTerms, AreListedInStoredOrderWithTheirRegion) {
  const auto terms = termsIn(threeRegions());
  ASSERT_EQ(terms.size(), 4U);
  EXPECT_EQ(terms[0].text, "hws");
  EXPECT_EQ(terms[0].region, 0);
  EXPECT_EQ(terms[2].text, "LWS nativ");
  EXPECT_EQ(terms[2].region, 2);
  EXPECT_EQ(terms[3].text, "");
}

TEST(LearntTerms, WhatHasAnotherShapeHoldsNone) {
  EXPECT_TRUE(termsIn(Value()).empty());
  EXPECT_TRUE(termsIn(Value("hws")).empty());
  EXPECT_TRUE(termsIn(Value(Value::Array{Value(3), Value("hws"), recordOf(0, {Value(4)})})).empty());
  EXPECT_TRUE(termsIn(Value(Value::Array{Value(Value::Dictionary{{"terms", Value("hws")}})})).empty());
}

TEST(LearntTerms, AreListedSoThatATerminalShowsThem) {
  EXPECT_EQ(listedTerm("Columna lumbale"), "Columna lumbale");
  EXPECT_EQ(listedTerm("neck\x1b[2J"), "neck?[2J");
  EXPECT_EQ(listedTerm(""), "\"\"");
}

TEST(LearntTerms, AreFoundAsStoredAndAsListed) {
  const auto terms = termsIn(threeRegions());
  EXPECT_EQ(findTerm(terms, "LWS nativ"), "LWS nativ");
  EXPECT_EQ(findTerm(terms, "neck\x1b[2J"), "neck\x1b[2J");
  EXPECT_EQ(findTerm(terms, "neck?[2J"), "neck\x1b[2J");
  EXPECT_EQ(findTerm(terms, ""), "");
  EXPECT_EQ(findTerm(terms, "\"\""), "");
  EXPECT_FALSE(findTerm(terms, "lws nativ")) << "upper and lower case differ";
  EXPECT_FALSE(findTerm(terms, "LWS")) << "a part is not the term";
}

TEST(LearntTerms, TheStoredOneComesBeforeOneThatIsListedAlike) {
  const auto terms = termsIn(Value(Value::Array{recordOf(0, {Value("a\x01"), Value("a?")})}));
  EXPECT_EQ(findTerm(terms, "a?"), "a?");
}

TEST(LearntTerms, OneIsTakenOutOfEveryRegionAndTheRecordsStay) {
  auto other = Value::Dictionary{
      {"anatomicalRegion", Value(7)}, {"terms", Value(Value::Array{Value("x"), Value(2)})}, {"note", Value("mine")}};
  const Value stored(Value::Array{recordOf(0, {Value("x"), Value("y")}), Value("odd"), Value(other)});
  other["terms"] = Value(Value::Array{Value(2)});
  EXPECT_EQ(withoutTerm(stored, "x"), Value(Value::Array{recordOf(0, {Value("y")}), Value("odd"), Value(other)}));
  EXPECT_EQ(withoutTerm(stored, "z"), stored);
  EXPECT_EQ(withoutTerm(Value(), "x"), Value());
}

}  // namespace
}  // namespace cli::test
