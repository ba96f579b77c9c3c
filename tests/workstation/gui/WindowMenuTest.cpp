// The menu of windows and tables for the image in front.
#include <dcmtk/config/osconfig.h>
#include <dcmtk/dcmdata/dctk.h>

#include <QMenu>

#include "WindowFixture.h"
#include "tests/workstation/dicom/DicomFixtures.h"

namespace workstation::test {
namespace {

class WindowMenu : public WindowTest {
 protected:
  /// Opens the study with a table in every sagittal image that shows all values in one grey.
  void openStudyWithTable() {
    for (const auto& entry : std::filesystem::recursive_directory_iterator(study())) {
      if (entry.path().extension() != ".dcm" || planeOf(onlyImage(entry.path())) != Plane::sagittal) continue;
      edit(entry.path(), [](DcmDataset& data) {
        DcmItem* item = nullptr;
        ASSERT_TRUE(data.findOrCreateSequenceItem(DCM_VOILUTSequence, item, -2).good());
        const std::vector<Uint16> descriptor{2, 0, 8};
        const std::vector<Uint16> entries{77, 77};
        item->putAndInsertUint16Array(DCM_LUTDescriptor, descriptor.data(), 3);
        item->putAndInsertUint16Array(DCM_LUTData, entries.data(), 2);
        item->putAndInsertString(DCM_LUTExplanation, "Disc & cord");
      });
    }
    openStudy();
    ASSERT_TRUE(workstation().bringToFront(sagittalViewer()));
    settle();
  }
  /// The entry that begins so, of the menu as it opens now.
  QAction* entry(const QString& text) {
    for (QMenu* menu : window_->findChildren<QMenu*>()) {
      if (menu->title() != "&Window and level") continue;
      emit menu->aboutToShow();
      for (QAction* action : menu->actions()) {
        if (action->text().startsWith(text)) return action;
      }
    }
    ADD_FAILURE() << text.toStdString() << " is not in the menu";
    return nullptr;
  }
  int levelInTheMiddle(int viewer) {
    const QImage image = canvas(viewer).grab().toImage();
    return qGray(image.pixel(at(viewer, {100, 60}).toPoint()));
  }
};

TEST_F(WindowMenu, OffersTheTablesOfTheFileByTheirExplanations) {
  openStudyWithTable();
  const int viewer = sagittalViewer();
  EXPECT_TRUE(entry("As in the file")->isChecked());
  entry("Disc && cord")->trigger();
  settle();
  EXPECT_EQ(levelInTheMiddle(viewer), 77);
  EXPECT_TRUE(entry("Disc && cord")->isChecked());
  EXPECT_FALSE(entry("As in the file")->isChecked());
  EXPECT_FALSE(entry("&Keep this window")->isEnabled()) << "a table is no window";
  wheel(viewer, 1);
  EXPECT_EQ(levelInTheMiddle(viewer), 77) << "each slice with its own";
  ASSERT_TRUE(workstation().selectMouseTool(viewer, MouseToolWindowLevel));
  mouse(viewer, QEvent::MouseButtonPress, {20, 20});
  mouse(viewer, QEvent::MouseMove, {40, 40});
  mouse(viewer, QEvent::MouseButtonRelease, {40, 40});
  EXPECT_FALSE(canvas(viewer).look().voiTable) << "dragging leaves the table";
  EXPECT_TRUE(canvas(viewer).look().window);
  entry("As in the file")->trigger();
  EXPECT_FALSE(canvas(viewer).look().window);
}

TEST_F(WindowMenu, AWindowThatIsKeptIsThereInTheNextRun) {
  openStudy();
  entry("More contrast")->trigger();
  const double width = canvas(sagittalViewer()).shownWindow()->width;
  entry("&Keep this window")->trigger();
  restart();
  openStudy();
  EXPECT_NE(canvas(sagittalViewer()).shownWindow()->width, width);
  entry("Kept")->trigger();
  EXPECT_NEAR(canvas(sagittalViewer()).shownWindow()->width, width, 0.06) << "to a tenth";
}

}  // namespace
}  // namespace workstation::test
