#pragma once
// Synthetic slices with geometry that is easy to work out by hand.

#include <string>
#include <vector>

#include "workstation/model/ImageRecord.h"

namespace workstation::test {

/// A 100 x 80 pixel slice (columns x rows), 0.5 mm wide and 0.5 mm high pixels, of the study "1.2.3".
inline ImageRecord slice(const std::string& seriesUid, int seriesNumber, int instance) {
  ImageRecord record;
  record.file = "/images/" + seriesUid + "." + std::to_string(instance);
  record.sopInstanceUid = seriesUid + "." + std::to_string(instance);
  record.instanceNumber = instance;
  record.studyInstanceUid = "1.2.3";
  record.studyDescription = "Spine";
  record.studyDate = "20200101";
  record.seriesInstanceUid = seriesUid;
  record.seriesNumber = seriesNumber;
  record.seriesDescription = "series " + std::to_string(seriesNumber);
  record.modality = "MR";
  record.frameOfReferenceUid = "9.9";
  record.imageType = {"ORIGINAL", "PRIMARY"};
  record.rows = 80;
  record.columns = 100;
  return record;
}

inline ImageRecord placed(ImageRecord record, std::array<double, 3> position, std::array<double, 3> row,
                          std::array<double, 3> column, double spacingMm = 0.5) {
  record.geometry = ImageGeometry{position, row, column, spacingMm, spacingMm};
  return record;
}

/// Rows run to the back, columns to the feet: seen from the patient's left. The normal points to the right.
inline ImageRecord sagittal(const std::string& seriesUid, int seriesNumber, int instance, double xMm) {
  return placed(slice(seriesUid, seriesNumber, instance), {xMm, -25, 20}, {0, 1, 0}, {0, 0, -1});
}

/// Rows run to the left, columns to the feet.
inline ImageRecord coronal(const std::string& seriesUid, int seriesNumber, int instance, double yMm) {
  return placed(slice(seriesUid, seriesNumber, instance), {-25, yMm, 20}, {1, 0, 0}, {0, 0, -1});
}

/// Rows run to the left, columns to the back. The normal points to the head.
inline ImageRecord axial(const std::string& seriesUid, int seriesNumber, int instance, double zMm) {
  return placed(slice(seriesUid, seriesNumber, instance), {-25, -20, zMm}, {1, 0, 0}, {0, 1, 0});
}

/// Two sagittal slices (series 1) and three axial ones (series 2).
inline std::vector<ImageRecord> smallStudy() {
  return {sagittal("1.1", 1, 1, -2), sagittal("1.1", 1, 2, 2), axial("1.2", 2, 1, 10), axial("1.2", 2, 2, 5),
          axial("1.2", 2, 3, 0)};
}

}  // namespace workstation::test
