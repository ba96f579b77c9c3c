// Which viewers belong to the study, which one is the vertical one, and which slices are axial.

#include "geometry/DCMPixVertana.h"
#include "tests/plugin/LabellingFixture.h"

namespace testhost {
namespace {

using pelmar::Ref;

class Viewers : public ::testing::Test {
 public:
  TestHost host;
  Ref<TestStudy> study = host.addStudy("1.2.3");
  Ref<TestStudy> other = host.addStudy("4.5.6");
  vertana::VertanaFilter filter{host};

  Ref<TestViewer> open(long code, const Ref<TestStudy>& ofStudy) {
    const auto viewer = host.addViewer(ofStudy, sagittalSeries(1));
    viewer->orientationCode = code;
    return viewer;
  }
};

TEST_F(Viewers, withoutAStudyThereAreNoneAtAll) {
  open(0, study);
  EXPECT_FALSE(filter.openedViewersWithStudy({}));
  EXPECT_FALSE(filter.openedViewersWithCurrentStudy());
  EXPECT_FALSE(filter.firstViewerWithVerticalSeries());
  EXPECT_FALSE(filter.openedViewersContainVerticalSeries());
  EXPECT_FALSE(filter.verticalViewerController());
}

TEST_F(Viewers, ofAStudyAreListedInTheHostsOrder) {
  const auto first = open(4, study);
  open(0, other);
  const auto third = open(2, study);
  const auto found = filter.openedViewersWithStudy(study);
  ASSERT_TRUE(found);
  ASSERT_EQ(found->size(), 2U);
  EXPECT_TRUE((*found)[0] == first);
  EXPECT_TRUE((*found)[1] == third);
}

TEST_F(Viewers, ofAStudyThatIsNotOpenAreAnEmptyListNotNone) {
  open(0, other);
  const auto found = filter.openedViewersWithStudy(study);
  ASSERT_TRUE(found);
  EXPECT_TRUE(found->empty());
}

TEST_F(Viewers, belongToAStudyByItsUIDNotByTheRecord) {
  const auto sameUID = host.addStudy("1.2.3");
  const auto viewer = open(0, sameUID);
  const auto almost = host.addStudy("1.2.3 ");
  open(0, almost);
  filter.setStudy(study);
  ASSERT_EQ(filter.openedViewersWithCurrentStudy()->size(), 1U);
  EXPECT_TRUE(filter.firstViewerWithVerticalSeries() == viewer);
}

TEST_F(Viewers, ofAStudyWithoutAUIDBelongToNoStudyNotEvenToIt) {
  const auto viewer = open(0, study);
  study->uid = std::nullopt;
  filter.setStudy(study);
  EXPECT_TRUE(filter.openedViewersWithCurrentStudy()->empty());
  EXPECT_FALSE(vertana::isSameStudy(study, study));
  EXPECT_FALSE(vertana::isSameStudy(nullptr, nullptr));
  study->uid = "1.2.3";
  EXPECT_FALSE(vertana::isSameStudy(study, nullptr));
  EXPECT_TRUE(vertana::isSameStudy(study, study));
  EXPECT_TRUE(filter.firstViewerWithVerticalSeries() == viewer);
}

TEST_F(Viewers, ofTwoSagittalOnesTheOneInFrontWins) {
  open(0, study);
  const auto second = open(1, study);
  host.frontMost = second;
  filter.setStudy(study);
  EXPECT_TRUE(filter.firstViewerWithVerticalSeries() == second);
}

TEST_F(Viewers, eitherSenseOfSagittalWinsInFront) {
  open(0, study);
  const auto second = open(0, study);
  host.frontMost = second;
  filter.setStudy(study);
  EXPECT_TRUE(filter.firstViewerWithVerticalSeries() == second);
}

TEST_F(Viewers, ofTwoSagittalOnesTheFirstWinsWhenNeitherIsInFront) {
  const auto first = open(1, study);
  open(0, study);
  host.frontMost = open(0, other);
  filter.setStudy(study);
  EXPECT_TRUE(filter.firstViewerWithVerticalSeries() == first);
}

TEST_F(Viewers, aCoronalOneInFrontLosesToASagittalOneBehind) {
  host.frontMost = open(2, study);
  const auto sagittal = open(0, study);
  filter.setStudy(study);
  EXPECT_TRUE(filter.firstViewerWithVerticalSeries() == sagittal);
}

TEST_F(Viewers, amongCoronalOnesTheFirstWinsEvenWhenAnotherIsInFront) {
  const auto first = open(3, study);
  host.frontMost = open(2, study);
  filter.setStudy(study);
  EXPECT_TRUE(filter.firstViewerWithVerticalSeries() == first);
}

TEST_F(Viewers, ofAnotherStudyAreNeverTheVerticalOne) {
  host.frontMost = open(0, other);
  filter.setStudy(study);
  EXPECT_FALSE(filter.firstViewerWithVerticalSeries());
  EXPECT_FALSE(filter.openedViewersContainVerticalSeries());
}

struct CodeRow {
  long code;
  bool vertical;
  friend std::ostream& operator<<(std::ostream& out, const CodeRow& row) { return out << row.code; }
};

class OrientationCode : public Viewers, public ::testing::WithParamInterface<CodeRow> {};

TEST_P(OrientationCode, decidesWhetherAViewerIsVertical) {
  open(GetParam().code, study);
  filter.setStudy(study);
  EXPECT_EQ(filter.openedViewersContainVerticalSeries(), GetParam().vertical);
}

INSTANTIATE_TEST_SUITE_P(Codes, OrientationCode,
                         ::testing::Values(CodeRow{0, true}, CodeRow{1, true}, CodeRow{2, true}, CodeRow{3, true},
                                           CodeRow{4, false}, CodeRow{5, false}, CodeRow{-1, false}));

TEST_F(Viewers, verticalViewerIsTheOneWhereTheLineIsDrawnEvenBehindAnother) {
  const auto drawnOn = open(2, study);
  host.frontMost = open(0, study);
  filter.setStudy(study);
  const auto line = host.addROI(5, drawnOn, 0, {});
  filter.setInputLengthROI(line);
  EXPECT_TRUE(filter.verticalViewerController() == drawnOn);
}

TEST_F(Viewers, theLineDecidesBeforeThePolygonAndThePolygonBeforeTheCurve) {
  const auto first = open(0, study);
  const auto second = open(0, study);
  const auto third = open(0, study);
  filter.setStudy(study);
  const auto line = host.addROI(5, third, 0, {});
  const auto polygon = host.addROI(10, second, 0, {});
  filter.setOpenPolygonROI(host.addROI(10, first, 0, {}));
  EXPECT_TRUE(filter.verticalViewerController() == first);
  filter.setInputOpenPolygonROI(polygon);
  EXPECT_TRUE(filter.verticalViewerController() == second);
  filter.setInputLengthROI(line);
  EXPECT_TRUE(filter.verticalViewerController() == third);
}

TEST_F(Viewers, anAnnotationThatIsNotShownGivesNoViewerWithoutFallingBack) {
  const auto viewer = open(0, study);
  filter.setStudy(study);
  const auto line = host.addROI(5, viewer, 0, {});
  line->view = nullptr;
  filter.setOpenPolygonROI(host.addROI(10, viewer, 0, {}));
  filter.setInputLengthROI(line);
  EXPECT_FALSE(filter.verticalViewerController());
}

TEST_F(Viewers, verticalViewerStaysTheCurvesEvenWhenItWouldNoLongerBeChosen) {
  const auto viewer = open(0, study);
  filter.setStudy(study);
  filter.setOpenPolygonROI(host.addROI(10, viewer, 0, {}));
  viewer->orientationCode = 4;
  EXPECT_TRUE(filter.verticalViewerController() == viewer);
}

TEST_F(Viewers, viewerControllerFallsBackToTheMenuCommands) {
  const auto axial = open(4, study);
  filter.setViewerController(axial);
  filter.setStudy(study);
  EXPECT_TRUE(filter.viewerController() == axial);
  const auto sagittal = open(0, study);
  EXPECT_TRUE(filter.viewerController() == sagittal);
}

// --- Axial slices ---

struct NormalRow {
  const char* name;
  double x, y, z;
  bool axial;
  friend std::ostream& operator<<(std::ostream& out, const NormalRow& row) { return out << row.name; }
};

class SliceNormal : public ::testing::TestWithParam<NormalRow> {};

TEST_P(SliceNormal, decidesWhetherTheSliceIsAxial) {
  const auto image = pelmar::makeRef<TestImage>(SliceGeometry{});
  image->cosines = {0, 0, 0, 0, 0, 0, GetParam().x, GetParam().y, GetParam().z};
  EXPECT_EQ(vertana::isAxial(image), GetParam().axial);
}

// 0.2 in single precision is 0.200000003, which is above 0.2 once widened: it counts as larger.
INSTANTIATE_TEST_SUITE_P(
    Rows, SliceNormal,
    ::testing::Values(
        NormalRow{"tieOfXAndZGoesToX", 0.6, 0.0, 0.6, false}, NormalRow{"tooShort", 0.0, 0.0, 0.15, false},
        NormalRow{"mostlyZ", 0.1, 0.3, 0.95, true}, NormalRow{"tieOfYAndZGoesToY", 0.0, 0.7, 0.7, false},
        NormalRow{"tieOfAllGoesToX", 0.577, 0.577, 0.577, false}, NormalRow{"straightDown", 0, 0, -1, true},
        NormalRow{"straightUp", 0, 0, 1, true}, NormalRow{"sagittal", 1, 0, 0, false},
        NormalRow{"sagittalBackwards", -1, 0, 0, false}, NormalRow{"coronal", 0, -1, 0, false},
        NormalRow{"noOrientation", 0, 0, 0, false}, NormalRow{"twoTenthsIsAboveInSinglePrecision", 0, 0, 0.2, true},
        NormalRow{"justBelowTwoTenths", 0, 0, 0.19999, false},
        NormalRow{"negativeComponentsCountByMagnitude", -0.8, 0.1, 0.5, false},
        NormalRow{"tieOnlyInSinglePrecision", 0.70000000001, 0, 0.70000000002, false},
        NormalRow{"mostlyZThenX", 0.3, 0.1, 0.95, true}, NormalRow{"mostlyXButTooShort", 0.15, 0.1, 0.05, false},
        NormalRow{"mostlyYButTooShort", 0.05, 0.15, 0.1, false}),
    [](const auto& row) { return std::string(row.param.name); });

TEST(SliceNormalOfNoImage, isNotAxial) { EXPECT_FALSE(vertana::isAxial({})); }

}  // namespace
}  // namespace testhost
