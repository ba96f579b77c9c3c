// How a labelling is read from its study and applied.

#include "tests/state/StateFixture.h"

namespace vertana {
namespace {

using pelmar::Bytes;
using pelmar::Value;
using Lines = std::vector<std::string>;

using LoadedState = StateSaving;

// --- reading ---

TEST_F(LoadedState, studyWithoutAReportHasNoState) {
  EXPECT_FALSE(filter.savedState());
  EXPECT_FALSE(filter.savedStateExists());
  filter.loadState();
  EXPECT_FALSE(filter.savedDictionary());
}

TEST_F(LoadedState, reportWhoseFileIsGoneIsNoState) {
  store(lumbarState());
  host.files.clear();
  EXPECT_FALSE(filter.savedStateExists());
}

TEST_F(LoadedState, emptyStateExistsAndIsEmpty) {
  EXPECT_TRUE(filter.isSavedStateEmpty()) << "nothing in memory";
  store(Value::Dictionary{});
  EXPECT_TRUE(filter.savedStateExists());
  filter.loadState();
  ASSERT_TRUE(filter.savedDictionary());
  EXPECT_TRUE(filter.isSavedStateEmpty());
}

TEST_F(LoadedState, emptinessIsJudgedByTheCopyInMemoryOnly) {
  store(lumbarState());
  EXPECT_TRUE(filter.isSavedStateEmpty());
  filter.loadState();
  EXPECT_FALSE(filter.isSavedStateEmpty());
}

TEST_F(LoadedState, archiveOfOddLengthWithItsPadByteStillLoads) {
  host.archiving.oddLength = true;
  store(lumbarState());
  ASSERT_TRUE(filter.savedState());
  EXPECT_EQ(filter.savedState()->size(), 3U);
}

TEST_F(LoadedState, bytesThatAreNoArchiveAreNoState) {
  for (const auto& bytes : {Bytes{}, Bytes{1}, Bytes{1, 2, 3, 4}}) {
    study->reports.clear();
    host.storeReport(study, seriesNumber, seriesDescription, bytes);
    EXPECT_FALSE(filter.savedState());
  }
}

TEST_F(LoadedState, archiveOfSomethingElseThanADictionaryIsNoState) {
  store(Value::Array{1, 2});
  EXPECT_FALSE(filter.savedState());
}

TEST_F(LoadedState, imageWithoutAPathIsNoState) {
  store(lumbarState());
  pelmar::ref_cast<testhost::TestStoredImage>(study->reports.back().image)->path = std::nullopt;
  EXPECT_FALSE(filter.savedStateExists());
}

TEST_F(LoadedState, fileThatIsNoReportIsNoState) {
  store(lumbarState());
  host.files.begin()->second = Bytes{1, 2, 3};
  EXPECT_FALSE(filter.savedStateExists());
}

TEST_F(LoadedState, reportOfAnotherSeriesIsNoState) {
  const auto bytes = *host.archiving.archivedDataWithRootObject(lumbarState());
  host.storeReport(study, seriesNumber + 1, seriesDescription, bytes);
  host.storeReport(study, seriesNumber, "Another", bytes);
  EXPECT_FALSE(filter.savedStateExists());
}

TEST_F(LoadedState, lastByteIsTakenOffOnceWhateverItIs) {
  const auto archive = *host.archiving.archivedDataWithRootObject(lumbarState());
  const auto withTail = [&](const Bytes& tail) {
    Bytes bytes = archive;
    bytes.insert(bytes.end(), tail.begin(), tail.end());
    return bytes;
  };
  host.reports.padsOddLength = false;
  host.storeReport(study, seriesNumber, seriesDescription, withTail({0}));
  EXPECT_TRUE(filter.savedState());
  host.storeReport(study, seriesNumber, seriesDescription, withTail({0x41}));
  EXPECT_TRUE(filter.savedState());
  host.storeReport(study, seriesNumber, seriesDescription, withTail({0, 0}));
  EXPECT_FALSE(filter.savedState());
}

TEST_F(LoadedState, reportWithoutDataIsNoState) {
  host.storeReport(study, seriesNumber, seriesDescription, {});
  EXPECT_FALSE(filter.savedStateExists());
}

TEST_F(LoadedState, existenceIsReadFromTheStudyEachTime) {
  store(lumbarState());
  EXPECT_TRUE(filter.savedStateExists());
  EXPECT_FALSE(filter.savedDictionary()) << "asking keeps nothing";
  host.files.clear();
  EXPECT_FALSE(filter.savedStateExists());
}

// --- loading ---

TEST_F(LoadedState, loadingTheCurrentRegionTakesThePlanesAndWritesNothing) {
  store(lumbarState());
  filter.loadState();
  EXPECT_EQ(heldPlaneNames(), Lines{"L4-L5"});
  EXPECT_EQ(writes(), 0U);
}

TEST_F(LoadedState, loadingAnotherRegionKeepsThePlanesAndLeavesAFreshEmptyStateInTheStudy) {
  store(lumbarState(1));
  filter.loadState();
  EXPECT_EQ(filter.anatomicalRegion(), AnatomicalRegionThoracic);
  EXPECT_EQ(heldPlaneNames(), Lines{"L4-L5"});
  EXPECT_EQ(writes(), 1U);
  ASSERT_TRUE(filter.savedState());
  EXPECT_TRUE(filter.savedState()->empty());
}

TEST_F(LoadedState, loadingAnotherFlagKeepsThePlanesToo) {
  store(lumbarState(2, true));
  filter.loadState();
  EXPECT_TRUE(filter.additionalVertebra());
  EXPECT_EQ(heldPlaneNames(), Lines{"L4-L5"});
  EXPECT_EQ(writes(), 1U);
}

TEST_F(LoadedState, missingKeysAreSkippedOneByOne) {
  holdForeignPlane();
  store(Value::Dictionary{{"kAdditionalVertebra", false}});
  filter.loadState();
  EXPECT_EQ(filter.anatomicalRegion(), AnatomicalRegionLumbar);
  EXPECT_TRUE(holdsForeignPlane());
}

TEST_F(LoadedState, regionIsReadAsASigned32BitInteger) {
  // 2^32 - 1: the low 32 bits, with sign, are -1.
  store(Value::Dictionary{{"VertanaAnatomicalRegion", std::int64_t{4294967295}}});
  filter.loadState();
  EXPECT_EQ(filter.anatomicalRegion(), AnatomicalRegionNone);
}

TEST_F(LoadedState, loadedStateIsKeptBeforeTheSettersCompareWithIt) {
  // In memory lies the empty state: were the loaded one kept later, the reset would find nothing to write.
  store(lumbarState(1, true));
  filter.setSavedDictionary(Value::Dictionary{});
  filter.loadState();
  EXPECT_EQ(writes(), 1U) << "the first setter empties the study's state, the second finds it empty";
  EXPECT_TRUE(filter.savedState()->empty());
  EXPECT_TRUE(filter.isSavedStateEmpty());
  EXPECT_EQ(heldPlaneNames(), Lines{"L4-L5"});
  EXPECT_EQ(filter.anatomicalRegion(), AnatomicalRegionThoracic);
  EXPECT_TRUE(filter.additionalVertebra());
}

TEST_F(LoadedState, stateOfAnotherRegionIsWrittenAgainAtTheEndOfTheRun) {
  store(lumbarState(1));
  filter.loadState();
  filter.saveCurrentState();
  ASSERT_TRUE(filter.savedState());
  EXPECT_EQ(filter.savedState()->at("VertanaAnatomicalRegion"), Value(1));
  EXPECT_EQ(filter.savedState()->at("intervertebralPlanes").array()->size(), 1U);
}

TEST_F(LoadedState, emptyStateAppliesNothingButIsKept) {
  holdForeignPlane();
  store(Value::Dictionary{});
  filter.loadState();
  EXPECT_EQ(filter.anatomicalRegion(), AnatomicalRegionLumbar);
  EXPECT_TRUE(holdsForeignPlane());
  ASSERT_TRUE(filter.savedDictionary());
}

TEST_F(LoadedState, planesThatAreNoArrayAreSkipped) {
  holdForeignPlane();
  store(Value::Dictionary{{"intervertebralPlanes", "text"}});
  filter.loadState();
  EXPECT_TRUE(holdsForeignPlane());
}

TEST_F(LoadedState, incompletePlaneRecordsLoadWithWhatTheyHave) {
  store(Value::Dictionary{
      {"intervertebralPlanes",
       Value::Array{1, Value::Dictionary{{"name", 3}}, Value::Dictionary{{"name", "L1-L2"}, {"point", "text"}}}}});
  filter.loadState();
  EXPECT_EQ(heldPlaneNames(), (Lines{"", "", "L1-L2"}));
  for (const auto& loaded : *filter.intervertebralPlanes()) {
    EXPECT_FALSE(loaded.point);
    EXPECT_FALSE(loaded.vector);
  }
}

TEST_F(LoadedState, planeRecordsAreStoredAsTheyWereLoadedWhateverTheyLackOrHaveBesides) {
  const auto point = testhost::makePoint(1, 2, 3);
  const auto state = [&](const Value::Array& records) {
    return Value::Dictionary{
        {"VertanaAnatomicalRegion", 2}, {"kAdditionalVertebra", false}, {"intervertebralPlanes", records}};
  };
  const std::vector<Value::Array> incomplete{{Value::Dictionary{{"name", "L4-L5"}, {"vector", point}}},
                                             {Value::Dictionary{{"name", "L4-L5"}, {"point", point}}},
                                             {Value::Dictionary{{"point", point}, {"vector", point}}},
                                             {Value::Dictionary{{"name", 3}, {"point", "text"}}},
                                             {Value::Dictionary{}},
                                             {1, "text"}};
  for (const auto& records : incomplete) {
    store(state(records));
    filter.loadState();
    filter.saveCurrentState();
    EXPECT_EQ(writes(), 0U) << "nothing has changed";
  }
  store(state({Value::Dictionary{{"name", "L4-L5"}, {"point", point}, {"vector", point}, {"remark", "seen"}}}));
  filter.loadState();
  filter.saveCurrentState();
  EXPECT_EQ(writes(), 0U);
  // With the flag changed everything else is stored again, the foreign entry with it.
  const auto planes = filter.intervertebralPlanes();
  filter.setAdditionalVertebra(true);
  filter.setIntervertebralPlanes(planes);
  filter.saveCurrentState();
  ASSERT_TRUE(filter.savedState());
  const auto record = *filter.savedState()->at("intervertebralPlanes").array()->at(0).dictionary();
  EXPECT_EQ(record.size(), 4U);
  EXPECT_EQ(record.at("remark"), Value("seen"));
}

TEST_F(LoadedState, planesComputedAfterLoadingAreStoredAsComputed) {
  store(Value::Dictionary{{"VertanaAnatomicalRegion", 2},
                          {"kAdditionalVertebra", false},
                          {"intervertebralPlanes", Value::Array{Value::Dictionary{{"remark", "seen"}}}}});
  filter.loadState();
  curveThrough({{100, 0}, {100, 40}});
  filter.computeIntervertebralPlanes();
  filter.saveCurrentState();
  ASSERT_TRUE(filter.savedState());
  const auto records = *filter.savedState()->at("intervertebralPlanes").array();
  ASSERT_EQ(records.size(), 2U);
  for (const auto& record : records) {
    EXPECT_EQ(record.dictionary()->size(), 3U);
    EXPECT_FALSE(record.dictionary()->contains("remark"));
  }
}

TEST_F(LoadedState, stateThatCannotBeReadChangesNothing) {
  holdForeignPlane();
  host.storeReport(study, seriesNumber, seriesDescription, Bytes{1, 2, 3, 4});
  filter.loadState();
  EXPECT_TRUE(holdsForeignPlane());
  EXPECT_FALSE(filter.savedDictionary());
}

}  // namespace
}  // namespace vertana
