#pragma once
// Everything that there is to paint in a viewer, as values. Made by the model's side, painted by ViewPainter: painting
// looks nothing up and computes nothing but pixels of the display.

#include <optional>
#include <string>
#include <vector>

#include "host/Geometry.h"
#include "workstation/model/ImageRecord.h"
#include "workstation/model/ViewTransform.h"
#include "workstation/model/Workstation.h"
#include "workstation/render/Orientation.h"
#include "workstation/render/ReferenceLine.h"
#include "workstation/render/ScaleBar.h"

namespace workstation {

/// An annotation as it is to be painted. Positions are pixels of the shown slice.
struct PaintedAnnotation {
  long type = 0;                             ///< pelmar::ROIType
  std::vector<pelmar::PixelPoint> vertices;  ///< of a text: its centre; an arrow's head is the first
  std::vector<pelmar::PixelPoint> stroke;    ///< the line to draw: the vertices, or a polygon's spline
  std::vector<std::string> lines;            ///< of a text, its own; else caption and measurement
  pelmar::Colour colour;
  double thickness = 1;  ///< points; of a text, its font size
  bool handles = false;  ///< its vertices can be taken hold of
};

/// Texts in the corners of a view, from the top down.
struct CornerTexts {
  std::vector<std::string> topLeft;
  std::vector<std::string> topRight;
  std::vector<std::string> bottomLeft;
  std::vector<std::string> bottomRight;
};

struct ViewPicture {
  ImageRecord image;
  ViewTransform transform;
  std::optional<WindowSetting> window;  ///< what the person has chosen; absent: what the file asks for
  std::optional<std::size_t> voiTable;  ///< a table of the file that the person has chosen; counts before the window
  std::vector<PaintedAnnotation> annotations;
  std::vector<PixelSegment> referenceLines;
  std::vector<pelmar::PixelPoint> crosses;  ///< points that a person has marked, from this or another viewer
  EdgeLetters letters;
  std::optional<ScaleBar> scaleBar;
  CornerTexts corners;
  bool showsWindow = true;  ///< adds what the image is shown with to the texts at the bottom right
  std::vector<std::string> banners;
};

struct PictureOptions {
  std::optional<WindowSetting> window;
  std::optional<std::size_t> voiTable;  ///< see ViewPicture
  std::vector<std::string> banners;     ///< sentences at the bottom of the view: what the person must not overlook
  bool texts = true;                    ///< patient, series, slice, scale bar and orientation letters
  bool referenceLines = true;           ///< where the slice of the viewer in front cuts this one
};

/// What a viewer shows now; nothing when it is not open. Changes nothing.
std::optional<ViewPicture> pictureOf(const Workstation& workstation, int viewer, const PictureOptions& options = {});

/// The same picture in a view of another size: zoomed and moved so that what filled the view fills it again.
/// Sizes in points, above 0.
void resize(ViewPicture& picture, double width, double height);

/// The texts about patient, series and slice. `zoom` is in points per pixel.
CornerTexts cornerTexts(const ImageRecord& image, const std::optional<std::string>& studyDescription, int slice,
                        int slices, double zoom);

/// A name as PS3.5 6.2.1 writes it, for people: "Doe, Jane" for "Doe^Jane"; the alphabetic group where there is one.
std::string personNameText(const std::string& name);

/// Where a slice lies along its normal: the letter of the axis nearest to the normal and the millimetres from the
/// origin towards it, "L 12.5 mm"; empty without geometry.
std::string slicePositionText(const ImageRecord& image);

}  // namespace workstation
