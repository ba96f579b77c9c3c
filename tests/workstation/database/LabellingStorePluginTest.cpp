// The real plug-in on the workstation with the store: stories of sessions, with restarts and crashes in between.
#include "LabellingStoreStories.h"

namespace workstation::test {
namespace {

INSTANTIATE_TEST_SUITE_P(Disks, Stories, bothDisks, nameOfDisk);

TEST_P(Stories, ALabellingIsThereAfterARestart) {
  begin();
  const auto images = disk->files();
  label();
  EXPECT_EQ(disk->files().size(), images.size() + 1);
  expectLabelled();
}

TEST_P(Stories, OpeningScrollingAndQuittingAddsNothing) {
  begin();
  label();
  const int viewer = open();
  for (const int slice : {1, 2, 0}) EXPECT_TRUE(desk().scroll(viewer, slice));
  restart();
  EXPECT_EQ(disk->files(), before);
  expectLabelled();
}

TEST_P(Stories, OpeningScrollingAndQuittingAnUnlabelledStudyAddsNothing) {
  begin();
  const auto images = disk->files();
  const int viewer = open();
  EXPECT_TRUE(desk().scroll(viewer, 2));
  restart();
  EXPECT_EQ(disk->files(), images);
}

TEST_P(Stories, OpeningAndClosingThePaletteOfAnUnlabelledStudyAddsNothing) {
  begin();
  const auto images = disk->files();
  openWithPalette();
  EXPECT_TRUE(desk().closePalette());
  restart();
  openWithPalette();
  restart();
  EXPECT_EQ(disk->files(), images);
}

TEST_P(Stories, LookingAtALabelledStudyWithThePaletteAddsNothing) {
  begin();
  label();
  const int viewer = openWithPalette();
  EXPECT_TRUE(desk().scroll(viewer, 2));
  EXPECT_TRUE(desk().closePalette());
  restart();
  openWithPalette();
  restart();
  EXPECT_EQ(disk->files(), before);
  expectLabelled();
}

TEST_P(Stories, ALabellingOfAnotherRegionThanGuessedIsThereWhenLabelsIsChosen) {
  begin("MRI THORACIC SPINE");
  label();
  openWithPalette();
  EXPECT_EQ(planes(), labelled->levels->size());
  EXPECT_EQ(desk().paletteValue("anatomicalRegion").intValue(), 2);
  EXPECT_TRUE(store().status(study).held);
  EXPECT_TRUE(desk().closePalette());
  EXPECT_FALSE(store().status(study).held);
  EXPECT_EQ(disk->files(), before);
  restart();
  EXPECT_EQ(disk->files(), before);
  expectLabelled();
}

TEST_P(Stories, AResetSticksOnceThePaletteIsClosed) {
  begin();
  label();
  openWithPalette();
  EXPECT_TRUE(desk().pressPalette("reset"));
  EXPECT_EQ(disk->files(), before);
  EXPECT_TRUE(desk().closePalette());
  EXPECT_EQ(disk->files().size(), before.size() + 1);
  restart();
  expectReset();
}

TEST_P(Stories, AResetSticksWhereTheRegionWasGuessedWrongly) {
  begin("MRI THORACIC SPINE");
  label();
  openWithPalette();
  EXPECT_TRUE(desk().pressPalette("reset"));
  EXPECT_TRUE(desk().closePalette());
  restart();
  expectReset();
}

TEST_P(Stories, AResetSticksWhenThePersonQuitsOrClosesTheViewers) {
  for (const bool quits : {true, false}) {
    begin();
    label();
    openWithPalette();
    EXPECT_TRUE(desk().pressPalette("reset"));
    if (!quits) {
      for (const ViewerInfo& viewer : desk().viewers()) EXPECT_TRUE(desk().closeViewer(viewer.number));
      EXPECT_FALSE(desk().palette().has_value());
      EXPECT_EQ(store().status(study).state, empty);
    }
    restart();
    expectReset();
  }
}

TEST_P(Stories, AResetSticksWhenThePaletteGoesToAnotherStudy) {
  begin();
  label();
  openWithPalette();
  EXPECT_TRUE(desk().pressPalette("reset"));
  openWithPalette(otherStudy);
  EXPECT_EQ(store().status(study).state, empty);
  EXPECT_FALSE(store().status(study).held);
  EXPECT_TRUE(desk().closePalette());
  EXPECT_EQ(store().status(otherStudy).objects, 0u);
  restart();
  expectReset();
}

TEST_P(Stories, AResetAndANewDrawingMakeTheNewLabelling) {
  begin();
  label();
  const int viewer = openWithPalette();
  EXPECT_TRUE(desk().pressPalette("reset"));
  draw(viewer, 100);
  EXPECT_TRUE(desk().closePalette());
  EXPECT_EQ(disk->files().size(), before.size() + 1);
  const auto now = store().status(study);
  EXPECT_NE(now.state, labelled);
  labelled = now.state;
  restart();
  expectLabelled();
}

TEST_P(Stories, AColleaguesLabellingIsNotOverwrittenByLooking) {
  begin("MRI THORACIC SPINE");
  label();
  // The plug-in has loaded the first labelling; meanwhile a colleague's process stores another one.
  const int viewer = openWithPalette();
  EXPECT_TRUE(desk().scroll(viewer, 1));
  SavedLabelling theirs = *labelled;
  theirs.levels->front().point[0] += 5;
  {
    auto parts = disk->parts();
    LabellingStore colleague(session->shelf, session->points, parts);
    colleague.setContextSource([](const std::string& uid) {
      ReportContext context;
      context.frameOfReferenceUid = uid + ".99";
      return std::optional(context);
    });
    PluginHand(colleague).save(theirs);
  }
  EXPECT_TRUE(desk().closePalette());
  restart();
  EXPECT_EQ(disk->files().size(), before.size() + 1);
  EXPECT_TRUE(sameInSinglePrecision(*store().status(study).state, theirs));
}

// --- crashes -------------------------------------------------------------------------------------------------------

TEST_P(Stories, ACrashAfterOpeningLeavesTheLabelling) {
  begin("MRI THORACIC SPINE");
  label();
  open();
  crash();
  EXPECT_EQ(disk->files(), before);
  expectLabelled();
}

TEST_P(Stories, ACrashAfterChoosingLabelsLeavesTheLabelling) {
  for (const char* description : {"MRI THORACIC SPINE", "MRI LUMBAR SPINE"}) {
    begin(description);
    label();
    openWithPalette();
    crash();
    EXPECT_EQ(disk->files(), before);
    expectLabelled();
  }
}

TEST_P(Stories, ACrashAfterAResetLeavesTheLabelling) {
  for (const char* description : {"MRI THORACIC SPINE", "MRI LUMBAR SPINE"}) {
    begin(description);
    label();
    openWithPalette();
    EXPECT_TRUE(desk().pressPalette("reset"));
    crash();
    EXPECT_EQ(disk->files(), before);
    expectLabelled();
  }
}

TEST_P(Stories, ACrashAfterDrawingLeavesTheLabelling) {
  begin();
  label();
  const int viewer = openWithPalette();
  EXPECT_TRUE(desk().pressPalette("reset"));
  draw(viewer, 100);
  EXPECT_NE(planes(), 0u);
  crash();
  EXPECT_EQ(disk->files(), before);
  expectLabelled();
}

TEST_P(Stories, ACrashAfterDrawingInAnUnlabelledStudyLeavesNone) {
  begin();
  const auto images = disk->files();
  draw(openWithPalette());
  EXPECT_NE(planes(), 0u);
  crash();
  EXPECT_EQ(disk->files(), images);
  EXPECT_EQ(store().counting(study), std::nullopt);
  open();
  EXPECT_EQ(planes(), 0u);
}

// --- a disk that cannot be written ---------------------------------------------------------------------------------

TEST_P(Stories, ALabellingThatCannotBeSavedIsShownAndSavedLater) {
  begin();
  const auto images = disk->files();
  const int viewer = openWithPalette();
  draw(viewer);
  store().setFailing(true);
  EXPECT_TRUE(desk().closePalette());
  EXPECT_TRUE(store().status(study).unsaved);
  EXPECT_EQ(disk->files(), images);
  labelled = store().status(study).state;
  // Reopened, the study shows what was not saved.
  for (const ViewerInfo& one : desk().viewers()) EXPECT_TRUE(desk().closeViewer(one.number));
  const int again = open();
  EXPECT_EQ(planes(), labelled->levels->size());
  store().setFailing(false);
  EXPECT_TRUE(desk().chooseMenu(again, "Labels"));
  EXPECT_FALSE(store().status(study).unsaved);
  EXPECT_EQ(disk->files().size(), images.size() + 1);
  restart();
  EXPECT_EQ(disk->files().size(), images.size() + 1);
  expectLabelled();
}

TEST_P(Stories, ALabellingThatCouldNotBeSavedIsSavedWhenThePaletteIsUsed) {
  begin();
  const auto images = disk->files();
  const int viewer = openWithPalette();
  draw(viewer);
  store().setFailing(true);
  EXPECT_TRUE(desk().closePalette());
  EXPECT_TRUE(desk().chooseMenu(viewer, "Labels"));
  labelled = store().status(study).state;
  store().setFailing(false);
  EXPECT_EQ(disk->files(), images);
  EXPECT_TRUE(desk().setPaletteValue("displayLabels", false));
  EXPECT_FALSE(store().status(study).unsaved);
  EXPECT_EQ(disk->files().size(), images.size() + 1);
  crash();
  expectLabelled();
}

TEST_P(Stories, ALabellingThatCouldNotBeSavedIsSavedOnQuitting) {
  begin();
  draw(openWithPalette());
  store().setFailing(true);
  EXPECT_TRUE(desk().closePalette());
  labelled = store().status(study).state;
  store().setFailing(false);
  restart();
  expectLabelled();
}

}  // namespace
}  // namespace workstation::test
