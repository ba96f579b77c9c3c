#include "workstation/model/Drawing.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "workstation/model/Host.h"
#include "workstation/model/Shape.h"
#include "workstation/model/View.h"

namespace workstation {
namespace {

using pelmar::MyPoint;
using pelmar::PixelPoint;
using pelmar::Ref;
using pelmar::ROI;

/// How near the pointer must be to a vertex to take hold of it, in points of the view.
constexpr double reachPoints = 8;
/// Font size of a text that a person writes, points.
constexpr float textSize = 14;

/// The annotation if it still stands somewhere.
std::shared_ptr<Roi> living(const std::weak_ptr<Roi>& roi) {
  std::shared_ptr<Roi> object = roi.lock();
  return object && object->standsInAnyList() ? object : nullptr;
}

}  // namespace

void Drawing::press(PixelPoint at) {
  if (!drawn()) {
    const Grip grip = vertexWithinReach(at);
    if (grip.roi) {
      pressVertex(grip.roi, grip.vertex, at);
      return;
    }
    if (takesWhole()) {
      if (const auto roi = annotationWithinReach(at)) return pressWhole(roi, at);
    }
  }
  pressToDraw(at);
}

std::shared_ptr<Roi> Drawing::pressToDraw(PixelPoint at) {
  pointer_ = at;
  grabbedShape_.clear();
  if (const auto polygon = drawn()) {
    // A press while a line is being drawn is a release that was lost on its way.
    if (polygon->type() == pelmar::ROITypeOpenPolygon) addVertex(polygon, at);
    return polygon;
  }
  const long tool = view_.drawsWithLeftButton() ? view_.annotationTool() : 0;
  return tool == pelmar::ROIToolTagOpenPolygon || verticesOfStroke(tool) > 0 ? begin(at, tool) : nullptr;
}

bool Drawing::takesWhole() const {
  return !view_.drawsWithLeftButton() || view_.annotationTool() == pelmar::ROITypeText;
}

std::shared_ptr<Roi> Drawing::begin(PixelPoint at, long type) {
  const auto roi = view_.host().roiClassObject().drawnRoi(type, Ref<pelmar::DCMView>(view_.shared_from_this()));
  roi->setROIMode(pelmar::ROIModeDrawing);
  drawn_ = roi;
  pressed_ = roi;
  const bool isPolygon = type == pelmar::ROITypeOpenPolygon;
  roi->setPoints(std::vector<MyPoint>(isPolygon ? 1 : verticesOfStroke(type), MyPoint::point(at)));
  view_.lists().list(static_cast<std::size_t>(view_.curImage())).addObject(Ref<ROI>(roi));
  view_.host().log().drawingBegun(view_.number(), static_cast<int>(view_.curImage()), type, at);
  postAdded(roi);
  if (isPolygon) postChanged(roi, false);
  return roi;
}

void Drawing::addVertex(const std::shared_ptr<Roi>& roi, PixelPoint at) {
  pressed_ = roi;
  roi->points()->addObject(MyPoint::point(at));
  view_.host().log().pointAdded(view_.number(), at);
  postChanged(roi, false);
}

void Drawing::pressVertex(const std::shared_ptr<Roi>& roi, std::size_t vertex, PixelPoint at) {
  pointer_ = at;
  grabbedAt_ = roi->pointAtIndex(static_cast<long>(vertex));
  grabOffset_ = {grabbedAt_.x - at.x, grabbedAt_.y - at.y};
  grabbedShape_.clear();
  vertex_ = vertex;
  dragged_ = roi;
  pressed_ = roi;
  roi->setROIMode(pelmar::ROIModeEditing);
  view_.host().log().vertexGrabbed(view_.number(), roi->id(), static_cast<int>(vertex));
}

void Drawing::pressWhole(const std::shared_ptr<Roi>& roi, PixelPoint at) {
  pointer_ = at;
  view_.host().log().selecting(view_.number(), roi->id());
  deselectOthers(roi.get());
  roi->setROIMode(pelmar::ROIModeSelected);
  grabbedShape_ = shapeOf(*roi);
  grabOffset_ = {-at.x, -at.y};
  pressed_ = roi;
}

void Drawing::drag(const std::shared_ptr<Roi>& roi, PixelPoint at) {
  const PixelPoint to{at.x + grabOffset_.x, at.y + grabOffset_.y};
  if (grabbedShape_.empty()) return setVertex(roi, vertex_, to);
  std::vector<PixelPoint> shape;
  shape.reserve(grabbedShape_.size());
  for (const PixelPoint& was : grabbedShape_) shape.push_back({was.x + to.x, was.y + to.y});
  setShape(*roi, shape);
}

void Drawing::tellDrag(PixelPoint at, bool dropped) {
  PersonLog& log = view_.host().log();
  if (!grabbedShape_.empty()) return log.wholeMoved(view_.number());
  const PixelPoint to{at.x + grabOffset_.x, at.y + grabOffset_.y};
  if (dropped) return log.vertexDropped(view_.number(), to);
  log.vertexMoved(view_.number(), to);
}

void Drawing::setVertex(const std::shared_ptr<Roi>& roi, std::size_t vertex, PixelPoint at) {
  auto points = ref_cast<pelmar::VectorList<MyPoint>>(roi->points());
  auto& elements = points.shared()->elements();
  if (vertex < elements.size()) elements[vertex] = MyPoint::point(at);
}

void Drawing::move(PixelPoint at) {
  pointer_ = at;
  const auto pressed = living(pressed_);
  if (!pressed) return;
  if (!grabbedShape_.empty() && !living(dragged_)) {
    // Held as a whole: the first move makes a drag of what was a click.
    dragged_ = pressed;
    pressed->setROIMode(pelmar::ROIModeEditing);
  }
  if (living(dragged_)) {
    drag(pressed, at);
    tellDrag(at, false);
    postChanged(pressed, false);
  } else if (drawn() == pressed && verticesOfStroke(pressed->type()) > 0) {
    setVertex(pressed, verticesOfStroke(pressed->type()) - 1, at);
    view_.host().log().lineMoved(view_.number(), at);
    postChanged(pressed, false);
  }
}

void Drawing::release(PixelPoint at) {
  pointer_ = at;
  const auto pressed = living(pressed_);
  pressed_.reset();
  const bool clicked = !grabbedShape_.empty() && !living(dragged_);
  if (!pressed || clicked) return grabbedShape_.clear();
  if (living(dragged_)) {
    drag(pressed, at);
    tellDrag(at, true);
    endDrag(pressed);
  } else if (drawn() == pressed && verticesOfStroke(pressed->type()) > 0) {
    setVertex(pressed, verticesOfStroke(pressed->type()) - 1, at);
    view_.host().log().lineReleased(view_.number(), at);
    endDrawing(pressed);
    // An arrow without a direction points nowhere.
    if (pressed->type() == pelmar::ROITypeArrow && pressed->distinctPoints() < 2)
      return view_.host().roiClass().deleteROI(Ref<ROI>(pressed));
  }
  postChanged(pressed, true);
}

void Drawing::finishPolygon() {
  const auto polygon = drawn();
  if (!polygon || polygon->type() != pelmar::ROITypeOpenPolygon) return;
  view_.host().log().polygonFinished(view_.number());
  endDrawing(polygon);
  pressed_.reset();
  postChanged(polygon, true);
}

void Drawing::stop() {
  if (const auto roi = living(drawn_)) endDrawing(roi);
  if (const auto roi = living(dragged_)) endDrag(roi);
  drawn_.reset();
  dragged_.reset();
  grabbedShape_.clear();
}

void Drawing::endDrawing(const std::shared_ptr<Roi>& roi) {
  roi->setROIMode(pelmar::ROIModeSelected);
  drawn_.reset();
  view_.host().undo().drawn(view_, roi);
}

void Drawing::endDrag(const std::shared_ptr<Roi>& roi) {
  roi->setROIMode(pelmar::ROIModeSelected);
  dragged_.reset();
  if (!grabbedShape_.empty()) {
    view_.host().undo().shapeMoved(view_, roi, std::exchange(grabbedShape_, {}), shapeOf(*roi));
    return;
  }
  view_.host().undo().vertexMoved(view_, roi, vertex_, grabbedAt_, roi->pointAtIndex(static_cast<long>(vertex_)));
}

void Drawing::changeVertex(const std::shared_ptr<Roi>& roi, std::size_t vertex, PixelPoint to) {
  setVertex(roi, vertex, to);
  postChanged(roi, true);
}

void Drawing::changeShape(const std::shared_ptr<Roi>& roi, const std::vector<PixelPoint>& to) {
  setShape(*roi, to);
  postChanged(roi, true);
}

std::shared_ptr<Roi> Drawing::addText(PixelPoint at, const std::string& text) {
  const auto roi =
      view_.host().roiClassObject().drawnRoi(pelmar::ROITypeText, Ref<pelmar::DCMView>(view_.shared_from_this()));
  roi->setName(text);
  roi->setROIRect({at, {}});
  roi->setThickness(textSize);
  deselectOthers(nullptr);
  roi->setROIMode(pelmar::ROIModeSelected);
  view_.lists().list(static_cast<std::size_t>(view_.curImage())).addObject(Ref<ROI>(roi));
  view_.host().undo().drawn(view_, roi);
  view_.host().log().textWritten(view_.number());
  postAdded(roi);
  return roi;
}

void Drawing::changeText(const std::shared_ptr<Roi>& roi, const std::string& text) {
  roi->setName(text);
  view_.host().log().textWritten(view_.number());
  postChanged(roi, true);
}

void Drawing::endForTool() {
  const auto roi = drawn();
  stop();
  if (roi && roi->distinctPoints() < 2) view_.host().roiClass().deleteROI(Ref<ROI>(roi));
}

void Drawing::forget() {
  stop();
  pressed_.reset();
}

std::shared_ptr<Roi> Drawing::drawn() const {
  auto roi = living(drawn_);
  return roi && roi->ROImode() == pelmar::ROIModeDrawing ? roi : nullptr;
}

bool Drawing::holds() const { return living(pressed_) != nullptr; }

bool Drawing::wouldHold(PixelPoint at) const {
  if (drawn()) return false;
  return vertexWithinReach(at).roi || (takesWhole() && annotationWithinReach(at));
}

bool Drawing::isWithinReach(const Roi& roi, const pelmar::ViewPoint& pointer) const {
  if (!roi.selectable()) return false;
  if (roi.type() != pelmar::ROITypeText) return isOnLine(view_, roi, pointer);
  return roi.drawnByPerson() && isOnText(view_, roi, pointer);
}

std::shared_ptr<Roi> Drawing::annotationWithinReach(PixelPoint at) const {
  const pelmar::ViewPoint pointer = view_.ConvertFromGL2NSView(at);
  const auto& entries = view_.lists().list(static_cast<std::size_t>(view_.curImage())).entries();
  const auto onTop = std::find_if(entries.rbegin(), entries.rend(), [&](const Ref<ROI>& entry) {
    return isWithinReach(static_cast<const Roi&>(*entry.get()), pointer);
  });
  return onTop == entries.rend() ? nullptr : std::static_pointer_cast<Roi>(onTop->shared());
}

void Drawing::deselectOthers(const Roi* but) {
  for (const Ref<ROI>& entry : view_.lists().list(static_cast<std::size_t>(view_.curImage())).entries()) {
    if (entry.get() != but && entry->ROImode() == pelmar::ROIModeSelected) {
      entry.shared()->setROIMode(pelmar::ROIModeFinished);
    }
  }
}

Drawing::Grip Drawing::vertexWithinReach(PixelPoint at) const {
  const pelmar::ViewPoint pointer = view_.ConvertFromGL2NSView(at);
  Grip best;
  double bestDistance = reachPoints;
  for (const Ref<ROI>& entry : view_.lists().list(static_cast<std::size_t>(view_.curImage())).entries()) {
    if (entry->ROImode() != pelmar::ROIModeSelected) continue;
    const auto points = entry->points();
    for (std::size_t index = 0; index < points->count(); ++index) {
      const pelmar::ViewPoint vertex = view_.ConvertFromGL2NSView(points->objectAtIndex(index).point());
      const double distance = std::hypot(vertex.x - pointer.x, vertex.y - pointer.y);
      // Of equally near ones the one that is painted last, on top of the others, is taken.
      if (distance > bestDistance) continue;
      bestDistance = distance;
      best = {std::static_pointer_cast<Roi>(entry.shared()), index};
    }
  }
  return best;
}

void Drawing::postAdded(const std::shared_ptr<Roi>& roi) {
  view_.host().defaultCenter().postNotification(
      {std::string(pelmar::PelmarAddROINotification), Ref<ROI>(roi), std::nullopt});
}

void Drawing::postChanged(const std::shared_ptr<Roi>& roi, bool mouseUp) {
  // The plug-in may have deleted it in answer to the posting before.
  if (!roi->standsInAnyList()) return;
  std::optional<pelmar::Value::Dictionary> userInfo;
  if (mouseUp) userInfo.emplace().emplace("action", "mouseUp");
  view_.host().defaultCenter().postNotification(
      {std::string(pelmar::PelmarROIChangeNotification), Ref<ROI>(roi), std::move(userInfo)});
}

}  // namespace workstation
