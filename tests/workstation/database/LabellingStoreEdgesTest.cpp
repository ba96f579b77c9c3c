// What lies at the edges of storing a labelling, with the real plug-in and a new start in between.
#include "LabellingStoreStories.h"
#include "OddArchive.h"

namespace workstation::test {
namespace {

class Edges : public Stories {
 protected:
  /// Another program puts a report into the study, of an hour later than the one before.
  void put(const SavedLabelling& labelling, const pelmar::Bytes& archive, const std::string& seriesUid) {
    ReportToWrite report;
    report.patientImage = session->shelf.anyImage(study);
    report.sopInstanceUid = "2.25." + std::to_string(++reports);
    report.seriesInstanceUid = seriesUid;
    report.seriesNumber = labellingSeriesNumber;
    report.seriesDescription = labellingSeriesDescription;
    report.instanceNumber = reports;
    report.contentTime = {"20990101", std::to_string(100000 + 10000 * reports) + ".000000"};
    report.labelling = labelling;
    report.archive = archive;
    report.context.frameOfReferenceUid = study + ".99";
    const auto bytes = disk->parts().encode(report);
    ASSERT_TRUE(bytes) << bytes.problem;
    const Outcome stored = session->shelf.store(study, session->shelf.freshPath(study, "dcm"), *bytes);
    ASSERT_TRUE(stored) << *stored.problem;
  }
  void reset() {
    openWithPalette();
    EXPECT_TRUE(desk().pressPalette("reset"));
    EXPECT_TRUE(desk().closePalette());
  }

  int reports = 0;
};

INSTANTIATE_TEST_SUITE_P(Disks, Edges, bothDisks, nameOfDisk);

TEST_P(Edges, TheSameLabellingTwiceInARowIsStoredOnce) {
  begin();
  label(100);
  const int viewer = openWithPalette();
  EXPECT_TRUE(desk().pressPalette("reset"));
  draw(viewer, 100);
  EXPECT_TRUE(desk().pressPalette("stopWorkFlow"));
  restart();
  EXPECT_EQ(disk->files(), before);
  expectLabelled();
}

TEST_P(Edges, AResetAfterAResetStoresNothing) {
  begin();
  label();
  reset();
  restart();
  before = disk->files();
  reset();
  restart();
  EXPECT_EQ(disk->files(), before);
  expectReset();
}

TEST_P(Edges, TheFirstEmptyStateOfAllIsStoredThoughTheStudyHasNoReport) {
  begin();
  before = disk->files();
  store().paletteOpened(study);
  PluginHand(store()).save(empty);
  EXPECT_TRUE(store().status(study).held);
  EXPECT_EQ(disk->files(), before);
  store().paletteClosed();
  EXPECT_EQ(disk->files().size(), before.size() + 1);
  restart();
  EXPECT_EQ(PluginHand(store()).load(), empty);
  expectReset();
}

TEST_P(Edges, AnArchiveWithAPadByteIsShown) {
  begin();
  label();
  SavedLabelling theirs = *labelled;
  theirs.levels->pop_back();
  put(theirs, oddArchiveOf(theirs), study + ".7");
  restart();
  EXPECT_EQ(store().status(study).state, theirs);
  EXPECT_FALSE(store().status(study).fromContent);
  open();
  EXPECT_EQ(planes(), theirs.levels->size());
  EXPECT_TRUE(store().takeNotices().empty());
}

TEST_P(Edges, ANewReportJoinsTheLastOfTwoSeries) {
  begin();
  label();
  SavedLabelling theirs = *labelled;
  for (const char* series : {"2.9.4", "2.9.30"}) {  // by UID the first comes last
    theirs.levels->pop_back();
    put(theirs, archiveOf(theirs), series);
  }
  restart();
  const int viewer = openWithPalette();
  EXPECT_EQ(store().reportSeries(study).size(), 3u);
  EXPECT_TRUE(desk().pressPalette("reset"));
  draw(viewer, 100);
  EXPECT_TRUE(desk().closePalette());
  const std::string counting = store().counting(study)->sopInstanceUid;
  restart();
  ASSERT_TRUE(store().counting(study));
  EXPECT_EQ(store().counting(study)->sopInstanceUid, counting);
  EXPECT_EQ(store().counting(study)->seriesInstanceUid, "2.9.4");
  EXPECT_EQ(store().reportSeries(study).size(), 3u);
}

TEST_P(Edges, AThoracicLabellingInAStudyThatIsGuessedAsLumbarIsShownAndStays) {
  begin("MRI LUMBAR SPINE");
  label(128, 1);
  openWithPalette();
  EXPECT_EQ(desk().paletteValue("anatomicalRegion").intValue(), 1);
  EXPECT_EQ(planes(), labelled->levels->size());
  // The plug-in has stored an empty state while it took the labelling in.
  EXPECT_TRUE(store().status(study).held);
  EXPECT_EQ(store().status(study).state, labelled);
  crash();
  EXPECT_EQ(disk->files(), before);
  openWithPalette();
  EXPECT_TRUE(desk().closePalette());
  restart();
  EXPECT_EQ(disk->files(), before);
  expectLabelled();
}

}  // namespace
}  // namespace workstation::test
