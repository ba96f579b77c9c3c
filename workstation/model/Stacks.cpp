#include "workstation/model/Stacks.h"

#include <algorithm>
#include <climits>
#include <map>
#include <tuple>

#include "workstation/model/SliceOrder.h"
#include "workstation/model/Vector3.h"

namespace workstation {
namespace {

bool hasImageType(const ImageRecord& image, const char* word) {
  return std::find(image.imageType.begin(), image.imageType.end(), word) != image.imageType.end();
}

/// What must agree for two slices to be scrolled together; the order is that of the stacks in their series.
using StackKey = std::tuple<bool, StackKind, Plane, std::string>;

StackKey stackKeyOf(const ImageRecord& image) {
  const Plane plane = planeOf(image);
  if (plane == Plane::unknown) return {true, StackKind::image, plane, {}};
  return {false, kindOf(image), plane, image.frameOfReferenceUid};
}

std::vector<const ImageRecord*> pointersTo(const std::vector<ImageRecord>& images) {
  std::vector<const ImageRecord*> pointers;
  pointers.reserve(images.size());
  for (const ImageRecord& image : images) pointers.push_back(&image);
  return pointers;
}

Stack makeStack(std::vector<ImageRecord> slices) {
  Stack stack;
  stack.plane = planeOf(slices.front());
  sortSlices(slices, stack.plane);
  if (stack.plane != Plane::unknown) {
    stack.kind = kindOf(slices.front());
    stack.frameOfReferenceUid = slices.front().frameOfReferenceUid;
  }
  stack.orientationCode = orientationCodeOf(pointersTo(slices));
  stack.slices = std::move(slices);
  return stack;
}

Series makeSeries(std::vector<ImageRecord> images) {
  // In stored order, so that what the series takes from its first image does not depend on how files were found.
  std::sort(images.begin(), images.end(), &storedBefore);
  Series series;
  series.uid = images.front().seriesInstanceUid;
  series.description = images.front().seriesDescription;
  series.modality = images.front().modality;
  for (const ImageRecord& image : images) {
    if (!series.number) series.number = image.seriesNumber;
  }
  std::map<StackKey, std::vector<ImageRecord>> groups;
  for (ImageRecord& image : images) {
    StackKey key = stackKeyOf(image);
    groups[std::move(key)].push_back(std::move(image));
  }
  for (auto& group : groups) series.stacks.push_back(makeStack(std::move(group.second)));
  return series;
}

Study makeStudy(const std::string& uid, std::map<std::string, std::vector<ImageRecord>> bySeries) {
  Study study;
  study.uid = uid;
  for (auto& group : bySeries) study.series.push_back(makeSeries(std::move(group.second)));
  std::sort(study.series.begin(), study.series.end(), [](const Series& a, const Series& b) {
    return std::make_tuple(!a.number, a.number.value_or(0), a.uid) <
           std::make_tuple(!b.number, b.number.value_or(0), b.uid);
  });
  const ImageRecord& first = study.series.front().stacks.front().slices.front();
  study.description = first.studyDescription;
  study.date = first.studyDate;
  study.patientName = first.patientName;
  study.patientId = first.patientId;
  return study;
}

}  // namespace

Plane planeOf(const ImageRecord& image) {
  if (!image.geometry) return Plane::unknown;
  const Vector3 normal = cross(image.geometry->row, image.geometry->column);
  const double x = std::abs(normal[0]);
  const double y = std::abs(normal[1]);
  const double z = std::abs(normal[2]);
  if (!(x + y + z > 0)) return Plane::unknown;
  if (x >= y && x >= z) return Plane::sagittal;
  return y >= z ? Plane::coronal : Plane::axial;
}

StackKind kindOf(const ImageRecord& image) {
  if (image.colour) return StackKind::colour;
  if (hasImageType(image, "LOCALIZER")) return StackKind::scout;
  if (hasImageType(image, "REFERENCE")) return StackKind::reference;
  return StackKind::image;
}

std::vector<Study> groupIntoStudies(std::vector<ImageRecord> images) {
  std::map<std::string, std::map<std::string, std::vector<ImageRecord>>> groups;
  for (ImageRecord& image : images) {
    groups[image.studyInstanceUid][image.seriesInstanceUid].push_back(std::move(image));
  }
  std::vector<Study> studies;
  studies.reserve(groups.size());
  for (auto& [uid, bySeries] : groups) studies.push_back(makeStudy(uid, std::move(bySeries)));
  std::stable_sort(studies.begin(), studies.end(), [](const Study& a, const Study& b) { return a.date < b.date; });
  return studies;
}

}  // namespace workstation
