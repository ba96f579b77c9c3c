#include <memory>

#include "workstation/database/LabellingStore.h"
#include "workstation/database/LastReport.h"
#include "workstation/dicom/Uid.h"

namespace workstation {

LabellingStoreParts dicomParts() {
  return {&encodeReport,
          [last = std::make_shared<LastReport>()](const std::filesystem::path& file) { return last->read(file); },
          [](const pelmar::Bytes& file) { return readReport(file); }, &freshUid,
          [] { return std::chrono::system_clock::now(); }};
}

}  // namespace workstation
