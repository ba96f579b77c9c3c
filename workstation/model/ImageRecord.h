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

  /// Where there is no geometry: height of a pixel as a multiple of its width, > 0. It says nothing of millimetres.
  double pixelAspect = 1;

  int rows = 0;
  int columns = 0;
  bool colour = false;  ///< more than one sample a pixel, or a palette
};

/// Height of a pixel as a multiple of its width, as the image is to be painted; > 0.
inline double paintedPixelAspect(const ImageRecord& image) {
  if (!image.geometry) return image.pixelAspect;
  const ImageGeometry& geometry = *image.geometry;
  return geometry.spacingX > 0 && geometry.spacingY > 0 ? geometry.spacingY / geometry.spacingX : 1;
}

/// One of the windows that a file offers (PS3.3 C.11.2.1.2), in modality values.
struct WindowSetting {
  double centre = 0;
  double width = 0;         ///< > 0
  std::string explanation;  ///< UTF-8; empty where the file gives none
};

/// How a window turns values into brightness (PS3.3 C.11.2.1.2 and C.11.2.1.3).
enum class WindowFunction { linear, linearExact, sigmoid };

/// A table that turns modality values into brightness (PS3.3 C.11.2.1.1).
struct VoiLut {
  std::int32_t firstMapped = 0;        ///< the modality value of the first entry; lower ones get the first entry
  int bits = 8;                        ///< 8 .. 16: brightest is 2^bits - 1
  std::vector<std::uint16_t> entries;  ///< at least one; values beyond the last get the last
  std::string explanation;             ///< UTF-8; empty where the file gives none
};

/// The decoded pixels of one slice.
struct PixelData {
  int rows = 0;
  int columns = 0;
  /// 1: stored values, or what a table of the file makes of them (Modality LUT, PS3.3 C.11.1), or 3: red, green, blue
  /// interleaved, 0..255 (or 0..65535)
  int samplesPerPixel = 1;
  std::vector<std::int32_t> samples;  ///< rows * columns * samplesPerPixel, row by row
  double rescaleSlope = 1;            ///< PS3.3 C.11.1; modality value = slope * sample + intercept
  double rescaleIntercept = 0;
  std::optional<double> windowCentre;  ///< the first of the file's windows, in modality values
  std::optional<double> windowWidth;
  bool monochrome1 = false;            ///< low values are shown bright
  std::vector<WindowSetting> windows;  ///< all that the file offers, in its order
  WindowFunction windowFunction = WindowFunction::linear;
  std::vector<VoiLut> voiLuts;  ///< all that the file offers, in its order: alternatives to the windows
};

/// Reads pixels when they are asked for.
class PixelSource {
 public:
  virtual ~PixelSource() = default;
  /// The pixels, or nothing with a sentence in `problem` that names the file and the reason.
  virtual std::optional<PixelData> pixels(const ImageRecord& image, std::string& problem) = 0;
};

}  // namespace workstation
