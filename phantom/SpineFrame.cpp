#include "phantom/SpineFrame.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace phantom {
namespace {

constexpr double stationMm = 0.5;
constexpr double cellMm = 2.0;
constexpr double marginMm = 130.0;
constexpr std::size_t coarseStride = 4;

std::size_t cellsFor(double low, double high) { return static_cast<std::size_t>(std::ceil((high - low) / cellMm)) + 1; }

}  // namespace

SpineFrame::SpineFrame(const SpineShape& shape) {
  const auto count = static_cast<std::size_t>(shape.length() / stationMm) + 1;
  double yLow = std::numeric_limits<double>::max();
  double yHigh = std::numeric_limits<double>::lowest();
  for (std::size_t i = 0; i < count; ++i) {
    const double along = static_cast<double>(i) * stationMm;
    const Vec3 tangent = shape.tangent(along);
    const Vec3 left = unitAcross({1, 0, 0}, tangent);
    stations_.push_back({shape.point(along), tangent, left, cross(left, tangent)});
    yLow = std::min(yLow, stations_.back().point.y);
    yHigh = std::max(yHigh, stations_.back().point.y);
  }
  yStart_ = yLow - marginMm;
  zStart_ = stations_.back().point.z - marginMm;
  yCells_ = cellsFor(yStart_, yHigh + marginMm);
  zCells_ = cellsFor(zStart_, stations_.front().point.z + marginMm);
  nearest_.reserve(yCells_ * zCells_);
  for (std::size_t z = 0; z < zCells_; ++z) {
    for (std::size_t y = 0; y < yCells_; ++y) {
      nearest_.push_back(static_cast<unsigned short>(
          nearestStation(yStart_ + static_cast<double>(y) * cellMm, zStart_ + static_cast<double>(z) * cellMm)));
    }
  }
}

std::size_t SpineFrame::nearestStation(double y, double z) const {
  std::size_t best = 0;
  double bestSquare = std::numeric_limits<double>::max();
  for (std::size_t i = 0; i < stations_.size(); i += coarseStride) {
    const double dy = y - stations_[i].point.y;
    const double dz = z - stations_[i].point.z;
    const double square = dy * dy + dz * dz;
    if (square < bestSquare) {
      bestSquare = square;
      best = i;
    }
  }
  return best;
}

SpinePoint SpineFrame::locate(Vec3 patient) const {
  const auto cell = [](double value, double start, std::size_t cells) {
    const double index = std::clamp((value - start) / cellMm + 0.5, 0.0, static_cast<double>(cells - 1));
    return static_cast<std::size_t>(index);
  };
  std::size_t i = nearest_[cell(patient.z, zStart_, zCells_) * yCells_ + cell(patient.y, yStart_, yCells_)];
  // Two steps to the foot of the perpendicular; the rest is less than a station and taken as straight.
  for (int step = 0; step < 2; ++step) {
    const double offset = dot(patient - stations_[i].point, stations_[i].tangent) / stationMm;
    const double position = std::clamp(static_cast<double>(i) + offset, 0.0, static_cast<double>(stations_.size() - 1));
    i = static_cast<std::size_t>(std::floor(position + 0.5));
  }
  const Station& station = stations_[i];
  const Vec3 from = patient - station.point;
  return {static_cast<double>(i) * stationMm + dot(from, station.tangent), dot(from, station.left),
          dot(from, station.back)};
}

}  // namespace phantom
