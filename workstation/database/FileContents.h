#pragma once
// What the index keeps of one file.

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "workstation/archive/SavedLabelling.h"
#include "workstation/dicom/LabellingReport.h"
#include "workstation/dicom/ObjectHeader.h"
#include "workstation/model/ImageRecord.h"

namespace workstation {

/// The numbers stand in the index.
enum class FileKind {
  image = 0,       ///< one slice or more that can be shown
  object = 1,      ///< a DICOM object that is no image: a structured report, a segmentation, a plan ...
  notDicom = 2,    ///< and does not claim to be
  directory = 3,   ///< a DICOMDIR
  unreadable = 4,  ///< it is, or claims to be, a DICOM image but cannot be shown
};

/// The state in a report of the series of labellings.
struct DecodedLabelling {
  std::optional<SavedLabelling> labelling;  ///< absent when it cannot be read
  bool fromContent = false;                 ///< there is no archive: read from the standard content
  std::string problem;                      ///< why it cannot be read: a phrase; else empty
};

struct FileContents {
  FileKind kind = FileKind::notDicom;
  std::string reason;                         ///< of an unreadable file: a phrase that follows "because";
                                              ///< likewise of an object that is damaged behind its header
  std::vector<ImageRecord> images;            ///< of an image, in order of the frames
  std::optional<ObjectHeader> header;         ///< of an object
  std::optional<DecodedLabelling> labelling;  ///< of a report with the labellings' series number and description
  std::optional<StoredReport> report;         ///< the same as it lies there, where it can be read; not indexed
};

/// Reads all that the index keeps of the file, and a labelling's report. Never throws for anything that the file
/// contains.
FileContents readFileContents(const std::filesystem::path& file);

/// The state that a report holds: its archive's, or, when it carries none, that of its standard content.
DecodedLabelling decodeLabelling(const StoredReport& report);

/// The whole sentence of a refusal as a phrase that can follow "because"; a phrase stays.
std::string asPhrase(std::string sentence);

}  // namespace workstation
