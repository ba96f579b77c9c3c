// What cannot be written or read as a report is refused, and says why.

#include <dcmtk/config/osconfig.h>
#include <dcmtk/dcmdata/dctk.h>
#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>

#include "ReportFixtures.h"
#include "tests/support/Requirements.h"
#include "workstation/dicom/AnyFile.h"

namespace workstation::test {
namespace {

namespace fs = std::filesystem;

struct Refusal {
  const char* name;
  std::function<void(ReportToWrite&)> change;
  const char* reason;
};
class UnwritableReport : public testing::TestWithParam<Refusal> {};

TEST_P(UnwritableReport, IsRefusedWithASentence) {
  TemporaryFolder folder;
  ReportToWrite report = reportOf(folder, labellingOf(2, false));
  GetParam().change(report);
  const Result<pelmar::Bytes> bytes = encodeReport(report);
  EXPECT_FALSE(bytes);
  EXPECT_TRUE(bytes.problem.starts_with("The report of the labelling could not be made: ")) << bytes.problem;
  EXPECT_TRUE(bytes.problem.ends_with(".")) << bytes.problem;
  EXPECT_NE(bytes.problem.find(GetParam().reason), std::string::npos) << bytes.problem;
}

const std::vector<Refusal> refusals = {
    {"NoFrameOfReference", [](ReportToWrite& r) { r.context.frameOfReferenceUid.clear(); }, "no frame of reference"},
    {"UnknownRegion", [](ReportToWrite& r) { r.labelling.anatomicalRegion = 3; }, "there is no region 3"},
    {"ForeignScript", [](ReportToWrite& r) { (*r.labelling.levels)[0].name = "Ł4"; }, "Ł4"},
    {"Backslash", [](ReportToWrite& r) { (*r.labelling.levels)[0].name = "L4\\L5"; }, "L4\\L5"},
    {"ControlSign", [](ReportToWrite& r) { (*r.labelling.levels)[0].name = "L4\n"; }, "signs"},
    {"BlankAtTheEnd", [](ReportToWrite& r) { (*r.labelling.levels)[0].name = "L4 "; }, "signs"},
    {"PointNotFinite",
     [](ReportToWrite& r) { (*r.labelling.levels)[0].point[1] = std::numeric_limits<double>::quiet_NaN(); },
     "a coordinate of the level \"T12-L1\""},
    {"NormalTooLarge", [](ReportToWrite& r) { (*r.labelling.levels)[1].vector[2] = 1e39; }, "\"L1-L2\""},
    {"SliceWithoutSeries", [](ReportToWrite& r) { r.context.sliceLevels[0].image.seriesInstanceUid.clear(); },
     "no identifier"},
    {"SliceWithoutLevel", [](ReportToWrite& r) { r.context.sliceLevels[0].level.clear(); }, "name of a slice"},
    {"ImageWithoutUid", [](ReportToWrite& r) { r.context.verticalImages[1].sopInstanceUid.clear(); }, "no identifier"},
    {"NoUid", [](ReportToWrite& r) { r.sopInstanceUid = ""; }, "identifier"},
    {"SeriesUidOfLetters", [](ReportToWrite& r) { r.seriesInstanceUid = "1.2.a"; }, "1.2.a"},
    {"ForeignDescription", [](ReportToWrite& r) { r.seriesDescription = "Wirbelsäule"; }, "Wirbelsäule"},
    {"NoDate", [](ReportToWrite& r) { r.contentTime.date.clear(); }, "date and time"},
    {"TimeOfWords", [](ReportToWrite& r) { r.contentTime.time = "noon"; }, "noon"},
    {"NoArchive", [](ReportToWrite& r) { r.archive.clear(); }, "no archive"},
    {"LongArchive", [](ReportToWrite& r) { r.archive.resize((16U << 20) + 2); }, "16 MB"},
    {"NoImage", [](ReportToWrite& r) { r.patientImage = "/nowhere/image.dcm"; }, "/nowhere/image.dcm"},
    {"ImageOfText", [](ReportToWrite& r) { writeText(r.patientImage, "no image"); }, "image.dcm"},
    {"ImageOfNoStudy",
     [](ReportToWrite& r) {
       edit(r.patientImage, [](DcmDataset& d) { d.findAndDeleteElement(DCM_StudyInstanceUID); });
     },
     "to which study it belongs"},
};

INSTANTIATE_TEST_SUITE_P(Refusals, UnwritableReport, testing::ValuesIn(refusals),
                         [](const auto& row) { return row.param.name; });

TEST(ReportReader, RefusesWhatIsNoReport) {
  TemporaryFolder folder;
  write(sagittalImage(), folder.file("image.dcm"));
  EXPECT_EQ(readReport(folder.file("image.dcm")).problem, "it is not a structured report");
  EXPECT_EQ(readReport(bytesOf(folder.file("image.dcm"))).problem, "it is not a structured report");
  EXPECT_NE(readReport(folder.file("missing.dcm")).problem.find("it cannot be opened"), std::string::npos);
  EXPECT_FALSE(readReport(folder.path()));
  writeText(folder.file("words"), "These are words and nothing else.");
  EXPECT_FALSE(readReport(folder.file("words")));
  writeBytes(folder.file("empty"), {});
  EXPECT_FALSE(readReport(folder.file("empty")));
  EXPECT_FALSE(readReport(pelmar::Bytes()));
}

TEST(ReportReader, RefusesAFileThatIsLongerThanAnyReport) {
  TemporaryFolder folder;
  const fs::path file = writeReport(folder, reportOf(folder, {}));
  fs::resize_file(file, (std::uintmax_t{64} << 20) + 1);  // sparse
  EXPECT_EQ(readReport(file).problem, "it is longer than 64 MB, as no structured report is");
}

TEST(ReportReader, RefusesAReportThatIsCutShort) {
  TemporaryFolder folder;
  const Result<pelmar::Bytes> whole = encodeReport(reportOf(folder, labellingOf(2, false)));
  ASSERT_TRUE(whole);
  for (std::size_t length = 0; length + 1 < whole->size(); length += 1 + whole->size() / 97) {
    const pelmar::Bytes part(whole->begin(), whole->begin() + static_cast<std::ptrdiff_t>(length));
    const Result<StoredReport> report = readReport(part);
    // A cut between two elements cannot be seen; then what there is of it is read. It never is the labelling.
    EXPECT_TRUE(report || !report.problem.empty()) << length;
    EXPECT_TRUE(!report || report->archive.empty()) << length;
  }
}

/// Every fifth byte in turn, of a report of one level, becomes another one: nothing may crash or be read out of bounds,
/// and a whole labelling that is read has finite numbers.
TEST(ReportReader, SurvivesDamagedBytes) {
  TemporaryFolder folder;
  SavedLabelling labelling;
  labelling.levels = {{{"L4-L5", {1, 2, 3}, {0, 3, 4}}}};
  ReportToWrite report = reportOf(folder, labelling);
  report.context.sliceLevels.resize(1);
  const Result<pelmar::Bytes> whole = encodeReport(report);
  ASSERT_TRUE(whole);
  int read = 0;
  for (std::size_t i = 132; i < whole->size(); i += 5) {
    pelmar::Bytes damaged = *whole;
    damaged[i] = static_cast<std::uint8_t>(damaged[i] ^ (i % 3 == 0 ? 0xFF : i % 3 == 1 ? 0x01 : 0x80));
    const Result<StoredReport> result = readReport(damaged);
    EXPECT_TRUE(result || !result.problem.empty()) << i;
    if (!result || !result->content || !result->content->levels) continue;
    ++read;
    for (const SavedLevel& level : *result->content->levels)
      for (std::size_t k = 0; k < 3; ++k)
        EXPECT_TRUE(std::isfinite(level.point[k]) && std::isfinite(level.vector[k])) << i;
  }
  EXPECT_GT(read, 0);
}

TEST(ReportReader, RefusesContentThatIsNestedWithoutEnd) {
  TemporaryFolder folder;
  const Result<pelmar::Bytes> whole = encodeReport(reportOf(folder, {}));
  ASSERT_TRUE(whole);
  // After everything else, Content Sequence in Content Sequence, each open: (FFFC,FFFC) can't come before it.
  pelmar::Bytes bytes = *whole;
  const pelmar::Bytes opening = {0x21, 0x73, 0x00, 0x11, 'S',  'Q',  0,    0,    0xFF, 0xFF,
                                 0xFF, 0xFF, 0xFE, 0xFF, 0x00, 0xE0, 0xFF, 0xFF, 0xFF, 0xFF};
  for (int i = 0; i < 50000; ++i) bytes.insert(bytes.end(), opening.begin(), opening.end());
  EXPECT_EQ(readReport(bytes).problem, "its sequences are nested too deeply");
  writeBytes(folder.file("nested.dcm"), bytes);
  EXPECT_EQ(readReport(folder.file("nested.dcm")).problem, "its sequences are nested too deeply");
}

TEST(AnyFile, TellsTheHeaderOfAWantedReportThatIsDamagedBehindIt) {
  TemporaryFolder folder;
  const fs::path file = writeReport(folder, reportOf(folder, labellingOf(2, false)));
  const StoredReport whole = stored(file);
  truncate(file, fs::file_size(file) / 2);
  const auto always = [](const ObjectHeader&) { return true; };
  const AnyFile read = readAnyFile(file, always);
  ASSERT_TRUE(read.header);
  EXPECT_EQ(read.header->studyInstanceUid, whole.studyInstanceUid);
  EXPECT_EQ(read.header->seriesInstanceUid, whole.seriesInstanceUid);
  EXPECT_EQ(read.header->seriesNumber, whole.seriesNumber);
  EXPECT_EQ(read.header->seriesDescription, whole.seriesDescription);
  EXPECT_EQ(read.header->sopInstanceUid, whole.sopInstanceUid);
  EXPECT_EQ(read.header->instanceNumber, whole.instanceNumber);
  EXPECT_EQ((ContentTime{read.header->contentDate, read.header->contentTime}), whole.contentTime);
  EXPECT_EQ(read.damage, "it is truncated or damaged: it ends in the middle of an element");
  EXPECT_EQ(read.lists.otherObjects, std::vector<fs::path>{file});
  EXPECT_TRUE(read.lists.unreadable.empty());
  ASSERT_TRUE(read.report);
  EXPECT_EQ(read.report->problem, read.damage);

  const AnyFile unwanted = readAnyFile(file, [](const ObjectHeader&) { return false; });
  EXPECT_FALSE(unwanted.header);
  EXPECT_EQ(unwanted.lists.unreadable.size(), 1U);
  EXPECT_FALSE(readAnyFile(folder.file("missing.dcm"), always).header);
}

/// Reports of others must not disturb: they are read, and are no labelling.
TEST(ReportReader, TakesNothingOutOfReportsOfOthers) {
  const fs::path samples = fs::path(VERTANA_SHARED_DATA) / "sr_samples";
  SKIP_WITHOUT_FOLDER(samples);
  int read = 0;
  for (const auto& entry : fs::directory_iterator(samples)) {
    if (entry.path().extension() != ".dcm") continue;
    const bool isSegmentation = entry.path().filename() == "dcmqi_seg.dcm";
    for (const bool fromBytes : {false, true}) {
      const Result<StoredReport> report = fromBytes ? readReport(bytesOf(entry.path())) : readReport(entry.path());
      EXPECT_EQ(!report, isSegmentation) << entry.path() << report.problem;
      if (!report) continue;
      ++read;
      EXPECT_FALSE(report->content) << entry.path();
      EXPECT_TRUE(report->archive.empty()) << entry.path();
      EXPECT_FALSE(report->sopInstanceUid.empty()) << entry.path();
    }
  }
  EXPECT_EQ(read, 2 * 7);
}

TEST(ReportReader, SurvivesEveryMalformedSample) {
  const fs::path samples = fs::path(VERTANA_SHARED_DATA) / "fuzz";
  SKIP_WITHOUT_FOLDER(samples);
  int seen = 0;
  for (const auto& entry : fs::recursive_directory_iterator(samples)) {
    if (!entry.is_regular_file()) continue;
    ++seen;
    const Result<StoredReport> report = readReport(entry.path());
    EXPECT_TRUE(report || !report.problem.empty()) << entry.path();
    EXPECT_FALSE(report && report->content) << entry.path();
  }
  EXPECT_GT(seen, 0);
}

}  // namespace
}  // namespace workstation::test
