// Which report goes into the study, and when.
#include "workstation/database/LabellingStore.h"

#include <gtest/gtest.h>

#include <cmath>

#include "LabellingStoreFakes.h"

namespace workstation::test {
namespace {

using States = std::vector<std::optional<SavedLabelling>>;

class Store : public testing::Test {
 protected:
  void restart() {
    store->quitting();
    crash();
  }
  void crash() {
    store.reset();
    store = std::make_unique<LabellingStore>(shelf, points, shelf.parts());
    plugin = PluginHand(*store);
  }
  States states() { return statesOn(shelf); }
  bool held() { return store->status(study).held; }
  /// Someone else's report, of a later hour than anything of this process.
  void colleagueStores(const SavedLabelling& labelling) {
    shelf.add("5.5." + std::to_string(shelf.files.size()), {"20250101", std::to_string(100000 + shelf.files.size())},
              labelling);
  }

  FakeShelf shelf;
  PatientPointClass points;
  std::unique_ptr<LabellingStore> store = std::make_unique<LabellingStore>(shelf, points, shelf.parts());
  PluginHand plugin{*store};
};

// --- a labelling goes in at once -----------------------------------------------------------------------------------

TEST_F(Store, ALabellingIsInTheStudyAtOnce) {
  const std::string path = plugin.save(lumbar(1));
  EXPECT_EQ(states(), States{lumbar(1)});
  ASSERT_EQ(shelf.encoded.size(), 1u);
  EXPECT_EQ(shelf.files[0].path, path);
  EXPECT_EQ(shelf.encoded[0].seriesNumber, 20170720);
  EXPECT_EQ(shelf.encoded[0].seriesDescription, "Pelmar Vertana Plugin Intervertebral Planes SR");
  EXPECT_EQ(shelf.encoded[0].patientImage, "/any/image");
  EXPECT_EQ(shelf.encoded[0].instanceNumber, 1);
  EXPECT_EQ(shelf.encoded[0].archive, archiveOf(lumbar(1)));
  EXPECT_EQ(shelf.encoded[0].labelling, lumbar(1));
}

TEST_F(Store, ALabellingIsThereAfterARestart) {
  plugin.save(lumbar(1));
  restart();
  EXPECT_EQ(plugin.load(), lumbar(1));
  crash();
  EXPECT_EQ(plugin.load(), lumbar(1));
}

TEST_F(Store, AStudyThatDoesNotLieHereGetsNothing) {
  EXPECT_EQ(plugin.save(lumbar(1), "4.4.4"), "");
  EXPECT_TRUE(shelf.files.empty());
  EXPECT_EQ(store->persistentStore("4.4.4"), nullptr);
}

// --- an empty state is held ----------------------------------------------------------------------------------------

TEST_F(Store, TheFirstEmptyStateOfAllIsHeldNotWritten) {
  const std::string path = plugin.save(empty);
  EXPECT_TRUE(shelf.files.empty());
  EXPECT_TRUE(held());
  EXPECT_TRUE(store->holdsInMemory(path));
  EXPECT_EQ(store->counting(study), std::nullopt);
}

TEST_F(Store, AHeldEmptyStateGoesInWhenThePaletteOfItsStudyCloses) {
  plugin.save(lumbar(1));
  store->paletteOpened(study);
  plugin.save(empty);
  EXPECT_EQ(states(), States{lumbar(1)});
  store->paletteClosed();
  EXPECT_EQ(states(), (States{lumbar(1), empty}));
  EXPECT_FALSE(held());
  restart();
  EXPECT_EQ(plugin.load(), empty);
}

TEST_F(Store, AnEmptyStateThatCameBeforeThePaletteGoesInWithItToo) {
  plugin.save(empty);
  store->paletteOpened(study);
  store->paletteClosed();
  EXPECT_EQ(states(), States{empty});
}

TEST_F(Store, ThePaletteOfAnotherStudyOrNoPaletteDoesNotBringItIn) {
  plugin.save(empty);
  store->paletteClosed();
  store->paletteOpened("9.9");
  store->paletteClosed();
  store->paletteClosed();
  store->paletteEvent();
  EXPECT_TRUE(shelf.files.empty());
  EXPECT_TRUE(held());
}

TEST_F(Store, EachStudyHoldsItsOwn) {
  plugin.save(empty);
  plugin.save(empty, "9.9");
  store->paletteOpened("9.9");
  store->paletteClosed();
  EXPECT_TRUE(held());
  EXPECT_FALSE(store->status("9.9").held);
  ASSERT_EQ(shelf.files.size(), 1u);
  EXPECT_EQ(shelf.files[0].studyUid, "9.9");
}

TEST_F(Store, AHeldEmptyStateIsDroppedWhenThePluginLooksUpTheState) {
  plugin.save(lumbar(1));
  store->paletteOpened(study);
  const std::string path = plugin.save(empty);
  EXPECT_EQ(plugin.load(), lumbar(1));
  EXPECT_FALSE(held());
  EXPECT_FALSE(store->holdsInMemory(path));
  store->paletteClosed();
  EXPECT_EQ(states(), States{lumbar(1)});
}

TEST_F(Store, AHeldEmptyStateIsDroppedByALookUpThatFindsNothing) {
  store->paletteOpened(study);
  plugin.save(empty);
  EXPECT_EQ(plugin.lookUp(), std::nullopt);
  store->paletteClosed();
  EXPECT_TRUE(shelf.files.empty());
}

TEST_F(Store, LookingByAnythingElseDropsNothing) {
  plugin.save(lumbar(1));
  store->paletteOpened(study);
  plugin.save(empty);
  store->history(study);
  store->status(study);
  store->counting(study);
  store->unreadable(study);
  store->reportSeries(study);
  store->takeNotices();
  plugin.lookUp("9.9");
  EXPECT_EQ(store->report(study, 1, labellingSeriesDescription), nullptr);
  EXPECT_EQ(store->report(study, labellingSeriesNumber, "Other"), nullptr);
  EXPECT_TRUE(held());
  store->paletteClosed();
  EXPECT_EQ(states(), (States{lumbar(1), empty}));
}

TEST_F(Store, AHeldEmptyStateIsDroppedByALabellingThatIsAdded) {
  store->paletteOpened(study);
  plugin.save(empty);
  plugin.save(lumbar(1));
  EXPECT_FALSE(held());
  store->paletteClosed();
  EXPECT_EQ(states(), States{lumbar(1)});
}

TEST_F(Store, AHeldEmptyStateIsDroppedByALabellingThatIsNotAdded) {
  plugin.save(lumbar(1));
  store->paletteOpened(study);
  plugin.save(empty);
  plugin.save(lumbar(1));
  EXPECT_FALSE(held());
  store->paletteClosed();
  EXPECT_EQ(states(), States{lumbar(1)});
}

TEST_F(Store, AHeldEmptyStateOfAnotherStudySurvivesALabelling) {
  plugin.save(empty, "9.9");
  plugin.save(lumbar(1));
  EXPECT_TRUE(store->status("9.9").held);
}

TEST_F(Store, AHeldEmptyStateIsDroppedWhenTheProgramEnds) {
  plugin.save(lumbar(1));
  plugin.save(empty);
  restart();
  EXPECT_EQ(states(), States{lumbar(1)});
}

TEST_F(Store, QuittingForgetsThePaletteAndWhatIsHeld) {
  plugin.save(empty);
  store->paletteOpened(study);
  store->quitting();
  EXPECT_FALSE(held());
  plugin.save(empty);
  store->paletteClosed();
  EXPECT_TRUE(shelf.files.empty());
}

TEST_F(Store, ACrashWithThePaletteOpenLeavesTheLabelling) {
  plugin.save(lumbar(1));
  store->paletteOpened(study);
  plugin.save(empty);
  crash();
  EXPECT_FALSE(held());
  store->paletteClosed();
  EXPECT_EQ(plugin.load(), lumbar(1));
  EXPECT_EQ(states(), States{lumbar(1)});
}

// --- what says nothing new is not added ----------------------------------------------------------------------------

TEST_F(Store, WhatEqualsTheOneThatCountsIsNotAdded) {
  plugin.save(lumbar(1));
  plugin.save(lumbar(1));
  restart();
  plugin.save(lumbar(1));
  EXPECT_EQ(states(), States{lumbar(1)});
}

TEST_F(Store, EqualMeansInSinglePrecision) {
  plugin.save(lumbar(1.1f));
  plugin.save(lumbar(1.1f * (1 + 1e-9)));
  EXPECT_EQ(shelf.files.size(), 1u);
  plugin.save(lumbar(std::nextafter(1.1f, 2.0f)));
  EXPECT_EQ(shelf.files.size(), 2u);
}

TEST_F(Store, GoingBackToAnEarlierLabellingIsAChange) {
  plugin.save(lumbar(1));
  plugin.save(lumbar(2));
  plugin.save(lumbar(1));
  EXPECT_EQ(states(), (States{lumbar(1), lumbar(2), lumbar(1)}));
  EXPECT_EQ(plugin.load(), lumbar(1));
}

TEST_F(Store, AnEmptyStateIsNotAddedToOne) {
  store->paletteOpened(study);
  plugin.save(empty);
  store->paletteClosed();
  restart();
  store->paletteOpened(study);
  plugin.save(empty);
  store->paletteClosed();
  EXPECT_EQ(states(), States{empty});
}

TEST_F(Store, LookingDoesNotOverwriteWhatAColleagueStoredMeanwhile) {
  plugin.save(lumbar(1));
  restart();
  EXPECT_EQ(plugin.load(), lumbar(1));
  colleagueStores(lumbar(2));
  plugin.save(lumbar(1));
  EXPECT_EQ(states(), (States{lumbar(1), lumbar(2)}));
  EXPECT_EQ(plugin.load(), lumbar(2));
}

TEST_F(Store, NorDoesLookingAtAReportWithAPadByteInItsArchive) {
  colleagueStores(lumbar(1));
  shelf.files[0].report.archive.push_back(0);
  store->srAnnotationClass().initWithContentsOfFile(shelf.files[0].path.string());
  colleagueStores(lumbar(2));
  plugin.save(lumbar(1));
  EXPECT_EQ(shelf.files.size(), 2u);
}

TEST_F(Store, NorDoesStoringAgainWhatThisProcessStoredLast) {
  plugin.save(lumbar(1));
  colleagueStores(lumbar(2));
  plugin.save(lumbar(1));
  EXPECT_EQ(states(), (States{lumbar(1), lumbar(2)}));
}

TEST_F(Store, NorDoesAnEmptyStateThatWasReadAsSuch) {
  colleagueStores(empty);
  EXPECT_EQ(plugin.load(), empty);
  colleagueStores(lumbar(2));
  store->paletteOpened(study);
  plugin.save(empty);
  store->paletteClosed();
  EXPECT_EQ(states(), (States{empty, lumbar(2)}));
}

TEST_F(Store, AResetOverAColleaguesLabellingIsAChange) {
  colleagueStores(lumbar(1));
  EXPECT_EQ(plugin.load(), lumbar(1));
  store->paletteOpened(study);
  colleagueStores(lumbar(2));
  plugin.save(empty);
  store->paletteClosed();
  EXPECT_EQ(states(), (States{lumbar(1), lumbar(2), empty}));
  EXPECT_EQ(plugin.load(), empty);
}

TEST_F(Store, AChangeIsAddedAlsoWhenTheColleagueMadeTheSameInBetween) {
  plugin.save(lumbar(1));
  colleagueStores(lumbar(2));
  plugin.save(lumbar(2));  // says what counts
  colleagueStores(lumbar(3));
  plugin.save(lumbar(1));  // no longer what this process stored last
  EXPECT_EQ(states(), (States{lumbar(1), lumbar(2), lumbar(3), lumbar(1)}));
}

TEST_F(Store, WhatAnotherStudyHoldsDoesNotMatter) {
  plugin.save(lumbar(1));
  plugin.save(lumbar(1), "9.9");
  EXPECT_EQ(shelf.files.size(), 2u);
}

}  // namespace
}  // namespace workstation::test
