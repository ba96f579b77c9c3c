// What painting a viewer costs: a slice from its stored values, a repaint while an annotation is dragged, and each next
// slice while scrolling.

#include <benchmark/benchmark.h>

#include <QGuiApplication>
#include <cmath>

#include "host/ROI.h"
#include "workstation/render/GreyImage.h"
#include "workstation/render/ViewPainter.h"

namespace {

using workstation::PaintedAnnotation;
using workstation::PixelData;
using workstation::ViewPainter;
using workstation::ViewPicture;

/// 16-bit values over the whole range, so that the table is as long as it gets.
std::shared_ptr<const PixelData> slice(int size, int number) {
  auto pixels = std::make_shared<PixelData>();
  pixels->rows = pixels->columns = size;
  pixels->windows = {{2000, 4000, {}}};
  for (int row = 0; row < size; ++row)
    for (int column = 0; column < size; ++column)
      pixels->samples.push_back((row * 131 + column * 17 + number * 1013) % 65536 - 32768);
  return pixels;
}

/// A view with a labelled spine: the curve, 17 connector lines and 17 names.
ViewPicture labelledPicture(double viewSize, int imageSize) {
  ViewPicture picture;
  picture.transform.viewWidth = picture.transform.viewHeight = viewSize;
  picture.transform.columns = picture.transform.rows = imageSize;
  picture.transform.scale = picture.transform.scaleToFit();
  picture.letters = {"A", "P", "H", "F"};
  picture.scaleBar = workstation::scaleBarFor(2, viewSize / 4);
  picture.corners = {
      {"Doe, Jane", "P-1", "2024-02-29"}, {"Lumbar spine", "Series 3: T2 sag", "MR"}, {"Slice 7 / 15"}, {}};
  PaintedAnnotation curve;
  curve.type = pelmar::ROITypeOpenPolygon;
  curve.colour = {0, 1, 0, 1};
  for (int i = 0; i < 250; ++i)
    curve.stroke.push_back({imageSize / 2.0 + 20 * std::sin(i / 40.0), imageSize * (0.1 + 0.8 * i / 250)});
  curve.vertices = {curve.stroke.front(), curve.stroke.back()};
  curve.handles = true;
  picture.annotations.push_back(curve);
  for (int level = 0; level < 17; ++level) {
    const double y = imageSize * (0.1 + 0.8 * level / 17);
    PaintedAnnotation line;
    line.type = pelmar::ROITypeLength;
    line.colour = {1, 1, 0, 0.2};
    line.thickness = 2;
    line.vertices = line.stroke = {{imageSize / 2.0, y}, {imageSize * 0.6, y}};
    PaintedAnnotation text;
    text.type = pelmar::ROITypeText;
    text.colour = {1, 0.8, 0.2, 1};
    text.thickness = 15;
    text.vertices = {{imageSize * 0.65, y}};
    text.lines = {"T" + std::to_string(level + 1)};
    picture.annotations.push_back(line);
    picture.annotations.push_back(text);
  }
  return picture;
}

QImage surfaceFor(const ViewPicture& picture, double ratio) {
  QImage surface(static_cast<int>(picture.transform.viewWidth * ratio),
                 static_cast<int>(picture.transform.viewHeight * ratio), QImage::Format_RGB32);
  surface.setDevicePixelRatio(ratio);
  return surface;
}

void greyImage(benchmark::State& state) {
  const auto pixels = slice(512, 0);
  for (auto _ : state) {
    const auto range = workstation::storedRange(*pixels);
    const QImage image = imageOfPixels(*pixels, range, voiTransformOf(*pixels, range, {}));
    benchmark::DoNotOptimize(image.constBits());
  }
  state.counters["images/s"] = benchmark::Counter(1, benchmark::Counter::kIsIterationInvariantRate);
}

void scroll(benchmark::State& state, double ratio) {
  ViewPainter painter;
  const ViewPicture picture = labelledPicture(600, 512);
  QImage surface = surfaceFor(picture, ratio);
  std::vector<std::shared_ptr<const PixelData>> slices;
  slices.reserve(8);
  for (int number = 0; number < 8; ++number) slices.push_back(slice(512, number));
  std::size_t shown = 0;
  for (auto _ : state) {
    QPainter canvas(&surface);
    painter.paint(canvas, picture, slices[++shown % slices.size()]);
  }
  state.counters["images/s"] = benchmark::Counter(1, benchmark::Counter::kIsIterationInvariantRate);
}

void dragInFourViewers(benchmark::State& state) {
  std::vector<ViewPainter> painters(4);
  ViewPicture picture = labelledPicture(600, 512);
  QImage surface = surfaceFor(picture, 1);
  const auto pixels = slice(512, 0);
  double shift = 0;
  for (auto _ : state) {
    shift = shift > 5 ? -5 : shift + 0.5;
    for (auto& point : picture.annotations[0].stroke) point.x += shift;
    for (auto& painter : painters) {
      QPainter canvas(&surface);
      painter.paint(canvas, picture, pixels);
    }
  }
}

void scrollAtTwiceTheDensity(benchmark::State& state) { scroll(state, 2); }
void scrollOnce(benchmark::State& state) { scroll(state, 1); }

BENCHMARK(greyImage)->Name("window/512x512 of 16 bits")->Unit(benchmark::kMillisecond);
BENCHMARK(scrollOnce)->Name("scroll/512x512 in 600x600 points")->Unit(benchmark::kMillisecond);
BENCHMARK(scrollAtTwiceTheDensity)->Name("scroll/512x512 in 600x600 points, ratio 2")->Unit(benchmark::kMillisecond);
BENCHMARK(dragInFourViewers)->Name("drag/four labelled viewers of 600x600 points")->Unit(benchmark::kMillisecond);

}  // namespace

int main(int argc, char** argv) {
  char name[] = "bench_render";
  char option[] = "-platform";
  char platform[] = "offscreen";
  char* arguments[] = {name, option, platform, nullptr};
  int count = 3;
  const QGuiApplication application(count, arguments);
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  benchmark::RunSpecifiedBenchmarks();
  return 0;
}
