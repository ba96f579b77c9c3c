#include "phantom/Render.h"

#include <algorithm>
#include <cmath>

#include "phantom/Random.h"

namespace phantom {
namespace {

constexpr float mrNoise = 16.0F;
constexpr float ctNoise = 14.0F;
constexpr double coilDropPerMm = 0.0016;  // an MR surface coil lies under the back: what is in front of it is darker

/// Each value becomes the 1-2-1 mean of itself and its neighbours, `stride` away, within a run of `count`.
void blurRun(float* values, std::size_t count, std::size_t stride) {
  float before = values[0];
  for (std::size_t i = 0; i < count; ++i) {
    const float here = values[i * stride];
    const float after = i + 1 < count ? values[(i + 1) * stride] : here;
    values[i * stride] = 0.25F * before + 0.5F * here + 0.25F * after;
    before = here;
  }
}

void blur(std::vector<float>& image, std::size_t size) {
  for (std::size_t row = 0; row < size; ++row) blurRun(&image[row * size], size, 1);
  for (std::size_t column = 0; column < size; ++column) blurRun(&image[column], size, size);
}

}  // namespace

std::vector<std::int16_t> renderSlice(const Tissue& tissue, const SlicePlane& plane, Contrast contrast,
                                      std::uint64_t noiseKey) {
  const auto size = static_cast<std::size_t>(plane.size);
  const bool ct = contrast == Contrast::Ct;
  std::vector<float> image;
  image.reserve(size * size);
  for (std::size_t row = 0; row < size; ++row) {
    const Vec3 start = plane.position + (plane.spacingMm * static_cast<double>(row)) * plane.column;
    for (std::size_t column = 0; column < size; ++column) {
      const Vec3 place = start + (plane.spacingMm * static_cast<double>(column)) * plane.row;
      const float coil = ct ? 1.0F : static_cast<float>(std::clamp(1.0 + coilDropPerMm * place.y, 0.7, 1.15));
      image.push_back(coil * tissue.signal(place));
    }
  }
  blur(image, size);

  const std::uint64_t key = scatter(noiseKey);
  std::vector<std::int16_t> samples;
  samples.reserve(image.size());
  for (std::size_t i = 0; i < image.size(); ++i) {
    float value = image[i];
    if (ct) {
      value = std::clamp(value + ctNoise * noiseOf(key + i), -1024.0F, 3071.0F);
    } else {
      // The magnitude of a signal with noise in both channels (Rice): in air the noise is positive.
      const float inPhase = value + mrNoise * noiseOf(key + 2 * i);
      const float quadrature = mrNoise * noiseOf(key + 2 * i + 1);
      value = std::min(std::sqrt(inPhase * inPhase + quadrature * quadrature), 4095.0F);
    }
    samples.push_back(static_cast<std::int16_t>(std::lround(value)));
  }
  return samples;
}

}  // namespace phantom
