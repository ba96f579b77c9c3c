// The archive alone, read past the content.

#include "workstation/dicom/ContentSkip.h"

#include <dcmtk/config/osconfig.h>
#include <dcmtk/dcmdata/dctk.h>
#include <gtest/gtest.h>

#include "ReportFixtures.h"

namespace workstation::test {
namespace {

namespace fs = std::filesystem;

/// The file of a report of one level, which is short.
pelmar::Bytes shortReport() {
  TemporaryFolder folder;
  SavedLabelling labelling;
  labelling.levels = {{{"L4-L5", {1, 2, 3}, {0, 3, 4}}}};
  ReportToWrite report = reportOf(folder, labelling);
  report.context.sliceLevels.resize(1);
  Result<pelmar::Bytes> bytes = encodeReport(report);
  EXPECT_TRUE(bytes) << bytes.problem;
  return bytes ? *std::move(bytes) : pelmar::Bytes();
}

/// The report's file written again by the toolkit.
fs::path rewritten(const TemporaryFolder& folder, E_TransferSyntax syntax, E_EncodingType lengths,
                   const std::function<void(DcmDataset&)>& change = {}) {
  const fs::path file = writeReport(folder, reportOf(folder, labellingOf(2, false)));
  DcmFileFormat format;
  EXPECT_TRUE(format.loadFile(file.c_str()).good());
  if (change) change(*format.getDataset());
  EXPECT_TRUE(format.saveFile(file.c_str(), syntax, lengths).good());
  return file;
}

void expectTheSameButContent(const fs::path& file) {
  const StoredReport whole = stored(file);
  const Result<StoredReport> bare = readReportForArchive(file);
  ASSERT_TRUE(bare) << bare.problem;
  EXPECT_EQ(bare->archive, someArchive());
  expectSameHeader(*bare, whole);
}

TEST(ContentSkip, LeavesTheContentOutAndKeepsEverythingElse) {
  for (const E_EncodingType lengths : {EET_UndefinedLength, EET_ExplicitLength}) {
    TemporaryFolder folder;
    const fs::path file = rewritten(folder, EXS_LittleEndianExplicit, lengths);
    expectTheSameButContent(file);
    EXPECT_FALSE(readReportForArchive(file)->content) << "with lengths of kind " << lengths;
    EXPECT_TRUE(readReport(file)->content);
  }
}

TEST(ContentSkip, IsNotDoneInOtherTransferSyntaxes) {
  for (const E_TransferSyntax syntax : {EXS_LittleEndianImplicit, EXS_BigEndianExplicit}) {
    TemporaryFolder folder;
    const fs::path file = rewritten(folder, syntax, EET_UndefinedLength);
    expectTheSameButContent(file);
    EXPECT_TRUE(readReportForArchive(file)->content) << "the whole report was read";
  }
}

TEST(ContentSkip, IsNotDoneWhereThereIsNoArchive) {
  TemporaryFolder folder;
  const fs::path file = rewritten(folder, EXS_LittleEndianExplicit, EET_UndefinedLength, &removeBlock);
  const Result<StoredReport> report = readReportForArchive(file);
  ASSERT_TRUE(report) << report.problem;
  EXPECT_TRUE(report->archive.empty());
  EXPECT_EQ(report->content, stored(file).content);
  EXPECT_TRUE(report->content);
}

TEST(ContentSkip, SaysOfWhatIsNoReportWhatIsSaidOfItElsewhere) {
  TemporaryFolder folder;
  EXPECT_EQ(readReportForArchive(folder.file("missing")).problem, readReport(folder.file("missing")).problem);
  writeBytes(folder.file("text"), pelmar::Bytes(300, 'x'));
  EXPECT_EQ(readReportForArchive(folder.file("text")).problem, readReport(folder.file("text")).problem);
  EXPECT_FALSE(readReportForArchive(folder.file("text")).problem.empty());
}

/// Only where it ends between two elements of the data set can a part be taken for a whole.
TEST(ContentSkip, RefusesAFileThatIsCutShort) {
  const pelmar::Bytes whole = shortReport();
  const auto bare = withoutContent(whole);
  ASSERT_TRUE(bare);
  std::size_t taken = 0;
  for (std::size_t length = 0; length < whole.size(); ++length) {
    const auto kept = withoutContent({whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length)});
    if (!kept) continue;
    ++taken;
    EXPECT_TRUE(kept->size() <= bare->size() && std::equal(kept->begin(), kept->end(), bare->begin())) << length;
  }
  TemporaryFolder folder;
  writeBytes(folder.file("whole"), whole);
  DcmFileFormat format;
  ASSERT_TRUE(format.loadFile(folder.file("whole").c_str()).good());
  EXPECT_EQ(taken, format.getMetaInfo()->card() + format.getDataset()->card());
}

TEST(ContentSkip, SurvivesDamagedBytes) {
  const pelmar::Bytes whole = shortReport();
  std::size_t refused = 0;
  for (std::size_t i = 128; i < whole.size(); i += 11) {
    pelmar::Bytes damaged = whole;
    damaged[i] = static_cast<std::uint8_t>(damaged[i] ^ (i % 3 == 0 ? 0xFF : i % 3 == 1 ? 0x01 : 0x80));
    const auto kept = withoutContent(damaged);
    refused += kept ? 0 : 1;
    EXPECT_TRUE(!kept || kept->size() <= whole.size()) << i;
  }
  EXPECT_GT(refused, 0U);
}

TEST(ContentSkip, RefusesSequencesThatAreNestedWithoutEnd) {
  pelmar::Bytes bytes = shortReport();
  const pelmar::Bytes opening = {0x21, 0x73, 0x00, 0x11, 'S',  'Q',  0,    0,    0xFF, 0xFF,
                                 0xFF, 0xFF, 0xFE, 0xFF, 0x00, 0xE0, 0xFF, 0xFF, 0xFF, 0xFF};
  for (int i = 0; i < 50000; ++i) bytes.insert(bytes.end(), opening.begin(), opening.end());
  EXPECT_FALSE(withoutContent(bytes));
}

}  // namespace
}  // namespace workstation::test
