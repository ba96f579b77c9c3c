#include "cli/VerticalSlice.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>

#include "workstation/model/Spline.h"

namespace cli {

using pelmar::PixelPoint;
using workstation::ViewerInfo;
using workstation::Workstation;

namespace {

constexpr double minimumLengthCm = 7.0;

bool isVertical(const ViewerInfo& viewer) { return viewer.orientationCode >= 0 && viewer.orientationCode <= 3; }

std::string optionName(const LabelArguments& arguments) { return arguments.polygon ? "--polygon" : "--line"; }

Expected<ViewerInfo> viewerOfSeries(const Workstation& workstation, int seriesNumber) {
  bool exists = false;
  for (const auto& viewer : workstation.viewers()) {
    if (workstation.series(viewer.stack)->number != seriesNumber) continue;
    exists = true;
    if (isVertical(viewer)) return viewer;
  }
  const auto name = "--series " + std::to_string(seriesNumber);
  if (!exists) return Failure{ExitNotAllowed, name + ": the study has no such series (vertana info lists them)."};
  return Failure{ExitNotAllowed, name + " is neither sagittal nor coronal: Coronal or Sagittal series needed."};
}

Expected<ViewerInfo> verticalViewer(const Workstation& workstation, const LabelArguments& arguments) {
  if (arguments.series) return viewerOfSeries(workstation, *arguments.series);
  for (const auto& viewer : workstation.viewers()) {
    if (viewer.front && (viewer.orientationCode == 0 || viewer.orientationCode == 1)) return viewer;
  }
  for (const long highestCode : {1L, 3L}) {
    for (const auto& viewer : workstation.viewers()) {
      if (isVertical(viewer) && viewer.orientationCode <= highestCode) return viewer;
    }
  }
  return Failure{ExitNotAllowed,
                 "The study in " + arguments.study + " cannot be drawn on: Coronal or Sagittal series needed."};
}

double millimetres(const workstation::ImageGeometry& geometry, PixelPoint a, PixelPoint b) {
  return std::hypot((b.x - a.x) * geometry.spacingX, (b.y - a.y) * geometry.spacingY);
}

double lengthCm(const workstation::ImageGeometry& geometry, const LabelArguments& arguments) {
  std::vector<pelmar::MyPoint> points;
  for (const auto& point : arguments.points) points.push_back(pelmar::MyPoint::point(point));
  if (arguments.polygon) points = workstation::sampleSpline(points, 1.0).points;
  double length = 0;
  for (std::size_t i = 1; i < points.size(); ++i)
    length += millimetres(geometry, points[i - 1].point(), points[i].point());
  return length / 10;
}

std::string formatted(PixelPoint point) {
  char text[64];
  std::snprintf(text, sizeof text, "%g,%g", point.x, point.y);
  return text;
}

/// A length under the minimum with two decimals, or with as many more as it takes to see that it is under it.
std::string shortLength(double cm) {
  char text[64];
  for (int decimals = 2; decimals <= 15; ++decimals) {
    std::snprintf(text, sizeof text, "%.*f", decimals, cm);
    if (std::strtod(text, nullptr) < minimumLengthCm) break;
  }
  return text;
}

}  // namespace

Expected<VerticalSlice> findVerticalSlice(const Workstation& workstation, const LabelArguments& arguments) {
  const auto viewer = verticalViewer(workstation, arguments);
  if (!viewer) return viewer.failure;
  const int slice = arguments.slice.value_or(viewer->slices / 2);
  if (slice < 0 || slice >= viewer->slices) {
    return Failure{ExitNotAllowed, "--slice " + std::to_string(slice) + ": the series has " +
                                       std::to_string(viewer->slices) + " slices, counted from 0."};
  }
  VerticalSlice found;
  found.viewer = viewer->number;
  found.slice = slice;
  found.slices = viewer->slices;
  found.series = workstation.series(viewer->stack)->number;
  found.stack = viewer->stack.stack;
  found.record = *workstation.sliceRecord(viewer->number, slice);
  found.frameOfReference = found.record.frameOfReferenceUid;
  return found;
}

std::optional<Failure> checkPoints(const VerticalSlice& slice, const LabelArguments& arguments) {
  const auto& record = slice.record;
  for (const auto& point : arguments.points) {
    if (point.x < -0.5 || point.y < -0.5 || point.x > record.columns - 0.5 || point.y > record.rows - 0.5) {
      return Failure{ExitNotAllowed, optionName(arguments) + ": the point " + formatted(point) +
                                         " lies outside the image, which has " + std::to_string(record.columns) +
                                         " columns and " + std::to_string(record.rows) + " rows."};
    }
  }
  const double length = lengthCm(*record.geometry, arguments);
  if (length < minimumLengthCm) {
    return Failure{ExitNotAllowed, optionName(arguments) + " is " + shortLength(length) +
                                       " cm long on the patient, but a spine needs 7 cm: draw from one end of the "
                                       "region to the other."};
  }
  return std::nullopt;
}

}  // namespace cli
