#include "LabellingStoreDisks.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "tests/support/TemporaryFolder.h"
#include "workstation/database/StudyDatabase.h"
#include "workstation/dicom/ImageWriter.h"

namespace workstation::test {
namespace {

namespace fs = std::filesystem;

constexpr int size = 256;
constexpr int slicesInSeries = 3;

ImageRecord sliceOf(const std::string& studyUid, const std::string& description, bool axial, int number) {
  ImageRecord record;
  record.studyInstanceUid = studyUid;
  record.studyDescription = description;
  record.seriesNumber = axial ? 2 : 1;
  record.seriesInstanceUid = studyUid + "." + std::to_string(*record.seriesNumber);
  record.instanceNumber = number;
  record.sopInstanceUid = record.seriesInstanceUid + "." + std::to_string(number);
  record.sopClassUid = "1.2.840.10008.5.1.4.1.1.4";
  record.file = record.sopInstanceUid + ".dcm";
  record.modality = "MR";
  record.frameOfReferenceUid = studyUid + ".99";
  record.rows = size;
  record.columns = size;
  // Rows of a sagittal slice run to the back, columns to the feet; of an axial one to the left and to the back.
  if (axial) {
    record.geometry = ImageGeometry{{-128, -128, 100.0 - 50 * number}, {1, 0, 0}, {0, 1, 0}, 1, 1};
  } else {
    record.geometry = ImageGeometry{{4.0 * number - 8, -128, 128}, {0, 1, 0}, {0, 0, -1}, 1, 1};
  }
  return record;
}

std::vector<ImageRecord> bothStudies(const std::string& description) {
  std::vector<ImageRecord> records;
  for (const bool axial : {false, true}) {
    for (int number = 1; number <= slicesInSeries; ++number) {
      records.push_back(sliceOf(study, description, axial, number));
      records.push_back(sliceOf(otherStudy, "MRI LUMBAR SPINE", axial, number));
    }
  }
  return records;
}

class MemoryDisk final : public StudyDisk {
 public:
  explicit MemoryDisk(std::string description) : description_(std::move(description)) {
    shelf_.folder = folder_.path();
  }
  ReportShelf& open() override { return shelf_; }
  LabellingStoreParts parts() override { return shelf_.parts(); }
  std::vector<ImageRecord> images() override { return bothStudies(description_); }
  std::map<std::string, std::string> files() override {
    std::map<std::string, std::string> result;
    for (const FakeFile& file : shelf_.files) result[file.path.string()] = file.report.sopInstanceUid;
    return result;
  }

 private:
  std::string description_;
  testsupport::TemporaryFolder folder_;
  FakeShelf shelf_;
};

void writeSlice(const ImageRecord& record, const fs::path& file) {
  ImageToWrite image;
  image.patientName = "Phantom^Story";
  image.patientId = "STORY";
  image.studyInstanceUid = record.studyInstanceUid;
  image.studyDate = "20200101";
  image.studyTime = "120000";
  image.studyId = "1";
  image.studyDescription = record.studyDescription;
  image.seriesInstanceUid = record.seriesInstanceUid;
  image.seriesNumber = *record.seriesNumber;
  image.sopInstanceUid = record.sopInstanceUid;
  image.instanceNumber = *record.instanceNumber;
  image.frameOfReferenceUid = record.frameOfReferenceUid;
  image.geometry = *record.geometry;
  image.rows = record.rows;
  image.columns = record.columns;
  image.samples.assign(static_cast<std::size_t>(record.rows) * static_cast<std::size_t>(record.columns), 100);
  image.windowCentre = 100;
  image.windowWidth = 200;
  std::string problem;
  ASSERT_TRUE(writeImage(image, file, problem)) << problem;
}

class FolderDisk final : public StudyDisk {
 public:
  explicit FolderDisk(const std::string& description) {
    for (const ImageRecord& record : bothStudies(description)) writeSlice(record, folder_.path() / record.file);
  }
  ReportShelf& open() override {
    database_.reset();
    auto opened = StudyDatabase::openFolder(folder_.path());
    if (!opened) throw std::runtime_error(opened.problem);
    database_ = std::move(*opened);
    return *database_;
  }
  LabellingStoreParts parts() override { return dicomParts(); }
  std::vector<ImageRecord> images() override { return readImages(folder_.path()).images; }
  std::map<std::string, std::string> files() override {
    std::map<std::string, std::string> result;
    for (const auto& entry : fs::recursive_directory_iterator(folder_.path())) {
      if (!entry.is_regular_file() || entry.path().extension() != ".dcm") continue;
      result[entry.path().string()] = testsupport::textOf(entry.path());
    }
    return result;
  }

 private:
  testsupport::TemporaryFolder folder_;
  std::unique_ptr<StudyDatabase> database_;
};

}  // namespace

std::unique_ptr<StudyDisk> studyInMemory(const std::string& studyDescription) {
  return std::make_unique<MemoryDisk>(studyDescription);
}
std::unique_ptr<StudyDisk> studyInFolder(const std::string& studyDescription) {
  return std::make_unique<FolderDisk>(studyDescription);
}

}  // namespace workstation::test
