#include "tests/geometry/SpineStudy.h"

namespace vertana {
namespace {

using pelmar::Bytes;
using pelmar::Ref;
using pelmar::Value;
using Lines = std::vector<std::string>;

const std::string seriesDescription = "Pelmar Vertana Plugin Intervertebral Planes SR";
constexpr long seriesNumber = 20170720;

/// Starts without a state in memory and with no report in the study.
struct SavedState : SpineStudy {
  SavedState() {
    filter.setSavedDictionary(std::nullopt);
    study->reports.clear();
    study->reportSeries.emplace();
    host.files.clear();
    host.reports.made.clear();
    host.calls.clear();
  }

  std::size_t writes() const { return host.calls.countContaining("writeToFileAtPath"); }

  /// A report in the study, as an earlier run would have left it.
  void store(const Value& content) {
    host.storeReport(study, seriesNumber, seriesDescription, *host.archiving.archivedDataWithRootObject(content));
  }
  static Value lumbarState(long region = 2, bool additionalVertebra = false) {
    return Value::Dictionary{
        {"VertanaAnatomicalRegion", static_cast<std::int64_t>(region)},
        {"kAdditionalVertebra", additionalVertebra},
        {"intervertebralPlanes",
         Value::Array{Value::Dictionary{
             {"name", "L4-L5"}, {"point", testhost::makePoint(1, 2, 3)}, {"vector", testhost::makePoint(0, 0, -1)}}}}};
  }
};

// --- saving ---

TEST_F(SavedState, currentStateHoldsRegionFlagAndPlanes) {
  filter.setIntervertebralPlanes({{plane("L4-L5", {1, 2, 3})}});
  filter.saveCurrentState();
  const auto state = filter.savedState();
  ASSERT_TRUE(state);
  EXPECT_EQ(state->size(), 3U);
  EXPECT_TRUE(state->at("VertanaAnatomicalRegion").isInteger());
  EXPECT_EQ(state->at("VertanaAnatomicalRegion"), Value(2));
  EXPECT_TRUE(state->at("kAdditionalVertebra").isBool());
  EXPECT_FALSE(state->at("kAdditionalVertebra").boolValue());
  const auto* records = state->at("intervertebralPlanes").array();
  ASSERT_TRUE(records);
  ASSERT_EQ(records->size(), 1U);
  const auto& record = *records->front().dictionary();
  EXPECT_EQ(record.size(), 3U);
  EXPECT_EQ(record.at("name"), Value("L4-L5"));
  expectVector(pelmar::ref_cast<pelmar::Point3D>(record.at("point").object()), 1, 2, 3, 0);
  expectVector(pelmar::ref_cast<pelmar::Point3D>(record.at("vector").object()), 0, 0, -1, 0);
}

TEST_F(SavedState, reportCarriesDescriptionNumberAndAnImageOfTheStudyAndIsImported) {
  filter.saveEmptyState();
  ASSERT_EQ(host.reports.made.size(), 1U);
  const auto& report = host.reports.made[0];
  EXPECT_EQ(report->content.seriesNumber, seriesNumber);
  EXPECT_EQ(report->content.seriesDescription, seriesDescription);
  EXPECT_EQ(report->content.studyUID, "1.2.3");
  EXPECT_TRUE(host.files.contains(*report->path));
  EXPECT_EQ(study->reports.size(), 1U);
}

TEST_F(SavedState, savingTheSameStateTwiceWritesOnce) {
  filter.setIntervertebralPlanes({{plane("L4-L5", {1, 2, 3})}});
  filter.saveCurrentState();
  filter.saveCurrentState();
  EXPECT_EQ(writes(), 1U);
}

TEST_F(SavedState, veryFirstEmptyStateIsWrittenEvenIfTheStudyHasNone) {
  filter.saveEmptyState();
  EXPECT_EQ(writes(), 1U);
  ASSERT_TRUE(filter.savedState());
  EXPECT_TRUE(filter.savedState()->empty());
}

TEST_F(SavedState, emptyStateRightAfterLoadingAnEmptyStateIsNotWritten) {
  store(Value::Dictionary{});
  filter.loadState();
  filter.saveEmptyState();
  EXPECT_EQ(writes(), 0U);
}

TEST_F(SavedState, withoutPlanesNothingIsStored) {
  store(lumbarState());
  filter.saveCurrentState();
  filter.setIntervertebralPlanes(std::vector<IntervertebralPlane>{});
  filter.saveCurrentState();
  EXPECT_EQ(writes(), 0U);
  EXPECT_EQ(filter.savedState()->size(), 3U) << "the older state stays";
}

TEST_F(SavedState, ofSeveralFittingSeriesTheLastOneIsJoined) {
  study->addReportSeries(seriesDescription, seriesNumber, "first");
  study->addReportSeries(seriesDescription, seriesNumber, "last");
  study->addReportSeries(seriesDescription, seriesNumber + 1, "wrong number");
  study->addReportSeries("Another", seriesNumber, "wrong description");
  filter.saveEmptyState();
  EXPECT_EQ(host.reports.made[0]->content.seriesUID, "last");
}

TEST_F(SavedState, failedWriteStillCountsAsSaved) {
  host.reports.writes = false;
  filter.saveEmptyState();
  EXPECT_TRUE(filter.savedDictionary());
}

TEST_F(SavedState, offTheMainThreadTheIndependentDatabaseImports) {
  filter.saveEmptyState();
  EXPECT_EQ(host.calls.countContaining("independentDatabase.addFilesAtPaths"), 0U);
  EXPECT_EQ(host.calls.countContaining("database.addFilesAtPaths"), 1U);
  host.app.mainThread = false;
  filter.setSavedDictionary(std::nullopt);
  filter.saveEmptyState();
  EXPECT_EQ(host.calls.countContaining("independentDatabase.addFilesAtPaths"), 1U);
}

// --- reading ---

TEST_F(SavedState, studyWithoutAReportHasNoState) {
  EXPECT_FALSE(filter.savedState());
  EXPECT_FALSE(filter.savedStateExists());
  filter.loadState();
  EXPECT_FALSE(filter.savedDictionary());
}

TEST_F(SavedState, reportWhoseFileIsGoneIsNoState) {
  store(lumbarState());
  host.files.clear();
  EXPECT_FALSE(filter.savedStateExists());
}

TEST_F(SavedState, emptyStateExistsAndIsEmpty) {
  EXPECT_TRUE(filter.isSavedStateEmpty()) << "nothing in memory";
  store(Value::Dictionary{});
  EXPECT_TRUE(filter.savedStateExists());
  filter.loadState();
  ASSERT_TRUE(filter.savedDictionary());
  EXPECT_TRUE(filter.isSavedStateEmpty());
}

TEST_F(SavedState, emptinessIsJudgedByTheCopyInMemoryOnly) {
  store(lumbarState());
  EXPECT_TRUE(filter.isSavedStateEmpty());
  filter.loadState();
  EXPECT_FALSE(filter.isSavedStateEmpty());
}

TEST_F(SavedState, archiveOfOddLengthWithItsPadByteStillLoads) {
  host.archiving.oddLength = true;
  store(lumbarState());
  ASSERT_TRUE(filter.savedState());
  EXPECT_EQ(filter.savedState()->size(), 3U);
}

TEST_F(SavedState, bytesThatAreNoArchiveAreNoState) {
  for (const auto& bytes : {Bytes{}, Bytes{1}, Bytes{1, 2, 3, 4}}) {
    study->reports.clear();
    host.storeReport(study, seriesNumber, seriesDescription, bytes);
    EXPECT_FALSE(filter.savedState());
  }
}

TEST_F(SavedState, archiveOfSomethingElseThanADictionaryIsNoState) {
  store(Value::Array{1, 2});
  EXPECT_FALSE(filter.savedState());
}

// --- loading ---

TEST_F(SavedState, loadingTheCurrentRegionTakesThePlanesAndWritesNothing) {
  store(lumbarState());
  filter.loadState();
  EXPECT_EQ(heldPlaneNames(), Lines{"L4-L5"});
  EXPECT_EQ(writes(), 0U);
}

TEST_F(SavedState, loadingAnotherRegionKeepsThePlanesAndLeavesAFreshEmptyStateInTheStudy) {
  store(lumbarState(1));
  filter.loadState();
  EXPECT_EQ(filter.anatomicalRegion(), AnatomicalRegionThoracic);
  EXPECT_EQ(heldPlaneNames(), Lines{"L4-L5"});
  EXPECT_EQ(writes(), 1U);
  ASSERT_TRUE(filter.savedState());
  EXPECT_TRUE(filter.savedState()->empty());
}

TEST_F(SavedState, loadingAnotherFlagKeepsThePlanesToo) {
  store(lumbarState(2, true));
  filter.loadState();
  EXPECT_TRUE(filter.additionalVertebra());
  EXPECT_EQ(heldPlaneNames(), Lines{"L4-L5"});
  EXPECT_EQ(writes(), 1U);
}

TEST_F(SavedState, missingKeysAreSkippedOneByOne) {
  holdForeignPlane();
  store(Value::Dictionary{{"kAdditionalVertebra", false}});
  filter.loadState();
  EXPECT_EQ(filter.anatomicalRegion(), AnatomicalRegionLumbar);
  EXPECT_TRUE(holdsForeignPlane());
}

TEST_F(SavedState, regionIsReadAsASigned32BitInteger) {
  // 2^32 - 1: the low 32 bits, with sign, are -1.
  store(Value::Dictionary{{"VertanaAnatomicalRegion", std::int64_t{4294967295}}});
  filter.loadState();
  EXPECT_EQ(filter.anatomicalRegion(), AnatomicalRegionNone);
}

}  // namespace
}  // namespace vertana
