// Looking at images in the window.
#include <QStatusBar>

#include "WindowFixture.h"
#include "workstation/gui/StackTitle.h"

namespace workstation::test {
namespace {

class Viewers : public WindowTest {
 protected:
  void click(const QString& menuText) {
    for (QAction* action : window_->findChildren<QAction*>()) {
      if (action->text() == menuText) action->trigger();
    }
    settle();
  }
  ViewerInfo info(int viewer) { return *workstation().viewer(viewer); }
  void markIn(int viewer, pelmar::PixelPoint pixel) {
    for (const auto type : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease})
      mouse(viewer, type, at(viewer, pixel), Qt::LeftButton, Qt::ShiftModifier);
    settle();
  }
  /// Whether a red cross is painted whole about the pixel: its four arms reach from 4 to 14 points.
  bool hasCross(int viewer, pelmar::PixelPoint pixel) {
    const QImage image = canvas(viewer).grab().toImage();
    const QPointF middle = at(viewer, pixel);
    const auto isRed = [&](QPointF arm) {
      // The two points of the line's width, or three of which the outer ones are half covered.
      for (const QPointF beside : {QPointF(0, 0), QPointF(-1, -1)}) {
        const QPoint place = (middle + arm + beside).toPoint();
        if (!image.rect().contains(place)) continue;
        const QColor colour = image.pixelColor(place);
        if (colour.red() > 200 && colour.blue() < 120) return true;
      }
      return false;
    };
    return isRed({9, 0}) && isRed({-9, 0}) && isRed({0, 9}) && isRed({0, -9});
  }
};

TEST_F(Viewers, AStudyOpensWithASagittalAndTheAxialSeriesFittedAndInTheMiddle) {
  openStudy();
  EXPECT_GE(workstation().viewers().size(), 2U);
  EXPECT_EQ(info(sagittalViewer()).front, true);
  for (const ViewerInfo& viewer : workstation().viewers()) {
    EXPECT_EQ(viewer.slice, viewer.slices / 2);
    const auto first = workstation().viewPointAt(viewer.number, {-0.5, -0.5});
    const auto last = workstation().viewPointAt(viewer.number, {159.5, 159.5});
    EXPECT_GE(std::min(first.x, last.x), -0.01) << "the whole image is seen";
    EXPECT_LE(std::max(first.x, last.x), viewer.viewFrame.width + 0.01);
    EXPECT_GE(std::min(first.y, last.y), -0.01);
    EXPECT_LE(std::max(first.y, last.y), viewer.viewFrame.height + 0.01);
  }
}

TEST_F(Viewers, TheModelKnowsWhereOnTheScreenAnImageIs) {
  openStudy();
  for (const ViewerInfo& viewer : workstation().viewers()) {
    const auto& widget = canvas(viewer.number);
    const QPoint lowerLeft = widget.mapToGlobal(QPoint(0, widget.height()));
    EXPECT_EQ(viewer.frame.x, lowerLeft.x());
    EXPECT_EQ(viewer.frame.y, 1000 - lowerLeft.y()) << "from the bottom of the screen";
    EXPECT_EQ(viewer.viewFrame.width, widget.width());
  }
}

TEST_F(Viewers, WheelKeysAndSliderScroll) {
  openStudy();
  const int viewer = sagittalViewer();
  const int middle = info(viewer).slice;
  wheel(viewer, -1);
  EXPECT_EQ(info(viewer).slice, middle + 1);
  wheel(viewer, 2);
  EXPECT_EQ(info(viewer).slice, middle - 1);
  keyPress(viewer, Qt::Key_Down);
  EXPECT_EQ(info(viewer).slice, middle);
  keyPress(viewer, Qt::Key_End);
  EXPECT_EQ(info(viewer).slice, info(viewer).slices - 1);
  wheel(viewer, -3);
  EXPECT_EQ(info(viewer).slice, info(viewer).slices - 1) << "there is no slice beyond the last";
  auto& slider = window_->grid().pane(viewer)->slider();
  EXPECT_EQ(slider.value(), info(viewer).slice);
  slider.setValue(2);
  settle();
  EXPECT_EQ(info(viewer).slice, 2);
}

TEST_F(Viewers, DraggingWithTheWindowToolChangesTheWindowOfThatViewerAlone) {
  openStudy();
  const int viewer = sagittalViewer();
  const auto before = canvas(viewer).shownWindow();
  ASSERT_TRUE(before);
  mouse(viewer, QEvent::MouseButtonPress, {100, 100});
  mouse(viewer, QEvent::MouseMove, {160, 130});
  mouse(viewer, QEvent::MouseButtonRelease, {160, 130});
  const auto after = canvas(viewer).shownWindow();
  EXPECT_NEAR(after->width, before->width * (1 + 60.0 / 300), 1e-6);
  EXPECT_NEAR(after->centre, before->centre + before->width * 30 / 300, 1e-6) << "down is darker";
  EXPECT_FALSE(canvas(axialViewer()).look().window);
  click("R&eset view");
  EXPECT_EQ(canvas(viewer).shownWindow()->width, before->width);
}

TEST_F(Viewers, TheWheelWithControlEnlargesAboutThePointer) {
  openStudy();
  const int viewer = sagittalViewer();
  auto& widget = canvas(viewer);
  const double scale = info(viewer).scale;
  const pelmar::ViewPoint middle{widget.width() / 2.0, widget.height() / 2.0};
  const auto pixel = workstation().pixelAt(viewer, middle);
  wheel(viewer, 4, Qt::ControlModifier);
  EXPECT_NEAR(info(viewer).scale, 2 * scale, 1e-9);
  EXPECT_NEAR(workstation().pixelAt(viewer, middle).x, pixel.x, 1e-6);
  EXPECT_NEAR(workstation().pixelAt(viewer, middle).y, pixel.y, 1e-6);
}

TEST_F(Viewers, TheMiddleButtonMovesTheImageWithThePointer) {
  openStudy();
  const int viewer = sagittalViewer();
  const auto pixel = workstation().pixelAt(viewer, {100, 100});
  mouse(viewer, QEvent::MouseButtonPress, {50, 60}, Qt::MiddleButton);
  mouse(viewer, QEvent::MouseMove, {80, 50});
  mouse(viewer, QEvent::MouseButtonRelease, {80, 50}, Qt::MiddleButton);
  EXPECT_NEAR(workstation().pixelAt(viewer, {130, 110}).x, pixel.x, 1e-6) << "30 to the right, 10 up";
  EXPECT_NEAR(workstation().pixelAt(viewer, {130, 110}).y, pixel.y, 1e-6);
}

TEST_F(Viewers, TurningMirroringAndResetWorkOnTheFrontViewer) {
  openStudy();
  const int viewer = sagittalViewer();
  const double scale = info(viewer).scale;
  click("Turn &right");
  click("Mirror left to right");
  EXPECT_EQ(info(viewer).rotationDegrees, 90);
  EXPECT_TRUE(info(viewer).flippedHorizontally);
  EXPECT_EQ(info(axialViewer()).rotationDegrees, 0);
  click("R&eset view");
  EXPECT_EQ(info(viewer).rotationDegrees, 0);
  EXPECT_FALSE(info(viewer).flippedHorizontally);
  EXPECT_NEAR(info(viewer).scale, scale, 1e-9);
}

TEST_F(Viewers, AGridOfAnotherSizeKeepsTheViewersAndWhatFillsThem) {
  openStudy();
  const auto count = workstation().viewers().size();
  const int viewer = sagittalViewer();
  window_->grid().setSize({1, 1});
  settle();
  EXPECT_EQ(workstation().viewers().size(), count) << "those that are not seen stay open";
  EXPECT_TRUE(canvas(viewer).isVisible());
  EXPECT_FALSE(canvas(axialViewer()).isVisible());
  ASSERT_TRUE(workstation().bringToFront(axialViewer()));
  settle();
  EXPECT_TRUE(canvas(axialViewer()).isVisible()) << "the page with the front viewer is seen";
  window_->grid().setSize({3, 3});
  settle();
  EXPECT_TRUE(canvas(viewer).isVisible());
  EXPECT_TRUE(canvas(axialViewer()).isVisible());
  const auto info3x3 = info(viewer);
  EXPECT_NEAR(std::min(info3x3.viewFrame.width, info3x3.viewFrame.height), 160 * info3x3.scale, 2);
}

TEST_F(Viewers, ShiftAndClickShowTheSamePointOfThePatientEverywhere) {
  openStudy();
  const int sagittal = sagittalViewer();
  const int axial = axialViewer();
  markIn(sagittal, {80, 40});
  EXPECT_TRUE(hasCross(axial, *canvas(axial).markedPixel()));
  const auto& marked = canvas(axial).look().marked;
  ASSERT_TRUE(marked);
  // By hand: the pixel's place in the patient, from the geometry of the sagittal slice.
  const auto& geometry = *workstation().sliceRecord(sagittal, info(sagittal).slice)->geometry;
  for (std::size_t axis = 0; axis < 3; ++axis) {
    EXPECT_NEAR(marked->positionMm[axis],
                geometry.position[axis] + 80 * geometry.spacingX * geometry.row[axis] +
                    40 * geometry.spacingY * geometry.column[axis],
                1e-9);
  }
  // No axial slice lies nearer to that height than the one that is shown.
  const auto heightAt = [&](int slice) {
    const auto& shown = *workstation().sliceRecord(axial, slice)->geometry;
    return std::abs(shown.position[2] - marked->positionMm[2]);
  };
  for (int slice = 0; slice < info(axial).slices; ++slice)
    EXPECT_GE(heightAt(slice), heightAt(info(axial).slice) - 1e-9);
}

TEST_F(Viewers, TheMarkedPointIsBroughtIntoViewWhereAnImageIsEnlarged) {
  openStudy();
  const int sagittal = sagittalViewer();
  const int axial = axialViewer();
  markIn(sagittal, {80, 60});
  const pelmar::PixelPoint inMiddle = *canvas(axial).markedPixel();
  ASSERT_TRUE(workstation().zoom(axial, 8 * info(axial).scale));
  ASSERT_TRUE(workstation().pan(axial, 900, -700));
  const auto place = at(axial, inMiddle);
  ASSERT_FALSE(QRectF(canvas(axial).rect()).contains(place)) << "else the test shows nothing";
  markIn(sagittal, {80, 60});
  EXPECT_TRUE(hasCross(axial, inMiddle));
  const auto panned = info(axial).origin;
  const auto own = info(sagittal).origin;
  markIn(sagittal, {80.5, 60});
  EXPECT_EQ(info(axial).origin.x, panned.x) << "what is seen stays where it is";
  EXPECT_EQ(info(axial).origin.y, panned.y);
  EXPECT_EQ(info(sagittal).origin.x, own.x) << "and so does the image under the pointer";
  EXPECT_EQ(info(sagittal).origin.y, own.y);
}

TEST_F(Viewers, WhereASeriesHasNoSliceAtThePointItStaysAndThatIsTold) {
  openStudy();
  const int sagittal = sagittalViewer();
  const int axial = axialViewer();
  const int shown = info(axial).slice;
  const auto& geometry = *workstation().sliceRecord(sagittal, info(sagittal).slice)->geometry;
  const MarkedPoint above{workstation().sliceRecord(axial, 0)->frameOfReferenceUid,
                          {geometry.position[0], geometry.position[1] + 40, geometry.position[2] + 500}};
  window_->markPoint(sagittal, above);
  settle();
  EXPECT_EQ(info(axial).slice, shown);
  EXPECT_FALSE(canvas(axial).markedPixel());
  const QString told = window_->statusBar()->currentMessage();
  EXPECT_TRUE(told.startsWith("The point lies on no slice of ")) << told.toStdString();
  EXPECT_TRUE(told.contains(QString::fromStdString(stackTitle(workstation(), info(axial).stack))));
  markIn(sagittal, {80, 60});
  EXPECT_FALSE(window_->statusBar()->currentMessage().contains("axial")) << "it is told no longer than it is true";
}

TEST_F(Viewers, AGridOfAsManyAsAreOpenFollowsAViewerThatCloses) {
  openStudy();
  const auto count = workstation().viewers().size();
  ASSERT_GE(count, 3U);
  window_->closeFrontViewer();
  settle();
  EXPECT_EQ(window_->grid().size(), gridFor(count - 1));
  click("One viewer &alone");
  window_->closeFrontViewer();
  settle();
  EXPECT_EQ(window_->grid().size(), gridFor(count - 2));
  EXPECT_TRUE(window_->grid().isMaximised()) << "the next one is seen alone";
  openStudy();
  click("2 x 3");
  window_->closeFrontViewer();
  settle();
  EXPECT_EQ(window_->grid().size(), (GridSize{2, 3})) << "a chosen one stays";
}

TEST_F(Viewers, AClickWithALookingToolSelectsAnAnnotationAndDragsItWhole) {
  openStudy();
  const int viewer = sagittalViewer();
  ASSERT_TRUE(workstation().drawLine(viewer, info(viewer).slice, {40, 40}, {40, 100}));
  ASSERT_TRUE(workstation().selectMouseTool(viewer, MouseToolWindowLevel));
  ASSERT_TRUE(workstation().deselect(viewer));
  const auto line = workstation().annotations(viewer).front().roi;
  EXPECT_EQ(line->ROImode(), pelmar::ROIModeFinished);
  drag(viewer, {40, 70}, {60, 75});
  EXPECT_EQ(line->ROImode(), pelmar::ROIModeSelected);
  EXPECT_NEAR(line->pointAtIndex(0).x, 60, 0.01);
  EXPECT_NEAR(line->pointAtIndex(1).y, 105, 0.01);
  click("&Delete selected annotation");
  EXPECT_TRUE(workstation().annotations(viewer).empty());
  click("&Undo");
  ASSERT_EQ(workstation().annotations(viewer).size(), 1U);
  click("&Undo");
  EXPECT_NEAR(line->pointAtIndex(0).x, 40, 1e-9) << "the move of the whole is taken back";
}

TEST_F(Viewers, ATextIsWrittenWhereThePersonClicksAndRewrittenByADoubleClick) {
  openStudy();
  const int viewer = sagittalViewer();
  click("Text");
  prompts_.written = "  fracture  ";
  press(viewer, {60, 50});
  release(viewer, {60, 50});
  settle();
  ASSERT_EQ(workstation().annotations(viewer).size(), 1U);
  const auto text = workstation().annotations(viewer)[0].roi;
  EXPECT_EQ(text->name(), "fracture");
  EXPECT_NEAR(text->rect().origin.x, 60, 0.01);
  EXPECT_NEAR(text->rect().origin.y, 50, 0.01);
  drag(viewer, {60, 50}, {80, 90});
  EXPECT_NEAR(text->rect().origin.y, 90, 0.01) << "dragged, and none written";
  ASSERT_EQ(workstation().annotations(viewer).size(), 1U);
  prompts_.written = "old fracture";
  mouse(viewer, QEvent::MouseButtonDblClick, at(viewer, {80, 90}));
  release(viewer, {80, 90});
  settle();
  EXPECT_EQ(prompts_.textsOffered.back(), "fracture");
  EXPECT_EQ(text->name(), "old fracture");
  click("&Undo");
  EXPECT_EQ(text->name(), "fracture");
  click("&Delete selected annotation");
  EXPECT_TRUE(workstation().annotations(viewer).empty());
}

TEST_F(Viewers, NoTextNoAnnotationAndNoneInAViewerThatClosedMeanwhile) {
  openStudy();
  const int viewer = sagittalViewer();
  click("Text");
  prompts_.written = " ";
  press(viewer, {60, 50});
  release(viewer, {60, 50});
  settle();
  EXPECT_EQ(prompts_.textsOffered.size(), 1U);
  EXPECT_TRUE(workstation().annotations(viewer).empty());
  prompts_.written = "too late";
  prompts_.duringText = [&] { ASSERT_TRUE(workstation().closeViewer(viewer)); };
  press(viewer, {60, 50});
  release(viewer, {60, 50});
  settle();
  EXPECT_FALSE(workstation().viewer(viewer));
}

TEST_F(Viewers, WhatIsPaintedIsTheImageAndTheLine) {
  openStudy();
  const int viewer = sagittalViewer();
  const QImage before = canvas(viewer).grab().toImage();
  ASSERT_TRUE(workstation().drawLine(viewer, info(viewer).slice, {30, 30}, {130, 130}));
  settle();
  const QImage after = canvas(viewer).grab().toImage();
  const QPoint onLine = at(viewer, {100, 100}).toPoint();
  EXPECT_NE(before.pixelColor(onLine), after.pixelColor(onLine));
  EXPECT_GT(after.pixelColor(onLine).red(), 150) << "the line's yellow";
  const QPoint beside = at(viewer, {100, 60}).toPoint();
  EXPECT_EQ(before.pixelColor(beside), after.pixelColor(beside));
}

TEST_F(Viewers, AStudyThatIsGoneIsNamedWhenItIsOpened) {
  window_->openFolder(folder_ / "nothing");
  waitForTask();
  EXPECT_NE(messages().find((folder_ / "nothing").string()), std::string::npos) << messages();
  EXPECT_TRUE(workstation().viewers().empty());
}

TEST_F(Viewers, LayoutAndViewSwitchesAreKeptBetweenRuns) {
  window_->resize(720, 600);
  click("Reference &lines");
  click("&Studies");
  window_->close();
  EXPECT_EQ(settings_->value("view/referenceLines").toBool(), false);
  window_.reset();
  desk_.reset();
  DeskOptions options;
  options.defaultsFile = folder_ / "defaults.json";
  options.plugin = VERTANA_BUNDLE;
  desk_ = std::make_unique<Desk>(options, prompts_);
  window_ = std::make_unique<MainWindow>(*desk_, *settings_, database());
  EXPECT_EQ(window_->width(), 720);
  EXPECT_EQ(window_->height(), 600);
  window_->show();
  EXPECT_FALSE(window_->browser().isVisible());
  click("&Studies");
  EXPECT_TRUE(window_->browser().isVisible());
}

TEST_F(Viewers, AGridThatIsChosenIsKeptForOtherStudiesAndBetweenRuns) {
  openStudy();
  const GridSize asNeeded = gridFor(workstation().viewers().size());
  EXPECT_EQ(window_->grid().size(), asNeeded);
  click("2 x 3");
  EXPECT_EQ(window_->grid().size(), (GridSize{2, 3}));
  restart();
  openStudy();
  EXPECT_EQ(window_->grid().size(), (GridSize{2, 3}));
  click("As many as are open");
  EXPECT_EQ(window_->grid().size(), asNeeded);
  restart();
  openStudy();
  EXPECT_EQ(window_->grid().size(), asNeeded);
  settings_->setValue("view/grid", "7 x 7");
  restart();
  openStudy();
  EXPECT_EQ(window_->grid().size(), asNeeded) << "there is no such grid";
}

TEST_F(Viewers, TheWindowAloneCanBeResetToTheFiles) {
  openStudy();
  const int viewer = sagittalViewer();
  const auto before = *canvas(viewer).shownWindow();
  canvas(viewer).look().window = WindowSetting{10, 20, {}};
  const double scale = info(viewer).scale;
  ASSERT_TRUE(workstation().zoom(viewer, 2 * scale));
  click("Reset win&dow and level");
  EXPECT_EQ(canvas(viewer).shownWindow()->width, before.width);
  EXPECT_EQ(info(viewer).scale, 2 * scale) << "nothing else is";
}

TEST_F(Viewers, ThePointersShapeFollowsWhatComesAndGoesUnderIt) {
  openStudy();
  const int viewer = sagittalViewer();
  ASSERT_TRUE(workstation().selectMouseTool(viewer, MouseToolWindowLevel));
  const auto shape = [&] { return canvas(viewer).cursor().shape(); };
  mouse(viewer, QEvent::MouseMove, at(viewer, {110, 60}));
  EXPECT_EQ(shape(), Qt::ArrowCursor);
  ASSERT_TRUE(workstation().drawLine(viewer, info(viewer).slice, {110, 20}, {110, 100}));
  ASSERT_TRUE(workstation().selectMouseTool(viewer, MouseToolWindowLevel));
  settle();
  EXPECT_EQ(shape(), Qt::PointingHandCursor);
  click("&Undo");
  EXPECT_EQ(shape(), Qt::ArrowCursor);
  click("&Redo");
  EXPECT_EQ(shape(), Qt::PointingHandCursor);
  click("Mirror left to right");
  EXPECT_EQ(shape(), Qt::ArrowCursor) << "column 110 of 160 is no longer under the pointer";
  QEvent leaves(QEvent::Leave);
  QApplication::sendEvent(&canvas(viewer), &leaves);
  click("Mirror left to right");
  EXPECT_EQ(shape(), Qt::ArrowCursor) << "the pointer is elsewhere";
}

TEST_F(Viewers, OnlyAFolderThatWasShownIsRememberedAndByItsWholePath) {
  const auto last = [&] { return settings_->value("folders/last").toString().toStdString(); };
  openStudy();
  ASSERT_EQ(last(), study().string());
  window_->openFolder(folder_ / "nothing");
  waitForTask();
  EXPECT_EQ(last(), study().string());
  restart();
  const auto before = std::filesystem::current_path();
  settings_->remove("folders/last");
  std::filesystem::current_path(folder_ / ".");
  window_->openFolder("./study/");
  waitForTask();
  std::filesystem::current_path(before);
  EXPECT_EQ(last(), std::filesystem::canonical(study()).string());
  settings_->remove("folders/last");
  restart();
  for (const auto& entry : std::filesystem::recursive_directory_iterator(study())) {
    if (entry.path().extension() != ".dcm") continue;
    window_->openFolder(entry.path());
    waitForTask();
    EXPECT_EQ(last(), entry.path().parent_path().string()) << "of a file, the folder that it lies in";
    break;
  }
}

TEST_F(Viewers, TheLastFolderIsWhereTheNextOneIsLookedFor) {
  prompts_.folder = QString::fromStdString(study().string());
  click("&Import folder into the database ...");
  waitForTask();
  restart();
  click("&Open folder ...");
  waitForTask();
  EXPECT_EQ(prompts_.start.toStdString(), study().string());
}

}  // namespace
}  // namespace workstation::test
