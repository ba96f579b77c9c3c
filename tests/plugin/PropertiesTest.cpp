// What the plug-in holds, how it holds it, and what of it can be asked from outside.

#include "tests/plugin/LabellingFixture.h"

namespace testhost {
namespace {

using pelmar::Value;

using Inputs = LabellingFixture;

TEST_F(Inputs, areNotKeptAliveAndTheCurveIs) {
  auto line = host.addROI(pelmar::ROITypeLength, sagittal, 0, {{0, 0}, {0, 9}});
  auto polygon = host.addROI(pelmar::ROITypeOpenPolygon, sagittal, 0, {{0, 0}, {0, 9}});
  auto curve = host.addROI(pelmar::ROITypeOpenPolygon, sagittal, 0, {{0, 0}, {0, 9}});
  filter.setInputLengthROI(line);
  filter.setInputOpenPolygonROI(polygon);
  filter.setOpenPolygonROI(curve);
  EXPECT_TRUE(filter.inputLengthROI() == line);
  EXPECT_TRUE(filter.inputOpenPolygonROI() == polygon);
  EXPECT_TRUE(filter.openPolygonROI() == curve);
  sagittal->sliceLists[0]->elements().clear();
  line = nullptr;
  polygon = nullptr;
  curve = nullptr;
  EXPECT_FALSE(filter.inputLengthROI()) << "the host let it go";
  EXPECT_FALSE(filter.inputOpenPolygonROI());
  ASSERT_TRUE(filter.openPolygonROI());
  EXPECT_EQ(filter.openPolygonROI()->points()->count(), 2U);
}

using Snapshot = LabellingFixture;

TEST_F(Snapshot, holdsEveryFieldWithoutComputingAny) {
  sagittal->roiToolTag = 12;
  sagittal->view->tool = 4;
  storeStateOfEarlierRun(Value(lumbarState()));
  chooseLabels();
  const auto line = halfDrawLine();
  const Value whole = filter.stateSnapshot();
  ASSERT_TRUE(whole.dictionary());
  const auto& fields = *whole.dictionary();
  EXPECT_EQ(fields.size(), 15U);
  EXPECT_EQ(fields.at("isActive"), Value(true));
  EXPECT_EQ(fields.at("isEditingActive"), Value(true));
  EXPECT_EQ(fields.at("displayLabels"), Value(true));
  EXPECT_EQ(fields.at("additionalVertebra"), Value(false));
  EXPECT_EQ(fields.at("previousTool"), Value(4));
  EXPECT_EQ(fields.at("previousROITool"), Value(12));
  EXPECT_EQ(fields.at("workflow"), Value(1));
  EXPECT_EQ(fields.at("drawMode"), Value(0));
  EXPECT_EQ(fields.at("anatomicalRegion"), Value(2));
  EXPECT_EQ(fields.at("study"), Value("1.2.3"));
  EXPECT_EQ(fields.at("inputLengthROI"), Value(line));
  EXPECT_TRUE(fields.at("inputOpenPolygonROI").isNil());
  EXPECT_EQ(fields.at("openPolygonROI"), Value(filter.openPolygonROI()));
  ASSERT_TRUE(fields.at("savedDictionary").dictionary());
  EXPECT_EQ(planeCount(fields.at("savedDictionary")), 6U);
}

TEST_F(Snapshot, givesThePlanesInMemoryWithTheirOwnPoints) {
  storeStateOfEarlierRun(Value(lumbarState()));
  chooseLabels();
  const Value whole = filter.stateSnapshot();
  const auto* planes = whole.dictionary()->at("intervertebralPlanes").array();
  ASSERT_TRUE(planes);
  ASSERT_EQ(planes->size(), 6U);
  const auto& held = *filter.intervertebralPlanes();
  for (std::size_t i = 0; i < held.size(); ++i) {
    const auto& record = *planes->at(i).dictionary();
    EXPECT_EQ(record.at("name"), Value(held[i].name));
    EXPECT_EQ(record.at("point"), Value(held[i].point));
    EXPECT_EQ(record.at("vector"), Value(held[i].vector));
  }
}

TEST_F(Snapshot, ofAFreshObjectHasNilWhereNothingIsHeld) {
  const Value whole = filter.stateSnapshot();
  for (const auto* field : {"study", "inputLengthROI", "inputOpenPolygonROI", "openPolygonROI", "intervertebralPlanes",
                            "savedDictionary"}) {
    EXPECT_TRUE(whole.dictionary()->at(field).isNil()) << field;
  }
  filter.setOpenPolygonROI(host.addROI(pelmar::ROITypeOpenPolygon, sagittal, 0, {{0, 0}, {0, 9}}));
  EXPECT_TRUE(filter.stateSnapshot().dictionary()->at("intervertebralPlanes").isNil()) << "asking computes none";
}

using ValueForKey = LabellingFixture;

TEST_F(ValueForKey, givesTheGuessAndTheDiscNamesAndNothingElse) {
  filter.setStudy(study);
  EXPECT_EQ(filter.valueForKey("guessedAnatomicalRegion"), Value(-1));
  study->description = "IRM dorsal";
  EXPECT_EQ(filter.valueForKey("guessedAnatomicalRegion"), Value(1));
  filter.setAnatomicalRegion(2);
  const auto names = lumbarNames();
  EXPECT_EQ(filter.valueForKey("intervertebralPlanesLabels"), Value(Value::Array(names.begin(), names.end())));
  filter.setAnatomicalRegion(7);
  EXPECT_EQ(filter.valueForKey("intervertebralPlanesLabels"), Value(Value::Array{})) << "a region that has no names";
  EXPECT_TRUE(filter.valueForKey("anatomicalRegion").isNil());
  EXPECT_TRUE(filter.valueForKey("").isNil());
}

}  // namespace
}  // namespace testhost
