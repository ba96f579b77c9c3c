#include "workstation/dicom/ImageWriter.h"

#include <dcmtk/config/osconfig.h>
#include <dcmtk/dcmdata/dctk.h>

#include <algorithm>
#include <cmath>
#include <system_error>

#include "workstation/dicom/AttributeWriter.h"
#include "workstation/dicom/DecimalString.h"
#include "workstation/dicom/Toolkit.h"

namespace workstation {
namespace {

template <class Numbers>
std::string decimalStrings(const Numbers& values) {
  std::string text;
  for (const double value : values) text += (text.empty() ? "" : "\\") + decimalString(value);
  return text;
}

std::string joined(const std::vector<std::string>& values) {
  std::string text;
  for (const std::string& value : values) text += (text.empty() ? "" : "\\") + value;
  return text;
}

void putPatientAndStudy(const ImageToWrite& image, AttributeWriter& attributes) {
  attributes.text(DCM_SpecificCharacterSet, "ISO_IR 192");
  attributes.text(DCM_PatientName, image.patientName);
  attributes.text(DCM_PatientID, image.patientId);
  attributes.text(DCM_PatientBirthDate, image.patientBirthDate);
  attributes.text(DCM_PatientSex, image.patientSex);
  attributes.text(DCM_StudyInstanceUID, image.studyInstanceUid);
  attributes.text(DCM_StudyDate, image.studyDate);
  attributes.text(DCM_StudyTime, image.studyTime);
  attributes.text(DCM_StudyID, image.studyId);
  attributes.text(DCM_ReferringPhysicianName, "");
  attributes.text(DCM_AccessionNumber, "");
  if (image.studyDescription) attributes.text(DCM_StudyDescription, *image.studyDescription);
}

void putSeries(const ImageToWrite& image, AttributeWriter& attributes) {
  attributes.text(DCM_Modality, image.kind == ImageKind::MR ? "MR" : "CT");
  attributes.text(DCM_SeriesInstanceUID, image.seriesInstanceUid);
  attributes.integer(DCM_SeriesNumber, image.seriesNumber);
  attributes.text(DCM_SeriesDescription, image.seriesDescription);
  // Without a body part nobody can tell that it is none of a pair, and Laterality must be there (PS3.3 C.7.3.1).
  if (image.bodyPartExamined)
    attributes.text(DCM_BodyPartExamined, *image.bodyPartExamined);
  else
    attributes.text(DCM_Laterality, "");
  attributes.text(DCM_PatientPosition, image.patientPosition);
  attributes.text(DCM_Manufacturer, "Vertana");
  attributes.text(DCM_FrameOfReferenceUID, image.frameOfReferenceUid);
  attributes.text(DCM_PositionReferenceIndicator, "");
}

void putPlane(const ImageToWrite& image, AttributeWriter& attributes) {
  const ImageGeometry& plane = image.geometry;
  attributes.text(DCM_ImagePositionPatient, decimalStrings(plane.position));
  attributes.text(DCM_ImageOrientationPatient, decimalStrings(plane.row) + "\\" + decimalStrings(plane.column));
  attributes.text(DCM_PixelSpacing, decimalStrings(std::vector{plane.spacingY, plane.spacingX}));
  attributes.number(DCM_SliceThickness, image.sliceThicknessMm);
  if (image.spacingBetweenSlicesMm > 0) attributes.number(DCM_SpacingBetweenSlices, image.spacingBetweenSlicesMm);
}

void putAcquisition(const ImageToWrite& image, AttributeWriter& attributes) {
  const bool isMr = image.kind == ImageKind::MR;
  const std::vector<std::string> usual = {"ORIGINAL", "PRIMARY", isMr ? "OTHER" : "AXIAL"};
  attributes.text(DCM_ImageType, joined(image.imageType.empty() ? usual : image.imageType));
  attributes.text(DCM_SOPClassUID, isMr ? UID_MRImageStorage : UID_CTImageStorage);
  attributes.text(DCM_SOPInstanceUID, image.sopInstanceUid);
  attributes.integer(DCM_InstanceNumber, image.instanceNumber);
  attributes.integer(DCM_AcquisitionNumber, 1);
  attributes.text(DCM_ContentDate, image.studyDate);
  attributes.text(DCM_ContentTime, image.studyTime);
  if (isMr) {
    attributes.text(DCM_ScanningSequence, "SE");
    attributes.text(DCM_SequenceVariant, "SK");
    attributes.text(DCM_ScanOptions, "");
    attributes.text(DCM_MRAcquisitionType, "2D");
    attributes.number(DCM_RepetitionTime, image.repetitionTimeMs);
    attributes.number(DCM_EchoTime, image.echoTimeMs);
    attributes.integer(DCM_EchoTrainLength, 1);
  } else {
    attributes.number(DCM_KVP, image.kiloVolts);
    attributes.integer(DCM_RescaleIntercept, 0);
    attributes.integer(DCM_RescaleSlope, 1);
    attributes.text(DCM_RescaleType, "HU");
  }
}

void putPixels(const ImageToWrite& image, AttributeWriter& attributes) {
  attributes.shortInteger(DCM_SamplesPerPixel, 1);
  attributes.text(DCM_PhotometricInterpretation, "MONOCHROME2");
  attributes.shortInteger(DCM_Rows, static_cast<Uint16>(image.rows));
  attributes.shortInteger(DCM_Columns, static_cast<Uint16>(image.columns));
  attributes.shortInteger(DCM_BitsAllocated, 16);
  attributes.shortInteger(DCM_BitsStored, 16);
  attributes.shortInteger(DCM_HighBit, 15);
  attributes.shortInteger(DCM_PixelRepresentation, image.kind == ImageKind::CT ? 1 : 0);
  attributes.number(DCM_WindowCenter, image.windowCentre);
  attributes.number(DCM_WindowWidth, image.windowWidth);
  attributes.words(DCM_PixelData, image.samples);
}

bool isFinite(const ImageGeometry& plane) {
  const auto finite = [](double value) { return std::isfinite(value); };
  return std::all_of(plane.position.begin(), plane.position.end(), finite) &&
         std::all_of(plane.row.begin(), plane.row.end(), finite) &&
         std::all_of(plane.column.begin(), plane.column.end(), finite);
}

/// Why the values cannot be written, or an empty string.
std::string problemOf(const ImageToWrite& image) {
  if (image.rows < 1 || image.rows > 65535 || image.columns < 1 || image.columns > 65535)
    return "its size of " + std::to_string(image.columns) + " x " + std::to_string(image.rows) +
           " pixels is outside 1 to 65535";
  if (image.samples.size() != static_cast<std::size_t>(image.rows) * static_cast<std::size_t>(image.columns))
    return "it has " + std::to_string(image.samples.size()) + " pixel values for " + std::to_string(image.columns) +
           " x " + std::to_string(image.rows) + " pixels";
  if (image.kind == ImageKind::MR &&
      std::any_of(image.samples.begin(), image.samples.end(), [](auto v) { return v < 0; }))
    return "an MR image has no negative pixel values";
  if (!isFinite(image.geometry)) return "its position or orientation is not finite";
  const double positives[] = {image.geometry.spacingX, image.geometry.spacingY, image.sliceThicknessMm};
  for (const double value : positives)
    if (!std::isfinite(value) || value <= 0) return "its spacing or slice thickness is not a positive number";
  for (const std::string* uid :
       {&image.studyInstanceUid, &image.seriesInstanceUid, &image.sopInstanceUid, &image.frameOfReferenceUid})
    if (uid->empty() || uid->size() > 64 || uid->find_first_not_of("0123456789.") != std::string::npos)
      return "\"" + *uid + "\" is not a DICOM unique identifier";
  return {};
}

}  // namespace

bool writeImage(const ImageToWrite& image, const std::filesystem::path& file, std::string& problem) {
  prepareToolkit();
  std::string reason = problemOf(image);
  if (reason.empty()) {
    DcmFileFormat format;
    AttributeWriter attributes(*format.getDataset());
    putPatientAndStudy(image, attributes);
    putSeries(image, attributes);
    putAcquisition(image, attributes);
    putPlane(image, attributes);
    putPixels(image, attributes);
    reason = attributes.problem();
    if (reason.empty()) {
      const OFCondition saved =
          format.saveFile(file.c_str(), EXS_LittleEndianExplicit, EET_ExplicitLength, EGL_recalcGL, EPD_withoutPadding);
      // The toolkit does not notice when the last buffered bytes of a file find the disk full.
      std::error_code ignored;
      const std::uintmax_t wholeSize = format.calcElementLength(EXS_LittleEndianExplicit, EET_ExplicitLength);
      const bool whole = std::filesystem::file_size(file, ignored) == wholeSize;
      if (saved.good() && whole) return true;
      reason = saved.good() ? "it was cut short, the disk may be full" : saved.text();
      std::filesystem::remove(file, ignored);
    }
  }
  problem = "The image could not be written to \"" + file.string() + "\": " + reason + ".";
  return false;
}

}  // namespace workstation
