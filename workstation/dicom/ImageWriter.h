#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "workstation/model/ImageRecord.h"

namespace workstation {

/// Which kind of object is written: MR Image Storage or CT Image Storage.
enum class ImageKind { MR, CT };

/// Everything that stands in one single-frame image file. Strings are UTF-8. Dates are YYYYMMDD, times HHMMSS.
/// Nothing is taken from the clock or from chance, so that the same values always give the same bytes.
struct ImageToWrite {
  ImageKind kind = ImageKind::MR;
  std::vector<std::string> imageType;  ///< empty: ORIGINAL, PRIMARY and OTHER (MR) or AXIAL (CT)

  std::string patientName;  ///< DICOM form: family^given^middle^prefix^suffix
  std::string patientId;
  std::string patientBirthDate;  ///< may be empty
  std::string patientSex;        ///< "M", "F", "O" or empty

  std::string studyInstanceUid;
  std::string studyDate;
  std::string studyTime;
  std::string studyId;
  std::optional<std::string> studyDescription;  ///< no value: the attribute is left out

  std::string seriesInstanceUid;
  int seriesNumber = 1;
  std::string seriesDescription;
  std::optional<std::string> bodyPartExamined;  ///< no value: the attribute is left out
  std::string patientPosition = "HFS";

  std::string sopInstanceUid;
  int instanceNumber = 1;

  std::string frameOfReferenceUid;
  ImageGeometry geometry;             ///< row and column orthonormal, spacings > 0
  double sliceThicknessMm = 1;        ///< > 0
  double spacingBetweenSlicesMm = 0;  ///< written when > 0
  double repetitionTimeMs = 3000;     ///< MR only
  double echoTimeMs = 100;            ///< MR only
  double kiloVolts = 120;             ///< CT only

  int rows = 0;     ///< 1 .. 65535
  int columns = 0;  ///< 1 .. 65535
  /// rows * columns values, row by row. MR: 0 .. 32767, written unsigned. CT: Hounsfield units, written signed with
  /// Rescale Slope 1 and Intercept 0.
  std::vector<std::int16_t> samples;
  double windowCentre = 0;
  double windowWidth = 1;  ///< >= 1
};

/// Writes the image as a DICOM file (explicit VR little endian) that conforms to its storage class (PS3.3 A.3, A.4).
/// The folder must exist; a file of that name is replaced. False, with a whole sentence in `problem`, when a value
/// cannot be written or the file cannot be; no file of that name is left then.
bool writeImage(const ImageToWrite& image, const std::filesystem::path& file, std::string& problem);

}  // namespace workstation
