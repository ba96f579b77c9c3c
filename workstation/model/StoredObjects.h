#pragma once
// Files and series of a study, images and reports alike, as the plug-in sees them.

#include <optional>
#include <string>
#include <vector>

#include "host/Database.h"

namespace workstation {

/// The path is the file's own; absolute or not, as it was found.
pelmar::Ref<pelmar::DicomImage> makeStoredImage(std::string path);

struct StoredSeries {
  std::string uid;
  long number = 0;                  ///< Series Number
  std::optional<std::string> name;  ///< Series Description
  std::vector<std::string> paths;   ///< one an object
};

pelmar::Ref<pelmar::DicomSeries> makeStoredSeries(StoredSeries series);

}  // namespace workstation
