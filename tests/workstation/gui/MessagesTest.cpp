// What the person is told when something cannot be done, and that nothing is half done then.
#include <dcmtk/config/osconfig.h>
#include <dcmtk/dcmdata/dctk.h>

#include <QLabel>
#include <QToolButton>
#include <stdexcept>

#include "WindowFixture.h"
#include "tests/support/FileSizeLimit.h"
#include "tests/support/NotRoot.h"
#include "tests/workstation/dicom/DicomFixtures.h"

namespace workstation::test {
namespace {

class Messages : public WindowTest {
 protected:
  std::filesystem::path anyImage() {
    for (const auto& entry : std::filesystem::recursive_directory_iterator(study())) {
      if (entry.path().extension() == ".dcm") return entry.path();
    }
    return {};
  }
  std::size_t imagesInDatabase() {
    std::size_t count = 0;
    std::error_code error;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(database(), error))
      count += entry.path().extension() == ".dcm";
    return count;
  }
  /// Adds what the study's series with one number shows as another one, as if it was taken after the patient had left
  /// the table.
  void copySeriesToAnotherFrame(int number, int copied) {
    std::vector<std::filesystem::path> files;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(study())) {
      if (entry.path().extension() == ".dcm" || entry.path().filename().string().starts_with("IM"))
        files.push_back(entry.path());
    }
    const std::string ending = "." + std::to_string(copied);
    for (const auto& file : files) {
      if (onlyImage(file).seriesNumber != number) continue;
      const auto copy = file.parent_path() / (std::to_string(copied) + file.filename().string());
      std::filesystem::copy_file(file, copy);
      edit(copy, [&](DcmDataset& data) {
        data.putAndInsertString(DCM_FrameOfReferenceUID, "1.2.3.4");
        data.putAndInsertString(DCM_SeriesNumber, std::to_string(copied).c_str());
        for (const auto& tag : {DCM_SeriesInstanceUID, DCM_SOPInstanceUID}) {
          OFString uid;
          data.findAndGetOFString(tag, uid);
          data.putAndInsertString(tag, (std::string(uid.c_str()) + ending).c_str());
        }
      });
    }
  }
  /// One viewer for each series, and no other one.
  void showSeries(const std::vector<int>& numbers) {
    const std::string uid = workstation().viewers()[0].stack.studyUid;
    while (!workstation().viewers().empty()) window_->closeFrontViewer();
    for (int number : numbers) window_->openStack(*workstation().findStack(uid, number), true);
    settle();
  }
  int viewerOf(int series) {
    for (const ViewerInfo& viewer : workstation().viewers()) {
      if (workstation().series(viewer.stack)->number == series) return viewer.number;
    }
    ADD_FAILURE() << "series " << series << " is in no viewer";
    return -1;
  }
  std::vector<int> seriesWithBanner() {
    std::vector<int> numbers;
    for (const ViewerInfo& viewer : workstation().viewers()) {
      if (!canvas(viewer.number).banners().empty()) numbers.push_back(*workstation().series(viewer.stack)->number);
    }
    return numbers;
  }
  bool isTold(const std::string& text) { return messages().find(text) != std::string::npos; }
  QToolButton& dismissButton() {
    for (auto* button : window_->messages().findChildren<QToolButton*>()) {
      if (button->text() == "Dismiss") return *button;
    }
    throw std::runtime_error("there is nothing to dismiss messages with");
  }
  /// What the person reads above the viewers.
  std::string textOfBar() { return window_->messages().findChild<QLabel*>()->text().toStdString(); }
  /// "Message 1" to "Message 6"; the second and the sixth come with a button.
  void tellSix() {
    MessageBar& bar = window_->messages();
    for (const char* number : {"1", "2", "3", "4", "5", "6"}) {
      const std::string sentence = std::string("Message ") + number;
      if (*number == '2' || *number == '6') {
        bar.offer(number, sentence, "Do it", [] {});
      } else {
        bar.add(sentence);
      }
    }
    settle();
  }
  /// How many pixels of a view have the colour in which it says why there is no image.
  int inkOfProblem(int viewer) {
    const QImage image = canvas(viewer).grab().toImage();
    int count = 0;
    for (int y = 0; y < image.height(); ++y) {
      for (int x = 0; x < image.width(); ++x) count += image.pixel(x, y) == qRgb(255, 200, 120);
    }
    return count;
  }
};

TEST_F(Messages, AFileThatCannotBeReadIsNamedWhenItsFolderIsOpenedAndTheRestIsShown) {
  const auto damaged = study() / "damaged.dcm";
  std::filesystem::copy_file(anyImage(), damaged);
  truncate(damaged, 300);
  openStudy();
  EXPECT_TRUE(isTold(damaged.string() + " cannot be used: ")) << messages();
  EXPECT_GE(workstation().viewers().size(), 2U);
}

TEST_F(Messages, AFileThatBecomesUnreadableIsNamedOnRequestAndWhatIsShownStays) {
  openStudy();
  const auto viewers = workstation().viewers().size();
  const int viewer = sagittalViewer();
  const auto slices = workstation().viewer(viewer)->slices;
  const auto file = workstation().sliceRecord(viewer, 0)->file;
  ASSERT_TRUE(workstation().drawLine(viewer, 0, {30, 30}, {60, 60}));
  truncate(file, 60);
  window_->findChild<QAction*>("lookForFiles")->trigger();
  settle();
  EXPECT_TRUE(isTold(file.string() + " cannot be used: it is truncated")) << messages();
  EXPECT_TRUE(isTold("1 slice went")) << messages();
  EXPECT_EQ(workstation().viewers().size(), viewers);
  EXPECT_EQ(workstation().viewer(viewer)->slices, slices);
  EXPECT_EQ(workstation().annotations(viewer, 0).size(), 1U) << "what was drawn on it stays";
  window_->messages().dismiss();
  window_->findChild<QAction*>("lookForFiles")->trigger();
  settle();
  EXPECT_FALSE(isTold("cannot be used")) << "named once: " << messages();
}

TEST_F(Messages, OfManyFilesThatCannotBeReadTheFirstAreNamedAndTheRestCounted) {
  for (int number = 100; number < 130; ++number) writeText(study() / ("empty" + std::to_string(number) + ".dcm"), "");
  openStudy();
  EXPECT_TRUE(isTold("empty119.dcm"));
  EXPECT_FALSE(isTold("empty120.dcm"));
  EXPECT_TRUE(isTold("10 files more")) << messages();
}

TEST_F(Messages, ASeriesThatIsShownButCannotBeLabelledIsNamedInOneLineTheFirstTime) {
  openStudy();
  const auto images = desk_->folders().images(workstation().viewers()[0].stack.studyUid);
  std::vector<std::filesystem::path> coronal;
  for (const ImageRecord& image : images) {
    if (image.seriesNumber == 2) coronal.push_back(image.file);
  }
  ASSERT_EQ(coronal.size(), 15U);
  const auto axial =
      std::find_if(images.begin(), images.end(), [](const auto& image) { return image.seriesNumber == 3; });
  window_->close();
  for (const auto& file : coronal)
    edit(file, [](DcmDataset& data) { data.putAndInsertString(DCM_PixelSpacing, "0\\0"); });
  edit(axial->file, [](DcmDataset& data) { data.findAndDeleteElement(DCM_ImageOrientationPatient); });
  restart();
  openStudy();
  const auto sentences = window_->messages().sentences();
  ASSERT_EQ(sentences.size(), 2) << messages();
  EXPECT_EQ(sentences[0].toStdString(),
            coronal.front().string() +
                " is shown but cannot be labelled: Pixel Spacing is 0. The same goes for 14 "
                "slices more of its series.");
  EXPECT_EQ(sentences[1].toStdString(),
            axial->file.string() + " is shown but cannot be labelled: Image Orientation (Patient) is missing.");
  window_->messages().dismiss();
  openStudy();
  EXPECT_EQ(messages(), "") << "the person knows it";
}

TEST_F(Messages, AFileThatCannotBeReadIsNamedOnImportAndTheRestIsImported) {
  const auto damaged = study() / "damaged.dcm";
  std::filesystem::copy_file(anyImage(), damaged);
  truncate(damaged, 300);
  window_->importPaths({study()});
  waitForTask();
  EXPECT_TRUE(isTold(damaged.string() + " was not imported: ")) << messages();
  EXPECT_EQ(window_->browser().tree().topLevelItemCount(), 1);
  EXPECT_GT(imagesInDatabase(), 10U);
}

TEST_F(Messages, AFullDiskIsToldOnImportAndLeavesTheDatabaseAsItWas) {
  {
    const testsupport::FileSizeLimit disk(8192);
    window_->importPaths({study()});
    waitForTask();
  }
  EXPECT_TRUE(isTold((database() / "studies").string())) << messages();
  EXPECT_TRUE(isTold("cannot be written: File too large")) << messages();
  EXPECT_EQ(imagesInDatabase(), 0U);
  EXPECT_EQ(window_->browser().tree().topLevelItemCount(), 0);
  window_->importPaths({study()});
  waitForTask();
  EXPECT_EQ(window_->browser().tree().topLevelItemCount(), 1) << "once there is room again";
}

TEST_F(Messages, ADatabaseThatMayNotBeWrittenIsToldOnImport) {
  using std::filesystem::perms;
  std::filesystem::create_directories(database() / "studies");
  std::filesystem::permissions(folder_.path(), perms(0755));
  for (const auto& folder : {database(), database() / "studies"}) std::filesystem::permissions(folder, perms(0555));
  {
    const testsupport::NotRoot person;
    window_->importPaths({study()});
    waitForTask();
  }
  EXPECT_TRUE(isTold((database() / "import.lock").string())) << messages();
  EXPECT_TRUE(isTold("Permission denied")) << messages();
  EXPECT_EQ(imagesInDatabase(), 0U);
  for (const auto& folder : {database(), database() / "studies"}) std::filesystem::permissions(folder, perms(0755));
}

TEST_F(Messages, ADatabaseThatCannotBeMadeIsToldOnImport) {
  writeText(database(), "a file is in the way");
  window_->importPaths({study()});
  waitForTask();
  EXPECT_TRUE(isTold("The database folder " + database().string() + " cannot be made")) << messages();
  EXPECT_EQ(bytesOf(database()).size(), std::string("a file is in the way").size());
}

TEST_F(Messages, AFolderThatIsNoDatabaseIsToldAtTheStartAndLeftAsItIs) {
  std::filesystem::create_directory(database());
  restart();
  EXPECT_EQ(messages(), "") << "the first import makes it one";
  EXPECT_TRUE(std::filesystem::is_empty(database()));
  writeText(database() / "notes.txt", "no DICOM");
  restart();
  EXPECT_TRUE(isTold("The folder " + database().string() + " is no database, ")) << messages();
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(database()), {}), 1);
  window_->importPaths({study()});
  waitForTask();
  EXPECT_EQ(window_->browser().tree().topLevelItemCount(), 1) << "an import is what a person wants there";
}

TEST_F(Messages, WhatHasNotBeenShownComesWhenTheFirstAreDismissed) {
  MessageBar& bar = window_->messages();
  tellSix();
  EXPECT_EQ(textOfBar(), "Message 1\nMessage 2\nMessage 3\nMessage 4\n... and 2 more, shown after Dismiss.");
  EXPECT_TRUE(bar.button("2")->isVisible());
  EXPECT_FALSE(bar.button("6")->isVisible()) << "nothing says yet what it is for";
  dismissButton().click();
  settle();
  EXPECT_EQ(textOfBar(), "Message 5\nMessage 6");
  EXPECT_EQ(bar.button("2"), nullptr);
  ASSERT_NE(bar.button("6"), nullptr);
  EXPECT_TRUE(bar.button("6")->isVisible());
  bar.add("Message 7");
  EXPECT_EQ(textOfBar(), "Message 5\nMessage 6\nMessage 7");
  dismissButton().click();
  settle();
  EXPECT_FALSE(bar.isVisible());
  EXPECT_EQ(messages(), "");
}

TEST_F(Messages, ADoubleClickOnDismissPutsAwayOnlyWhatWasShown) {
  tellSix();
  QToolButton& dismiss = dismissButton();
  const QPointF middle = QRectF(dismiss.rect()).center();
  for (const auto type : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease, QEvent::MouseButtonDblClick,
                          QEvent::MouseButtonRelease}) {
    QMouseEvent event(type, middle, dismiss.mapToGlobal(middle), Qt::LeftButton,
                      type == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::LeftButton, {});
    QApplication::sendEvent(&dismiss, &event);
  }
  settle();
  EXPECT_EQ(textOfBar(), "Message 5\nMessage 6");
}

TEST_F(Messages, AFileThatVanishesWhileItIsShownIsNamedInItsView) {
  openStudy();
  const int viewer = sagittalViewer();
  EXPECT_EQ(inkOfProblem(viewer), 0);
  std::filesystem::remove_all(study());
  desk_->pixels().clear();
  wheel(viewer, 1);
  EXPECT_GT(inkOfProblem(viewer), 50) << "the sentence that names the file";
  wheel(viewer, -1);
  EXPECT_GT(inkOfProblem(viewer), 50);
}

TEST_F(Messages, ALabellingThatCannotBeSavedIsToldInItsViewersUntilItIs) {
  openStudy();
  chooseLabels();
  drag(sagittalViewer(), spineTop, spineEnd);
  const std::vector<std::string> notSaved{"The labelling of this study is not saved yet."};
  for (ViewerPane* pane : window_->grid().panes()) EXPECT_TRUE(pane->canvas().banners().empty());
  desk_->store().setFailing(true);
  ASSERT_TRUE(workstation().closePalette());
  settle();
  EXPECT_TRUE(isTold("no space is left on the device")) << messages();
  EXPECT_TRUE(isTold(study().string())) << "the file is named";
  for (ViewerPane* pane : window_->grid().panes()) EXPECT_EQ(pane->canvas().banners(), notSaved);
  desk_->store().setFailing(false);
  chooseLabels();
  window_->palette().button("stopWorkFlow:")->click();
  settle();
  for (ViewerPane* pane : window_->grid().panes()) EXPECT_TRUE(pane->canvas().banners().empty());
}

TEST_F(Messages, AxialSlicesInAnotherFrameOfReferenceThanTheLabellingSaySo) {
  for (const auto& entry : std::filesystem::recursive_directory_iterator(study())) {
    if (entry.path().extension() != ".dcm" || planeOf(onlyImage(entry.path())) != Plane::axial) continue;
    edit(entry.path(), [](DcmDataset& data) { data.putAndInsertString(DCM_FrameOfReferenceUID, "1.2.3.4"); });
  }
  openStudy();
  const int axial = axialViewer();
  EXPECT_TRUE(canvas(axial).banners().empty()) << "nothing is labelled yet";
  chooseLabels();
  drag(sagittalViewer(), spineTop, spineEnd);
  ASSERT_EQ(canvas(axial).banners().size(), 1U);
  EXPECT_NE(canvas(axial).banners()[0].find("another frame of reference"), std::string::npos);
  EXPECT_TRUE(canvas(sagittalViewer()).banners().empty());
}

TEST_F(Messages, TheFrameOfReferenceThatCountsIsTheOneThatWasDrawnInAlsoWhenTheCurveIsGone) {
  copySeriesToAnotherFrame(1, 9);  // sagittal
  copySeriesToAnotherFrame(3, 4);  // axial
  openStudy();
  showSeries({1, 9, 3, 4});
  ASSERT_TRUE(workstation().bringToFront(viewerOf(9)));
  window_->chooseMenu("Labels");
  drag(viewerOf(9), spineTop, spineEnd);
  EXPECT_EQ(seriesWithBanner(), std::vector<int>{3}) << "the curve is in memory";
  window_->palette().button("stopWorkFlow:")->click();
  settle();
  EXPECT_EQ(seriesWithBanner(), std::vector<int>{3}) << "only what is stored tells where it was drawn";
  restart();
  openStudy();
  showSeries({1, 9, 3, 4});
  EXPECT_EQ(seriesWithBanner(), std::vector<int>{3});
}

TEST_F(Messages, TheFrameOfReferenceOfALabellingThatCouldNotBeSavedIsKnownAllTheSame) {
  copySeriesToAnotherFrame(1, 9);
  copySeriesToAnotherFrame(3, 4);
  openStudy();
  showSeries({1, 9, 3, 4});
  ASSERT_TRUE(workstation().bringToFront(viewerOf(9)));
  window_->chooseMenu("Labels");
  desk_->store().setFailing(true);
  drag(viewerOf(9), spineTop, spineEnd);
  window_->palette().button("stopWorkFlow:")->click();
  settle();
  ASSERT_TRUE(desk_->store().status(workstation().viewers()[0].stack.studyUid).unsaved);
  for (int series : {9, 4}) EXPECT_EQ(canvas(viewerOf(series)).banners().size(), 1U) << "not saved";
  EXPECT_EQ(canvas(viewerOf(3)).banners().size(), 2U);
  desk_->store().setFailing(false);
}

}  // namespace
}  // namespace workstation::test
