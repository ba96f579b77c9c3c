#include "workstation/database/LabellingStore.h"
#include "workstation/dicom/Uid.h"

namespace workstation {

LabellingStoreParts dicomParts() {
  return {&encodeReport, [](const std::filesystem::path& file) { return readReport(file); },
          [](const pelmar::Bytes& file) { return readReport(file); }, &freshUid,
          [] { return std::chrono::system_clock::now(); }};
}

}  // namespace workstation
