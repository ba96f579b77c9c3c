#include <memory>

#include "workstation/database/LabellingStore.h"
#include "workstation/database/LastReport.h"
#include "workstation/dicom/Uid.h"

namespace workstation {

LabellingStoreParts dicomParts() {
  const auto remembering = [](LastReport::Reading reading) {
    return
        [last = std::make_shared<LastReport>(reading)](const std::filesystem::path& file) { return last->read(file); };
  };
  return {&encodeReport,
          remembering(&readReport),
          remembering(&readReportForArchive),
          [](const pelmar::Bytes& file) { return readReport(file); },
          &freshUid,
          [] { return std::chrono::system_clock::now(); }};
}

}  // namespace workstation
