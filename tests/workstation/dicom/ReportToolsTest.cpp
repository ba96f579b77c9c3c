// Reports as independent programs see them; each test says that it skips where its program is not installed.

#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>

#include "ReportFixtures.h"
#include "tests/support/Requirements.h"

namespace workstation::test {
namespace {

namespace fs = std::filesystem;

std::vector<std::string> linesOf(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  return lines;
}

std::string path(const fs::path& file) { return "'" + file.string() + "'"; }

struct Case {
  const char* name;
  SavedLabelling labelling;
};
std::vector<Case> cases() {
  SavedLabelling regionOnly;
  regionOnly.anatomicalRegion = 1;
  SavedLabelling withoutLevels = labellingOf(2, false);
  withoutLevels.levels->clear();
  return {{"Empty", {}},
          {"NoRegion", labellingOf(-1, false)},
          {"Cervical", labellingOf(0, false)},
          {"CervicalWithC8", labellingOf(0, true)},
          {"Thoracic", labellingOf(1, false)},
          {"ThoracicWithT13", labellingOf(1, true)},
          {"Lumbar", labellingOf(2, false)},
          {"LumbarWithL6", labellingOf(2, true)},
          {"RegionOnly", regionOnly},
          {"ListWithoutLevels", withoutLevels}};
}

class Reports : public testing::TestWithParam<Case> {
 protected:
  TemporaryFolder folder_;
  fs::path file_ = writeReport(folder_, reportOf(folder_, GetParam().labelling));
};

/// The validator's complaints; of the warnings, those that a private scheme and a private block have to get are left
/// out: it cannot know their names.
void expectValid(const fs::path& file) {
  const ToolRun run = runTool("dciodvfy " + path(file));
  bool isKnownClass = false;
  for (const std::string& line : linesOf(run.output)) {
    isKnownClass = isKnownClass || line == "Comprehensive3DSR";
    EXPECT_FALSE(line.starts_with("Error")) << line;
    if (!line.starts_with("Warning")) continue;
    EXPECT_TRUE(line.find("99VERTANA") != std::string::npos || line.find("(0x7321,") != std::string::npos) << line;
  }
  EXPECT_TRUE(isKnownClass) << run.output;
}

TEST_P(Reports, AreValid) {
  SKIP_WITHOUT_TOOL("dciodvfy", "dicom3tools");
  expectValid(file_);
}

TEST_P(Reports, ShowEachLevelInADump) {
  SKIP_WITHOUT_TOOL("dsrdump", "dcmtk");
  const ToolRun run = runTool("dsrdump -Ee +Pl +Pc " + path(file_));
  EXPECT_EQ(run.status, 0) << run.output;
  const SavedLabelling& labelling = GetParam().labelling;
  const std::vector<SavedLevel> levels = labelling.levels.value_or(std::vector<SavedLevel>());
  const auto lines = linesOf(run.output);
  for (const SavedLevel& level : levels) {
    const std::string name = level.name.empty() ? "Level without a name" : level.name;
    EXPECT_TRUE(std::any_of(lines.begin(), lines.end(),
                            [&](const std::string& line) {
                              return line.find("Tracking Identifier") != std::string::npos &&
                                     line.ends_with("=\"" + name + "\">");
                            }))
        << name << "\n"
        << run.output;
  }
  const auto points = std::count_if(lines.begin(), lines.end(), [](const std::string& line) {
    return line.find("SCOORD3D:(111030,DCM,\"Image Region\")=(POINT,") != std::string::npos;
  });
  EXPECT_EQ(points, static_cast<long>(levels.size()));
  EXPECT_EQ(run.output.find("The spine of this study is not labelled.") != std::string::npos, labelling.isEmpty());
}

/// The archive as the toolkit of another language reads it.
pelmar::Bytes archiveByPydicom(const TemporaryFolder& folder, const fs::path& file) {
  const fs::path script = folder.file("archive.py");
  writeText(script,
            "import sys, pydicom\n"
            "block = pydicom.dcmread(sys.argv[1]).private_block(0x7321, 'VERTANA')\n"
            "value = block[3].value\n"
            "open(sys.argv[2], 'wb').write(value)\n");
  const ToolRun run =
      runTool("/usr/bin/python3 " + path(script) + " " + path(file) + " " + path(folder.file("archive.bin")));
  EXPECT_EQ(run.status, 0) << run.output;
  return bytesOf(folder.file("archive.bin"));
}

pelmar::Bytes archiveByGdcm(const TemporaryFolder& folder, const fs::path& file) {
  const fs::path raw = folder.file("archive.raw");
  const ToolRun run = runTool("gdcmraw -i " + path(file) + " -t 7321,1003 -o " + path(raw));
  EXPECT_EQ(run.status, 0) << run.output;
  return bytesOf(raw);
}

/// To implicit VR, where nothing says what a private element is, and back.
fs::path afterImplicitVr(const TemporaryFolder& folder, const fs::path& file) {
  const fs::path implicit = folder.file("implicit.dcm");
  const fs::path back = folder.file("back.dcm");
  EXPECT_EQ(runTool("dcmconv +ti " + path(file) + " " + path(implicit)).status, 0);
  EXPECT_EQ(runTool("dcmconv +te " + path(implicit) + " " + path(back)).status, 0);
  return back;
}

TEST_P(Reports, GiveTheirArchiveToPydicom) {
  SKIP_WITHOUT_PYDICOM();
  EXPECT_EQ(archiveByPydicom(folder_, file_), someArchive());
}

TEST_P(Reports, GiveTheirArchiveToGdcm) {
  SKIP_WITHOUT_TOOL("gdcmraw", "libgdcm-tools");
  EXPECT_EQ(archiveByGdcm(folder_, file_), someArchive());
  const ToolRun dump = runTool("gdcmdump " + path(file_));
  EXPECT_EQ(dump.status, 0) << dump.output;
  EXPECT_NE(dump.output.find("(7321,1003) OB 62\\70\\6c\\69\\73\\74\\30\\30"), std::string::npos) << dump.output;
}

TEST_P(Reports, KeepTheirArchiveThroughImplicitVr) {
  SKIP_WITHOUT_TOOL("dcmconv", "dcmtk");
  const StoredReport before = stored(file_);
  const fs::path back = afterImplicitVr(folder_, file_);
  for (const fs::path& file : {folder_.file("implicit.dcm"), back}) {
    const StoredReport after = stored(file);
    EXPECT_EQ(after.archive, someArchive());
    EXPECT_EQ(after.content, before.content);
  }
  SKIP_WITHOUT_PYDICOM();
  EXPECT_EQ(archiveByPydicom(folder_, back), someArchive());
  SKIP_WITHOUT_TOOL("gdcmraw", "libgdcm-tools");
  EXPECT_EQ(archiveByGdcm(folder_, back), someArchive());
}

INSTANTIATE_TEST_SUITE_P(Cases, Reports, testing::ValuesIn(cases()), [](const auto& row) { return row.param.name; });

TEST(ReportTools, FramesOfAMultiFrameImageAreValidReferences) {
  SKIP_WITHOUT_TOOL("dciodvfy", "dicom3tools");
  TemporaryFolder folder;
  ReportToWrite report = reportOf(folder, labellingOf(2, false));
  const std::string enhancedMr = "1.2.840.10008.5.1.4.1.1.4.1";
  report.context.verticalImages.clear();
  for (const int frame : {1, 2, 3})
    report.context.verticalImages.push_back({enhancedMr, "2.25.77", frame, true, report.context.verticalSeriesUid});
  report.context.sliceLevels = {{{enhancedMr, "2.25.78", 4, true, "2.25.79"}, "L4-L5"}};
  const fs::path file = writeReport(folder, report);
  expectValid(file);
  const ReportContext context = stored(file).context;
  EXPECT_EQ(context.verticalImages, report.context.verticalImages);
  EXPECT_EQ(context.sliceLevels, report.context.sliceLevels);
}

/// The study of a patient whose name stands in half-width katakana and kanji.
TEST(ReportTools, TheJapaneseNameOfARealStudyIsKept) {
  const fs::path study = fs::path(VERTANA_SHARED_DATA) / "lspine_mr_a";
  SKIP_WITHOUT_FOLDER(study);
  SKIP_WITHOUT_TOOL("dciodvfy", "dicom3tools");
  SKIP_WITHOUT_PYDICOM();
  TemporaryFolder folder;
  ReportToWrite report = reportOf(folder, labellingOf(2, false));
  const ReadResult images = readImages(study / "SE06T2SG");
  ASSERT_FALSE(images.images.empty());
  report.patientImage = images.images.front().file;
  const fs::path file = writeReport(folder, report);
  expectValid(file);
  const fs::path script = folder.file("name.py");
  writeText(script,
            "import sys, pydicom\n"
            "a, b = (pydicom.dcmread(f) for f in sys.argv[1:3])\n"
            "a.decode(); b.decode()\n"
            "assert str(a.PatientName) == 'ﾃｽﾄ^ﾀﾛｳ=試験^太郎', str(a.PatientName)\n"
            "for k in ('PatientName', 'PatientID', 'StudyInstanceUID', 'StudyDate', 'StudyTime', 'PatientSex',\n"
            "          'SpecificCharacterSet', 'PatientIdentityRemoved'):\n"
            "    assert a.get(k) == b.get(k), (k, a.get(k), b.get(k))\n"
            "def texts(item):\n"
            "    for child in item.get('ContentSequence', []):\n"
            "        if child.ValueType == 'TEXT': yield child.TextValue\n"
            "        yield from texts(child)\n"
            "assert 'L4-L5' in list(texts(a))\n");
  const ToolRun run = runTool("/usr/bin/python3 " + path(script) + " " + path(file) + " " + path(report.patientImage));
  EXPECT_EQ(run.status, 0) << run.output;
}

}  // namespace
}  // namespace workstation::test
