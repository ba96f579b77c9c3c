#include "cli/export/SlicerMarkups.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

namespace cli::test {
namespace {

using nlohmann::json;

/// The first plane looks to the feet, the second slants: to the back and to the feet.
Labelling twoPlanes() {
  Labelling labelling;
  labelling.planes = {{"L4-L5", {1, -2.25, 30}, {0, 0, -1}}, {"L5-S1", {2, 4, -8}, {0, 0.6, -0.8}}};
  return labelling;
}

json markupsOf(const Labelling& labelling) {
  const auto file = slicerMarkups(labelling);
  EXPECT_TRUE(file) << file.failure.sentence;
  return json::parse(*file).at("markups");
}

void expectMarkups(const json& actual, const std::vector<double>& expected) {
  ASSERT_EQ(actual.size(), expected.size());
  for (std::size_t i = 0; i < expected.size(); ++i) EXPECT_NEAR(actual[i].get<double>(), expected[i], 1e-12) << i;
}

TEST(SlicerMarkups, NameTheirSchemaAndSystem) {
  const auto file = json::parse(*slicerMarkups(twoPlanes()));
  const std::string schema = file.at("@schema");
  EXPECT_NE(schema.find("/markups-schema-v1.0."), std::string::npos) << schema;
  ASSERT_EQ(file.at("markups").size(), 3U) << "the points, and two planes";
  for (const auto& markup : file.at("markups")) {
    EXPECT_EQ(markup.at("coordinateSystem"), "LPS");
    EXPECT_EQ(markup.at("coordinateUnits"), "mm");
  }
}

TEST(SlicerMarkups, HaveAPointADiscWithItsName) {
  const auto points = markupsOf(twoPlanes())[0];
  EXPECT_EQ(points.at("type"), "Fiducial");
  EXPECT_EQ(points.at("lastUsedControlPointNumber"), 2);
  ASSERT_EQ(points.at("controlPoints").size(), 2U);
  const auto& second = points["controlPoints"][1];
  EXPECT_EQ(second.at("id"), "2");
  EXPECT_EQ(second.at("label"), "L5-S1");
  EXPECT_EQ(second.at("positionStatus"), "defined");
  expectMarkups(second.at("position"), {2, 4, -8});
}

TEST(SlicerMarkups, HaveAPlaneADiscAcrossItsNormal) {
  const auto plane = markupsOf(twoPlanes())[2];
  EXPECT_EQ(plane.at("type"), "Plane");
  EXPECT_EQ(plane.at("planeType"), "pointNormal");
  EXPECT_EQ(plane.at("name"), "L5-S1");
  ASSERT_EQ(plane.at("controlPoints").size(), 1U);
  EXPECT_EQ(plane["controlPoints"][0].at("label"), "L5-S1");
  expectMarkups(plane["controlPoints"][0].at("position"), {2, 4, -8});
  expectMarkups(plane.at("center"), {2, 4, -8});
  expectMarkups(plane.at("normal"), {0, 0.6, -0.8});
  // The axes by hand: x to the left, as far as possible, y = z cross x.
  const std::vector<double> axes{1, 0, 0, 0, -0.8, 0.6, 0, -0.6, -0.8};
  expectMarkups(plane.at("orientation"), axes);
  expectMarkups(plane.at("baseToNode"), {1, 0, 0, 2, 0, -0.8, 0.6, 4, 0, -0.6, -0.8, -8, 0, 0, 0, 1});
  expectMarkups(plane.at("objectToBase"), {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1});
  expectMarkups(plane.at("size"), {40, 40});
  expectMarkups(plane.at("planeBounds"), {-20, 20, -20, 20});
}

TEST(SlicerMarkups, KeepTheirAxesForAPlaneThatFacesTheSide) {
  auto labelling = twoPlanes();
  labelling.planes = {{"L4-L5", {0, 0, 0}, {-1, 0, 0}}};
  // x to the back, y = z cross x = (-1, 0, 0) cross (0, 1, 0) = (0, 0, -1).
  expectMarkups(markupsOf(labelling)[1].at("orientation"), {0, 0, -1, 1, 0, 0, 0, -1, 0});
}

TEST(SlicerMarkups, AreRefusedForAPlaneWithoutDirection) {
  auto labelling = twoPlanes();
  labelling.planes[1].vector = {0, 0, 0};
  const auto file = slicerMarkups(labelling);
  ASSERT_FALSE(file);
  EXPECT_EQ(file.failure.status, ExitNotAllowed);
  EXPECT_EQ(
      file.failure.sentence,
      "The labelling cannot be told by 3D Slicer markups: the plane of L5-S1 has no direction; draw it again, with "
      "its points further apart.");
}

}  // namespace
}  // namespace cli::test
