// How a labelling is put into its study.

#include "tests/state/StateFixture.h"

namespace vertana {
namespace {

using pelmar::Ref;
using pelmar::Value;
using Lines = std::vector<std::string>;

TEST_F(StateSaving, currentStateHoldsRegionFlagAndPlanes) {
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

TEST_F(StateSaving, planeIsStoredByWhatItHas) {
  const auto point = testhost::makePoint(1, 2, 3);
  filter.setIntervertebralPlanes(
      {{IntervertebralPlane{"L1-L2", point, {}}, IntervertebralPlane{"L2-L3", {}, point}, IntervertebralPlane{}}});
  filter.saveCurrentState();
  ASSERT_TRUE(filter.savedState());
  const auto records = *filter.savedState()->at("intervertebralPlanes").array();
  ASSERT_EQ(records.size(), 3U);
  const auto keysOf = [](const Value& record) {
    Lines keys;
    for (const auto& entry : *record.dictionary()) keys.push_back(entry.first);
    return keys;
  };
  EXPECT_EQ(keysOf(records[0]), (Lines{"name", "point"}));
  EXPECT_EQ(keysOf(records[1]), (Lines{"name", "vector"}));
  EXPECT_EQ(keysOf(records[2]), Lines{"name"});
}

TEST_F(StateSaving, reportCarriesDescriptionNumberAndAnImageOfTheStudyAndIsImported) {
  filter.saveEmptyState();
  ASSERT_EQ(host.reports.made.size(), 1U);
  const auto& report = host.reports.made[0];
  EXPECT_EQ(report->content.seriesNumber, seriesNumber);
  EXPECT_EQ(report->content.seriesDescription, seriesDescription);
  EXPECT_EQ(report->content.studyUID, "1.2.3");
  EXPECT_TRUE(host.files.contains(*report->path));
  EXPECT_EQ(study->reports.size(), 1U);
}

TEST_F(StateSaving, reportTakesPatientAndStudyFromTheFirstImageThereIs) {
  const auto image = study->ordinarySeries->front()->images()->front();
  const auto withImage = study->ordinarySeries->front();
  const auto withoutList = pelmar::makeRef<testhost::TestSeries>();
  const auto empty = pelmar::makeRef<testhost::TestSeries>();
  empty->stored.emplace();
  study->ordinarySeries = std::vector<Ref<pelmar::DicomSeries>>{withoutList, empty, withImage};
  filter.saveEmptyState();
  ASSERT_EQ(host.reports.made.size(), 1U);
  EXPECT_TRUE(host.reports.made[0]->forImage == image);
}

TEST_F(StateSaving, savingTheSameStateTwiceWritesOnce) {
  filter.setIntervertebralPlanes({{plane("L4-L5", {1, 2, 3})}});
  filter.saveCurrentState();
  filter.saveCurrentState();
  EXPECT_EQ(writes(), 1U);
}

TEST_F(StateSaving, veryFirstEmptyStateIsWrittenEvenIfTheStudyHasNone) {
  filter.saveEmptyState();
  EXPECT_EQ(writes(), 1U);
  ASSERT_TRUE(filter.savedState());
  EXPECT_TRUE(filter.savedState()->empty());
}

TEST_F(StateSaving, emptyStateRightAfterLoadingAnEmptyStateIsNotWritten) {
  store(Value::Dictionary{});
  filter.loadState();
  filter.saveEmptyState();
  EXPECT_EQ(writes(), 0U);
}

TEST_F(StateSaving, withoutPlanesNothingIsStored) {
  store(lumbarState());
  filter.saveCurrentState();
  filter.setIntervertebralPlanes(std::vector<IntervertebralPlane>{});
  filter.saveCurrentState();
  EXPECT_EQ(writes(), 0U);
  EXPECT_EQ(filter.savedState()->size(), 3U) << "the older state stays";
}

TEST_F(StateSaving, ofSeveralFittingSeriesTheLastOneIsJoined) {
  study->addReportSeries(seriesDescription, seriesNumber, "first");
  study->addReportSeries(seriesDescription, seriesNumber, "last");
  study->addReportSeries(seriesDescription, seriesNumber + 1, "wrong number");
  study->addReportSeries("Another", seriesNumber, "wrong description");
  filter.saveEmptyState();
  EXPECT_EQ(host.reports.made[0]->content.seriesUID, "last");
}

TEST_F(StateSaving, failedWriteStillCountsAsSaved) {
  host.reports.writes = false;
  filter.saveEmptyState();
  EXPECT_TRUE(filter.savedDictionary());
}

TEST_F(StateSaving, offTheMainThreadTheIndependentDatabaseImports) {
  filter.saveEmptyState();
  EXPECT_EQ(host.calls.countContaining("independentDatabase.addFilesAtPaths"), 0U);
  EXPECT_EQ(host.calls.countContaining("database.addFilesAtPaths"), 1U);
  host.app.mainThread = false;
  filter.setSavedDictionary(std::nullopt);
  host.calls.clear();
  filter.saveEmptyState();
  const std::string path = *host.reports.made.back()->path;
  EXPECT_EQ(host.calls.containing({"atabase."}),
            (Lines{"database.uniquePath(dcm)", "database.independentDatabase()",
                   "independentDatabase.addFilesAtPaths(" + path + ",true,true,true,true)"}))
      << "the path is still the main database's, the import is the other's alone";
}

TEST_F(StateSaving, archiveIsImportedWithAllFourFlags) {
  filter.saveEmptyState();
  const auto& report = host.reports.made[0];
  EXPECT_EQ(host.calls.count("database.uniquePath(dcm)"), 1U);
  EXPECT_EQ(host.calls.count("database.addFilesAtPaths(" + *report->path + ",true,true,true,true)"), 1U);
  EXPECT_EQ(host.archiving.unarchiveObjectWithData(*report->content.data), Value(Value::Dictionary{}));
}

TEST_F(StateSaving, reportIsMadeThenPutInItsSeriesThenWrittenThenImported) {
  study->addReportSeries(seriesDescription, seriesNumber, "first");
  study->addReportSeries(seriesDescription, seriesNumber, "last");
  filter.saveEmptyState();
  const std::string path = *host.reports.made[0]->path;
  EXPECT_EQ(
      host.calls.lines(),
      (Lines{"database.uniquePath(dcm)", "report.initWithData(" + path + ",20170720," + seriesDescription + ")",
             "report.setSeriesInstanceUID(first)", "report.setSeriesInstanceUID(last)",
             "report.writeToFileAtPath(" + path + ")", "database.addFilesAtPaths(" + path + ",true,true,true,true)"}));
}

TEST_F(StateSaving, withoutAFittingSeriesTheReportStartsANewOne) {
  study->addReportSeries(seriesDescription, seriesNumber + 1, "wrong number");
  study->addReportSeries(seriesDescription + " ", seriesNumber, "wrong description");
  study->addReportSeries(std::nullopt, seriesNumber, "no description");
  filter.saveEmptyState();
  EXPECT_EQ(host.calls.countContaining("setSeriesInstanceUID"), 0U);
}

TEST_F(StateSaving, seriesNumberIsReadAsA32BitInteger) {
  study->addReportSeries(seriesDescription, seriesNumber + (1L << 32), "low 32 bits fit");
  filter.saveEmptyState();
  EXPECT_EQ(host.reports.made[0]->content.seriesUID, "low 32 bits fit");
}

TEST_F(StateSaving, studyWithoutSeriesOfReportsStartsANewOne) {
  study->reportSeries.reset();
  filter.saveEmptyState();
  EXPECT_EQ(writes(), 1U);
  EXPECT_EQ(study->reports.size(), 1U);
}

TEST_F(StateSaving, studyWithoutImagesGivesTheReportNone) {
  const auto series = pelmar::makeRef<testhost::TestSeries>();
  const std::vector<std::optional<std::vector<Ref<pelmar::DicomSeries>>>> lists{
      std::nullopt, std::vector<Ref<pelmar::DicomSeries>>(), std::vector<Ref<pelmar::DicomSeries>>{series}};
  for (const auto& list : lists) {
    study->ordinarySeries = list;
    filter.setSavedDictionary(std::nullopt);
    filter.saveEmptyState();
    EXPECT_FALSE(host.reports.made.back()->forImage);
  }
  series->stored.emplace();
  filter.setSavedDictionary(std::nullopt);
  filter.saveEmptyState();
  EXPECT_FALSE(host.reports.made.back()->forImage);
  EXPECT_EQ(writes(), 4U);
}

TEST_F(StateSaving, reportTakesAnImageOfTheStudy) {
  filter.saveEmptyState();
  EXPECT_TRUE(host.reports.made[0]->forImage == study->ordinarySeries->front()->images()->front());
}

TEST_F(StateSaving, withoutADatabaseNothingIsWrittenAndTheStateCountsAsSaved) {
  host.browser.current = nullptr;
  filter.saveEmptyState();
  EXPECT_EQ(writes(), 0U);
  EXPECT_TRUE(filter.savedDictionary());
}

TEST_F(StateSaving, statesAreEqualWhenTheyHoldTheSamePointsNotEqualOnes) {
  filter.setIntervertebralPlanes({{plane("L4-L5", {1, 2, 3})}});
  filter.saveCurrentState();
  filter.setIntervertebralPlanes({{plane("L4-L5", {1, 2, 3})}});
  filter.saveCurrentState();
  EXPECT_EQ(writes(), 2U);
}

TEST_F(StateSaving, anotherRegionOrFlagIsAnotherState) {
  const std::vector<IntervertebralPlane> planes{plane("L4-L5", {1, 2, 3})};
  for (const auto& [region, flag] : std::vector<std::pair<long, bool>>{{2, false}, {1, false}, {1, true}}) {
    filter.setAnatomicalRegion(region);
    filter.setAdditionalVertebra(flag);
    filter.setIntervertebralPlanes(planes);
    host.calls.clear();
    filter.saveCurrentState();
    EXPECT_EQ(writes(), 1U) << region << flag;
  }
}

TEST_F(StateSaving, learnsTheDescriptionBeforeItWrites) {
  filter.setIntervertebralPlanes({{plane("L4-L5", {1, 2, 3})}});
  filter.saveCurrentState();
  EXPECT_EQ(host.calls.indexOf("userDefaults.setObject(kVertanaCustomStudyDescriptionSearchTerms)"), 0U);
}

TEST_F(StateSaving, newerReportsJoinTheSeriesAndTheNewestCounts) {
  filter.saveState({{"kAdditionalVertebra", true}});
  filter.saveState({{"kAdditionalVertebra", false}});
  ASSERT_EQ(study->reports.size(), 2U) << "the older one is kept";
  EXPECT_EQ(study->reports[0].seriesUID, study->reports[1].seriesUID);
  EXPECT_EQ(filter.savedState()->at("kAdditionalVertebra"), Value(false));
}

}  // namespace
}  // namespace vertana
