#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "DicomFixtures.h"
#include "workstation/dicom/LabellingReport.h"

class DcmItem;

namespace workstation::test {

/// The discs of a region (-1, 0, 1, 2), head to foot.
std::vector<std::string> discsOf(int region, bool additionalVertebra);

/// A labelling of the region with a plane for each of its discs, at coordinates that no float holds exactly.
SavedLabelling labellingOf(int region, bool additionalVertebra);
/// The labelling with each coordinate rounded to single precision.
SavedLabelling inSinglePrecision(SavedLabelling labelling);

/// A vertical series of two images and a slice of each kind of level in two axial series.
ReportContext contextOf(const SavedLabelling& labelling);

/// An even number of bytes with every value in it, beginning like an archive.
pelmar::Bytes someArchive();

/// A report of the labelling, of the study of an image that is written into the folder.
ReportToWrite reportOf(const TemporaryFolder& folder, const SavedLabelling& labelling);

/// The report's file; the test fails when it cannot be made.
std::filesystem::path writeReport(const TemporaryFolder& folder, const ReportToWrite& report);
/// What a file says; the test fails when it cannot be read.
StoredReport stored(const std::filesystem::path& file);

/// The same identifiers, numbers, description and time.
void expectSameHeader(const StoredReport& report, const StoredReport& other);

/// What a report of the labelling says after its file has been changed.
StoredReport afterEdit(const std::function<void(DcmDataset&)>& change,
                       const SavedLabelling& labelling = labellingOf(2, false));
/// Takes the private block out.
void removeBlock(DcmDataset& dataset);
/// The content items with that value type and concept code, at any depth.
std::vector<DcmItem*> contentItems(DcmItem& item, const std::string& type, const std::string& code);

/// A program's output, errors included, and how it ended.
struct ToolRun {
  std::string output;
  int status = -1;
};
ToolRun runTool(const std::string& command);

}  // namespace workstation::test
