#pragma once

#include <optional>
#include <string>

namespace workstation {

/// What a DICOM object of any kind tells about where it belongs. Texts are UTF-8; what is absent is empty.
struct ObjectHeader {
  std::string patientName;
  std::string patientId;
  std::string studyInstanceUid;
  std::optional<std::string> studyDescription;  ///< absent when the attribute is, empty when it is empty
  std::string studyDate;
  std::string seriesInstanceUid;
  std::optional<int> seriesNumber;
  std::string seriesDescription;
  std::string modality;
  std::string sopClassUid;
  std::string sopInstanceUid;
  std::optional<int> instanceNumber;
  std::string contentDate;
  std::string contentTime;

  /// By its modality or its class (PS3.3 A.35).
  bool isStructuredReport() const;
};

}  // namespace workstation
