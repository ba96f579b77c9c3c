#include "workstation/gui/PaletteWidget.h"

#include "WindowFixture.h"

namespace workstation::test {
namespace {

class Palette : public WindowTest {
 protected:
  void open() {
    openStudy();
    chooseLabels();
    ASSERT_TRUE(window_->palette().isVisible());
  }
  pelmar::Value pluginValue(const std::string& key) { return workstation().pluginState().dictionary()->at(key); }
  /// As a person picks an entry of a list.
  void pick(const std::string& property, int value) {
    auto* box = window_->palette().choice(property);
    ASSERT_NE(box, nullptr);
    const int index = box->findData(value);
    box->setCurrentIndex(index);
    emit box->activated(index);
    settle();
  }
};

TEST_F(Palette, OpensWithTheControlsAndValuesOfThePlugin) {
  open();
  auto& palette = window_->palette();
  EXPECT_EQ(palette.windowTitle(), "Spine labels");
  ASSERT_NE(palette.choice("anatomicalRegion"), nullptr);
  EXPECT_EQ(palette.choice("anatomicalRegion")->count(), 3);
  EXPECT_EQ(palette.choice("anatomicalRegion")->currentText(), "Lumbar");
  EXPECT_EQ(palette.choice("drawMode")->currentText(), "Line");
  ASSERT_NE(palette.checkbox("displayLabels"), nullptr);
  EXPECT_EQ(palette.checkbox("displayLabels")->isChecked(), pluginValue("displayLabels").boolValue());
  for (const char* action : {"reset:", "openHelp:", "stopWorkFlow:"}) EXPECT_NE(palette.button(action), nullptr);
}

TEST_F(Palette, LiesWithItsUpperLeftCornerOnTheFirstPixelOfTheFrontImage) {
  open();
  const int viewer = sagittalViewer();
  const QPointF pixel = at(viewer, {0, 0});
  auto& image = canvas(viewer);
  // Within the left and upper edges of the view.
  const QPointF corner = image.mapToGlobal(QPointF(std::max(0.0, pixel.x()), std::max(0.0, pixel.y())));
  EXPECT_NEAR(window_->palette().pos().x(), corner.x(), 1);
  EXPECT_NEAR(window_->palette().pos().y(), corner.y(), 1);
}

TEST_F(Palette, SetsThePropertiesOfThePlugin) {
  open();
  pick("anatomicalRegion", 0);
  EXPECT_EQ(pluginValue("anatomicalRegion").intValue(), 0);
  pick("drawMode", 1);
  EXPECT_EQ(pluginValue("drawMode").intValue(), 1);
  window_->palette().checkbox("additionalVertebra")->click();
  EXPECT_TRUE(pluginValue("additionalVertebra").boolValue());
  EXPECT_TRUE(prompts_.questions.empty()) << "there is nothing yet that could be thrown away";
}

TEST_F(Palette, ShowsWhatThePluginChangesByItself) {
  open();
  ASSERT_TRUE(workstation().setPaletteValue("anatomicalRegion", pelmar::Value(1)));
  ASSERT_TRUE(workstation().setPaletteValue("drawMode", pelmar::Value(1)));
  settle();
  window_->palette().refreshValues();
  EXPECT_EQ(window_->palette().choice("anatomicalRegion")->currentText(), "Thoracic");
  EXPECT_EQ(window_->palette().choice("drawMode")->currentText(), "Polygon");
}

TEST_F(Palette, AsksBeforeALabellingIsThrownAwayAndKeepsItOnNo) {
  open();
  drag(sagittalViewer(), spineTop, spineEnd);
  const auto names = planeNames();
  ASSERT_FALSE(names.empty());
  prompts_.confirms = false;
  pick("anatomicalRegion", 0);
  window_->palette().checkbox("additionalVertebra")->click();
  window_->palette().button("reset:")->click();
  settle();
  EXPECT_EQ(prompts_.questions.size(), 3U);
  EXPECT_EQ(planeNames(), names);
  EXPECT_EQ(window_->palette().choice("anatomicalRegion")->currentText(), "Lumbar") << "the control went back";
  EXPECT_FALSE(window_->palette().checkbox("additionalVertebra")->isChecked());
  prompts_.confirms = true;
  window_->palette().button("reset:")->click();
  settle();
  EXPECT_TRUE(planeNames().empty());
  EXPECT_TRUE(window_->palette().isVisible()) << "reset keeps the palette";
}

TEST_F(Palette, IsClosedByItsButtonByItsCloseBoxAndByThePlugin) {
  open();
  window_->palette().button("stopWorkFlow:")->click();
  settle();
  EXPECT_FALSE(window_->palette().isVisible());
  EXPECT_FALSE(workstation().palette());

  chooseLabels();
  ASSERT_TRUE(window_->palette().isVisible());
  window_->palette().close();
  settle();
  EXPECT_FALSE(window_->palette().isVisible());
  EXPECT_FALSE(workstation().palette());

  chooseLabels();
  ASSERT_TRUE(workstation().closePalette());
  settle();
  EXPECT_FALSE(window_->palette().isVisible());
}

TEST_F(Palette, TellsTheModelWhereThePersonMovesIt) {
  open();
  const auto before = workstation().palette()->frame;
  window_->palette().move(window_->palette().pos() + QPoint(40, 25));
  settle();
  const auto after = workstation().palette()->frame;
  EXPECT_NEAR(after.x - before.x, 40, 1);
  EXPECT_NEAR(after.y - before.y, -25, 1);
}

}  // namespace
}  // namespace workstation::test
