#pragma once

#include <QImage>
#include <QLineF>
#include <QPainter>
#include <memory>
#include <optional>
#include <string>

#include "workstation/render/TextStamps.h"
#include "workstation/render/ViewPicture.h"
#include "workstation/render/WindowLevel.h"

namespace workstation {

/// Paints one viewer, again and again: what has not changed since the last time is not made anew. Needs a
/// QGuiApplication, of any platform.
class ViewPainter {
 public:
  /// Paints the picture into the rectangle from (0, 0) to the view's size in points, with the device pixel ratio of the
  /// painter's device. Without pixels, black with the sentence `problem` in the middle. The painter must not be turned
  /// or enlarged.
  void paint(QPainter& painter, const ViewPicture& picture, const std::shared_ptr<const PixelData>& pixels,
             const std::string& problem = {});

 private:
  void updateImage(const ViewPicture& picture, const std::shared_ptr<const PixelData>& pixels);
  void updateLayer(const ViewPicture& picture, double devicePixelRatio);
  void paintReferenceLines(QPainter& painter, const ViewPicture& picture);
  void paintCrosses(QPainter& painter, const ViewPicture& picture);
  void paintProblem(QPainter& painter, const ViewPicture& picture, const std::string& problem);
  double paintBanners(QPainter& painter, const ViewPicture& picture);
  void paintTexts(QPainter& painter, const ViewPicture& picture, double bottom);
  static void paintScaleBar(QPainter& painter, const QLineF& bar);

  TextStamps stamps_;

  std::shared_ptr<const PixelData> pixels_;  ///< what image_ was made of
  std::optional<WindowSetting> window_;
  std::optional<std::size_t> voiTable_;
  StoredRange range_;
  VoiTransform transform_;
  QImage image_;  ///< the slice, a pixel a pixel

  QImage layer_;  ///< the slice as it lies in the view; null when it must be painted anew
  ViewTransform layerTransform_;
  double layerRatio_ = 0;
};

}  // namespace workstation
