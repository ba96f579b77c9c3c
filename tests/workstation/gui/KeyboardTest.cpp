// Everything can be reached without a mouse.
#include <QLabel>
#include <QMenuBar>
#include <QTimer>
#include <QToolBar>
#include <set>

#include "WindowFixture.h"
#include "workstation/gui/ShortcutSheet.h"

namespace workstation::test {
namespace {

class Keyboard : public WindowTest {
 protected:
  std::vector<QAction*> actionsWithKeys() {
    std::vector<QAction*> actions;
    for (QAction* action : window_->findChildren<QAction*>()) {
      if (!action->shortcut().isEmpty()) actions.push_back(action);
    }
    return actions;
  }
  /// Every command of a menu, and of the menus in it.
  static void collect(const QMenu& menu, std::set<const QAction*>& actions) {
    for (const QAction* action : menu.actions()) {
      if (action->menu()) collect(*action->menu(), actions);
      if (!action->isSeparator() && !action->menu()) actions.insert(action);
    }
  }
  std::set<const QAction*> commands() {
    std::set<const QAction*> actions;
    for (const QAction* action : window_->menuBar()->actions()) collect(*action->menu(), actions);
    return actions;
  }
};

TEST_F(Keyboard, TheSheetNamesEveryKeyOfEveryCommand) {
  const ShortcutSheet sheet(*window_->menuBar());
  std::map<QString, QString> rows;
  const auto labels = sheet.findChildren<QLabel*>();
  for (qsizetype index = 0; index + 1 < labels.size(); ++index) rows[labels[index]->text()] = labels[index + 1]->text();
  const auto actions = actionsWithKeys();
  ASSERT_GT(actions.size(), 30U);
  for (const QAction* action : actions) {
    const auto row = rows.find(action->shortcut().toString(QKeySequence::NativeText));
    ASSERT_NE(row, rows.end()) << action->text().toStdString() << " is not on the sheet";
    const QString text = QString(action->text()).remove('&').remove(" ...").remove("…");
    EXPECT_EQ(row->second.toStdString(), text.toStdString());
  }
}

TEST_F(Keyboard, EveryToolButtonIsAlsoACommandOfAMenuAndNoKeyHasTwoMeanings) {
  const auto inMenus = commands();
  for (QToolBar* bar : window_->findChildren<QToolBar*>()) {
    for (const QAction* action : bar->actions()) {
      EXPECT_TRUE(action->isSeparator() || inMenus.contains(action)) << action->text().toStdString();
    }
  }
  std::set<QString> keys;
  for (const QAction* action : actionsWithKeys()) {
    EXPECT_TRUE(inMenus.contains(action)) << action->text().toStdString();
    EXPECT_TRUE(keys.insert(action->shortcut().toString()).second) << action->shortcut().toString().toStdString();
  }
  for (const QAction* action : window_->menuBar()->actions())
    EXPECT_TRUE(action->text().contains('&')) << "Alt and a letter open it";
}

TEST_F(Keyboard, ViewersAreGoneThroughByKeyAndByTab) {
  openStudy();
  const int first = *workstation().frontViewer();
  const auto trigger = [&](const QString& text) {
    for (QAction* action : window_->findChildren<QAction*>()) {
      if (action->text() == text) action->trigger();
    }
    settle();
  };
  trigger("&Next viewer");
  const int second = *workstation().frontViewer();
  EXPECT_NE(second, first);
  trigger("&Previous viewer");
  EXPECT_EQ(*workstation().frontViewer(), first);
  trigger("&Previous viewer");
  EXPECT_EQ(*workstation().frontViewer(), window_->grid().panes().back()->viewer()) << "round the end";
  QFocusEvent byTab(QEvent::FocusIn, Qt::TabFocusReason);
  QApplication::sendEvent(&canvas(first), &byTab);
  settle();
  EXPECT_EQ(*workstation().frontViewer(), first);
  QFocusEvent byWindow(QEvent::FocusIn, Qt::ActiveWindowFocusReason);
  QApplication::sendEvent(&canvas(second), &byWindow);
  settle();
  EXPECT_EQ(*workstation().frontViewer(), first);
  trigger("One viewer &alone");
  EXPECT_TRUE(window_->grid().isMaximised());
  EXPECT_FALSE(canvas(second).isVisible());
  trigger("&Next viewer");
  EXPECT_TRUE(canvas(second).isVisible());
  EXPECT_FALSE(canvas(first).isVisible());
}

TEST_F(Keyboard, EscReturnAndTheMenuKeyDoInAViewerWhatTheMouseDoes) {
  openStudy();
  const int viewer = sagittalViewer();
  ASSERT_TRUE(workstation().drawLine(viewer, workstation().viewer(viewer)->slice, {40, 40}, {40, 100}));
  const auto line = workstation().annotations(viewer).front().roi;
  EXPECT_EQ(line->ROImode(), pelmar::ROIModeSelected);
  keyPress(viewer, Qt::Key_Escape);
  EXPECT_EQ(line->ROImode(), pelmar::ROIModeFinished);
  bool opened = false;
  QTimer closer;  // the menu keeps the program until it is closed
  QObject::connect(&closer, &QTimer::timeout, &closer, [&] {
    if (!QApplication::activePopupWidget()) return;
    opened = true;
    QApplication::activePopupWidget()->close();
  });
  closer.start(0);
  keyPress(viewer, Qt::Key_Menu);
  EXPECT_TRUE(opened);
}

}  // namespace
}  // namespace workstation::test
