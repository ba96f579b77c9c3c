#include "workstation/dicom/StudyReader.h"

#include <dcmtk/config/osconfig.h>
#include <dcmtk/dcmdata/dctk.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <string_view>
#include <utility>

#include "workstation/dicom/AnyFile.h"
#include "workstation/dicom/Attributes.h"
#include "workstation/dicom/Copies.h"
#include "workstation/dicom/FileSignature.h"
#include "workstation/dicom/FileWalk.h"
#include "workstation/dicom/FrameGroups.h"
#include "workstation/dicom/Identity.h"
#include "workstation/dicom/ImageLayout.h"
#include "workstation/dicom/ParsedObjects.h"
#include "workstation/dicom/Toolkit.h"

namespace workstation {
namespace {

namespace fs = std::filesystem;

std::string inLowerCase(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(),
                 [](unsigned char character) { return static_cast<char>(std::tolower(character)); });
  return text;
}

bool isNamedAsImage(const fs::path& file) {
  const std::string extension = inLowerCase(file.extension().string());
  return extension == ".dcm" || extension == ".dicom" || extension == ".dic" || extension == ".ima";
}

bool isNamedAsDirectory(const fs::path& file) { return inLowerCase(file.filename().string()) == "dicomdir"; }

/// Objects with a matrix of pixels that show no image of the patient.
constexpr std::array<std::string_view, 4> derivedClasses = {UID_SegmentationStorage, UID_RTDoseStorage,
                                                            UID_ParametricMapStorage, UID_RawDataStorage};

/// Whether the object is, or should have been, an image. What has neither size nor pixels and is not of an image class
/// is something else.
bool isImage(DcmDataset& dataset) {
  const Attributes attributes(dataset);
  const std::string sopClass = attributes.code(DCM_SOPClassUID);
  if (std::find(derivedClasses.begin(), derivedClasses.end(), sopClass) != derivedClasses.end()) return false;
  if (attributes.has(DCM_PixelData) || attributes.has(DCM_Rows)) return true;
  const char** const end = dcmImageSOPClassUIDs + numberOfDcmImageSOPClassUIDs;
  return std::any_of(dcmImageSOPClassUIDs, end, [&](const char* uid) { return sopClass == uid; });
}

/// What all frames of a file have in common. False, with a phrase in `problem`, when an identifier that keeps patients
/// and studies apart is missing.
bool readCommon(DcmDataset& dataset, ImageRecord& record, std::string& problem) {
  const Attributes attributes(dataset);
  readIdentity(attributes, record);
  record.imageType = attributes.codes(DCM_ImageType);
  record.bodyPartExamined = attributes.text(DCM_BodyPartExamined);
  record.frameOfReferenceUid = attributes.code(DCM_FrameOfReferenceUID);
  if (record.sopInstanceUid.empty()) problem = "it has no SOP Instance UID";
  if (record.seriesInstanceUid.empty()) problem = "it has no Series Instance UID";
  if (record.studyInstanceUid.empty()) problem = "it has no Study Instance UID";
  return problem.empty();
}

/// False, with a phrase in `problem`, when the image cannot be shown.
bool readRecords(DcmDataset& dataset, const fs::path& file, std::vector<ImageRecord>& images, std::string& problem) {
  ImageLayout layout;
  ImageRecord record;
  if (!readLayout(dataset, layout, problem) || !readCommon(dataset, record, problem)) return false;
  record.file = file;
  record.rows = layout.rows;
  record.columns = layout.columns;
  record.colour = layout.isColour();
  const FrameGroups groups(dataset);
  for (int frame = 1; frame <= layout.frames; ++frame) {
    record.frame = frame;
    record.geometryProblem.clear();
    record.geometry = groups.geometry(frame, layout.frames, record.geometryProblem);
    record.pixelAspect = record.geometry ? 1 : groups.pixelAspect(frame);
    images.push_back(record);
  }
  return true;
}

/// Why the structure cannot be read; empty when it can.
std::string readDicom(const fs::path& file, FileSignature signature, ParsedFile& parsed, ReadResult& result) {
  std::string problem;
  if (!parsed.parse(file, problem)) {
    const bool isCertain = signature == FileSignature::dicom || isNamedAsImage(file);
    if (isCertain)
      result.unreadable.push_back({file, problem});
    else
      result.notDicom.push_back(file);
    return problem;
  }
  if (parsed.mediaStorageSopClass() == UID_MediaStorageDirectoryStorage)
    result.directories.push_back(file);
  else if (!isImage(parsed.dataset()))
    result.otherObjects.push_back(file);
  else if (!readRecords(parsed.dataset(), file, result.images, problem))
    result.unreadable.push_back({file, problem});
  return "";
}

/// `parsed` holds its structure where it is DICOM. Why it does not, though the file seems to be DICOM; else empty.
std::string readFile(const fs::path& file, ParsedFile& parsed, ReadResult& result) {
  if (isNamedAsDirectory(file)) {
    result.directories.push_back(file);
    return "";
  }
  std::string problem;
  const FileSignature signature = signatureOf(file, problem);
  switch (signature) {
    case FileSignature::unopenable:
      result.unreadable.push_back({file, problem});
      break;
    case FileSignature::empty:
      result.unreadable.push_back({file, "it is empty (0 bytes)"});
      break;
    case FileSignature::cutShort:
      result.unreadable.push_back({file, "it is truncated: it ends before the DICOM data begin"});
      break;
    case FileSignature::other:
      if (isNamedAsImage(file))
        result.unreadable.push_back({file, "it is not a DICOM file, though it is named like one"});
      else
        result.notDicom.push_back(file);
      break;
    case FileSignature::dicom:
    case FileSignature::headerless:
      return readDicom(file, signature, parsed, result);
  }
  return "";
}

/// What the header says of a report that is damaged behind it.
void readHeader(const fs::path& file, const std::string& damage,
                const std::function<bool(const ObjectHeader&)>& isWantedAsReport, AnyFile& read) {
  ParsedFile parsed;
  std::string problem;
  if (!parsed.parseHeader(file, problem)) return;
  ObjectHeader header = objectHeaderIn(parsed);
  if (header.studyInstanceUid.empty() || !isWantedAsReport(header)) return;
  read.lists = {};
  read.lists.otherObjects.push_back(file);
  read.header = std::move(header);
  read.report = Result<StoredReport>::refused(damage);
  read.damage = damage;
}

}  // namespace

void readImageFile(const fs::path& file, ReadResult& result) {
  ParsedFile parsed;
  readFile(file, parsed, result);
}

AnyFile readAnyFile(const fs::path& file, const std::function<bool(const ObjectHeader&)>& isWantedAsReport) {
  AnyFile read;
  ParsedFile parsed;
  const std::string damage = readFile(file, parsed, read.lists);
  if (!damage.empty()) readHeader(file, damage, isWantedAsReport, read);
  if (read.lists.otherObjects.empty() || read.header) return read;
  read.header = objectHeaderIn(parsed);
  std::error_code error;
  if (isWantedAsReport(*read.header)) read.report = reportIn(parsed, fs::file_size(file, error));
  return read;
}

ReadResult readImages(const fs::path& folderOrFile, const ReadOptions& options) {
  ReadResult result;
  result.warning = prepareToolkit();
  const std::vector<fs::path> files = filesIn(folderOrFile, result.unreadable);
  const auto goesOn = [&](std::size_t done) { return !options.progress || options.progress(done, files.size()); };
  for (std::size_t done = 0; done < files.size() && !result.cancelled; ++done) {
    result.cancelled = !goesOn(done);
    if (!result.cancelled) readImageFile(files[done], result);
  }
  if (!result.cancelled) goesOn(files.size());
  setCopiesAside(result);
  std::stable_sort(result.unreadable.begin(), result.unreadable.end(),
                   [](const UnreadableFile& a, const UnreadableFile& b) { return a.file < b.file; });
  return result;
}

}  // namespace workstation
