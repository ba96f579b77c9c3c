#include "ReportFixtures.h"

#include <dcmtk/config/osconfig.h>
#include <dcmtk/dcmdata/dctk.h>
#include <gtest/gtest.h>

#include <array>
#include <cstdio>

#include "workstation/dicom/Uid.h"

namespace workstation::test {

std::vector<std::string> discsOf(int region, bool additionalVertebra) {
  switch (region) {
    case 0:
      if (additionalVertebra) return {"C0-C1", "C2-C3", "C3-C4", "C4-C5", "C5-C6", "C6-C7", "C7-C8", "C8-T1"};
      return {"C0-C1", "C2-C3", "C3-C4", "C4-C5", "C5-C6", "C6-C7", "C7-T1"};
    case 1:
      if (additionalVertebra)
        return {"C7-T1", "T1-T2", "T2-T3",  "T3-T4",   "T4-T5",   "T5-T6",   "T6-T7",
                "T7-T8", "T8-T9", "T9-T10", "T10-T11", "T11-T12", "T12-T13", "T13-L1"};
      return {"C7-T1", "T1-T2", "T2-T3",  "T3-T4",   "T4-T5",   "T5-T6", "T6-T7",
              "T7-T8", "T8-T9", "T9-T10", "T10-T11", "T11-T12", "T12-L1"};
    case 2:
      if (additionalVertebra) return {"T12-L1", "L1-L2", "L2-L3", "L3-L4", "L4-L5", "L5-L6", "L6-S1"};
      return {"T12-L1", "L1-L2", "L2-L3", "L3-L4", "L4-L5", "L5-S1"};
    default:
      return {""};
  }
}

SavedLabelling labellingOf(int region, bool additionalVertebra) {
  SavedLabelling labelling;
  labelling.anatomicalRegion = region;
  labelling.additionalVertebra = additionalVertebra;
  labelling.levels.emplace();
  for (const std::string& name : discsOf(region, additionalVertebra)) {
    const auto i = static_cast<double>(labelling.levels->size());
    labelling.levels->push_back({name, {1.0 / 3 - i, -20.1 + 0.7 * i, 1234.5678901 - 33.3 * i}, {0.1, 0.2 * i, -1.1}});
  }
  return labelling;
}

SavedLabelling inSinglePrecision(SavedLabelling labelling) {
  const auto round = [](double& value) { value = static_cast<double>(static_cast<float>(value)); };
  if (labelling.levels) {
    for (SavedLevel& level : *labelling.levels) {
      for (double& value : level.point) round(value);
      for (double& value : level.vector) round(value);
    }
  }
  return labelling;
}

ReportContext contextOf(const SavedLabelling& labelling) {
  const std::string mrClass = "1.2.840.10008.5.1.4.1.1.4";
  ReportContext context;
  context.frameOfReferenceUid = makeUid("frame of reference");
  context.verticalSeriesUid = makeUid("vertical series");
  context.verticalModality = "MR";
  for (const char* name : {"vertical image 1", "vertical image 2"})
    context.verticalImages.push_back({mrClass, makeUid(name), 1, false, context.verticalSeriesUid});
  std::vector<std::string> names = {"C0", "C1-C2", "C8", "T12", "T13", "L3", "L6", "S1"};
  if (labelling.levels)
    for (const SavedLevel& level : *labelling.levels)
      if (!level.name.empty()) names.push_back(level.name);
  for (const std::string& name : names) {
    const std::string series = names.size() % 2 ? "axial series 1" : "axial series 2";
    context.sliceLevels.push_back({{mrClass, makeUid("slice " + name), 1, false, makeUid(series)}, name});
  }
  return context;
}

pelmar::Bytes someArchive() {
  pelmar::Bytes archive = {'b', 'p', 'l', 'i', 's', 't', '0', '0'};
  for (int value = 0; value < 256; ++value) archive.push_back(static_cast<std::uint8_t>(value));
  return archive;
}

ReportToWrite reportOf(const TemporaryFolder& folder, const SavedLabelling& labelling) {
  ReportToWrite report;
  report.patientImage = folder.file("image.dcm");
  if (!std::filesystem::exists(report.patientImage)) write(sagittalImage(), report.patientImage);
  report.sopInstanceUid = makeUid("report");
  report.seriesInstanceUid = makeUid("series of reports");
  report.seriesNumber = 20170720;
  report.seriesDescription = "Pelmar Vertana Plugin Intervertebral Planes SR";
  report.instanceNumber = 3;
  report.contentTime = {"20240229", "101500.123456"};
  report.labelling = labelling;
  report.archive = someArchive();
  if (!labelling.isEmpty()) report.context = contextOf(labelling);
  return report;
}

std::filesystem::path writeReport(const TemporaryFolder& folder, const ReportToWrite& report) {
  const Result<pelmar::Bytes> bytes = encodeReport(report);
  EXPECT_TRUE(bytes) << bytes.problem;
  const std::filesystem::path file = folder.file("report.dcm");
  writeBytes(file, bytes ? *bytes : pelmar::Bytes());
  return file;
}

StoredReport stored(const std::filesystem::path& file) {
  Result<StoredReport> report = readReport(file);
  EXPECT_TRUE(report) << file << ": " << report.problem;
  return report ? std::move(*report) : StoredReport();
}

void expectSameHeader(const StoredReport& report, const StoredReport& other) {
  EXPECT_EQ(report.studyInstanceUid, other.studyInstanceUid);
  EXPECT_EQ(report.seriesInstanceUid, other.seriesInstanceUid);
  EXPECT_EQ(report.seriesNumber, other.seriesNumber);
  EXPECT_EQ(report.seriesDescription, other.seriesDescription);
  EXPECT_EQ(report.sopClassUid, other.sopClassUid);
  EXPECT_EQ(report.sopInstanceUid, other.sopInstanceUid);
  EXPECT_EQ(report.instanceNumber, other.instanceNumber);
  EXPECT_EQ(report.contentTime, other.contentTime);
}

StoredReport afterEdit(const std::function<void(DcmDataset&)>& change, const SavedLabelling& labelling) {
  TemporaryFolder folder;
  const std::filesystem::path file = writeReport(folder, reportOf(folder, labelling));
  edit(file, change);
  return stored(file);
}

void removeBlock(DcmDataset& dataset) {
  for (const DcmTagKey& tag : {DcmTagKey(0x7321, 0x0010), DcmTagKey(0x7321, 0x1001), DcmTagKey(0x7321, 0x1003)})
    EXPECT_TRUE(dataset.findAndDeleteElement(tag).good());
}

std::vector<DcmItem*> contentItems(DcmItem& item, const std::string& type, const std::string& code) {
  std::vector<DcmItem*> found;
  DcmSequenceOfItems* sequence = nullptr;
  if (item.findAndGetSequence(DCM_ContentSequence, sequence).bad()) return found;
  for (unsigned long i = 0; i < sequence->card(); ++i) {
    DcmItem* child = sequence->getItem(i);
    OFString itsType;
    OFString itsCode;
    DcmItem* name = nullptr;
    child->findAndGetOFString(DCM_ValueType, itsType);
    if (child->findAndGetSequenceItem(DCM_ConceptNameCodeSequence, name).good())
      name->findAndGetOFString(DCM_CodeValue, itsCode);
    if (itsType == type.c_str() && itsCode == code.c_str()) found.push_back(child);
    for (DcmItem* deeper : contentItems(*child, type, code)) found.push_back(deeper);
  }
  return found;
}

ToolRun runTool(const std::string& command) {
  ToolRun run;
  FILE* pipe = popen(("LC_ALL=C " + command + " 2>&1").c_str(), "r");
  if (pipe == nullptr) return run;
  std::array<char, 4096> chunk{};
  for (std::size_t length = 0; (length = fread(chunk.data(), 1, chunk.size(), pipe)) > 0;)
    run.output.append(chunk.data(), length);
  run.status = pclose(pipe);
  return run;
}

}  // namespace workstation::test
