#include "workstation/dicom/Copies.h"

#include <algorithm>
#include <iterator>
#include <map>
#include <span>
#include <utility>

namespace workstation {
namespace {

using Frames = std::span<const ImageRecord>;

bool isSamePlace(const std::optional<ImageGeometry>& a, const std::optional<ImageGeometry>& b) {
  if (!a || !b) return !a && !b;
  return a->position == b->position && a->row == b->row && a->column == b->column && a->spacingX == b->spacingX &&
         a->spacingY == b->spacingY;
}

bool isSameSlice(const ImageRecord& a, const ImageRecord& b) {
  return a.seriesInstanceUid == b.seriesInstanceUid && a.frame == b.frame && a.rows == b.rows &&
         a.columns == b.columns && a.pixelAspect == b.pixelAspect && a.frameOfReferenceUid == b.frameOfReferenceUid &&
         isSamePlace(a.geometry, b.geometry);
}

/// The frames of the file that begins at `first`.
Frames framesOfFile(const std::vector<ImageRecord>& images, std::size_t first) {
  const auto begin = images.begin() + static_cast<std::ptrdiff_t>(first);
  const auto end =
      std::find_if(begin, images.end(), [&](const ImageRecord& image) { return image.file != begin->file; });
  return {begin, end};
}

}  // namespace

void setCopiesAside(ReadResult& result) {
  const std::vector<ImageRecord> all = std::move(result.images);
  result.images.clear();
  std::map<std::pair<std::string, std::string>, Frames> known;  // by study and image
  for (std::size_t first = 0; first < all.size();) {
    const Frames frames = framesOfFile(all, first);
    first += frames.size();
    const ImageRecord& head = frames.front();
    const auto [place, fresh] = known.try_emplace({head.studyInstanceUid, head.sopInstanceUid}, frames);
    const Frames& kept = place->second;
    if (fresh) {
      std::copy(frames.begin(), frames.end(), std::back_inserter(result.images));
    } else if (std::equal(kept.begin(), kept.end(), frames.begin(), frames.end(), &isSameSlice)) {
      result.copies.push_back({head.file, kept.front().file});
    } else {
      result.unreadable.push_back({head.file, "its SOP Instance UID is that of " + kept.front().file.string() +
                                                  ", which is another image: only that one is used"});
    }
  }
}

}  // namespace workstation
