#pragma once
// A study that outlives the processes that work on it: in memory, or as DICOM files in a folder.

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "LabellingStoreFakes.h"
#include "workstation/model/ImageRecord.h"

namespace workstation::test {

class StudyDisk {
 public:
  virtual ~StudyDisk() = default;
  /// A new process looks at the disk.
  virtual ReportShelf& open() = 0;
  virtual LabellingStoreParts parts() = 0;
  virtual std::vector<ImageRecord> images() = 0;
  /// Every file, by path; the content of two is equal when the files are.
  virtual std::map<std::string, std::string> files() = 0;
};

/// Two studies of three sagittal slices (series 1) and three axial ones (series 2) each: `study`, and `otherStudy`,
/// which is lumbar. Slices have 256 x 256 pixels of 1 mm.
inline const std::string otherStudy = "9.9";
std::unique_ptr<StudyDisk> studyInMemory(const std::string& studyDescription);
std::unique_ptr<StudyDisk> studyInFolder(const std::string& studyDescription);

}  // namespace workstation::test
