#pragma once

#include <array>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace workstation {

/// Where a slice lies in the patient (PS3.3 C.7.6.2), millimetres, LPS.
struct ImageGeometry {
  std::array<double, 3> position{};  ///< Image Position (Patient): centre of the first pixel
  std::array<double, 3> row{};       ///< unit vector in the direction of growing column index
  std::array<double, 3> column{};    ///< unit vector in the direction of growing row index
  double spacingX = 0;               ///< mm from column to column: the second value of Pixel Spacing; > 0
  double spacingY = 0;               ///< mm from row to row: the first value of Pixel Spacing; > 0
};

/// What is known of one slice before its pixels are read: an image file, or one frame of a multi-frame file.
struct ImageRecord {
  std::filesystem::path file;
  int frame = 1;  ///< from 1; 1 in a single-frame file
  std::string sopClassUid;
  std::string sopInstanceUid;
  std::optional<int> instanceNumber;
  std::vector<std::string> imageType;

  std::string studyInstanceUid;
  std::optional<std::string> studyDescription;  ///< absent when the attribute is, empty when it is empty; UTF-8
  std::string studyDate;
  std::string patientName;  ///< UTF-8
  std::string patientId;

  std::string seriesInstanceUid;
  std::optional<int> seriesNumber;
  std::string seriesDescription;  ///< UTF-8
  std::string modality;
  std::optional<std::string> bodyPartExamined;

  std::string frameOfReferenceUid;
  std::optional<ImageGeometry> geometry;  ///< absent when the file has none that can be used
  std::string geometryProblem;            ///< why not: a phrase such as "Pixel Spacing is 0"; empty with geometry

  int rows = 0;
  int columns = 0;
  bool colour = false;  ///< more than one sample a pixel, or a palette
};

/// The decoded pixels of one slice.
struct PixelData {
  int rows = 0;
  int columns = 0;
  int samplesPerPixel = 1;            ///< 1: stored values, or 3: red, green, blue interleaved, 0..255 (or 0..65535)
  std::vector<std::int32_t> samples;  ///< rows * columns * samplesPerPixel, row by row
  double rescaleSlope = 1;            ///< PS3.3 C.11.1; modality value = slope * stored + intercept
  double rescaleIntercept = 0;
  std::optional<double> windowCentre;  ///< the first of the file's windows, in modality values
  std::optional<double> windowWidth;
  bool monochrome1 = false;  ///< low values are shown bright
};

/// Reads pixels when they are asked for.
class PixelSource {
 public:
  virtual ~PixelSource() = default;
  /// The pixels, or nothing with a sentence in `problem` that names the file and the reason.
  virtual std::optional<PixelData> pixels(const ImageRecord& image, std::string& problem) = 0;
};

}  // namespace workstation
