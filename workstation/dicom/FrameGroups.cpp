#include "workstation/dicom/FrameGroups.h"

#include <dcmtk/config/osconfig.h>
#include <dcmtk/dcmdata/dctk.h>

#include <algorithm>
#include <cmath>

namespace workstation {
namespace {

using Numbers = std::vector<double>;

/// How far from unit length and from perpendicular the directions may be: what three decimals in a file leave open.
constexpr double directionTolerance = 0.01;
/// How many times as high as wide, or as wide as high, a pixel is believed to be.
constexpr double mostUnequal = 100;

std::vector<DcmItem*> itemsOf(DcmItem& holder, const DcmTagKey& tag) {
  std::vector<DcmItem*> items;
  DcmSequenceOfItems* sequence = nullptr;
  if (holder.findAndGetSequence(tag, sequence).bad() || sequence == nullptr) return items;
  for (DcmObject* item = sequence->nextInContainer(nullptr); item != nullptr; item = sequence->nextInContainer(item))
    items.push_back(static_cast<DcmItem*>(item));
  return items;
}

DcmItem* firstItemOf(DcmItem* holder, const DcmTagKey& tag) {
  DcmItem* item = nullptr;
  if (holder == nullptr || holder->findAndGetSequenceItem(tag, item, 0).bad()) return nullptr;
  return item;
}

/// The finite numbers of an attribute; empty with a phrase in `problem` when they are missing or not what is needed.
Numbers required(DcmItem& holder, const DcmTagKey& tag, const char* name, std::size_t count, std::string& problem) {
  const std::string attribute = name;
  if (Attributes(holder).bytes(tag).value_or("").empty()) {
    problem = attribute + " is missing";
    return {};
  }
  const Numbers values = Attributes(holder).numbers(tag).value_or(Numbers());
  if (values.empty()) problem = attribute + " is not made of numbers";
  if (!values.empty() && values.size() != count)
    problem = attribute + " has " + std::to_string(values.size()) + " values instead of " + std::to_string(count);
  if (!std::all_of(values.begin(), values.end(), [](double value) { return std::isfinite(value); }))
    problem = attribute + " is not finite";
  return problem.empty() ? values : Numbers();
}

double dot(const std::array<double, 3>& a, const std::array<double, 3>& b) {
  return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}

/// Scales a direction that is nearly a unit vector to length 1; one of exact length stays as it is, bit for bit.
bool makeUnit(std::array<double, 3>& direction) {
  const double length = std::sqrt(dot(direction, direction));
  if (!(std::abs(length - 1) <= directionTolerance)) return false;
  for (double& component : direction) component /= length;
  return true;
}

std::string readPosition(DcmItem& holder, ImageGeometry& geometry) {
  std::string problem;
  const Numbers values = required(holder, DCM_ImagePositionPatient, "Image Position (Patient)", 3, problem);
  if (problem.empty()) std::copy(values.begin(), values.end(), geometry.position.begin());
  return problem;
}

std::string readOrientation(DcmItem& holder, ImageGeometry& geometry) {
  std::string problem;
  const Numbers values = required(holder, DCM_ImageOrientationPatient, "Image Orientation (Patient)", 6, problem);
  if (!problem.empty()) return problem;
  std::copy(values.begin(), values.begin() + 3, geometry.row.begin());
  std::copy(values.begin() + 3, values.end(), geometry.column.begin());
  if (!makeUnit(geometry.row) || !makeUnit(geometry.column))
    return "the directions in Image Orientation (Patient) are not unit vectors";
  if (std::abs(dot(geometry.row, geometry.column)) > directionTolerance)
    return "the directions in Image Orientation (Patient) are not perpendicular";
  return {};
}

std::string readSpacing(DcmItem& holder, ImageGeometry& geometry) {
  std::string problem;
  const Numbers values = required(holder, DCM_PixelSpacing, "Pixel Spacing", 2, problem);
  if (!problem.empty()) return problem;
  geometry.spacingY = values[0];  // between rows (PS3.3 10.7.1.3)
  geometry.spacingX = values[1];  // between columns
  if (geometry.spacingX == 0 || geometry.spacingY == 0) return "Pixel Spacing is 0";
  if (geometry.spacingX < 0 || geometry.spacingY < 0) return "Pixel Spacing is negative";
  return {};
}

/// Vertical by horizontal size, as Pixel Spacing and Pixel Aspect Ratio have them. Nothing where they are not two
/// numbers above 0, or so unequal that nothing of the image would be seen.
std::optional<double> verticalByHorizontal(DcmItem& holder, const DcmTagKey& tag) {
  const Numbers sizes = Attributes(holder).numbers(tag).value_or(Numbers());
  if (sizes.size() != 2 || !(sizes[0] > 0) || !(sizes[1] > 0)) return std::nullopt;
  const double ratio = sizes[0] / sizes[1];
  return ratio * mostUnequal >= 1 && ratio <= mostUnequal ? std::optional(ratio) : std::nullopt;
}

}  // namespace

FrameGroups::FrameGroups(DcmDataset& dataset)
    : dataset_(dataset),
      shared_(firstItemOf(&dataset, DCM_SharedFunctionalGroupsSequence)),
      perFrame_(itemsOf(dataset, DCM_PerFrameFunctionalGroupsSequence)) {}

DcmItem& FrameGroups::macro(int frame, const DcmTagKey& sequence) const {
  const auto index = static_cast<std::size_t>(frame - 1);
  DcmItem* own = index < perFrame_.size() ? firstItemOf(perFrame_[index], sequence) : nullptr;
  if (own != nullptr) return *own;
  DcmItem* common = firstItemOf(shared_, sequence);
  return common != nullptr ? *common : dataset_;
}

std::optional<ImageGeometry> FrameGroups::geometry(int frame, int frames, std::string& problem) const {
  DcmItem& position = macro(frame, DCM_PlanePositionSequence);
  if (frames > 1 && &position == &dataset_) {
    problem = "it is a multi-frame image that does not say where each frame lies";
    return std::nullopt;
  }
  ImageGeometry geometry;
  problem = readOrientation(macro(frame, DCM_PlaneOrientationSequence), geometry);
  if (problem.empty()) problem = readPosition(position, geometry);
  if (problem.empty()) problem = readSpacing(macro(frame, DCM_PixelMeasuresSequence), geometry);
  if (!problem.empty()) return std::nullopt;
  return geometry;
}

double FrameGroups::pixelAspect(int frame) const {
  const auto bySpacing = verticalByHorizontal(macro(frame, DCM_PixelMeasuresSequence), DCM_PixelSpacing);
  return bySpacing ? *bySpacing : verticalByHorizontal(dataset_, DCM_PixelAspectRatio).value_or(1);
}

}  // namespace workstation
