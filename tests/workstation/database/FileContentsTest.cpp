#include "workstation/database/FileContents.h"

#include <gtest/gtest.h>

#include "FolderFixtures.h"
#include "OddArchive.h"

namespace workstation::test {
namespace {

/// Points hold single precision, and so do the archives that are made of them.
bool isLumbarAt7(const DecodedLabelling& decoded) {
  return decoded.labelling && sameInSinglePrecision(*decoded.labelling, lumbarAt(7));
}

TEST(FileContents, AnArchiveWithThePadByteOfDicomIsReadWhateverTheByteIs) {
  for (const int pad : {0, 1, 255}) {
    StoredReport report;
    report.archive = oddArchiveOf(lumbarAt(7));
    ASSERT_EQ(report.archive.size() % 2, 1U);
    report.archive.push_back(static_cast<std::uint8_t>(pad));
    const DecodedLabelling decoded = decodeLabelling(report);
    EXPECT_TRUE(isLumbarAt7(decoded)) << decoded.problem;
    EXPECT_FALSE(decoded.fromContent);
    EXPECT_EQ(decoded.problem, "");
  }
}

TEST(FileContents, TwoBytesMoreAreNoPad) {
  StoredReport report;
  report.archive = oddArchiveOf(lumbarAt(7));
  report.archive.insert(report.archive.end(), 2, 0);
  const DecodedLabelling decoded = decodeLabelling(report);
  EXPECT_FALSE(decoded.labelling);
  EXPECT_NE(decoded.problem.find("followed by other bytes"), std::string::npos) << decoded.problem;
}

TEST(FileContents, WhyAnArchiveCannotBeReadIsAPhraseAlone) {
  StoredReport report;
  report.archive = {1, 2, 3, 4};
  EXPECT_EQ(decodeLabelling(report).problem, "it is neither a binary property list nor one in XML");
}

TEST(FileContents, TheContentCountsOnlyWhereThereIsNoArchive) {
  StoredReport report;
  report.content = lumbarAt(7);
  EXPECT_EQ(decodeLabelling(report).labelling, lumbarAt(7));
  EXPECT_TRUE(decodeLabelling(report).fromContent);
  report.archive = {1, 2, 3, 4};
  EXPECT_FALSE(decodeLabelling(report).labelling);
  EXPECT_FALSE(decodeLabelling(report).fromContent);
  EXPECT_NE(decodeLabelling(report).problem, "");
}

TEST(FileContents, AnArchiveOfSomethingElseIsNoLabelling) {
  StoredReport report;
  report.archive = *writeArchive(pelmar::Value(pelmar::Value::Array{}));
  EXPECT_FALSE(decodeLabelling(report).labelling);
  EXPECT_EQ(decodeLabelling(report).problem, "its archive holds something else than a labelling");
}

TEST(FileContents, APaddedReportOnDiskIsReadLikeAnyOther) {
  const TemporaryFolder folder;
  writeStudy(folder.path());
  ReportToWrite report;
  report.patientImage = folder.path() / "sag/1.dcm";
  report.sopInstanceUid = "2.25.1";
  report.seriesInstanceUid = "2.25.2";
  report.seriesNumber = labellingSeriesNumber;
  report.seriesDescription = labellingSeriesDescription;
  report.contentTime = {"20240301", "100000.000000"};
  report.labelling = lumbarAt(7);
  report.archive = oddArchiveOf(lumbarAt(7));
  report.context.frameOfReferenceUid = "2.25.3";
  const Result<pelmar::Bytes> bytes = encodeReport(report);
  ASSERT_TRUE(bytes) << bytes.problem;
  writeBytes(folder.path() / "report.dcm", *bytes);
  const FileContents contents = readFileContents(folder.path() / "report.dcm");
  ASSERT_TRUE(contents.labelling);
  EXPECT_TRUE(isLumbarAt7(*contents.labelling)) << contents.labelling->problem;
}

}  // namespace
}  // namespace workstation::test
