// What is seen against the dark, and what is not.
#include "workstation/gui/Theme.h"

#include <QMenu>
#include <QToolBar>
#include <QToolButton>

#include "WindowFixture.h"

namespace workstation::test {
namespace {

int brightest(const QImage& image) {
  int most = 0;
  for (int y = 0; y < image.height(); ++y) {
    for (int x = 0; x < image.width(); ++x) most = std::max(most, qGray(image.pixel(x, y)));
  }
  return most;
}

TEST(Theme, EveryColourOfTheFrameIsDarkerThanText) {
  const QPalette palette = QApplication::palette();
  const auto grey = [&](QPalette::ColorGroup group, QPalette::ColorRole role) {
    return qGray(palette.color(group, role).rgb());
  };
  const int text = grey(QPalette::Active, QPalette::WindowText);
  for (const auto group : {QPalette::Active, QPalette::Inactive, QPalette::Disabled}) {
    for (const auto role : {QPalette::Light, QPalette::Midlight, QPalette::Mid, QPalette::Dark, QPalette::Shadow})
      EXPECT_LT(grey(group, role), text - 100) << group << " " << role;
    EXPECT_GE(grey(group, QPalette::Light), grey(group, QPalette::Dark)) << group;
    EXPECT_GE(grey(group, QPalette::Mid), grey(group, QPalette::Shadow)) << group;
  }
  for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::HighlightedText,
                          QPalette::PlaceholderText, QPalette::Link})
    EXPECT_LT(grey(QPalette::Disabled, role), text - 80) << role;
}

TEST(Theme, ADisabledEntryOfAMenuIsFainterThanAnEnabledOne) {
  QMenu menu;
  QAction* enabled = menu.addAction("Wide");
  QAction* disabled = menu.addAction("Wide");
  disabled->setEnabled(false);
  menu.adjustSize();
  const QImage image = menu.grab().toImage();
  EXPECT_GT(brightest(image.copy(menu.actionGeometry(enabled))), 200);
  EXPECT_LT(brightest(image.copy(menu.actionGeometry(disabled))), 130);
}

class NarrowWindow : public WindowTest {};

TEST_F(NarrowWindow, TheButtonForToolsThatHaveNoRoomIsSeen) {
  window_->resize(640, 480);
  settle();
  auto* more = window_->findChild<QToolBar*>("tools")->findChild<QToolButton*>("qt_toolbar_ext_button");
  ASSERT_NE(more, nullptr);
  ASSERT_TRUE(more->isVisible()) << "else the test shows nothing";
  const QImage image = more->grab().toImage();
  EXPECT_GT(brightest(image), 180) << "its arrows";
  EXPECT_GE(more->width(), 18);
}

}  // namespace
}  // namespace workstation::test
