// Storing reports, and finding them again.

#include <dcmtk/config/osconfig.h>
#include <dcmtk/dcmdata/dctk.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <fstream>
#include <stdexcept>

#include "FolderFixtures.h"
#include "workstation/database/LabellingStore.h"

namespace workstation::test {
namespace {

namespace fs = std::filesystem;

/// Which call to the disk fails next, counted down; never when negative.
int writesUntilFailure = -1;
int syncsUntilFailure = -1;
int renamesUntilFailure = -1;

bool isDue(int& left) { return left >= 0 && left-- == 0; }

DiskCalls failingDisk() {
  DiskCalls disk;
  static const DiskCalls real;
  disk.write = [](int file, const void* bytes, std::size_t count) -> ssize_t {
    if (!isDue(writesUntilFailure)) return real.write(file, bytes, count);
    errno = ENOSPC;
    return -1;
  };
  disk.sync = [](int file) {
    if (!isDue(syncsUntilFailure)) return real.sync(file);
    errno = EIO;
    return -1;
  };
  disk.rename = [](const char* from, const char* to) {
    if (!isDue(renamesUntilFailure)) return real.rename(from, to);
    errno = EROFS;
    return -1;
  };
  return disk;
}

class FolderReportsTest : public ::testing::Test {
 protected:
  FolderReportsTest() {
    writeStudy(path());
    writesUntilFailure = syncsUntilFailure = renamesUntilFailure = -1;
  }
  const fs::path& path() const { return folder_.path(); }
  fs::path image() const { return path() / "sag/1.dcm"; }

  TemporaryFolder folder_;
};

TEST_F(FolderReportsTest, StoredReportIsFoundByThisAndTheNextOpening) {
  {
    const auto database = openInPlace(path());
    const fs::path file = store(*database, lumbarAt(1.0 / 3), 4);
    const std::vector<ShelvedReport> reports = database->labellings(studyUid());
    ASSERT_EQ(reports.size(), 1U);
    EXPECT_EQ(reports[0].file, file);
  }
  std::size_t reads = 0;
  const auto database = openInPlace(path(), countingReads(reads));
  EXPECT_EQ(reads, 0U);
  const std::vector<ShelvedReport> reports = database->labellings(studyUid());
  ASSERT_EQ(reports.size(), 1U);
  EXPECT_EQ(reports[0].sopInstanceUid, reportUid(4));
  EXPECT_EQ(reports[0].instanceNumber, 4);
  EXPECT_EQ(reports[0].contentTime, (ContentTime{"20240301", "100004.000000"}));
  EXPECT_FALSE(reports[0].fromContent);
  EXPECT_EQ(reports[0].problem, "");
  // Points hold single precision: so do the archives made of them.
  EXPECT_EQ(reports[0].labelling->levels->at(0).point[0], static_cast<double>(1.0F / 3.0F));
}

TEST_F(FolderReportsTest, FailingDiskLeavesNothingBehindAndSaysWhat) {
  struct Row {
    const char* name;
    int* left;
    int after;
    const char* reason;
  };
  const std::array rows = {Row{"disk full", &writesUntilFailure, 0, "No space left on device"},
                           Row{"file not synchronised", &syncsUntilFailure, 0, "Input/output error"},
                           Row{"no rename", &renamesUntilFailure, 0, "Read-only file system"},
                           Row{"folder not synchronised", &syncsUntilFailure, 1, "Input/output error"}};
  OpenOptions options;
  options.disk = failingDisk();
  const auto database = openInPlace(path(), options);
  for (const Row& row : rows) {
    auto before = photographOf(path());
    const fs::path file = database->freshPath(studyUid(), "dcm");
    *row.left = row.after;
    const Outcome outcome = database->store(studyUid(), file, reportOn(image(), lumbarAt(1), 1));
    ASSERT_FALSE(outcome) << row.name;
    EXPECT_NE(outcome.problem->find(row.reason), std::string::npos) << *outcome.problem;
    EXPECT_NE(outcome.problem->find((path() / "sag").string()), std::string::npos) << *outcome.problem;
    auto after = photographOf(path());
    before.erase("sag");  // the folder's time, which a temporary file changes
    after.erase("sag");
    EXPECT_EQ(after, before) << row.name;
    EXPECT_TRUE(database->labellings(studyUid()).empty()) << row.name;
  }
  store(*database, lumbarAt(2), 1);
  EXPECT_EQ(levelsIn(*database), std::vector<double>{2}) << "the same report can be stored when the disk works again";
}

TEST_F(FolderReportsTest, ReportIsStoredThoughTheIndexCannotBe) {
  OpenOptions options;
  options.disk = failingDisk();
  const auto database = openInPlace(path(), options);
  renamesUntilFailure = 1;
  store(*database, lumbarAt(2), 1);
  ASSERT_EQ(database->notices().size(), 1U);
  EXPECT_NE(database->notices()[0].find("index.sqlite"), std::string::npos);
  EXPECT_FALSE(fs::exists(path() / ".vertana/index.sqlite"));
  EXPECT_EQ(levelsIn(*database), std::vector<double>{2});
  EXPECT_EQ(levelsIn(*openInPlace(path())), std::vector<double>{2});
}

TEST_F(FolderReportsTest, ForeignOrBrokenReportsAreNotStored) {
  const auto database = openInPlace(path());
  const auto before = photographOf(path());
  const pelmar::Bytes report = reportOn(image(), lumbarAt(1), 1);
  const fs::path fresh = database->freshPath(studyUid(), "dcm");
  EXPECT_NE(database->store("9.9", fresh, report).problem->find("belongs to the study"), std::string::npos);
  EXPECT_NE(database->store(studyUid(), fresh, {1, 2, 3}).problem->find("could not be read again"), std::string::npos);
  EXPECT_NE(database->store(studyUid(), path() / "../x.dcm", report).problem->find("would not lie in"),
            std::string::npos);
  EXPECT_NE(database->store(studyUid(), image(), report).problem->find("is there already"), std::string::npos);
  EXPECT_EQ(photographOf(path()), before);
}

TEST_F(FolderReportsTest, NothingIsStoredWhereALinkLeadsOutOfTheFolder) {
  const TemporaryFolder linked;
  fs::create_directory_symlink(path() / "sag", linked.path() / "SE01");
  const auto before = photographOf(path());
  {
    const auto database = openInPlace(linked.path());
    EXPECT_EQ(database->images(studyUid()).size(), 3U);
    EXPECT_EQ(store(*database, lumbarAt(1), 1).parent_path(), linked.path());
    const Outcome through =
        database->store(studyUid(), linked.path() / "SE01/x.dcm", reportOn(image(), lumbarAt(2), 2));
    ASSERT_FALSE(through);
    EXPECT_NE(through.problem->find("would not lie in"), std::string::npos) << *through.problem;
  }
  EXPECT_EQ(photographOf(path()), before);
  EXPECT_EQ(levelsIn(*openInPlace(linked.path())), std::vector<double>{1});
}

TEST_F(FolderReportsTest, FolderThatIsNamedByALinkIsStoredTo) {
  const TemporaryFolder linked;
  fs::create_directory_symlink(path(), linked.path() / "study");
  const auto database = openInPlace(linked.path() / "study");
  EXPECT_EQ(store(*database, lumbarAt(1), 1).parent_path(), linked.path() / "study/sag");
  EXPECT_EQ(levelsIn(*database), std::vector<double>{1});
  EXPECT_EQ(levelsIn(*openInPlace(path())), std::vector<double>{1});
}

TEST_F(FolderReportsTest, LeftoverOfACrashIsIgnoredAndCleanedUpLater) {
  const fs::path old = path() / "sag/.vertana-00112233aabbccdd.tmp";
  const fs::path young = path() / "sag/.vertana-ffeeddccbbaa0099.tmp";
  for (const fs::path& file : {old, young}) writeBytes(file, reportOn(image(), lumbarAt(1), 1));
  fs::last_write_time(old, fs::file_time_type::clock::now() - std::chrono::hours(25));
  const auto database = openInPlace(path());
  EXPECT_TRUE(database->labellings(studyUid()).empty());
  EXPECT_TRUE(fs::exists(old)) << "looking removes nothing";
  store(*database, lumbarAt(2), 2);
  EXPECT_FALSE(fs::exists(old));
  EXPECT_TRUE(fs::exists(young)) << "another process may be writing it";
  EXPECT_EQ(levelsIn(*database), std::vector<double>{2});
}

TEST_F(FolderReportsTest, ReportInTwoFilesCountsOnce) {
  const auto database = openInPlace(path());
  const fs::path file = store(*database, lumbarAt(1), 1);
  fs::copy_file(file, path() / "sag/zz copy.dcm");
  EXPECT_EQ(levelsIn(*database), std::vector<double>{1});
  ASSERT_EQ(database->reportSeries(studyUid()).size(), 1U);
  EXPECT_EQ(database->reportSeries(studyUid())[0].files, std::vector<fs::path>{file});
  EXPECT_EQ(database->studies()[0].reports, 1U);
}

TEST_F(FolderReportsTest, SeriesComeByNumberAndUidAndOnlyOursHoldLabellings) {
  const auto put = [&](const std::string& name, int number, const char* seriesUid, const char* seriesNumber,
                       const char* description) {
    writeBytes(path() / name, reportOn(image(), lumbarAt(number), number));
    edit(path() / name, [&](DcmDataset& dataset) {
      dataset.putAndInsertString(DCM_SeriesInstanceUID, seriesUid);
      dataset.putAndInsertString(DCM_SeriesNumber, seriesNumber);
      dataset.putAndInsertString(DCM_SeriesDescription, description);
    });
  };
  const std::string ours(labellingSeriesDescription);
  put("1.dcm", 1, "1.9", "20170720", ours.c_str());
  put("2.dcm", 2, "1.10", "20170720", ours.c_str());
  put("3.dcm", 3, "1.1", "3", ours.c_str());
  put("4.dcm", 4, "1.2", "20170720", "Another description");
  put("5.dcm", 5, "1.9", "20170720", ours.c_str());
  const auto database = openInPlace(path());
  std::vector<std::string> series;
  for (const ReportSeries& each : database->reportSeries(studyUid())) {
    std::string text = std::to_string(each.seriesNumber) + " " + each.seriesInstanceUid;
    for (const fs::path& file : each.files) text += " " + file.stem().string();
    series.push_back(text);
  }
  EXPECT_EQ(series, (std::vector<std::string>{"3 1.1 3", "20170720 1.10 2", "20170720 1.2 4", "20170720 1.9 1 5"}));
  EXPECT_EQ(levelsIn(*database), (std::vector<double>{1, 2, 5}));
}

TEST_F(FolderReportsTest, UnreadableLabellingIsListedWithItsReason) {
  writeBytes(path() / "r.dcm", reportOn(image(), lumbarAt(1), 1));
  edit(path() / "r.dcm", [](DcmDataset& dataset) {
    const std::string noArchive = "bplist00 is not enough of an archive";
    dataset.putAndInsertUint8Array(DcmTag(0x7321, 0x1003, EVR_OB), reinterpret_cast<const Uint8*>(noArchive.data()),
                                   noArchive.size());
  });
  const std::vector<ShelvedReport> reports = openInPlace(path())->labellings(studyUid());
  ASSERT_EQ(reports.size(), 1U);
  EXPECT_FALSE(reports[0].labelling);
  EXPECT_NE(reports[0].problem, "");
}

/// How many bytes of a report's file it takes to say to which series it belongs and which of its objects it is,
/// Instance Number (0020,0013) being the last of them.
std::size_t headerLength(const pelmar::Bytes& report) {
  const std::array<std::uint8_t, 6> element = {0x20, 0, 0x13, 0, 'I', 'S'};
  const auto found = std::search(report.begin(), report.end(), element.begin(), element.end());
  if (report.end() - found < 8) throw std::runtime_error("the report has no Instance Number");
  return static_cast<std::size_t>(found - report.begin()) + 8 + found[6] + 256U * found[7];
}

TEST_F(FolderReportsTest, ReportThatIsCutBehindItsHeaderIsALabellingThatCannotBeRead) {
  const pelmar::Bytes whole = reportOn(image(), lumbarAt(2), 2);
  const std::size_t header = headerLength(whole);
  writeBytes(path() / "1.dcm", reportOn(image(), lumbarAt(1), 1));
  for (const std::size_t length : {header + 12, (header + whole.size()) / 2, whole.size() - 1}) {
    SCOPED_TRACE(length);
    writeBytes(path() / "2.dcm", {whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length)});
    const auto database = openInPlace(path());
    const std::vector<ShelvedReport> reports = database->labellings(studyUid());
    ASSERT_EQ(reports.size(), 2U);
    EXPECT_EQ(reports[1].file, path() / "2.dcm");
    EXPECT_EQ(reports[1].sopInstanceUid, reportUid(2));
    EXPECT_EQ(reports[1].seriesInstanceUid, reports[0].seriesInstanceUid);
    EXPECT_EQ(reports[1].instanceNumber, 2);
    EXPECT_EQ(reports[1].contentTime, (ContentTime{"20240301", "100002.000000"}));
    EXPECT_FALSE(reports[1].labelling);
    EXPECT_NE(reports[1].problem.find("truncated or damaged"), std::string::npos) << reports[1].problem;
    EXPECT_EQ(levelsIn(*database), std::vector<double>{1});
    EXPECT_TRUE(database->unreadableFiles().empty()) << "it is told of as a labelling";
  }
}

TEST_F(FolderReportsTest, ReportThatIsCutInItsHeaderIsAFileThatCannotBeUsed) {
  const pelmar::Bytes whole = reportOn(image(), lumbarAt(2), 2);
  for (const std::size_t length : {headerLength(whole) - 1, headerLength(whole) / 2}) {
    SCOPED_TRACE(length);
    writeBytes(path() / "2.dcm", {whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length)});
    const auto database = openInPlace(path());
    EXPECT_TRUE(database->labellings(studyUid()).empty());
    ASSERT_EQ(database->unreadableFiles().size(), 1U);
    EXPECT_EQ(database->unreadableFiles()[0].file, path() / "2.dcm");
  }
}

TEST_F(FolderReportsTest, CutReportOfAnotherKindIsAFileThatCannotBeUsed) {
  writeBytes(path() / "r.dcm", reportOn(image(), lumbarAt(1), 1));
  edit(path() / "r.dcm", [](DcmDataset& dataset) { dataset.putAndInsertString(DCM_SeriesNumber, "3"); });
  truncate(path() / "r.dcm", fs::file_size(path() / "r.dcm") - 1);
  const auto database = openInPlace(path());
  EXPECT_TRUE(database->labellings(studyUid()).empty());
  EXPECT_EQ(database->unreadableFiles().size(), 1U);
}

TEST_F(FolderReportsTest, WholeCopyOfACutReportCounts) {
  const pelmar::Bytes whole = reportOn(image(), lumbarAt(2), 2);
  writeBytes(path() / "a.dcm", {whole.begin(), whole.end() - 1});
  writeBytes(path() / "b.dcm", whole);
  const auto database = openInPlace(path());
  ASSERT_EQ(database->labellings(studyUid()).size(), 1U);
  EXPECT_EQ(database->labellings(studyUid())[0].file, path() / "b.dcm");
  EXPECT_EQ(levelsIn(*database), std::vector<double>{2});
}

TEST_F(FolderReportsTest, EmptyStateIsALabellingThatMarksNoStudy) {
  const auto database = openInPlace(path());
  store(*database, lumbarAt(1), 1);
  EXPECT_TRUE(database->studies()[0].holdsLabelling);
  store(*database, {}, 2);
  EXPECT_FALSE(database->studies()[0].holdsLabelling) << "the newest says that there is none";
  store(*database, lumbarAt(3), 3);
  EXPECT_TRUE(database->studies()[0].holdsLabelling);
}

TEST_F(FolderReportsTest, StudyWithReportsAloneIsListed) {
  const TemporaryFolder other;
  writeBytes(other.path() / "r", reportOn(image(), lumbarAt(1), 1));
  const auto database = openInPlace(other.path());
  ASSERT_EQ(database->studies().size(), 1U);
  EXPECT_EQ(database->studies()[0].patientName, "Müller^Änne");
  EXPECT_EQ(database->studies()[0].images, 0U);
  EXPECT_TRUE(database->holdsStudy(studyUid()));
  EXPECT_EQ(database->anyImage(studyUid()), "");
  EXPECT_EQ(database->freshPath(studyUid(), "dcm").parent_path(), other.path());
}

TEST(DicomParts, ReadAReportAnewWhenItsFileHasChanged) {
  TemporaryFolder folder;
  writeStudy(folder.path());
  const auto image = openInPlace(folder.path())->anyImage(studyUid());
  const fs::path file = folder.path() / "report.dcm";
  const auto write = [&](int number) {
    const pelmar::Bytes bytes = reportOn(image, lumbarAt(number), number);
    std::ofstream(file, std::ios::binary)
        .write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
  };
  const LabellingStoreParts parts = dicomParts();
  for (const int number : {1, 2, 3}) {
    write(number);
    for (int time = 0; time < 2; ++time) {
      const auto report = parts.readFile(file);
      ASSERT_TRUE(report) << report.problem;
      EXPECT_EQ(report->sopInstanceUid, reportUid(number)) << "read for the " << time << ". time";
    }
  }
  fs::remove(file);
  EXPECT_FALSE(parts.readFile(file));
}

}  // namespace
}  // namespace workstation::test
