// The painting module as the command uses it: opened by a program without an application object or a display.
#include <QImage>
#include <algorithm>
#include <clocale>
#include <cmath>
#include <memory>

#include "phantom/Phantom.h"
#include "tests/support/TemporaryFolder.h"
#include "workstation/bundles/BundleLoader.h"
#include "workstation/dicom/PixelReader.h"
#include "workstation/dicom/StudyReader.h"
#include "workstation/model/Workstation.h"
#include "workstation/render/RenderLoader.h"

namespace workstation::test {
namespace {

namespace fs = std::filesystem;

/// A lumbar phantom that was labelled with a line, opened in its viewers.
class RenderModuleTest : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    ofSuite() = std::make_unique<testsupport::TemporaryFolder>();
    phantom::PhantomOptions options;
    options.outDir = folder() / "study";
    ASSERT_TRUE(phantom::writePhantom(options).written);
  }
  static void TearDownTestSuite() { ofSuite().reset(); }
  static const fs::path& folder() { return ofSuite()->path(); }
  static std::unique_ptr<testsupport::TemporaryFolder>& ofSuite() {
    static std::unique_ptr<testsupport::TemporaryFolder> made;
    return made;
  }

  void SetUp() override {
    auto module = loadRenderModule(VERTANA_RENDER_MODULE);
    ASSERT_TRUE(module) << module.problem;
    module_ = *module;
    auto plugin = loadBundle(VERTANA_BUNDLE, workstation_.api());
    ASSERT_TRUE(plugin) << plugin.problem;
    workstation_.setPlugin(std::move(*plugin));
    const auto studies = workstation_.addImages(readImages(folder() / "study").images);
    ASSERT_EQ(studies.size(), 1U);
    ASSERT_TRUE(workstation_.openStudy(studies.front()));
    ASSERT_TRUE(workstation_.chooseMenu(0, "Labels"));
    ASSERT_TRUE(workstation_.drawLine(0, 7, {160, 40}, {160, 280}));
    ASSERT_TRUE(workstation_.zoom(2, workstation_.viewer(2)->scale));
  }

  /// Numbers must be read and written after a picture as before.
  void TearDown() override { EXPECT_STREQ(std::setlocale(LC_ALL, nullptr), "C"); }

  QImage render(int viewer, const PictureOptions& what = {}, const RenderOptions& how = {}, double width = 0,
                double height = 0) {
    const fs::path file = folder() / ("viewer" + std::to_string(viewer) + ".png");
    const Outcome outcome = renderViewer(*module_, workstation_, viewer, reader_, file, what, how, width, height);
    EXPECT_TRUE(outcome) << outcome.problem.value_or("");
    return QImage(QString::fromStdString(file.string()), "PNG");
  }

  /// Whether the picture has the annotation's colour (or one that is near) close to the annotation's place.
  bool shows(const QImage& image, const PaintedAnnotation& annotation, const ViewTransform& transform) {
    const pelmar::ViewPoint centre = transform.toView(annotation.vertices.front());
    const auto near = [](int level, double component) { return std::abs(level - 255 * component) < 20; };
    for (int y = -10; y <= 10; ++y) {
      for (int x = -20; x <= 20; ++x) {
        const QPoint at(static_cast<int>(centre.x) + x, static_cast<int>(transform.viewHeight - centre.y) + y);
        if (!image.valid(at)) continue;
        const QRgb pixel = image.pixel(at);
        if (near(qRed(pixel), annotation.colour.red) && near(qGreen(pixel), annotation.colour.green) &&
            near(qBlue(pixel), annotation.colour.blue))
          return true;
      }
    }
    return false;
  }

  Workstation workstation_;
  PixelReader reader_;
  std::shared_ptr<const RenderModule> module_;
};

TEST_F(RenderModuleTest, PaintsAnImageWithTheLabelsOfTheVertebrae) {
  for (const int viewer : {0, 1, 2}) {
    const auto picture = pictureOf(workstation_, viewer);
    ASSERT_TRUE(picture);
    const QImage image = render(viewer);
    EXPECT_EQ(image.width(), picture->transform.viewWidth);
    EXPECT_EQ(image.height(), picture->transform.viewHeight);
    int labels = 0;
    for (const PaintedAnnotation& annotation : picture->annotations) {
      if (annotation.type != pelmar::ROITypeText) continue;
      ++labels;
      EXPECT_TRUE(shows(image, annotation, picture->transform)) << viewer << ": " << annotation.lines.at(0);
    }
    // L1 to L5 and S1 are named beside the spine; an axial slice has one level.
    EXPECT_GE(labels, viewer == 2 ? 0 : 5);
    EXPECT_LE(labels, viewer == 2 ? 1 : 8);
    int bright = 0;
    for (int y = 0; y < image.height(); y += 4)
      for (int x = 0; x < image.width(); x += 4) bright += qGray(image.pixel(x, y)) > 60;
    EXPECT_GT(bright, 500) << "the anatomy is there";
  }
}

TEST_F(RenderModuleTest, WritesTheLevelAtTheTopOfAnAxialSlice) {
  ASSERT_TRUE(workstation_.scroll(2, workstation_.viewer(2)->slices / 2));
  const auto picture = pictureOf(workstation_, 2);
  ASSERT_TRUE(picture);
  const auto level = std::find_if(picture->annotations.begin(), picture->annotations.end(),
                                  [](const auto& annotation) { return annotation.type == pelmar::ROITypeText; });
  ASSERT_NE(level, picture->annotations.end());
  EXPECT_TRUE(shows(render(2), *level, picture->transform));
}

TEST_F(RenderModuleTest, TheSamePictureIsTheSameFile) { EXPECT_EQ(render(0), render(0)); }

TEST_F(RenderModuleTest, PaintsAgainAfterItWasFinished) {
  const QImage before = render(0);
  module_ = nullptr;
  auto again = loadRenderModule(VERTANA_RENDER_MODULE);
  ASSERT_TRUE(again) << again.problem;
  module_ = *again;
  EXPECT_EQ(render(0), before);
}

TEST_F(RenderModuleTest, PaintsInAnotherSizeAndDensity) {
  RenderOptions how;
  how.devicePixelRatio = 2;
  const QImage image = render(0, {}, how, 300, 250);
  EXPECT_EQ(image.size(), QSize(600, 500));
}

TEST_F(RenderModuleTest, TellsWhatWentWrongAndLeavesNoFile) {
  fs::path file = folder() / "missing" / "a.png";
  Outcome outcome = renderViewer(*module_, workstation_, 0, reader_, file);
  ASSERT_FALSE(outcome);
  EXPECT_NE(outcome.problem->find(file.string()), std::string::npos) << *outcome.problem;

  outcome = renderViewer(*module_, workstation_, 99, reader_, folder() / "a.png");
  ASSERT_FALSE(outcome);
  EXPECT_NE(outcome.problem->find("99"), std::string::npos);

  outcome = renderViewer(*module_, workstation_, 0, reader_, folder() / "a.png", {}, {}, 100000, 100000);
  ASSERT_FALSE(outcome);
  EXPECT_NE(outcome.problem->find("16384"), std::string::npos) << *outcome.problem;

  const fs::path image = workstation_.sliceRecord(1, 0)->file;
  const fs::path hidden = image.string() + ".hidden";
  fs::rename(image, hidden);
  outcome = renderViewer(*module_, workstation_, 1, reader_, folder() / "a.png");
  fs::rename(hidden, image);
  ASSERT_FALSE(outcome);
  EXPECT_NE(outcome.problem->find(image.string()), std::string::npos) << *outcome.problem;
  EXPECT_FALSE(fs::exists(folder() / "a.png"));
}

TEST(RenderLoader, RefusesWhatIsNoPaintingModule) {
  auto missing = loadRenderModule("/nowhere/libvertana_render.so");
  ASSERT_FALSE(missing);
  EXPECT_NE(missing.problem.find("/nowhere/libvertana_render.so is missing"), std::string::npos) << missing.problem;

  const testsupport::TemporaryFolder temporary;
  const fs::path text = temporary / "text.so";
  testsupport::putText(text, "not a module");
  auto wrong = loadRenderModule(text);
  ASSERT_FALSE(wrong);
  EXPECT_NE(wrong.problem.find("cannot be loaded"), std::string::npos) << wrong.problem;

  auto other = loadRenderModule(VERTANA_BUNDLE "/Vertana.so");
  ASSERT_FALSE(other);
  EXPECT_NE(other.problem.find("exports no vertana_render_module"), std::string::npos) << other.problem;
}

}  // namespace
}  // namespace workstation::test
