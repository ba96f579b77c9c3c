// A folder that is opened in place.

#include <gtest/gtest.h>
#include <unistd.h>

#include "FolderFixtures.h"

namespace workstation::test {
namespace {

namespace fs = std::filesystem;

class FolderInPlaceTest : public ::testing::Test {
 protected:
  FolderInPlaceTest() { writeStudy(path()); }
  const fs::path& path() const { return folder_.path(); }
  fs::path indexFile() const { return path() / ".vertana" / "index.sqlite"; }

  TemporaryFolder folder_;
};

TEST_F(FolderInPlaceTest, LookingLeavesEveryFileAsItWasAndAddsNothing) {
  const auto before = photographOf(path());
  {
    const auto database = openInPlace(path());
    EXPECT_EQ(database->images(studyUid()).size(), 3U);
    EXPECT_TRUE(database->labellings(studyUid()).empty());
    EXPECT_EQ(database->studies().size(), 1U);
    database->freshPath(studyUid(), "dcm");
  }
  EXPECT_EQ(photographOf(path()), before);
}

TEST_F(FolderInPlaceTest, LookingAtALabelledFolderLeavesItAsItWasToo) {
  store(*openInPlace(path()), lumbarAt(1), 1);
  writeStudy(path() / "more", 2);  // the index in the folder is outdated now
  const auto before = photographOf(path());
  EXPECT_EQ(levelsIn(*openInPlace(path())), std::vector<double>{1});
  EXPECT_EQ(photographOf(path()), before);
}

TEST_F(FolderInPlaceTest, GivesWhatReadingTheFilesGives) {
  write(axialImage(1), folder_.file("ax/1.dcm"));
  fs::copy_file(path() / "sag/2.dcm", path() / "sag/2 copy.dcm");
  writeText(folder_.file("readme.txt"), "hello");
  writeText(folder_.file("empty.dcm"), "");
  writeBytes(folder_.file("report.dcm"), reportOn(path() / "sag/1.dcm", lumbarAt(1), 1));
  const ReadResult expected = readImages(path());
  ASSERT_EQ(expected.images.size(), 4U);
  ASSERT_EQ(expected.copies.size(), 1U);
  const auto database = openInPlace(path());
  store(*database, lumbarAt(2), 2);  // so that the next opening has an index
  std::size_t reads = 0;
  const auto again = openInPlace(path(), countingReads(reads));
  EXPECT_EQ(reads, 0U);
  for (StudyDatabase* each : {database.get(), again.get()}) {
    const ReadResult found = each->contents();
    EXPECT_EQ(described(found.images), described(expected.images));
    ASSERT_EQ(found.copies.size(), 1U);
    EXPECT_EQ(found.copies[0].file, expected.copies[0].file);
    EXPECT_EQ(found.copies[0].original, expected.copies[0].original);
    ASSERT_EQ(found.unreadable.size(), 1U);
    EXPECT_EQ(found.unreadable[0].file, expected.unreadable[0].file);
    EXPECT_EQ(found.unreadable[0].reason, expected.unreadable[0].reason);
    EXPECT_EQ(found.notDicom, expected.notDicom);
    EXPECT_EQ(found.otherObjects.size(), expected.otherObjects.size() + 1) << "the report that was stored since";
    EXPECT_EQ(described(each->images(studyUid())), described(expected.images)) << "both series are of one study";
  }
}

TEST_F(FolderInPlaceTest, ReportLiesPlainlyBesideTheFirstImage) {
  const auto database = openInPlace(path());
  const fs::path file = store(*database, lumbarAt(4), 1);
  EXPECT_EQ(file.parent_path(), path() / "sag");
  EXPECT_TRUE(file.filename().string().starts_with("vertana-2.25."));
  EXPECT_EQ(file.extension(), ".dcm");
  EXPECT_EQ(bytesOf(file), reportOn(path() / "sag/1.dcm", lumbarAt(4), 1));
}

TEST_F(FolderInPlaceTest, CopyOfTheImagesAndReportsCarriesTheLabelling) {
  store(*openInPlace(path()), lumbarAt(4), 1);
  const TemporaryFolder elsewhere;
  fs::copy(path() / "sag", elsewhere.path() / "copied");
  EXPECT_EQ(levelsIn(*openInPlace(elsewhere.path() / "copied")), std::vector<double>{4});
}

TEST_F(FolderInPlaceTest, MovedFolderIsKnownWithItsIndex) {
  const TemporaryFolder elsewhere;
  store(*openInPlace(path()), lumbarAt(4), 1);
  fs::rename(path(), elsewhere.path() / "moved");
  std::size_t reads = 0;
  const auto database = openInPlace(elsewhere.path() / "moved", countingReads(reads));
  EXPECT_EQ(reads, 0U);
  EXPECT_EQ(database->images(studyUid()).front().file, elsewhere.path() / "moved/sag/1.dcm");
}

TEST_F(FolderInPlaceTest, OnlyNewAndChangedFilesAreReadAgain) {
  store(*openInPlace(path()), lumbarAt(4), 1);
  write(sagittalImage(4), path() / "sag/4.dcm");
  edit(path() / "sag/2.dcm", [](DcmDataset&) {});
  makeOld(path() / "sag/2.dcm");
  fs::remove(path() / "sag/3.dcm");
  std::size_t reads = 0;
  const auto database = openInPlace(path(), countingReads(reads));
  EXPECT_EQ(reads, 2U);
  EXPECT_EQ(described(database->images(studyUid())), described(readImages(path()).images));
}

TEST_F(FolderInPlaceTest, FileOfTheSameSizeThatWasChangedIsNoticedByItsTime) {
  store(*openInPlace(path()), lumbarAt(4), 1);
  ImageToWrite image = sagittalImage(2);
  image.geometry.position[0] += 1;  // 9.0 becomes 10.0: one digit less after the point, one more before
  const auto size = fs::file_size(path() / "sag/2.dcm");
  write(image, path() / "sag/2.dcm");
  ASSERT_EQ(fs::file_size(path() / "sag/2.dcm"), size);
  makeOld(path() / "sag/2.dcm");
  EXPECT_EQ(openInPlace(path())->images(studyUid())[1].geometry->position[0], 10.0);
}

TEST_F(FolderInPlaceTest, ReportThatAnotherProgramPutsThereIsSeenAtOnce) {
  const auto database = openInPlace(path());
  EXPECT_TRUE(database->labellings(studyUid()).empty());
  writeBytes(path() / "sag/from a colleague", reportOn(path() / "sag/1.dcm", lumbarAt(5), 7));
  EXPECT_EQ(levelsIn(*database), std::vector<double>{5});
  fs::remove(path() / "sag/from a colleague");
  EXPECT_TRUE(database->labellings(studyUid()).empty());
}

TEST_F(FolderInPlaceTest, OneFileIsOpenedWithoutTheOthersButWithItsReports) {
  const auto database = openInPlace(path() / "sag/2.dcm");
  ASSERT_EQ(database->images(studyUid()).size(), 1U);
  EXPECT_EQ(database->images(studyUid())[0].file, path() / "sag/2.dcm");
  store(*database, lumbarAt(5), 1);
  EXPECT_EQ(levelsIn(*openInPlace(path() / "sag/2.dcm")), std::vector<double>{5});
  EXPECT_FALSE(fs::exists(path() / "sag/.vertana")) << "an index of one file says nothing of the folder";
}

TEST_F(FolderInPlaceTest, PathsAreNamedAsTheFolderWasGiven) {
  const fs::path before = fs::current_path();
  fs::current_path(path());
  const auto dot = openInPlace(".");
  EXPECT_EQ(dot->images(studyUid())[0].file, "./sag/1.dcm");
  store(*dot, lumbarAt(1), 1);
  fs::current_path(path() / "sag");
  const auto file = openInPlace("1.dcm");
  EXPECT_EQ(file->images(studyUid())[0].file, "1.dcm");
  store(*file, lumbarAt(2), 2);
  EXPECT_EQ(levelsIn(*file), (std::vector<double>{1, 2}));
  fs::current_path(before);
}

TEST_F(FolderInPlaceTest, MissingFolderIsRefusedWithASentence) {
  const auto opened = StudyDatabase::openFolder(path() / "nothing");
  EXPECT_FALSE(opened);
  EXPECT_NE(opened.problem.find((path() / "nothing").string() + " does not exist"), std::string::npos);
}

TEST_F(FolderInPlaceTest, CancelledOpeningOpensNothing) {
  OpenOptions options;
  options.progress = [](std::size_t done, std::size_t) { return done < 2; };
  const auto opened = StudyDatabase::openFolder(path(), options);
  EXPECT_FALSE(opened);
  EXPECT_FALSE(opened.problem.empty());
}

TEST_F(FolderInPlaceTest, FolderThatMayNotBeWrittenCanBeReadAndSaysWhyNothingIsStored) {
  fs::permissions(path(), fs::perms(0755));
  const fs::path sag = path() / "sag";
  EXPECT_TRUE(inChild([&] {
    if (::geteuid() == 0 && ::setuid(65534) != 0) return false;  // root may write anywhere
    if (::geteuid() != 65534) fs::permissions(sag, fs::perms(0555));
    const auto database = openInPlace(path());
    if (database->images(studyUid()).size() != 3) return false;
    const fs::path file = database->freshPath(studyUid(), "dcm");
    const Outcome outcome = database->store(studyUid(), file, reportOn(sag / "1.dcm", lumbarAt(1), 1));
    return !outcome && outcome.problem->find(file.string()) != std::string::npos &&
           outcome.problem->find("ermission denied") != std::string::npos && levelsIn(*database).empty();
  }));
  fs::permissions(sag, fs::perms(0755));
}

TEST_F(FolderInPlaceTest, FileThatMayBeReadAgainIsReadAgain) {
  if (::geteuid() == 0) {  // root may read anything
    for (const fs::path& each : {path(), path() / "sag"}) ASSERT_EQ(::chown(each.c_str(), 65534, 65534), 0);
  }
  fs::permissions(path() / "sag/2.dcm", fs::perms(0));
  EXPECT_TRUE(inChild([&] {
    if (::geteuid() == 0 && ::setuid(65534) != 0) return false;
    const auto database = openInPlace(path());
    store(*database, lumbarAt(1), 1);
    return database->contents().unreadable.size() == 1 && fs::exists(indexFile());
  }));
  fs::permissions(path() / "sag/2.dcm", fs::perms(0644));  // size and time of the file stay as they were
  std::size_t reads = 0;
  const auto database = openInPlace(path(), countingReads(reads));
  EXPECT_EQ(reads, 1U);
  EXPECT_EQ(database->images(studyUid()).size(), 3U);
  EXPECT_TRUE(database->contents().unreadable.empty());
}

TEST_F(FolderInPlaceTest, ImportIsRefused) {
  const auto before = photographOf(path());
  const ImportResult result = openInPlace(path())->importFiles({path() / "sag/1.dcm"});
  EXPECT_NE(result.problem.find("opened in place"), std::string::npos);
  EXPECT_EQ(photographOf(path()), before);
}

}  // namespace
}  // namespace workstation::test
