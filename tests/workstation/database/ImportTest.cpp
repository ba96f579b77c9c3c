#include "workstation/database/Import.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <chrono>

#include "FolderFixtures.h"

namespace workstation::test {
namespace {

namespace fs = std::filesystem;

class ImportTest : public ::testing::Test {
 protected:
  ImportTest() { writeStudy(source_.path()); }

  /// The database folder but for the index itself and the times of folders.
  std::map<std::string, std::string> studies() const { return photographOf(folder_.path() / "studies"); }

  TemporaryFolder source_;
  TemporaryFolder folder_;
};

TEST_F(ImportTest, FilesAreCopiedIntoAFolderOfTheirStudy) {
  const auto before = photographOf(source_.path());
  const auto database = openAsDatabase(folder_.path());
  const ImportResult result = database->importFiles({source_.path()});
  EXPECT_EQ(result.problem, "");
  EXPECT_EQ(result.imported, 3U);
  EXPECT_EQ(result.studies, std::vector<std::string>{studyUid()});
  EXPECT_EQ(photographOf(source_.path()), before);
  const std::vector<ImageRecord> images = database->images(studyUid());
  ASSERT_EQ(images.size(), 3U);
  for (const ImageRecord& image : images) {
    EXPECT_EQ(image.file.parent_path(), folder_.path() / "studies" / studyUid());
    EXPECT_EQ(bytesOf(image.file), bytesOf(source_.path() / "sag" / (std::to_string(*image.instanceNumber) + ".dcm")));
  }
  EXPECT_EQ(described(openAsDatabase(folder_.path())->images(studyUid())), described(images));
}

TEST_F(ImportTest, WhatIsNoImageIsCountedByKind) {
  writeText(source_.file("readme.txt"), "hello");
  writeText(source_.file("DICOMDIR"), "directory");
  writeText(source_.file("empty.dcm"), "");
  writeBytes(source_.file("report"), reportOn(source_.path() / "sag/1.dcm", lumbarAt(3), 1));
  const auto database = openAsDatabase(folder_.path());
  const ImportResult result = database->importFiles({source_.path(), source_.path() / "nothing"});
  EXPECT_EQ(result.imported, 4U);
  EXPECT_EQ(result.notDicom, 1U);
  EXPECT_EQ(result.directories, 1U);
  ASSERT_EQ(result.unreadable.size(), 2U);
  EXPECT_EQ(result.unreadable[0].file, source_.path() / "nothing");
  EXPECT_EQ(result.unreadable[1].file, source_.path() / "empty.dcm");
  EXPECT_EQ(levelsIn(*database), std::vector<double>{3});
}

TEST_F(ImportTest, WhatCannotBeReadAnyMoreIsTheStudysInWhoseFolderItLies) {
  openAsDatabase(folder_.path())->importFiles({source_.path()});
  const fs::path beside = folder_.path() / "studies" / studyUid() / "damaged.dcm";
  writeText(beside, "no DICOM");
  fs::create_directories(folder_.path() / "studies" / "1.2.3");
  writeText(folder_.path() / "studies" / "1.2.3" / "elsewhere.dcm", "no DICOM");
  const auto database = openAsDatabase(folder_.path());
  EXPECT_EQ(database->contents().unreadable.size(), 2U);
  const ReadResult found = database->contents(studyUid());
  EXPECT_EQ(described(found.images), described(database->images(studyUid())));
  ASSERT_EQ(found.unreadable.size(), 1U);
  EXPECT_EQ(found.unreadable[0].file, beside);
  EXPECT_FALSE(found.unreadable[0].reason.empty());
  EXPECT_TRUE(database->contents("1.2.3").images.empty());
  EXPECT_TRUE(database->contents("1.2.3").unreadable.empty());
}

TEST_F(ImportTest, KnownFilesAreNotEvenOpenedAgain) {
  const auto database = openAsDatabase(folder_.path());
  EXPECT_EQ(database->importFiles({source_.path()}).imported, 3U);
  // Content of the same size and time would be believed to be the same: that is how one sees that it was not looked at.
  for (const char* name : {"1.dcm", "2.dcm", "3.dcm"}) {
    const fs::path file = source_.path() / "sag" / name;
    const auto time = fs::last_write_time(file);
    writeBytes(file, std::vector<std::uint8_t>(fs::file_size(file), 7));
    fs::last_write_time(file, time);
  }
  const auto before = studies();
  const ImportResult again = database->importFiles({source_.path()});
  EXPECT_EQ(again.imported, 0U);
  EXPECT_EQ(again.known, 3U);
  EXPECT_TRUE(again.unreadable.empty());
  EXPECT_EQ(studies(), before);
}

TEST_F(ImportTest, SameObjectsFromElsewhereAreKnown) {
  const TemporaryFolder other;
  writeStudy(other.path());
  const auto database = openAsDatabase(folder_.path());
  database->importFiles({source_.path()});
  const ImportResult again = database->importFiles({other.path()});
  EXPECT_EQ(again.imported, 0U);
  EXPECT_EQ(again.known, 3U);
  EXPECT_EQ(database->images(studyUid()).size(), 3U);
}

TEST_F(ImportTest, ObjectThatLiesInTwoSourcesIsCopiedOnce) {
  fs::copy(source_.path() / "sag", source_.path() / "again");
  const auto database = openAsDatabase(folder_.path());
  const ImportResult result = database->importFiles({source_.path(), source_.path() / "sag"});
  EXPECT_EQ(result.imported, 3U);
  EXPECT_EQ(result.known, 3U);
}

TEST_F(ImportTest, AnotherFileUnderAKnownUidIsNamedAndNotTaken) {
  const auto database = openAsDatabase(folder_.path());
  database->importFiles({source_.path()});
  ImageToWrite image = sagittalImage(1);
  image.patientName = "Somebody^Else^Altogether";
  const TemporaryFolder other;
  write(image, other.file("1.dcm"));
  const auto before = studies();
  const ImportResult result = database->importFiles({other.path()});
  ASSERT_EQ(result.unreadable.size(), 1U);
  EXPECT_NE(result.unreadable[0].reason.find("which is another file"), std::string::npos);
  EXPECT_EQ(studies(), before);
}

TEST_F(ImportTest, CorrectedFileOfTheSameSizeIsNamedAndNotTaken) {
  const auto database = openAsDatabase(folder_.path());
  database->importFiles({source_.path()});
  const fs::path file = source_.path() / "sag/2.dcm";
  std::vector<std::uint8_t> bytes = bytesOf(file);
  bytes.back() ^= 1;  // of the pixels
  writeBytes(file, bytes);
  fs::last_write_time(file, fs::last_write_time(file) + std::chrono::hours(1));
  const auto before = studies();
  for (int time = 0; time < 2; ++time) {  // it is not taken for known the next time either
    const ImportResult result = database->importFiles({source_.path()});
    EXPECT_EQ(result.imported, 0U);
    EXPECT_EQ(result.known, 2U);
    ASSERT_EQ(result.unreadable.size(), 1U);
    EXPECT_EQ(result.unreadable[0].file, file);
    EXPECT_NE(result.unreadable[0].reason.find("which is another file"), std::string::npos);
    EXPECT_EQ(studies(), before);
  }
}

TEST_F(ImportTest, TwoSourcesWithOneUidAndSizeAreCompared) {
  fs::copy(source_.path() / "sag", source_.path() / "then");
  std::vector<std::uint8_t> bytes = bytesOf(source_.path() / "then/2.dcm");
  bytes.back() ^= 1;
  writeBytes(source_.path() / "then/2.dcm", bytes);
  const ImportResult result =
      openAsDatabase(folder_.path())->importFiles({source_.path() / "sag", source_.path() / "then"});
  EXPECT_EQ(result.imported, 3U);
  EXPECT_EQ(result.known, 2U);
  ASSERT_EQ(result.unreadable.size(), 1U);
  EXPECT_EQ(result.unreadable[0].file, source_.path() / "then/2.dcm");
  EXPECT_NE(result.unreadable[0].reason.find("which is another file"), std::string::npos);
}

TEST_F(ImportTest, FileThatCannotBeComparedIsNamedAndNotTaken) {
  const auto database = openAsDatabase(folder_.path());
  database->importFiles({source_.path()});
  const TemporaryFolder other;
  write(sagittalImage(1), other.file("1.dcm"));
  const fs::path kept =
      folder_.path() / "studies" / studyUid() / (nameForUid(sagittalImage(1).sopInstanceUid) + ".dcm");
  const ImportResult result = database->importFiles({other.path()}, [&](std::size_t done, std::size_t) {
    if (done > 0) return true;
    EXPECT_TRUE(fs::remove(kept));
    fs::create_directory(kept);  // opens, and cannot be read
    return true;
  });
  EXPECT_EQ(result.imported + result.known, 0U);
  ASSERT_EQ(result.unreadable.size(), 1U);
  EXPECT_NE(result.unreadable[0].reason.find("but they cannot be compared"), std::string::npos);
}

TEST_F(ImportTest, DamagedReportIsNotTakenAndKeepsTheWholeOneNotOut) {
  const pelmar::Bytes whole = reportOn(source_.path() / "sag/1.dcm", lumbarAt(3), 1);
  const fs::path report = source_.path() / "report.dcm";
  writeBytes(report, {whole.begin(), whole.end() - 1});
  const auto database = openAsDatabase(folder_.path());
  const ImportResult first = database->importFiles({source_.path()});
  EXPECT_EQ(first.imported, 3U);
  ASSERT_EQ(first.unreadable.size(), 1U);
  EXPECT_EQ(first.unreadable[0].file, report);
  EXPECT_NE(first.unreadable[0].reason.find("truncated"), std::string::npos) << first.unreadable[0].reason;
  fs::copy(report, folder_.path() / "studies" / studyUid() / "damaged.dcm");
  writeBytes(report, whole);
  EXPECT_EQ(database->importFiles({source_.path()}).imported, 1U);
  EXPECT_EQ(levelsIn(*database), std::vector<double>{3});
}

TEST_F(ImportTest, CancellingLeavesFilesAndIndexAsTheyWere) {
  const auto database = openAsDatabase(folder_.path());
  write(axialImage(9), source_.file("first/9.dcm"));
  database->importFiles({source_.path() / "first"});
  auto before = studies();
  const std::vector<std::string> images = described(database->contents().images);
  for (std::size_t stop = 0; stop <= 3; ++stop) {  // before each file, and after the last
    const ImportResult result =
        database->importFiles({source_.path() / "sag"}, [&](std::size_t done, std::size_t) { return done < stop; });
    EXPECT_TRUE(result.cancelled) << stop;
    EXPECT_EQ(result.imported, 0U) << stop;
    auto after = studies();
    before.erase(studyUid());  // the folder's time
    after.erase(studyUid());
    EXPECT_EQ(after, before) << stop;
    EXPECT_EQ(described(database->contents().images), images) << stop;
    EXPECT_EQ(described(openAsDatabase(folder_.path())->contents().images), images) << stop;
  }
  EXPECT_EQ(database->importFiles({source_.path() / "sag"}).imported, 3U);
}

TEST_F(ImportTest, CancelledFirstImportLeavesNoFolder) {
  const auto database = openAsDatabase(folder_.path());
  EXPECT_TRUE(
      database->importFiles({source_.path()}, [](std::size_t done, std::size_t) { return done < 2; }).cancelled);
  EXPECT_TRUE(studies().empty());
}

TEST_F(ImportTest, FullDiskLeavesFilesAndIndexAsTheyWere) {
  static int left = 0;
  left = 2;
  OpenOptions options;
  options.disk.rename = [](const char* from, const char* to) {
    if (left-- > 0) return std::rename(from, to);
    errno = ENOSPC;
    return -1;
  };
  const auto database = openAsDatabase(folder_.path(), options);
  const ImportResult result = database->importFiles({source_.path()});
  EXPECT_NE(result.problem.find("No space left on device"), std::string::npos) << result.problem;
  EXPECT_EQ(result.imported, 0U);
  EXPECT_TRUE(studies().empty());
  EXPECT_TRUE(database->studies().empty());
}

TEST_F(ImportTest, FileDeletedFromTheDatabaseIsImportedAgain) {
  const auto database = openAsDatabase(folder_.path());
  database->importFiles({source_.path()});
  fs::remove(database->images(studyUid())[0].file);
  const ImportResult again = database->importFiles({source_.path()});
  EXPECT_EQ(again.imported, 1U);
  EXPECT_EQ(again.known, 2U);
  EXPECT_EQ(database->images(studyUid()).size(), 3U);
}

TEST_F(ImportTest, ReportIsStoredInTheFolderOfTheStudy) {
  const auto database = openAsDatabase(folder_.path());
  database->importFiles({source_.path()});
  EXPECT_EQ(store(*database, lumbarAt(1), 1).parent_path(), folder_.path() / "studies" / studyUid());
  EXPECT_EQ(levelsIn(*openAsDatabase(folder_.path())), std::vector<double>{1});
}

TEST_F(ImportTest, LookingAtAFolderThatIsNoDatabaseLeavesItAsItIs) {
  const fs::path nowhere = folder_.path() / "nowhere";
  const fs::path empty = folder_.path() / "empty";
  fs::create_directory(empty);
  for (const fs::path& folder : {nowhere, empty, source_.path()}) {
    const auto before = photographOf(folder_.path());
    const auto files = photographOf(source_.path());
    const auto opened = StudyDatabase::openDatabase(folder);
    ASSERT_FALSE(opened) << folder;
    EXPECT_TRUE(opened.problem.starts_with("The folder " + folder.string() + " is no database, ")) << opened.problem;
    EXPECT_NE(opened.problem.find("vertana import"), std::string::npos) << opened.problem;
    EXPECT_EQ(photographOf(folder_.path()), before);
    EXPECT_EQ(photographOf(source_.path()), files);
  }
}

TEST_F(ImportTest, DatabaseThatHasLostItsIndexOrItsStudiesIsStillOne) {
  openAsDatabase(folder_.path())->importFiles({source_.path()});
  fs::remove(folder_.path() / "index.sqlite");
  auto opened = StudyDatabase::openDatabase(folder_.path());
  ASSERT_TRUE(opened) << opened.problem;
  EXPECT_EQ((*opened)->images(studyUid()).size(), 3U);
  opened->reset();
  fs::remove_all(folder_.path() / "studies");
  opened = StudyDatabase::openDatabase(folder_.path());
  ASSERT_TRUE(opened) << opened.problem;
  EXPECT_TRUE((*opened)->studies().empty());
}

TEST(ImportNames, UidsThatAreNoneNeverLeaveTheFolder) {
  EXPECT_EQ(nameForUid("1.2.840.3"), "1.2.840.3");
  for (const std::string& uid : {std::string("../../etc"), std::string(".."), std::string(""), std::string("a/b"),
                                 std::string(65, '1'), std::string("1\0002", 3)}) {
    const std::string name = nameForUid(uid);
    EXPECT_TRUE(name.starts_with("2.25.")) << uid;
    EXPECT_EQ(name.find('/'), std::string::npos);
    EXPECT_EQ(name, nameForUid(uid)) << "the same each time";
  }
}

class ImportedStudiesTest : public ImportTest {
 protected:
  ImportedStudiesTest() {
    ImageToWrite other = axialImage(1);
    other.studyInstanceUid = "1.2.3";
    other.patientName = "Nováková^Zdeňka";
    other.patientId = "XY-77";
    other.studyDate = "20250102";
    other.studyDescription = "Neck";
    write(other, source_.file("other/1.dcm"));
    database_ = openAsDatabase(folder_.path());
    database_->importFiles({source_.path()});
  }
  std::vector<std::string> found(std::string_view search) {
    std::vector<std::string> uids;
    for (const StudyEntry& study : database_->studies(search)) uids.push_back(study.studyUid);
    return uids;
  }

  std::unique_ptr<StudyDatabase> database_;
};

TEST_F(ImportedStudiesTest, NewestStudyIsListedFirstWithWhatItHolds) {
  const std::vector<StudyEntry> studies = database_->studies();
  ASSERT_EQ(studies.size(), 2U);
  EXPECT_EQ(studies[0].patientName, "Nováková^Zdeňka");
  EXPECT_EQ(studies[0].patientId, "XY-77");
  EXPECT_EQ(studies[0].date, "20250102");
  EXPECT_EQ(studies[0].description, "Neck");
  EXPECT_EQ(studies[0].modalities, std::vector<std::string>{"CT"});
  EXPECT_EQ(studies[1].images, 3U);
  EXPECT_EQ(studies[1].slices, 3U);
  EXPECT_EQ(studies[1].series, 1U);
  EXPECT_EQ(studies[1].reports, 0U);
  EXPECT_FALSE(studies[1].holdsLabelling);
}

TEST_F(ImportedStudiesTest, SearchLooksAtNameNumberDescriptionAndDate) {
  const std::vector<std::string> both = {"1.2.3", studyUid()};
  const std::vector<std::string> neck = {"1.2.3"};
  const std::vector<std::string> lumbar = {studyUid()};
  EXPECT_EQ(found(""), both);
  EXPECT_EQ(found("  "), both);
  EXPECT_EQ(found("novakova"), neck);
  EXPECT_EQ(found("zdeňka NOVÁKOVÁ"), neck);
  EXPECT_EQ(found("xy-77"), neck);
  EXPECT_EQ(found("lumbar"), lumbar);
  EXPECT_EQ(found("2025-01-02"), neck);
  EXPECT_EQ(found("20240229"), lumbar);
  EXPECT_EQ(found("muller lumbar 2024"), lumbar);
  EXPECT_TRUE(found("muller neck").empty()) << "every word must be there";
}

}  // namespace
}  // namespace workstation::test
