#include "workstation/model/Undo.h"

#include <algorithm>

#include "workstation/model/Host.h"
#include "workstation/model/Shape.h"
#include "workstation/model/View.h"

namespace workstation {

using pelmar::PixelPoint;
using pelmar::Ref;
using pelmar::ROI;

namespace {

/// Whether the annotation stands in a list of the series that the view shows.
bool standsOn(const View& view, const Roi& roi) {
  const auto& memberships = roi.memberships();
  return std::any_of(memberships.begin(), memberships.end(),
                     [&](const Roi::Membership& membership) { return membership.lists == &view.lists(); });
}

}  // namespace

void Undo::add(View& view, Change what) {
  undone_.clear();
  done_.push_back({view.weak_from_this(), std::move(what)});
}

void Undo::vertexMoved(View& view, const std::shared_ptr<Roi>& roi, std::size_t vertex, PixelPoint from,
                       PixelPoint to) {
  if (from == to) return;
  add(view, VertexMove{roi, vertex, from, to});
}

void Undo::shapeMoved(View& view, const std::shared_ptr<Roi>& roi, std::vector<PixelPoint> from,
                      std::vector<PixelPoint> to) {
  if (from == to) return;
  add(view, ShapeMove{roi, std::move(from), std::move(to)});
}

void Undo::textChanged(View& view, const std::shared_ptr<Roi>& roi, const std::string& from, const std::string& to) {
  if (from == to) return;
  add(view, TextChange{roi, from, to});
}

void Undo::drawn(View& view, const std::shared_ptr<Roi>& roi) { add(view, Presence{roi, nullptr, {}, false}); }

void Undo::deleting(View& view, const std::shared_ptr<Roi>& roi) {
  if (!roi->drawnByPerson()) return;
  add(view, Presence{roi, roi, placesOf(view, roi), true});
}

std::vector<Undo::Place> Undo::placesOf(const View& view, const std::shared_ptr<Roi>& roi) {
  std::vector<Place> places;
  for (const Roi::Membership& membership : roi->memberships()) {
    if (membership.lists != &view.lists()) continue;
    for (std::size_t slice = membership.first; slice <= membership.last; ++slice) {
      const auto& entries = view.lists().list(slice).entries();
      const auto entry = std::find(entries.begin(), entries.end(), Ref<ROI>(roi));
      if (entry != entries.end()) places.push_back({slice, static_cast<std::size_t>(entry - entries.begin())});
    }
  }
  return places;
}

bool Undo::holds(const Edit& edit, Direction direction) {
  const auto view = edit.view.lock();
  if (!view) return false;
  if (const auto* moved = std::get_if<VertexMove>(&edit.what)) {
    const auto roi = moved->roi.lock();
    if (!roi || !standsOn(*view, *roi) || moved->vertex >= roi->points()->count()) return false;
    // Elsewhere than where the edit left it, the vertex belongs to a shape that was made since.
    return roi->pointAtIndex(static_cast<long>(moved->vertex)) ==
           (direction == Direction::back ? moved->to : moved->from);
  }
  if (const auto* shape = std::get_if<ShapeMove>(&edit.what)) {
    const auto roi = shape->roi.lock();
    return roi && standsOn(*view, *roi) && shapeOf(*roi) == (direction == Direction::back ? shape->to : shape->from);
  }
  if (const auto* text = std::get_if<TextChange>(&edit.what)) {
    const auto roi = text->roi.lock();
    return roi && standsOn(*view, *roi) && roi->name() == (direction == Direction::back ? text->to : text->from);
  }
  const auto& presence = std::get<Presence>(edit.what);
  const auto roi = presence.roi.lock();
  const bool mustStand = presence.deleted == (direction == Direction::again);
  return roi && (mustStand ? standsOn(*view, *roi) : !roi->standsInAnyList());
}

Undo::Edits::const_reverse_iterator Undo::lastThatHolds(const Edits& edits, Direction direction) {
  return std::find_if(edits.rbegin(), edits.rend(), [&](const Edit& edit) { return holds(edit, direction); });
}

bool Undo::step(Edits& from, Edits& onto, Direction direction) {
  while (!from.empty() && !holds(from.back(), direction)) from.pop_back();
  if (from.empty()) return false;
  Edit edit = std::move(from.back());
  from.pop_back();
  const auto view = edit.view.lock();
  // The edit is put on the other side before the plug-in hears of it and may do anything.
  onto.push_back(std::move(edit));
  auto& what = onto.back().what;
  if (const auto* moved = std::get_if<VertexMove>(&what)) {
    move(*view, VertexMove(*moved), direction);
  } else if (const auto* shape = std::get_if<ShapeMove>(&what)) {
    move(*view, ShapeMove(*shape), direction);
  } else if (const auto* text = std::get_if<TextChange>(&what)) {
    const TextChange change = *text;
    view->drawing().changeText(change.roi.lock(), direction == Direction::back ? change.from : change.to);
  } else if (auto& presence = std::get<Presence>(what); presence.deleted == (direction == Direction::again)) {
    takeOut(*view, presence);
  } else {
    putBack(*view, presence);
  }
  return true;
}

void Undo::move(View& view, const VertexMove& moved, Direction direction) {
  const auto roi = moved.roi.lock();
  roi->setROIMode(pelmar::ROIModeSelected);
  view.drawing().changeVertex(roi, moved.vertex, direction == Direction::back ? moved.from : moved.to);
}

void Undo::move(View& view, const ShapeMove& moved, Direction direction) {
  const auto roi = moved.roi.lock();
  roi->setROIMode(pelmar::ROIModeSelected);
  view.drawing().changeShape(roi, direction == Direction::back ? moved.from : moved.to);
}

void Undo::takeOut(View& view, Presence& presence) {
  const auto roi = presence.roi.lock();
  presence.places = placesOf(view, roi);
  presence.kept = roi;
  view.host().roiClass().deleteROI(Ref<ROI>(roi));
}

void Undo::putBack(View& view, Presence& presence) {
  const auto roi = std::exchange(presence.kept, nullptr);
  // What was deleted while it was being drawn comes back as it was then, but nobody draws it any more.
  if (roi->ROImode() != pelmar::ROIModeFinished) roi->setROIMode(pelmar::ROIModeSelected);
  for (const Place& place : presence.places) {
    SliceRoiList& list = view.lists().list(place.slice);
    list.insertObject(Ref<ROI>(roi), std::min(place.index, list.count()));
  }
  // As a fresh drawing it would be taken for the spine's line, whatever it measures.
  view.drawing().postChanged(roi, true);
}

void Undo::forget(const View& view) {
  for (Edits* edits : {&done_, &undone_}) {
    std::erase_if(*edits, [&](const Edit& edit) { return edit.view.lock().get() == &view; });
  }
}

}  // namespace workstation
