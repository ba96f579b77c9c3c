// What a report tells of a labelling beyond its planes.
#include <gtest/gtest.h>

#include "TestImages.h"
#include "workstation/model/Workstation.h"

namespace workstation {
namespace {

/// A plug-in whose curve is whatever was drawn last, and which names slices by their height: "high" above 7 mm, nothing
/// below 2 mm, "low" between.
class NamingPlugin final : public pelmar::PluginFilter {
 public:
  using PluginFilter::PluginFilter;

  pelmar::Value stateSnapshot() const override { return pelmar::Value::Dictionary{{"openPolygonROI", curve}}; }
  pelmar::Value valueForObject(const pelmar::Ref<pelmar::HostObject>& object, std::string_view key) const override {
    const auto slice = pelmar::ref_cast<pelmar::DCMPix>(object);
    if (key != "sliceName" || !slice) return {};
    pelmar::Vector3f corner;
    slice->convertPixX(0, 0, corner);
    if (corner.z > 7) return "high";
    return corner.z < 2 ? pelmar::Value() : pelmar::Value("low");
  }

  pelmar::Ref<pelmar::ROI> curve;
};

class NamingHandle final : public PluginHandle {
 public:
  explicit NamingHandle(pelmar::PelmarAPI& api) : object(api) {}
  pelmar::PluginFilter& filter() override { return object; }
  void dealloc() override { object.dealloc(); }
  const std::vector<std::string>& menuEntries() const override { return entries; }
  std::optional<WindowDescription> windowDescription(std::string_view) const override { return std::nullopt; }

  NamingPlugin object;
  std::vector<std::string> entries;
};

struct ReportContexts : testing::Test {
  Workstation workstation;
  NamingPlugin* plugin = nullptr;

  void loadPlugin() {
    auto handle = std::make_unique<NamingHandle>(workstation.api());
    plugin = &handle->object;
    workstation.setPlugin(std::move(handle));
  }
  std::string levels(const std::string& study = "1.2.3") {
    std::string text;
    const auto context = workstation.reportContext(study);
    if (!context) return "no context";
    for (const auto& slice : context->sliceLevels) text += slice.image.sopInstanceUid + "=" + slice.level + " ";
    return text;
  }
};

TEST_F(ReportContexts, NameEveryAxialSliceThatHasALevelWithoutOpeningAViewer) {
  workstation.addImages(test::smallStudy());  // axial slices at 10, 5 and 0 mm
  loadPlugin();
  EXPECT_EQ(levels(), "1.2.1=high 1.2.2=low ");
  EXPECT_TRUE(workstation.viewers().empty());
  EXPECT_EQ(workstation.levelOfSlice({"1.2.3", 1, 0}, 2), std::nullopt);
  EXPECT_EQ(workstation.levelOfSlice({"1.2.3", 1, 0}, 3), std::nullopt) << "no such slice";
  EXPECT_EQ(workstation.levelOfSlice({"1.2.3", 5, 0}, 0), std::nullopt) << "no such series";
}

TEST_F(ReportContexts, HaveNoLevelsWithoutAPlugin) {
  workstation.addImages(test::smallStudy());
  EXPECT_EQ(levels(), "");
  EXPECT_EQ(levels("9.9"), "no context");
}

TEST_F(ReportContexts, LeaveColourSlicesOut) {
  auto images = test::smallStudy();
  images[2].colour = true;
  workstation.addImages(images);
  loadPlugin();
  EXPECT_EQ(levels(), "1.2.2=low ");
}

TEST_F(ReportContexts, NameTheSeriesOnWhichTheCurveLies) {
  auto images = test::smallStudy();
  for (int instance : {1, 2}) {
    images.push_back(test::coronal("1.3", 3, instance, instance));
    images.back().frameOfReferenceUid = "8.8";
    images.back().modality = "CT";
  }
  workstation.addImages(images);
  loadPlugin();
  EXPECT_EQ(workstation.reportContext("1.2.3")->verticalSeriesUid, "1.1") << "no curve: the first vertical series";

  const int coronal = *workstation.openViewer({"1.2.3", 2, 0});
  ASSERT_TRUE(workstation.drawLine(coronal, 0, {10, 10}, {10, 60}));
  plugin->curve = workstation.annotations(coronal).front().roi;
  const auto context = workstation.reportContext("1.2.3");
  EXPECT_EQ(context->verticalSeriesUid, "1.3");
  EXPECT_EQ(context->frameOfReferenceUid, "8.8");
  EXPECT_EQ(context->verticalModality, "CT");
  ASSERT_EQ(context->verticalImages.size(), 2U);
  EXPECT_EQ(context->verticalImages[0].sopInstanceUid, "1.3.1");
  EXPECT_FALSE(context->verticalImages[0].multiFrame);

  ASSERT_TRUE(workstation.closeViewer(coronal));
  EXPECT_EQ(workstation.reportContext("1.2.3")->frameOfReferenceUid, "8.8") << "its planes lie there all the same";
  plugin->curve = nullptr;
  EXPECT_EQ(workstation.reportContext("1.2.3")->verticalSeriesUid, "1.1");
}

TEST_F(ReportContexts, NameTheSeriesOnWhichTheCurveLayWhenItsViewerShowsAnother) {
  auto images = test::smallStudy();
  for (int instance : {1, 2}) images.push_back(test::coronal("1.3", 3, instance, instance));
  workstation.addImages(images);
  loadPlugin();
  const int viewer = *workstation.openViewer({"1.2.3", 2, 0});
  ASSERT_TRUE(workstation.drawLine(viewer, 0, {10, 10}, {10, 60}));
  plugin->curve = workstation.annotations(viewer).front().roi;
  ASSERT_TRUE(workstation.switchSeries(viewer, {"1.2.3", 0, 0}));
  EXPECT_EQ(workstation.reportContext("1.2.3")->verticalSeriesUid, "1.3");
  EXPECT_EQ(workstation.reportContext("9.9"), std::nullopt);
}

TEST_F(ReportContexts, RefersToFramesOfAMultiFrameObject) {
  auto images = test::smallStudy();
  for (int frame : {1, 2}) {
    auto& image = images[static_cast<std::size_t>(frame) + 1];
    image.sopInstanceUid = "1.2.9";
    image.frame = frame;
  }
  workstation.addImages(images);
  loadPlugin();
  const auto context = workstation.reportContext("1.2.3");
  ASSERT_EQ(context->sliceLevels.size(), 2U);
  EXPECT_TRUE(context->sliceLevels[0].image.multiFrame);
  EXPECT_EQ(context->sliceLevels[0].image.frame, 1);
  EXPECT_EQ(context->sliceLevels[1].image.frame, 2);
  EXPECT_FALSE(context->verticalImages[0].multiFrame);
}

TEST_F(ReportContexts, AStudyWithoutAVerticalStackHasNone) {
  workstation.addImages({test::axial("1.2", 2, 1, 10)});
  loadPlugin();
  EXPECT_EQ(levels(), "no context");
}

}  // namespace
}  // namespace workstation
