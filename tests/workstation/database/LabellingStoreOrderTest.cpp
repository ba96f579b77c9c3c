// Which of the reports in a study counts, and reports that cannot be written.
#include <gtest/gtest.h>

#include "LabellingStoreFakes.h"

namespace workstation::test {
namespace {

using States = std::vector<std::optional<SavedLabelling>>;

class StoreOrder : public testing::Test {
 protected:
  void crash() {
    store.reset();
    store = std::make_unique<LabellingStore>(shelf, points, shelf.parts());
    plugin = PluginHand(*store);
  }
  States states() { return statesOn(shelf); }

  FakeShelf shelf;
  PatientPointClass points;
  std::unique_ptr<LabellingStore> store = std::make_unique<LabellingStore>(shelf, points, shelf.parts());
  PluginHand plugin{*store};
};

// --- the newest counts ---------------------------------------------------------------------------------------------

TEST_F(StoreOrder, TheNewestCountsWhateverTheOrderOfTheFiles) {
  shelf.add("2", {"20200102", "100000"}, lumbar(2));
  shelf.add("3", {"20200103", "100000"}, lumbar(3));
  shelf.add("1", {"20200101", "100000"}, lumbar(1));
  EXPECT_EQ(plugin.load(), lumbar(3));
  EXPECT_EQ(store->status(study).counting, "3");
  EXPECT_EQ(store->counting(study)->sopInstanceUid, "3");
}

TEST_F(StoreOrder, AnEmptyStateThatIsTheNewestCounts) {
  shelf.add("1", {"20200101", "100000"}, lumbar(1));
  shelf.add("2", {"20200102", "100000"}, empty);
  EXPECT_EQ(plugin.load(), empty);
  EXPECT_EQ(store->status(study).state, empty);
}

TEST_F(StoreOrder, OneThatCannotBeReadDoesNotCountAndIsNamedOnce) {
  shelf.add("1", {"20200101", "100000"}, lumbar(1));
  shelf.add("2", {"20200102", "100000"}, lumbar(2)).problem = "its archive ends too early";
  EXPECT_EQ(plugin.load(), lumbar(1));
  EXPECT_EQ(plugin.load(), lumbar(1));
  EXPECT_EQ(store->takeNotices(),
            (std::vector<std::string>{"The stored labelling /others/2 does not count, for it cannot be read: its "
                                      "archive ends too early."}));
  EXPECT_TRUE(store->takeNotices().empty());
  ASSERT_EQ(store->unreadable(study).size(), 1u);
  EXPECT_EQ(store->unreadable(study)[0].file, "/others/2");
  EXPECT_EQ(store->status(study).objects, 2u);
}

TEST_F(StoreOrder, WhatIsWrittenIsLaterThanAllThatItFollowsWhenTheClockWentBack) {
  plugin.save(lumbar(1));
  shelf.now -= std::chrono::hours(24);
  plugin.save(lumbar(2));
  plugin.save(lumbar(3));
  EXPECT_EQ(plugin.load(), lumbar(3));
  EXPECT_LT(shelf.encoded[0].contentTime, shelf.encoded[1].contentTime);
  EXPECT_LT(shelf.encoded[1].contentTime, shelf.encoded[2].contentTime);
  EXPECT_EQ(shelf.encoded[2].instanceNumber, 3);
  crash();
  EXPECT_EQ(plugin.load(), lumbar(3));
}

TEST_F(StoreOrder, AndThanOneThatCannotBeRead) {
  shelf.add("2", {"20300102", "100000"}, lumbar(2)).problem = "it is damaged";
  plugin.save(lumbar(1));
  EXPECT_EQ(shelf.encoded[0].contentTime, (ContentTime{"20300102", "100000.000001"}));
}

TEST_F(StoreOrder, ANewReportJoinsTheSeriesThatThePluginNames) {
  shelf.add("1", {"20200101", "100000"}, lumbar(1), "7.7");
  shelf.add("2", {"20200102", "100000"}, lumbar(2), "8.8");
  shelf.add("3", {"20200103", "100000"}, lumbar(3), "7.7");
  plugin.save(lumbar(4));
  ASSERT_EQ(shelf.encoded.size(), 1u);
  EXPECT_EQ(shelf.encoded[0].seriesInstanceUid, "8.8");
  EXPECT_EQ(shelf.encoded[0].instanceNumber, 2);
  EXPECT_EQ(plugin.load(), lumbar(4));
}

TEST_F(StoreOrder, WithoutOneItStartsASeriesOfItsOwnWhichTheNextJoins) {
  plugin.save(lumbar(1));
  plugin.save(lumbar(2));
  ASSERT_EQ(shelf.encoded.size(), 2u);
  EXPECT_EQ(shelf.encoded[0].seriesInstanceUid.rfind("2.25.", 0), 0u);
  EXPECT_EQ(shelf.encoded[1].seriesInstanceUid, shelf.encoded[0].seriesInstanceUid);
  EXPECT_NE(shelf.encoded[1].sopInstanceUid, shelf.encoded[0].sopInstanceUid);
  EXPECT_NE(shelf.encoded[1].sopInstanceUid, shelf.encoded[1].seriesInstanceUid);
}

TEST_F(StoreOrder, ReportsOfOtherSeriesDoNotMatter) {
  shelf.add("1", {"20300101", "100000"}, lumbar(1), "8.8").report.seriesDescription = "Key images";
  shelf.add("2", {"20300101", "100000"}, lumbar(2), "9.9").report.seriesNumber = 5;
  EXPECT_EQ(plugin.load(), std::nullopt);
  plugin.save(lumbar(1));
  EXPECT_EQ(shelf.encoded[0].instanceNumber, 1);
  EXPECT_LT(shelf.encoded[0].contentTime.date, "2021");
  EXPECT_EQ(store->reportSeries(study).size(), 3u);
}

TEST_F(StoreOrder, SeriesAreListedByNumberThenUid) {
  shelf.add("1", {}, lumbar(1), "8.8");
  shelf.add("2", {}, lumbar(1), "7.7");
  shelf.add("3", {}, lumbar(1), "9.9").report.seriesNumber = 5;
  const auto series = store->reportSeries(study);
  ASSERT_EQ(series.size(), 3u);
  EXPECT_EQ(series[0]->seriesDICOMUID(), "9.9");
  EXPECT_EQ(series[0]->id(), 5);
  EXPECT_EQ(series[1]->seriesDICOMUID(), "7.7");
  EXPECT_EQ(series[2]->seriesDICOMUID(), "8.8");
  EXPECT_EQ(series[2]->name(), labellingSeriesDescription);
  EXPECT_EQ(series[2]->images()->at(0)->completePathResolved(), "/others/1");
}

// --- what cannot be written ----------------------------------------------------------------------------------------

TEST_F(StoreOrder, WhatCannotBeWrittenCountsForThePlugin) {
  plugin.save(lumbar(1));
  store->setFailing(true);
  const std::string path = plugin.save(lumbar(2));
  EXPECT_EQ(states(), States{lumbar(1)});
  EXPECT_EQ(plugin.lookUp(), path);
  EXPECT_TRUE(store->holdsInMemory(path));
  EXPECT_EQ(plugin.load(), lumbar(2));
  const StoredStatus status = store->status(study);
  EXPECT_TRUE(status.unsaved);
  EXPECT_EQ(status.objects, 1u);
  EXPECT_EQ(status.state, lumbar(2));
  EXPECT_EQ(status.problem, "The report " + path + " cannot be written: no space is left on the device.");
  EXPECT_EQ(store->takeNotices().size(), 1u);
  EXPECT_EQ(store->counting(study)->labelling, lumbar(2));
}

TEST_F(StoreOrder, ItIsTriedAgainAtEachPaletteEvent) {
  store->setFailing(true);
  const std::string path = plugin.save(lumbar(1));
  store->paletteEvent();
  EXPECT_TRUE(shelf.files.empty());
  store->setFailing(false);
  EXPECT_TRUE(shelf.files.empty());
  store->paletteEvent();
  EXPECT_EQ(states(), States{lumbar(1)});
  EXPECT_EQ(shelf.files[0].path, path);
  EXPECT_EQ(shelf.files[0].report.sopInstanceUid, store->status(study).counting);
  EXPECT_FALSE(store->status(study).unsaved);
  EXPECT_EQ(store->status(study).problem, "");
  EXPECT_FALSE(store->holdsInMemory(path));
  EXPECT_EQ(plugin.load(), lumbar(1));
  store->paletteEvent();
  EXPECT_EQ(shelf.files.size(), 1u);
}

TEST_F(StoreOrder, AndWhenAPaletteOpens) {
  store->setFailing(true);
  plugin.save(lumbar(1));
  store->setFailing(false);
  store->paletteOpened("9.9");
  EXPECT_EQ(states(), States{lumbar(1)});
}

TEST_F(StoreOrder, AndOnQuitting) {
  store->setFailing(true);
  plugin.save(lumbar(1));
  plugin.save(lumbar(1), "9.9");
  store->setFailing(false);
  store->quitting();
  EXPECT_EQ(shelf.files.size(), 2u);
}

TEST_F(StoreOrder, ACrashLosesItAndLeavesWhatWasThere) {
  plugin.save(lumbar(1));
  store->setFailing(true);
  plugin.save(lumbar(2));
  crash();
  EXPECT_EQ(plugin.load(), lumbar(1));
}

TEST_F(StoreOrder, SeveralAreWrittenInTheOrderInWhichTheyWereMade) {
  store->setFailing(true);
  plugin.save(lumbar(1));
  plugin.save(lumbar(2));
  plugin.save(lumbar(2));
  EXPECT_EQ(plugin.load(), lumbar(2));
  const auto history = store->history(study);
  ASSERT_EQ(history.size(), 2u);
  EXPECT_TRUE(history[0].unsaved && !history[0].counts);
  EXPECT_TRUE(history[1].unsaved && history[1].counts);
  store->setFailing(false);
  plugin.save(lumbar(3));
  EXPECT_EQ(states(), (States{lumbar(1), lumbar(2), lumbar(3)}));
  EXPECT_EQ(plugin.load(), lumbar(3));
  EXPECT_EQ(store->reportSeries(study).size(), 1u);
}

TEST_F(StoreOrder, GoingBackToWhatIsOnDiskBeforeTheChangeWasSavedIsAChange) {
  plugin.save(lumbar(1));
  store->setFailing(true);
  plugin.save(lumbar(2));
  plugin.save(lumbar(1));
  EXPECT_EQ(plugin.load(), lumbar(1));
  store->setFailing(false);
  store->quitting();
  EXPECT_EQ(states(), (States{lumbar(1), lumbar(2), lumbar(1)}));
  EXPECT_EQ(plugin.load(), lumbar(1));
}

TEST_F(StoreOrder, ItCountsAlsoOverWhatAColleagueStoredMeanwhile) {
  store->setFailing(true);
  plugin.save(lumbar(1));
  shelf.add("5", {"20300101", "100000"}, lumbar(5));
  EXPECT_EQ(plugin.load(), lumbar(1));
  store->setFailing(false);
  store->quitting();
  EXPECT_EQ(plugin.load(), lumbar(1));
  EXPECT_EQ(shelf.encoded.back().contentTime, (ContentTime{"20300101", "100000.000001"}));
}

TEST_F(StoreOrder, ItIsNotNeededAnyMoreOnceAColleagueStoredTheSame) {
  store->setFailing(true);
  plugin.save(lumbar(1));
  shelf.add("5", {"20300101", "100000"}, lumbar(1));
  store->setFailing(false);
  store->paletteEvent();
  EXPECT_EQ(shelf.files.size(), 1u);
  EXPECT_FALSE(store->status(study).unsaved);
}

TEST_F(StoreOrder, WhatAFailedAttemptDidWriteIsNotWrittenAgain) {
  shelf.failsAfterWriting = true;
  plugin.save(lumbar(1));
  EXPECT_TRUE(store->status(study).unsaved);
  shelf.add("5", {"20300101", "100000"}, lumbar(5));
  shelf.failsAfterWriting = false;
  store->paletteEvent();
  EXPECT_EQ(shelf.files.size(), 2u);
  EXPECT_FALSE(store->status(study).unsaved);
}

TEST_F(StoreOrder, WhatWasReadFromDiskMeanwhileDoesNotHoldAChangeBack) {
  const std::string path = plugin.save(lumbar(1));
  store->setFailing(true);
  plugin.save(lumbar(2));
  EXPECT_TRUE(store->srAnnotationClass().initWithContentsOfFile(path));
  plugin.save(lumbar(1));
  EXPECT_EQ(plugin.load(), lumbar(1));
}

TEST_F(StoreOrder, AnEmptyStateThatCannotBeWrittenIsKeptAsWell) {
  plugin.save(lumbar(1));
  store->paletteOpened(study);
  plugin.save(empty);
  store->setFailing(true);
  store->paletteClosed();
  EXPECT_EQ(plugin.load(), empty);
  EXPECT_EQ(plugin.load(), empty);
  EXPECT_TRUE(store->status(study).unsaved);
  EXPECT_FALSE(store->status(study).held);
  store->setFailing(false);
  store->quitting();
  EXPECT_EQ(states(), (States{lumbar(1), empty}));
}

TEST_F(StoreOrder, AHeldEmptyStateOverAnUnsavedLabellingFollowsTheSameRules) {
  store->setFailing(true);
  plugin.save(lumbar(1));
  store->paletteOpened(study);
  plugin.save(empty);
  EXPECT_EQ(store->status(study).state, lumbar(1));
  EXPECT_TRUE(store->status(study).held);
  store->paletteClosed();
  EXPECT_EQ(plugin.load(), empty);
  store->setFailing(false);
  store->quitting();
  EXPECT_EQ(states(), (States{lumbar(1), empty}));
}

TEST_F(StoreOrder, AReportThatCannotBeEncodedIsKeptToo) {
  auto parts = shelf.parts();
  parts.encode = [](const ReportToWrite&) { return Result<pelmar::Bytes>::refused("The image /any/image is gone."); };
  store = std::make_unique<LabellingStore>(shelf, points, parts);
  plugin = PluginHand(*store);
  plugin.save(lumbar(1));
  EXPECT_EQ(store->takeNotices(),
            std::vector<std::string>{"The labelling is not yet saved: The image /any/image is gone."});
  EXPECT_EQ(plugin.load(), lumbar(1));
}

// --- the context ---------------------------------------------------------------------------------------------------

TEST_F(StoreOrder, TheContextIsAskedForWhenALabellingIsWritten) {
  std::vector<std::string> asked;
  store->setContextSource([&](const std::string& uid) {
    asked.push_back(uid);
    ReportContext context;
    context.frameOfReferenceUid = "6.6." + std::to_string(asked.size());
    return std::optional(context);
  });
  plugin.save(lumbar(1));
  plugin.save(lumbar(1));
  store->paletteOpened(study);
  plugin.save(empty);
  store->paletteClosed();
  EXPECT_EQ(asked, std::vector<std::string>{study});
  ASSERT_EQ(shelf.encoded.size(), 2u);
  EXPECT_EQ(shelf.encoded[0].context.frameOfReferenceUid, "6.6.1");
}

TEST_F(StoreOrder, ItIsRememberedUntilTheReportCanBeWritten) {
  bool open = true;
  store->setContextSource([&](const std::string&) {
    ReportContext context;
    context.frameOfReferenceUid = "6.6";
    return open ? std::optional(context) : std::nullopt;
  });
  store->setFailing(true);
  plugin.save(lumbar(1));
  open = false;  // the viewers have closed
  store->setFailing(false);
  store->quitting();
  ASSERT_EQ(shelf.files.size(), 1u);
  EXPECT_EQ(shelf.files[0].report.context.frameOfReferenceUid, "6.6");
}

TEST_F(StoreOrder, EachReportThatWaitsSaysWhatThePluginHeldWhenItWasMade) {
  std::string held;
  store->setContextSource([&](const std::string&) {
    ReportContext context;
    context.verticalSeriesUid = held;
    return std::optional(context);
  });
  store->setFailing(true);
  for (const int number : {1, 2}) {
    held = "held at " + std::to_string(number);
    plugin.save(lumbar(number));
  }
  held = "another study's planes";
  store->setFailing(false);
  store->quitting();
  ASSERT_EQ(shelf.files.size(), 2u);
  EXPECT_EQ(shelf.files[0].report.context.verticalSeriesUid, "held at 1");
  EXPECT_EQ(shelf.files[1].report.context.verticalSeriesUid, "held at 2");
}

TEST_F(StoreOrder, ClosingThePaletteTriesAgain) {
  store->setFailing(true);
  plugin.save(lumbar(1));
  ASSERT_TRUE(shelf.files.empty());
  store->paletteOpened(study);
  ASSERT_TRUE(shelf.files.empty());
  store->setFailing(false);
  store->paletteClosed();
  EXPECT_EQ(shelf.files.size(), 1u);
}

}  // namespace
}  // namespace workstation::test
