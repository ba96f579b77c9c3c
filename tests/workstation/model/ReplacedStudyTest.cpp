// A study whose files have changed since it was added.
#include <gtest/gtest.h>

#include "TestImages.h"
#include "workstation/model/Workstation.h"

namespace workstation {
namespace {

class ReplacedStudy : public testing::Test {
 protected:
  ReplacedStudy() { workstation.addImages(test::smallStudy()); }
  /// A series of two coronal slices before all others, and a third sagittal slice before the other two.
  static std::vector<ImageRecord> grown() {
    auto images = test::smallStudy();
    images.push_back(test::coronal("1.0", 0, 1, 3));
    images.push_back(test::sagittal("1.1", 1, 3, -6));
    return images;
  }
  std::vector<int> numbers() const {
    std::vector<int> all;
    for (const StackId& id : workstation.stacks("1.2.3")) all.push_back(*workstation.series(id)->number);
    return all;
  }

  Workstation workstation;
};

TEST_F(ReplacedStudy, ShowsWhatCame) {
  ASSERT_TRUE(workstation.replaceStudy(grown()));
  EXPECT_EQ(numbers(), (std::vector<int>{0, 1, 2}));
  const int viewer = *workstation.openViewer({"1.2.3", 1, 0});
  EXPECT_EQ(workstation.viewer(viewer)->slices, 3);
}

TEST_F(ReplacedStudy, ThePersonsAnnotationsStayWithTheirSlices) {
  int viewer = *workstation.openViewer({"1.2.3", 0, 0});
  const std::string sop = workstation.sliceRecord(viewer, 1)->sopInstanceUid;
  ASSERT_TRUE(workstation.drawLine(viewer, 1, {10, 10}, {40, 40}));
  ASSERT_TRUE(workstation.drawLine(viewer, 0, {10, 20}, {40, 20}));
  const std::string other = workstation.sliceRecord(viewer, 0)->sopInstanceUid;
  ASSERT_TRUE(workstation.closeViewer(viewer));
  auto images = grown();
  std::erase_if(images, [&](const ImageRecord& image) { return image.sopInstanceUid == other; });
  ASSERT_TRUE(workstation.replaceStudy(images));
  viewer = *workstation.openViewer({"1.2.3", 1, 0});
  const auto annotations = workstation.annotations(viewer);
  ASSERT_EQ(annotations.size(), 1U) << "the other one's slice has gone";
  ASSERT_EQ(annotations[0].slices.size(), 1U);
  EXPECT_EQ(workstation.sliceRecord(viewer, annotations[0].slices[0])->sopInstanceUid, sop);
  EXPECT_EQ(annotations[0].roi->pointAtIndex(1), (pelmar::PixelPoint{40, 40}));
}

TEST_F(ReplacedStudy, IsRefusedWhereAViewerShowsItAndThenNothingHasChanged) {
  const int viewer = *workstation.openViewer({"1.2.3", 0, 0});
  EXPECT_EQ(workstation.replaceStudy(grown()).problem,
            "The images of the study \"1.2.3\" cannot be taken anew while a viewer shows it: close its viewers first.");
  EXPECT_EQ(numbers(), (std::vector<int>{1, 2}));
  ASSERT_TRUE(workstation.closeViewer(viewer));
  const std::string notTheSame = "A study is only replaced by images of the same one study.";
  EXPECT_EQ(workstation.replaceStudy({}).problem, notTheSame) << "nothing is left";
  auto another = test::smallStudy();
  for (ImageRecord& image : another) image.studyInstanceUid = "4.5.6";
  EXPECT_EQ(workstation.replaceStudy(another).problem, notTheSame) << "it was never added";
  EXPECT_EQ(numbers(), (std::vector<int>{1, 2}));
}

}  // namespace
}  // namespace workstation
