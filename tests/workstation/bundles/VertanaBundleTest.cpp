// The real plug-in as a bundle in the workstation: loaded, used and unloaded over and over.
#include <dlfcn.h>
#include <gtest/gtest.h>

#include "workstation/bundles/BundleLoader.h"
#include "workstation/model/Workstation.h"

namespace workstation {
namespace {

const std::filesystem::path bundle = VERTANA_BUNDLE;

/// Three sagittal slices of 256 pixels, 1 mm.
std::vector<ImageRecord> sagittalStudy() {
  std::vector<ImageRecord> records;
  for (int slice = 0; slice < 3; ++slice) {
    ImageRecord record;
    record.instanceNumber = slice + 1;
    record.sopInstanceUid = "1.2.3.1." + std::to_string(slice + 1);
    record.file = "/images/" + record.sopInstanceUid;
    record.studyInstanceUid = "1.2.3";
    record.studyDescription = "MRI LUMBAR SPINE";
    record.seriesInstanceUid = "1.2.3.1";
    record.seriesNumber = 1;
    record.modality = "MR";
    record.frameOfReferenceUid = "1.2.3.9";
    record.rows = 256;
    record.columns = 256;
    record.geometry = ImageGeometry{{4.0 * slice, -128, 128}, {0, 1, 0}, {0, 0, -1}, 1, 1};
    records.push_back(record);
  }
  return records;
}

bool moduleIsLoaded() {
  void* handle = dlopen((bundle / "Vertana.so").c_str(), RTLD_NOW | RTLD_NOLOAD);
  if (handle) dlclose(handle);
  return handle != nullptr;
}

TEST(VertanaBundle, isLoadedUsedAndUnloadedAHundredTimesAndLeavesNothing) {
  for (int round = 0; round < 100; ++round) {
    Workstation workstation;
    workstation.addImages(sagittalStudy());
    auto loaded = loadBundle(bundle, workstation.api());
    ASSERT_TRUE(loaded) << loaded.problem;
    workstation.setPlugin(std::move(*loaded));
    ASSERT_TRUE(moduleIsLoaded());
    const int viewer = *workstation.openViewer({"1.2.3", 0, 0});
    ASSERT_TRUE(workstation.chooseMenu(viewer, "Labels"));
    ASSERT_TRUE(workstation.palette().has_value());
    ASSERT_TRUE(workstation.drawLine(viewer, 1, {128, 28}, {128, 228}));
    ASSERT_FALSE(workstation.annotations(viewer).empty()) << "round " << round;
    ASSERT_TRUE(workstation.closePalette());
    workstation.setPlugin(nullptr);
    ASSERT_FALSE(moduleIsLoaded()) << "round " << round;
    // Nothing of the plug-in may hear this: its code is not there any more.
    ASSERT_TRUE(workstation.scroll(viewer, 2));
    ASSERT_TRUE(workstation.drawLine(viewer, 0, {10, 10}, {10, 60}));
    workstation.quit();
  }
}

TEST(VertanaBundle, whoseObjectWasDeallocatedHasNoObserverLeft) {
  Workstation workstation;
  workstation.addImages(sagittalStudy());
  auto loaded = loadBundle(bundle, workstation.api());
  ASSERT_TRUE(loaded) << loaded.problem;
  (*loaded)->filter().initPlugin();
  (*loaded)->dealloc();
  // The host itself has not swept anything: a left-over observer would run code that is unloaded.
  loaded.value.reset();
  ASSERT_FALSE(moduleIsLoaded());
  const int viewer = *workstation.openViewer({"1.2.3", 0, 0});
  EXPECT_TRUE(workstation.drawLine(viewer, 0, {10, 10}, {10, 60}));
  workstation.quit();
}

}  // namespace
}  // namespace workstation
