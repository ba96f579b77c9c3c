// What one edit of a long series costs must grow with the number of slices and no faster. Counted in relative terms,
// so that a slow machine does not matter.
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>

#include "TestImages.h"
#include "workstation/model/Workstation.h"

namespace workstation {
namespace {

using pelmar::Ref;
using pelmar::ROI;

/// Rebuilds 40 aliased annotations on every slice, as one edit of a labelling does: finds the old ones by their tag,
/// deletes them all in one call in which each is named once a slice, and makes new ones.
void rebuild(pelmar::PelmarAPI& api, const Ref<pelmar::ViewerController>& viewer) {
  const auto lists = viewer->roiList();
  std::vector<Ref<ROI>> old;
  for (std::size_t slice = 0; slice < lists->count(); ++slice) {
    const auto list = lists->objectAtIndex(slice);
    for (std::size_t index = 0; index < list->count(); ++index) {
      const auto roi = list->objectAtIndex(index);
      if (roi->stringTags()->containsObject("mine")) old.push_back(roi);
    }
  }
  api.roiClass().deleteROIs(old, false);
  for (int count = 0; count < 40; ++count) {
    const auto roi = api.roiClass().roiWithType(5, viewer->imageView());
    roi->stringTags()->addObject("mine");
    for (std::size_t slice = 0; slice < lists->count(); ++slice) lists->objectAtIndex(slice)->addObject(roi);
  }
}

double bestMilliseconds(int slices) {
  Workstation workstation;
  std::vector<ImageRecord> images;
  for (int index = 0; index < slices; ++index) images.push_back(test::sagittal("1", 1, index, index));
  workstation.addImages(std::move(images));
  const auto viewer = workstation.controller(*workstation.openViewer({"1.2.3", 0, 0}));
  rebuild(workstation.api(), viewer);
  double best = 1e9;
  for (int attempt = 0; attempt < 5; ++attempt) {
    const auto start = std::chrono::steady_clock::now();
    rebuild(workstation.api(), viewer);
    const std::chrono::duration<double, std::milli> spent = std::chrono::steady_clock::now() - start;
    best = std::min(best, spent.count());
  }
  EXPECT_EQ(workstation.annotations(0).size(), 40u);
  return best;
}

TEST(Cost, OfRebuildingAliasedAnnotationsGrowsLinearlyWithTheSlices) {
  const double small = bestMilliseconds(125);
  const double large = bestMilliseconds(2000);
  RecordProperty("small_ms", std::to_string(small));
  RecordProperty("large_ms", std::to_string(large));
  // Sixteen times the slices: 256 times the work if it were quadratic. The rest is for what no longer fits the caches.
  EXPECT_LT(large, 96 * small) << small << " ms for 125 slices, " << large << " ms for 2000";
}

TEST(Cost, OfNamingAndUnnamingEachOfManySlicesOneByOneGrowsLinearlyWithTheSlices) {
  const auto spent = [](int slices) {
    Workstation workstation;
    std::vector<ImageRecord> images;
    for (int index = 0; index < slices; ++index) images.push_back(test::axial("1", 1, index, -index));
    workstation.addImages(std::move(images));
    const auto viewer = workstation.controller(*workstation.openViewer({"1.2.3", 0, 0}));
    const auto start = std::chrono::steady_clock::now();
    for (std::size_t slice = 0; slice < static_cast<std::size_t>(slices); ++slice) {
      viewer->roiList()->objectAtIndex(slice)->addObject(
          workstation.api().roiClass().roiWithType(13, viewer->imageView()));
    }
    for (std::size_t slice = 0; slice < static_cast<std::size_t>(slices); ++slice) {
      workstation.api().roiClass().deleteROI(viewer->roiList()->objectAtIndex(slice)->objectAtIndex(0));
    }
    EXPECT_TRUE(workstation.annotations(0).empty());
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
  };
  const double small = std::min({spent(500), spent(500), spent(500)});
  const double large = std::min({spent(8000), spent(8000), spent(8000)});
  EXPECT_LT(large, 96 * small) << small << " ms for 500 slices, " << large << " ms for 8000";
}

}  // namespace
}  // namespace workstation
