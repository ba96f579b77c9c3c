// The facade's mouse, keys, tools and whole drawings.
#include <algorithm>
#include <unordered_map>

#include "workstation/model/Interior.h"
#include "workstation/model/Shape.h"

namespace workstation {
namespace {

using pelmar::PixelPoint;
using pelmar::Ref;
using pelmar::ROI;

/// The point after `step` of `steps` equal steps, the last one exactly at the end.
PixelPoint onTheWay(PixelPoint from, PixelPoint to, int step, int steps) {
  if (step == steps) return to;
  const double share = static_cast<double>(step) / steps;
  return {from.x + share * (to.x - from.x), from.y + share * (to.y - from.y)};
}

Outcome noAnnotation(int viewer, int annotation) {
  return Outcome::refused("Viewer " + std::to_string(viewer) + " holds no annotation with the id " +
                          std::to_string(annotation) + ".");
}

void add(std::vector<AnnotationInfo>& infos, std::unordered_map<int, std::size_t>& places, const Ref<ROI>& roi,
         int slice) {
  const Roi* own = ownRoi(roi);
  const auto [place, fresh] = places.try_emplace(own->id(), infos.size());
  if (fresh) infos.push_back({own->id(), roi, {}, own->drawnByPerson()});
  std::vector<int>& slices = infos[place->second].slices;
  if (slices.empty() || slices.back() != slice) slices.push_back(slice);
}

/// The slices of a series whose lists hold the annotation, ascending. Looks at no more lists than it can stand in: most
/// annotations stand in one.
std::vector<int> slicesHolding(const SeriesRoiLists& lists, const Ref<ROI>& roi) {
  std::vector<int> slices;
  for (const Roi::Membership& membership : ownRoi(roi)->memberships()) {
    if (membership.lists != &lists) continue;
    for (std::size_t slice = membership.first; slice <= membership.last; ++slice) {
      if (lists.list(slice).containsObject(roi)) slices.push_back(static_cast<int>(slice));
    }
  }
  return slices;
}

}  // namespace

Outcome Workstation::selectMouseTool(int viewer, long tag) {
  return interior_->withViewer(viewer, [&](Viewer& chosen) {
    chosen.setToolTag(tag);
    interior_->host.log().mouseToolChosen(viewer, tag);
    return Outcome::done();
  });
}

Outcome Workstation::selectRoiTool(int viewer, long tag) {
  return interior_->withViewer(viewer, [&](Viewer& chosen) -> Outcome {
    if (tag != pelmar::ROITypeOpenPolygon && tag != pelmar::ROITypeText && verticesOfStroke(tag) == 0) {
      return Outcome::refused("There is no annotation tool " + std::to_string(tag) +
                              ": choose 5 (length line), 10 (open polygon), 13 (text), 14 (arrow) or 19 (point).");
    }
    chosen.setROIToolTag(tag);
    interior_->host.log().annotationToolChosen(viewer, tag);
    return Outcome::done();
  });
}

Outcome Workstation::press(int viewer, PixelPoint at) {
  return interior_->withViewer(viewer, [&](Viewer& under) {
    under.view().drawing().press(at);
    return Outcome::done();
  });
}

Outcome Workstation::move(int viewer, PixelPoint at) {
  return interior_->withViewer(viewer, [&](Viewer& under) {
    under.view().drawing().move(at);
    return Outcome::done();
  });
}

Outcome Workstation::release(int viewer, PixelPoint at) {
  return interior_->withViewer(viewer, [&](Viewer& under) {
    under.view().drawing().release(at);
    return Outcome::done();
  });
}

Outcome Workstation::doubleClick(int viewer, PixelPoint) {
  return interior_->withViewer(viewer, [&](Viewer& under) {
    under.view().drawing().finishPolygon();
    return Outcome::done();
  });
}

Outcome Workstation::key(int viewer, Key key) {
  return interior_->withViewer(viewer, [&](Viewer& under) {
    if (key == Key::returnKey) under.view().drawing().finishPolygon();
    return Outcome::done();
  });
}

bool Workstation::holdsAnnotation(int viewer) const {
  const auto shown = interior_->find(viewer);
  return shown && shown->view().drawing().holds();
}

bool Workstation::isDrawing(int viewer) const {
  const auto shown = interior_->find(viewer);
  return shown && shown->view().drawing().drawn();
}

bool Workstation::wouldHold(int viewer, pelmar::ViewPoint at) const {
  const auto shown = interior_->find(viewer);
  return shown && shown->view().drawing().wouldHold(shown->view().ConvertFromNSView2GL(at));
}

Outcome Workstation::deselect(int viewer) {
  return interior_->withViewer(viewer, [&](Viewer& shown) {
    interior_->host.log().selecting(viewer, -1);
    shown.view().drawing().deselectOthers(nullptr);
    shown.needsDisplayUpdate();
    return Outcome::done();
  });
}

Outcome Workstation::press(int viewer, pelmar::ViewPoint at) { return press(viewer, pixelAt(viewer, at)); }

Outcome Workstation::move(int viewer, pelmar::ViewPoint at) { return move(viewer, pixelAt(viewer, at)); }

Outcome Workstation::release(int viewer, pelmar::ViewPoint at) { return release(viewer, pixelAt(viewer, at)); }

Outcome Workstation::doubleClick(int viewer, pelmar::ViewPoint at) { return doubleClick(viewer, pixelAt(viewer, at)); }

std::shared_ptr<Roi> Workstation::Interior::beginDrawing(Viewer& viewer, long tool, PixelPoint at) {
  // What an earlier drawing left unfinished is ended, so that this one begins afresh.
  run([&] {
    if (viewer.view().drawsWithLeftButton() && viewer.annotationTool() == tool) {
      viewer.view().drawing().endForTool();
    } else {
      viewer.setROIToolTag(tool);
    }
  });
  return run([&] { return viewer.view().drawing().pressToDraw(at); });
}

Result<int> Workstation::drawLine(int viewer, int slice, PixelPoint a, PixelPoint b, int moves, bool releaseAtEnd) {
  if (const Outcome scrolled = scroll(viewer, slice); !scrolled) return Result<int>::refused(*scrolled.problem);
  if (moves < 1) return Result<int>::refused("A line is drawn with at least one move of the mouse.");
  const auto shown = interior_->find(viewer);
  const auto line = interior_->beginDrawing(*shown, pelmar::ROIToolTagLength, a);
  for (int step = 1; step <= moves; ++step) {
    interior_->run([&] { shown->view().drawing().move(onTheWay(a, b, step, moves)); });
  }
  if (releaseAtEnd) interior_->run([&] { shown->view().drawing().release(b); });
  return Result<int>::of(line->id());
}

Result<int> Workstation::drawPolygon(int viewer, int slice, const std::vector<PixelPoint>& points, bool finish) {
  if (const Outcome scrolled = scroll(viewer, slice); !scrolled) return Result<int>::refused(*scrolled.problem);
  if (points.empty()) return Result<int>::refused("A polygon is drawn with at least one point.");
  const auto shown = interior_->find(viewer);
  Drawing& drawing = shown->view().drawing();
  const auto polygon = interior_->beginDrawing(*shown, pelmar::ROIToolTagOpenPolygon, points.front());
  interior_->run([&] { drawing.release(points.front()); });
  for (std::size_t index = 1; index < points.size() && drawing.drawn() == polygon; ++index) {
    interior_->run([&] { drawing.pressToDraw(points[index]); });
    interior_->run([&] { drawing.release(points[index]); });
  }
  if (finish && drawing.drawn() == polygon) interior_->run([&] { drawing.finishPolygon(); });
  return Result<int>::of(polygon->id());
}

Outcome Workstation::endDrawing(int viewer) {
  return interior_->withViewer(viewer, [&](Viewer& shown) -> Outcome {
    Drawing& drawing = shown.view().drawing();
    const auto drawn = drawing.drawn();
    if (!drawn) return Outcome::refused("Nothing is being drawn in viewer " + std::to_string(viewer) + ".");
    if (drawn->type() == pelmar::ROITypeOpenPolygon) {
      drawing.finishPolygon();
    } else {
      drawing.release(drawing.pointer());
    }
    return Outcome::done();
  });
}

Outcome Workstation::dragVertex(int viewer, int annotation, int vertex, PixelPoint to, int moves) {
  const auto shown = interior_->find(viewer);
  if (!shown) return interior_->notOpen(viewer);
  if (moves < 1) return Outcome::refused("A vertex is dragged with at least one move of the mouse.");
  const std::vector<AnnotationInfo> all = annotations(viewer);
  const auto info = std::find_if(all.begin(), all.end(), [&](const auto& one) { return one.id == annotation; });
  if (info == all.end()) return noAnnotation(viewer, annotation);
  const auto roi = std::static_pointer_cast<Roi>(info->roi.shared());
  const std::string name = "Annotation " + std::to_string(annotation) + " in viewer " + std::to_string(viewer);
  const std::size_t count = roi->points()->count();
  if (vertex < 0 || static_cast<std::size_t>(vertex) >= count) {
    return Outcome::refused(name + " has no vertex " + std::to_string(vertex) + ": it has " + std::to_string(count) +
                            ", counted from 0.");
  }
  if (roi->ROImode() == pelmar::ROIModeDrawing) {
    return Outcome::refused(name + " is still being drawn: end the drawing first.");
  }
  if (!roi->selectable()) return Outcome::refused(name + " cannot be selected, so its vertices cannot be dragged.");
  const int current = static_cast<int>(shown->view().curImage());
  if (!std::binary_search(info->slices.begin(), info->slices.end(), current)) {
    if (Outcome scrolled = scroll(viewer, info->slices.front()); !scrolled) return scrolled;
  }
  const PixelPoint from = roi->pointAtIndex(vertex);
  Drawing& drawing = shown->view().drawing();
  interior_->run([&] { drawing.pressVertex(roi, static_cast<std::size_t>(vertex), from); });
  for (int step = 1; step <= moves; ++step) {
    interior_->run([&] { drawing.move(onTheWay(from, to, step, moves)); });
  }
  interior_->run([&] { drawing.release(to); });
  return Outcome::done();
}

Outcome Workstation::deleteAnnotation(int viewer, int annotation) {
  return interior_->withViewer(viewer, [&](Viewer& shown) -> Outcome {
    for (const AnnotationInfo& info : annotations(viewer)) {
      if (info.id != annotation) continue;
      interior_->host.log().deleting(viewer, annotation);
      interior_->host.undo().deleting(shown.view(), std::static_pointer_cast<Roi>(info.roi.shared()));
      interior_->host.roiClass().deleteROI(info.roi);
      return Outcome::done();
    }
    return noAnnotation(viewer, annotation);
  });
}

Result<int> Workstation::addText(int viewer, PixelPoint at, const std::string& text) {
  const auto shown = interior_->find(viewer);
  if (!shown) return Result<int>::refused(*interior_->notOpen(viewer).problem);
  if (text.empty()) return Result<int>::refused("A text annotation needs at least one letter.");
  return Result<int>::of(interior_->run([&] { return shown->view().drawing().addText(at, text)->id(); }));
}

Outcome Workstation::changeText(int viewer, int annotation, const std::string& text) {
  return interior_->withViewer(viewer, [&](Viewer& shown) -> Outcome {
    if (text.empty()) return Outcome::refused("A text annotation needs at least one letter.");
    for (const AnnotationInfo& info : annotations(viewer)) {
      if (info.id != annotation || !info.drawnByPerson || info.roi->type() != pelmar::ROITypeText) continue;
      const auto roi = std::static_pointer_cast<Roi>(info.roi.shared());
      interior_->host.undo().textChanged(shown.view(), roi, roi->name(), text);
      shown.view().drawing().changeText(roi, text);
      return Outcome::done();
    }
    return Outcome::refused("Viewer " + std::to_string(viewer) + " holds no text of the person's with the id " +
                            std::to_string(annotation) + ".");
  });
}

std::optional<AnnotationInfo> Workstation::textAt(int viewer, pelmar::ViewPoint at) const {
  const auto shown = interior_->find(viewer);
  if (!shown) return std::nullopt;
  const auto roi = shown->view().drawing().annotationWithinReach(shown->view().ConvertFromNSView2GL(at));
  if (!roi || roi->type() != pelmar::ROITypeText) return std::nullopt;
  for (AnnotationInfo& info : annotations(viewer, static_cast<int>(shown->view().curImage()))) {
    if (info.id == roi->id()) return std::move(info);
  }
  return std::nullopt;
}

Outcome Workstation::undo() {
  return interior_->run([&] {
    if (!interior_->host.undo().undo()) return Outcome::refused("There is nothing to undo.");
    interior_->host.log().undone();
    return Outcome::done();
  });
}

Outcome Workstation::redo() {
  return interior_->run([&] {
    if (!interior_->host.undo().redo()) return Outcome::refused("There is nothing to redo.");
    interior_->host.log().redone();
    return Outcome::done();
  });
}

bool Workstation::canUndo() const { return interior_->host.undo().canUndo(); }

bool Workstation::canRedo() const { return interior_->host.undo().canRedo(); }

std::vector<AnnotationInfo> Workstation::annotations(int viewer) const {
  std::vector<AnnotationInfo> infos;
  const auto shown = interior_->find(viewer);
  if (!shown) return infos;
  std::unordered_map<int, std::size_t> places;
  const SeriesRoiLists& lists = shown->view().lists();
  for (std::size_t slice = 0; slice < lists.count(); ++slice) {
    for (const Ref<ROI>& roi : lists.list(slice).entries()) add(infos, places, roi, static_cast<int>(slice));
  }
  return infos;
}

std::vector<AnnotationInfo> Workstation::annotations(int viewer, int slice) const {
  std::vector<AnnotationInfo> infos;
  const auto shown = interior_->find(viewer);
  if (!shown || !sliceRecord(viewer, slice)) return infos;
  const SeriesRoiLists& lists = shown->view().lists();
  std::unordered_map<int, std::size_t> places;
  for (const Ref<ROI>& roi : lists.list(static_cast<std::size_t>(slice)).entries()) add(infos, places, roi, slice);
  for (AnnotationInfo& info : infos) info.slices = slicesHolding(lists, info.roi);
  return infos;
}

std::optional<int> Workstation::annotationId(const Ref<pelmar::HostObject>& annotation) const {
  const auto roi = ref_cast<Roi>(annotation);
  return roi.get() ? std::optional<int>(roi.get()->id()) : std::nullopt;
}

}  // namespace workstation
