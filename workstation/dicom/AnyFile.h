#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <string>

#include "workstation/dicom/LabellingReport.h"
#include "workstation/dicom/ObjectHeader.h"
#include "workstation/dicom/StudyReader.h"

namespace workstation {

/// All that is wanted of a file of any kind.
struct AnyFile {
  ReadResult lists;                            ///< as readImageFile fills them
  std::optional<ObjectHeader> header;          ///< of an object that is no image
  std::optional<Result<StoredReport>> report;  ///< of an object that is wanted as a report; see readReport
  /// Of an object that is wanted as a report, of which no more than the header can be read: why. Else empty.
  std::string damage;
};

/// Reads a file, once: most of the time goes into its structure. Where that is damaged behind the header of a report
/// that is wanted, the file is an object all the same, and not among the unreadable ones. Never throws for anything
/// that the file contains.
AnyFile readAnyFile(const std::filesystem::path& file,
                    const std::function<bool(const ObjectHeader& object)>& isWantedAsReport);

}  // namespace workstation
