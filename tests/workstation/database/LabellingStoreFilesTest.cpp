// History and restoring, and the plug-in's view of files.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <thread>

#include "LabellingStoreFakes.h"
#include "tests/support/TemporaryFolder.h"

namespace workstation::test {
namespace {

namespace fs = std::filesystem;

class StoreFiles : public testing::Test {
 protected:
  /// A file that someone else wrote, with the report that was encoded last.
  fs::path foreignFile() {
    const fs::path file = folder / "foreign.dcm";
    std::ofstream(file) << shelf.coded.size() - 1;
    return file;
  }
  void import(const fs::path& file) {
    store.currentBrowser()->database()->addFilesAtPaths({file.string()}, true, true, true, true);
  }

  testsupport::TemporaryFolder folder;
  FakeShelf shelf;
  PatientPointClass points;
  LabellingStore store{shelf, points, shelf.parts()};
  PluginHand plugin{store};
};

// --- history and restoring -----------------------------------------------------------------------------------------

TEST_F(StoreFiles, TheHistoryListsEveryReportOldestFirst) {
  shelf.add("3", {"20200103", "100000"}, lumbar(3)).problem = "it is damaged";
  shelf.add("2", {"20200102", "100000"}, empty);
  shelf.add("1", {"20200101", "100000"}, lumbar(1));
  const auto history = store.history(study);
  ASSERT_EQ(history.size(), 3u);
  EXPECT_EQ(history[0].report.sopInstanceUid, "1");
  EXPECT_EQ(history[0].report.labelling, lumbar(1));
  EXPECT_FALSE(history[0].counts);
  EXPECT_TRUE(history[1].counts);
  EXPECT_EQ(history[1].report.contentTime, (ContentTime{"20200102", "100000"}));
  EXPECT_FALSE(history[2].counts);
  EXPECT_EQ(history[2].report.problem, "it is damaged");
  EXPECT_TRUE(store.history("9.9").empty());
}

TEST_F(StoreFiles, RestoringAddsAReportThatSaysTheSameAndCounts) {
  auto& first = shelf.add("1", {"20300101", "100000"}, lumbar(1));
  first.report.context.frameOfReferenceUid = "6.6";
  first.report.context.sliceLevels = {{{"1.2", "3.4"}, "L4"}};
  const ReportContext context = first.report.context;
  plugin.save(lumbar(2));
  ASSERT_TRUE(store.restore(study, "1"));
  ASSERT_EQ(shelf.files.size(), 3u);
  const StoredReport& restored = shelf.files[2].report;
  EXPECT_EQ(labellingOf(restored.archive), lumbar(1));
  EXPECT_EQ(restored.context.frameOfReferenceUid, "6.6");
  EXPECT_EQ(restored.context.sliceLevels, context.sliceLevels);
  EXPECT_EQ(restored.instanceNumber, 3);
  EXPECT_EQ(restored.contentTime, (ContentTime{"20300101", "100000.000002"}));
  EXPECT_EQ(store.counting(study)->sopInstanceUid, restored.sopInstanceUid);
  EXPECT_EQ(plugin.load(), lumbar(1));
}

TEST_F(StoreFiles, AnEmptyStateCanBeRestoredAndIsWrittenAtOnce) {
  shelf.add("1", {"20200101", "100000"}, empty);
  shelf.add("2", {"20200102", "100000"}, lumbar(2));
  ASSERT_TRUE(store.restore(study, "1"));
  EXPECT_EQ(plugin.load(), empty);
}

TEST_F(StoreFiles, AReportWithoutArchiveIsRestoredFromItsContent) {
  auto& first = shelf.add("1", {"20200101", "100000"}, lumbar(1));
  first.report.archive.clear();
  first.report.content = lumbar(1);
  shelf.add("2", {"20200102", "100000"}, lumbar(2));
  ASSERT_TRUE(store.restore(study, "1"));
  EXPECT_EQ(labellingOf(shelf.files[2].report.archive), lumbar(1));
}

TEST_F(StoreFiles, AReportThatCarriesTheArchiveAloneIsRestoredWhereTheStudyLies) {
  shelf.add("1", {"20200101", "100000"}, lumbar(1));
  shelf.add("2", {"20200102", "100000"}, lumbar(2));
  store.setContextSource([](const std::string&) {
    ReportContext context;
    context.frameOfReferenceUid = "6.6";
    context.sliceLevels = {{{"1.2", "3.4"}, "L4"}};
    return std::optional(context);
  });
  ASSERT_TRUE(store.restore(study, "1"));
  EXPECT_EQ(labellingOf(shelf.files[2].report.archive), lumbar(1));
  EXPECT_EQ(shelf.files[2].report.context.frameOfReferenceUid, "6.6");
  EXPECT_TRUE(shelf.files[2].report.context.sliceLevels.empty());
}

TEST_F(StoreFiles, RestoringDropsAHeldEmptyState) {
  shelf.add("1", {"20200101", "100000"}, lumbar(1));
  shelf.add("2", {"20200102", "100000"}, lumbar(2));
  store.paletteOpened(study);
  plugin.save(empty);
  ASSERT_TRUE(store.restore(study, "1"));
  store.paletteClosed();
  EXPECT_EQ(store.status(study).state, lumbar(1));
}

TEST_F(StoreFiles, RestoringIsRefusedWithTheReason) {
  shelf.add("1", {"20200101", "100000"}, lumbar(1));
  shelf.add("2", {"20200102", "100000"}, lumbar(2));
  shelf.add("3", {"20200103", "100000"}, lumbar(3)).problem = "its archive ends too early";
  shelf.add("4", {"20200101", "100000"}, lumbar(2));
  EXPECT_EQ(*store.restore(study, "8").problem,
            "The labelling 8 cannot be restored: the study 1.2.3 holds no labelling with that UID; its history lists "
            "those it holds.");
  EXPECT_EQ(*store.restore(study, "3").problem,
            "The labelling 3 cannot be restored: its file /others/3 cannot be read: its archive ends too early.");
  EXPECT_EQ(*store.restore(study, "2").problem,
            "The labelling 2 cannot be restored: it is the one that counts already.");
  EXPECT_EQ(*store.restore(study, "4").problem,
            "The labelling 4 cannot be restored: the one that counts, 2, says the same.");
  store.setFailing(true);
  EXPECT_TRUE(store.restore(study, "1").problem->ends_with("no space is left on the device."));
  EXPECT_EQ(shelf.files.size(), 4u);
  store.setFailing(false);
  store.quitting();
  EXPECT_EQ(shelf.files.size(), 4u);
}

TEST_F(StoreFiles, RestoringIsRefusedWhileANewerOneIsNotSaved) {
  shelf.add("1", {"20200101", "100000"}, lumbar(1));
  store.setFailing(true);
  plugin.save(lumbar(2));
  EXPECT_FALSE(store.restore(study, "1"));
  store.setFailing(false);
  EXPECT_TRUE(store.restore(study, "1"));
  EXPECT_EQ(statesOn(shelf).size(), 3u);
  EXPECT_EQ(plugin.load(), lumbar(1));
}

// --- a report without its archive ----------------------------------------------------------------------------------

TEST_F(StoreFiles, AReportWhoseArchiveIsMissingIsReadFromItsContentAndThatIsSaid) {
  auto& file = shelf.add("1", {"20200101", "100000"}, lumbar(1));
  file.report.archive.clear();
  file.report.content = lumbar(1);
  EXPECT_EQ(plugin.load(), lumbar(1));
  EXPECT_EQ(store.takeNotices(),
            (std::vector<std::string>{"The archive of the stored labelling /others/1 is missing: it was read from the "
                                      "report's standard content, whose numbers have single precision."}));
  EXPECT_TRUE(store.status(study).fromContent);
}

// --- files ---------------------------------------------------------------------------------------------------------

TEST_F(StoreFiles, EveryPathThatIsHandedOutIsAnotherOne) {
  auto store9 = store.persistentStore("9.9");
  const auto database = store.currentBrowser()->database();
  const auto a = database->uniquePathForNewDataFileWithExtension("dcm", store9);
  const auto b = database->uniquePathForNewDataFileWithExtension("dcm", store9);
  ASSERT_TRUE(a && b);
  EXPECT_NE(*a, *b);
  EXPECT_TRUE(a->ends_with(".dcm"));
  shelf.paths -= 2;  // the shelf sees no file there yet, and names them again
  const auto c = database->uniquePathForNewDataFileWithExtension("dcm", store9);
  EXPECT_TRUE(c && *c != *a && *c != *b);
  EXPECT_EQ(database->uniquePathForNewDataFileWithExtension("dcm", nullptr), std::nullopt);
}

TEST_F(StoreFiles, APathWithoutAReportIsNothing) {
  const auto path =
      store.currentBrowser()->database()->uniquePathForNewDataFileWithExtension("dcm", store.persistentStore(study));
  import(*path);
  EXPECT_FALSE(store.holdsInMemory(*path));
  EXPECT_TRUE(shelf.files.empty());
}

TEST_F(StoreFiles, AReportIsInMemoryFromWritingToImport) {
  const auto path =
      store.currentBrowser()->database()->uniquePathForNewDataFileWithExtension("dcm", store.persistentStore(study));
  const auto report = store.srAnnotationClass().initWithData(archiveOf(lumbar(1)), path, nullptr, labellingSeriesNumber,
                                                             labellingSeriesDescription);
  EXPECT_FALSE(store.holdsInMemory(*path));
  EXPECT_TRUE(report->writeToFileAtPath(*path));
  EXPECT_TRUE(store.holdsInMemory(*path));
  EXPECT_EQ(store.srAnnotationClass().initWithContentsOfFile(*path)->dataEncapsulated(), archiveOf(lumbar(1)));
  import(*path);
  EXPECT_FALSE(store.holdsInMemory(*path));
  EXPECT_EQ(shelf.files.size(), 1u);
}

TEST_F(StoreFiles, DataThatIsNoLabellingIsNotWritten) {
  const auto path =
      store.currentBrowser()->database()->uniquePathForNewDataFileWithExtension("dcm", store.persistentStore(study));
  const auto report = store.srAnnotationClass().initWithData(pelmar::Bytes{1, 2, 3}, path, nullptr,
                                                             labellingSeriesNumber, labellingSeriesDescription);
  EXPECT_FALSE(report->writeToFileAtPath(*path));
  import(*path);
  EXPECT_TRUE(shelf.files.empty());
  EXPECT_EQ(store.takeNotices().size(), 1u);
}

TEST_F(StoreFiles, AReportOfAnotherSeriesIsWrittenWhateverItHolds) {
  for (int round = 0; round < 2; ++round) {
    const auto path =
        store.currentBrowser()->database()->uniquePathForNewDataFileWithExtension("dcm", store.persistentStore(study));
    const auto report = store.srAnnotationClass().initWithData(archiveOf(empty), path, nullptr, 5, "Other");
    report->setSeriesInstanceUID("5.5");
    report->setSeriesInstanceUID(std::nullopt);
    report->writeToFileAtPath(*path);
    import(*path);
  }
  ASSERT_EQ(shelf.files.size(), 2u);
  EXPECT_EQ(shelf.files[1].report.seriesInstanceUid, "5.5");
  EXPECT_EQ(shelf.files[1].report.instanceNumber, 2);
}

TEST_F(StoreFiles, APathOfSomewhereElseIsWrittenDirectly) {
  const fs::path file = folder / "report.dcm";
  const auto report = store.srAnnotationClass().initWithData(archiveOf(empty), file.string(), nullptr,
                                                             labellingSeriesNumber, labellingSeriesDescription);
  EXPECT_TRUE(report->writeToFileAtPath(file.string()));
  EXPECT_TRUE(fs::exists(file));
  EXPECT_FALSE(report->writeToFileAtPath((folder / "none" / "report.dcm").string()));
  EXPECT_TRUE(shelf.files.empty());
}

TEST_F(StoreFiles, AFileThatSomeoneElseMadeGoesIntoItsStudyOnce) {
  plugin.save(lumbar(1));
  shelf.coded[0].studyInstanceUid = "9.9";
  const fs::path file = foreignFile();
  import(file);
  import(file);
  ASSERT_EQ(shelf.files.size(), 2u);
  EXPECT_EQ(shelf.files[1].studyUid, "9.9");
  EXPECT_EQ(shelf.files[1].path, "/shelf/2.dcm");
  EXPECT_TRUE(fs::exists(file));
}

TEST_F(StoreFiles, AForeignFileOfAnUnknownStudyOrOfAnotherKindIsPassedOver) {
  plugin.save(lumbar(1));
  shelf.coded[0].studyInstanceUid = "4.4.4";
  import(foreignFile());
  std::ofstream(folder / "text") << "text";
  import(folder / "text");
  import(folder / "missing");
  import(folder.path());
  EXPECT_EQ(shelf.files.size(), 1u);
}

TEST_F(StoreFiles, AFileThatIsNoReportReadsAsNil) {
  EXPECT_EQ(store.srAnnotationClass().initWithContentsOfFile("/nowhere"), nullptr);
}

TEST_F(StoreFiles, TheIndependentDatabaseServesAnotherThread) {
  const auto database = store.currentBrowser()->database();
  EXPECT_EQ(store.currentBrowser()->database(), database);
  bool asked = false;
  store.setContextSource([&](const std::string&) {
    asked = true;
    return std::optional<ReportContext>();
  });
  std::thread other([&] {
    const auto independent = database->independentDatabase();
    const auto path = independent->uniquePathForNewDataFileWithExtension("dcm", store.persistentStore(study));
    const auto report = store.srAnnotationClass().initWithData(archiveOf(lumbar(1)), path, nullptr,
                                                               labellingSeriesNumber, labellingSeriesDescription);
    report->writeToFileAtPath(*path);
    independent->addFilesAtPaths({*path}, true, true, true, true);
  });
  for (int round = 0; round < 100; ++round) store.status(study);
  other.join();
  EXPECT_EQ(plugin.load(), lumbar(1));
  EXPECT_FALSE(asked);
}

}  // namespace
}  // namespace workstation::test
