#pragma once
// Stories of sessions: the real plug-in on the workstation with the store, restarts and crashes in between.

#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <string>

#include "LabellingStoreDisks.h"
#include "workstation/bundles/BundleLoader.h"
#include "workstation/model/Workstation.h"

namespace workstation::test {

/// One run of the program.
class Session {
 public:
  explicit Session(StudyDisk& disk)
      : shelf(disk.open()), store(shelf, points, disk.parts()), archiving(points), workstation(options()) {
    store.setContextSource([](const std::string& uid) {
      ReportContext context;
      context.frameOfReferenceUid = uid + ".99";
      context.verticalSeriesUid = uid + ".1";
      context.verticalModality = "MR";
      return std::optional(context);
    });
    workstation.addImages(disk.images());
    auto plugin = loadBundle(VERTANA_BUNDLE, workstation.api());
    EXPECT_TRUE(plugin) << plugin.problem;
    if (plugin) workstation.setPlugin(std::move(*plugin));
  }

  PatientPointClass points;
  ReportShelf& shelf;
  LabellingStore store;
  KeyedArchive archiving;
  Workstation workstation;

 private:
  Options options() {
    Options options;
    options.reports = &store;
    options.keyedArchiving = &archiving;
    return options;
  }
};

using MakeDisk = std::unique_ptr<StudyDisk> (*)(const std::string& studyDescription);
struct DiskKind {
  const char* name;
  MakeDisk make;
};
inline void PrintTo(const DiskKind& kind, std::ostream* out) { *out << kind.name; }

class Stories : public testing::TestWithParam<DiskKind> {
 protected:
  void begin(const std::string& studyDescription = "MRI LUMBAR SPINE") {
    disk = GetParam().make(studyDescription);
    crash();
  }
  void crash() {
    session.reset();
    session = std::make_unique<Session>(*disk);
  }
  void restart() {
    session->workstation.quit();
    crash();
  }
  Workstation& desk() { return session->workstation; }
  LabellingStore& store() { return session->store; }

  /// Opens the sagittal (first) and the axial viewer of a study; answers the number of the sagittal one.
  int open(const std::string& studyUid = study) { return desk().openStudy(studyUid).value->front(); }
  int openWithPalette(const std::string& studyUid = study) {
    const int viewer = open(studyUid);
    EXPECT_TRUE(desk().chooseMenu(viewer, "Labels"));
    EXPECT_TRUE(desk().palette().has_value());
    return viewer;
  }
  void draw(int viewer, double x = 128) { EXPECT_TRUE(desk().drawLine(viewer, 1, {x, 28}, {x, 228})); }
  /// Labels the study in a session of its own, as lumbar or another region.
  void label(double x = 128, int region = 2) {
    const int viewer = openWithPalette();
    EXPECT_TRUE(desk().setPaletteValue("anatomicalRegion", region));
    draw(viewer, x);
    EXPECT_TRUE(desk().pressPalette("stopWorkFlow"));
    EXPECT_FALSE(desk().palette().has_value());
    restart();
    labelled = store().status(study).state;
    ASSERT_TRUE(labelled && !labelled->isEmpty());
    EXPECT_EQ(labelled->anatomicalRegion, region);
    before = disk->files();
  }
  /// How many planes the plug-in knows.
  std::size_t planes() {
    const pelmar::Value state = desk().pluginState();
    const auto& known = state.dictionary()->at("intervertebralPlanes");
    return known.array() ? known.array()->size() : 0;
  }
  /// After a new start: the study holds the labelling, and the plug-in shows it.
  void expectLabelled() {
    EXPECT_EQ(store().status(study).state, labelled);
    EXPECT_TRUE(desk().viewers().empty());
    open();
    EXPECT_EQ(planes(), labelled->levels->size());
  }
  /// After a new start: the study holds the empty state, and the plug-in shows nothing.
  void expectReset() {
    EXPECT_EQ(store().status(study).state, empty);
    const int viewer = open();
    EXPECT_EQ(planes(), 0u);
    EXPECT_TRUE(desk().annotations(viewer).empty());
    EXPECT_TRUE(desk().chooseMenu(viewer, "Labels"));
    EXPECT_EQ(planes(), 0u);
  }

  std::unique_ptr<StudyDisk> disk;
  std::unique_ptr<Session> session;
  std::optional<SavedLabelling> labelled;
  std::map<std::string, std::string> before;
};

inline std::string nameOfDisk(const testing::TestParamInfo<DiskKind>& kind) { return kind.param.name; }
inline const auto bothDisks =
    testing::Values(DiskKind{"InMemory", &studyInMemory}, DiskKind{"InAFolder", &studyInFolder});

}  // namespace workstation::test
