#include "display/SliceName.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>

namespace vertana {
namespace {

constexpr float straightAhead = 0;
constexpr float opposite = 3.14159274F;
const NeighbourPlane absent{};

NeighbourPlane at(float distanceMm, float angleRad) { return {true, distanceMm, angleRad}; }

struct Row {
  std::string name;
  float distanceMm;
  NeighbourPlane previous;
  NeighbourPlane next;
  SliceNameKind kind;
  long index;  ///< only where the kind has one
  friend std::ostream& operator<<(std::ostream& out, const Row& row) { return out << row.name; }
};

class SliceName : public ::testing::TestWithParam<Row> {};

TEST_P(SliceName, isChosenByDistancesAndAngles) {
  const auto& row = GetParam();
  const auto choice = chooseSliceName(3, row.distanceMm, row.previous, row.next);
  EXPECT_EQ(choice.kind, row.kind);
  if (row.kind == SliceNameKind::NearestPlane || row.kind == SliceNameKind::OtherPlane ||
      row.kind == SliceNameKind::Vertebra) {
    EXPECT_EQ(choice.index, row.index);
  }
}

using enum SliceNameKind;

const auto rowName = [](const auto& tested) { return tested.param.name; };

// The nearest plane is number 3.
INSTANTIATE_TEST_SUITE_P(
    WhichNeighbour, SliceName,
    ::testing::Values(Row{"SinglePlaneGivesItsNameHoweverFar", 500, absent, absent, NearestPlane, 3},
                      Row{"LargerAngleToThePreviousChoosesIt", 20, at(10, 2), at(12, 1), OtherPlane, 2},
                      Row{"LargerAngleToTheNextChoosesIt", 20, at(12, 1), at(10, 2), OtherPlane, 4},
                      Row{"EqualAnglesChooseTheNext", 20, at(12, 2), at(10, 2), OtherPlane, 4}),
    rowName);

// A gap of 30 mm has thirds of 10 mm.
INSTANTIATE_TEST_SUITE_P(
    BetweenPlanes, SliceName,
    ::testing::Values(
        Row{"OnTheDisc", 0, at(30, straightAhead), at(30, opposite), NearestPlane, 3},
        Row{"ExactlyAThirdTowardsTheNextIsStillTheDisc", 10, at(40, straightAhead), at(20, opposite), NearestPlane, 3},
        Row{"ExactlyAThirdTowardsThePreviousIsStillTheDisc", 10, at(20, opposite), at(40, 0), NearestPlane, 3},
        Row{"JustBeyondAThirdTowardsTheNextIsTheVertebra", 10.01F, at(40, 0), at(19.99F, opposite), Vertebra, 3},
        Row{"MiddleThirdTowardsTheNextIsTheVertebra", 15, at(45, 0), at(15, opposite), Vertebra, 3},
        Row{"MiddleThirdTowardsThePreviousStaysTheDiscOnPurpose", 15, at(15, opposite), at(45, 0), NearestPlane, 3},
        Row{"JustBeyondAThirdTowardsThePreviousStaysTheDisc", 10.01F, at(19.99F, opposite), at(40, 0), NearestPlane, 3},
        Row{"OtherExactlyAThirdAwayIsTheOtherDisc", 20, at(50, 0), at(10, opposite), OtherPlane, 4},
        Row{"OtherJustOverAThirdAwayIsTheVertebra", 19.99F, at(50, 0), at(10.01F, opposite), Vertebra, 3},
        Row{"PreviousExactlyAThirdAwayIsThePreviousDisc", 20, at(10, opposite), at(50, 0), OtherPlane, 2},
        Row{"PreviousJustOverAThirdAwayIsTheNearestDisc", 19.99F, at(10.01F, opposite), at(50, 0), NearestPlane, 3}),
    rowName);

// 6000000 + 11999999 rounds to 18000000 in single precision, and a third of that is 6000000; in double it is less.
// 0.33333334 + 0.66666669 is 1 in single precision; a third in double is less than 0.33333334, in single equal to it.
INSTANTIATE_TEST_SUITE_P(
    Precision, SliceName,
    ::testing::Values(Row{"SumIsTakenInSinglePrecision", 6000000, absent, at(11999999, opposite), NearestPlane, 3},
                      Row{"ThirdIsTakenInDoublePrecision", 1.0F / 3, absent, at(2.0F / 3, opposite), Vertebra, 3}),
    rowName);

// Past an end the gap is the difference of the two distances: 30 mm, with thirds of 10 and 20 mm.
INSTANTIATE_TEST_SUITE_P(
    BeyondTheLast, SliceName,
    ::testing::Values(Row{"BelowAThirdIsTheDisc", 9.99F, at(39.99F, 0), absent, NearestPlane, 3},
                      Row{"ExactlyAThirdIsTheVertebraBelow", 10, at(40, 0), absent, LowerVertebra, 0},
                      Row{"ExactlyTwoThirdsIsTheVertebraBelow", 20, at(50, 0), absent, LowerVertebra, 0},
                      Row{"BeyondTwoThirdsHasNoName", 20.01F, at(50.01F, 0), absent, None, 0},
                      Row{"FarAwayHasNoName", 300, at(330, 0), absent, None, 0}),
    rowName);

INSTANTIATE_TEST_SUITE_P(
    BeyondTheFirst, SliceName,
    ::testing::Values(Row{"BelowAThirdIsTheDisc", 9.99F, absent, at(39.99F, 0), NearestPlane, 3},
                      Row{"ExactlyAThirdIsTheVertebraAbove", 10, absent, at(40, 0), UpperVertebra, 0},
                      Row{"ExactlyTwoThirdsIsTheVertebraAbove", 20, absent, at(50, 0), UpperVertebra, 0},
                      Row{"BeyondTwoThirdsHasNoName", 20.01F, absent, at(50.01F, 0), None, 0},
                      // 5/3 - 2/3 is 1 + 2^-24 and rounds to 1 in single precision; two thirds of it, in double, are
                      // less than the single-precision 2/3.
                      Row{"GapInSingleAndThirdsInDoublePrecision", 11184811 * std::ldexp(1.0F, -24), absent,
                          at(13981014 * std::ldexp(1.0F, -23), 0), None, 0}),
    rowName);

// The single-precision number nearest to half of pi is a little more than half of pi.
const float halfPi = 1.57079637F;
INSTANTIATE_TEST_SUITE_P(
    RightAngle, SliceName,
    ::testing::Values(
        Row{"OverItThePreviousIsOnTheOtherSide", 20, at(10, halfPi), absent, OtherPlane, 2},
        Row{"UnderItTheSliceLiesBeyondTheLast", 20, at(50, std::nextafter(halfPi, 0.0F)), absent, LowerVertebra, 0},
        Row{"OverItTheNextIsOnTheOtherSide", 20, absent, at(10, halfPi), OtherPlane, 4},
        Row{"UnderItTheSliceLiesBeyondTheFirst", 20, absent, at(50, std::nextafter(halfPi, 0.0F)), UpperVertebra, 0}),
    rowName);

}  // namespace
}  // namespace vertana
