#include "workstation/render/ViewPicture.h"

#include <algorithm>
#include <cmath>

#include "host/ROI.h"
#include "workstation/model/View.h"
#include "workstation/render/NumberText.h"

namespace workstation {
namespace {

using pelmar::PixelPoint;
using pelmar::Ref;
using pelmar::ROI;

/// Samples of a spline: one in so many points of the display.
constexpr double pointsPerSample = 2;
constexpr double fewestSamplesPerPixel = 0.25;
constexpr double mostSamplesPerPixel = 16;

bool isFinite(PixelPoint point) { return std::isfinite(point.x) && std::isfinite(point.y); }

std::vector<PixelPoint> pixelsOf(const std::vector<pelmar::MyPoint>& points) {
  std::vector<PixelPoint> pixels;
  pixels.reserve(points.size());
  for (const auto& point : points) pixels.push_back(point.point());
  return pixels;
}

std::vector<PixelPoint> verticesOf(const Ref<ROI>& roi) {
  const long type = roi->type();
  if (type == pelmar::ROITypeText) return {roi->rect().origin};
  const auto points = roi->points();
  std::vector<PixelPoint> vertices;
  for (std::size_t index = 0; index < points->count(); ++index)
    vertices.push_back(points->objectAtIndex(index).point());
  if (type == pelmar::ROITypePoint && vertices.empty()) vertices.push_back(roi->rect().origin);
  return vertices;
}

/// The lines of a text between line breaks.
std::vector<std::string> linesOf(const std::string& text) {
  std::vector<std::string> lines;
  std::size_t start = 0;
  while (start < text.size()) {
    const std::size_t end = std::min(text.find('\n', start), text.size());
    lines.push_back(text.substr(start, end - start));
    start = end + 1;
  }
  return lines;
}

std::vector<std::string> textsOf(const Ref<ROI>& roi) {
  std::vector<std::string> lines = linesOf(roi->name());
  const long type = roi->type();
  const bool isMeasured = type == pelmar::ROITypeLength || type == pelmar::ROITypeOpenPolygon;
  if (type == pelmar::ROITypeText) return lines;
  if (!roi->displayTextualData()) return {};
  // A slice without geometry has no length to tell.
  const double lengthCm = roi->length();
  if (isMeasured && std::isfinite(lengthCm) && lengthCm > 0) lines.push_back(fixedText(lengthCm, 2) + " cm");
  return lines;
}

std::optional<PaintedAnnotation> paintedOf(const Ref<ROI>& roi, double scale) {
  PaintedAnnotation painted;
  painted.type = roi->type();
  painted.vertices = verticesOf(roi);
  if (painted.vertices.empty() || !std::all_of(painted.vertices.begin(), painted.vertices.end(), isFinite))
    return std::nullopt;
  painted.stroke = painted.vertices;
  if (painted.type == pelmar::ROITypeOpenPolygon) {
    const double samples = std::clamp(scale / pointsPerSample, fewestSamplesPerPixel, mostSamplesPerPixel);
    painted.stroke =
        pixelsOf(roi->splinePoints(static_cast<float>(samples), nullptr).value_or(std::vector<pelmar::MyPoint>()));
  }
  painted.lines = textsOf(roi);
  painted.colour = roi->NSColor();
  painted.thickness = roi->thickness();
  painted.handles = roi->ROImode() != pelmar::ROIModeFinished;
  return painted;
}

void addReferenceLine(const Workstation& workstation, int viewer, ViewPicture& picture) {
  const auto front = workstation.frontViewer();
  if (!front || *front == viewer) return;
  const auto info = workstation.viewer(*front);
  const ImageRecord* other = info ? workstation.sliceRecord(*front, info->slice) : nullptr;
  if (!other) return;
  if (const auto line = referenceLine(picture.image, *other)) picture.referenceLines.push_back(*line);
}

/// A scale bar may take this much of the view's width.
constexpr double barShare = 0.25;

void updateScaleBar(ViewPicture& picture) {
  if (!picture.scaleBar) return;
  const ViewTransform& transform = picture.transform;
  picture.scaleBar = scaleBarFor(transform.scale / picture.image.geometry->spacingX, transform.viewWidth * barShare);
}

void addTexts(const Workstation& workstation, const ViewerInfo& info, ViewPicture& picture) {
  const Study* study = workstation.study(picture.image.studyInstanceUid);
  picture.corners = cornerTexts(picture.image, study ? study->description : std::nullopt, info.slice, info.slices,
                                picture.transform.scale);
  if (!picture.image.geometry) return;
  picture.letters = edgeLetters(*picture.image.geometry, picture.transform);
  picture.scaleBar = ScaleBar{};
  updateScaleBar(picture);
}

}  // namespace

std::optional<ViewPicture> pictureOf(const Workstation& workstation, int viewer, const PictureOptions& options) {
  const auto info = workstation.viewer(viewer);
  const auto imageView = pelmar::ref_cast<View>(workstation.controller(viewer)->imageView());
  const ImageRecord* image = info ? workstation.sliceRecord(viewer, info->slice) : nullptr;
  if (!image || !imageView) return std::nullopt;
  ViewPicture picture;
  picture.image = *image;
  picture.transform = imageView.get()->transform();
  picture.window = options.window;
  picture.voiTable = options.voiTable;
  picture.banners = options.banners;
  picture.showsWindow = options.texts;
  for (const AnnotationInfo& annotation : workstation.annotations(viewer, info->slice)) {
    if (auto painted = paintedOf(annotation.roi, picture.transform.scale))
      picture.annotations.push_back(*std::move(painted));
  }
  if (options.referenceLines) addReferenceLine(workstation, viewer, picture);
  if (options.texts) addTexts(workstation, *info, picture);
  return picture;
}

void resize(ViewPicture& picture, double width, double height) {
  ViewTransform& transform = picture.transform;
  if (!(transform.viewWidth > 0) || !(transform.viewHeight > 0)) return;
  const double factor = std::min(width / transform.viewWidth, height / transform.viewHeight);
  transform.viewWidth = width;
  transform.viewHeight = height;
  transform.scale *= factor;
  transform.origin = {transform.origin.x * factor, transform.origin.y * factor};
  updateScaleBar(picture);
}

}  // namespace workstation
