// Everything can be reached without a mouse.
#include <QLabel>
#include <QMenuBar>
#include <QTimer>
#include <QToolBar>
#include <QToolButton>
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
  QAction* action(const QString& text) {
    for (QAction* each : window_->findChildren<QAction*>()) {
      if (each->text() == text) return each;
    }
    return nullptr;
  }
  /// A key as it comes to whatever has the keyboard.
  static void type(Qt::Key key) {
    for (const auto event : {QEvent::KeyPress, QEvent::KeyRelease}) {
      QWidget* widget = QApplication::focusWidget();
      ASSERT_NE(widget, nullptr) << "nothing has the keyboard";
      QKeyEvent typed(event, key, {}, key == Qt::Key_Space ? " " : "");
      QApplication::sendEvent(widget, &typed);
    }
    settle();
  }
  /// Goes on with Tab until a widget has the keyboard; false when it never gets it.
  static bool tabTo(const QWidget* wanted) {
    for (int count = 0; count < 40 && QApplication::focusWidget() != wanted; ++count) type(Qt::Key_Tab);
    return QApplication::focusWidget() == wanted;
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
    action(text)->trigger();
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

TEST_F(Keyboard, AViewerThatClosesLeavesTheKeyboardToTheNextOne) {
  openStudy();
  window_->messages().add("One.");
  window_->activateWindow();
  ASSERT_GE(window_->grid().panes().size(), 3U);
  // The last in the order of Tab, whose successor is no viewer.
  const int last = window_->grid().panes().back()->viewer();
  ASSERT_TRUE(workstation().bringToFront(last));
  canvas(last).setFocus();
  settle();
  ASSERT_EQ(QApplication::focusWidget(), &canvas(last));
  action("&Close viewer")->trigger();
  settle();
  ASSERT_FALSE(workstation().viewer(last));
  EXPECT_EQ(QApplication::focusWidget(), &canvas(*workstation().frontViewer()));
  while (workstation().frontViewer()) {
    action("&Close viewer")->trigger();
    settle();
  }
  EXPECT_EQ(QApplication::focusWidget(), &window_->browser().tree()) << "where the next study is chosen";
}

TEST_F(Keyboard, MessagesAreDismissedByTabAndSpace) {
  openStudy();
  window_->activateWindow();
  canvas(*workstation().frontViewer()).setFocus();
  settle();
  for (const char* sentence : {"One.", "Two.", "Three.", "Four.", "Five."}) window_->messages().add(sentence);
  settle();
  ASSERT_TRUE(tabTo(window_->messages().findChild<QToolButton*>()));
  type(Qt::Key_Space);
  EXPECT_EQ(window_->messages().shown(), QStringList{"Five."});
  type(Qt::Key_Space);
  EXPECT_FALSE(window_->messages().isVisible());
  EXPECT_NE(QApplication::focusWidget(), nullptr) << "the keyboard goes on elsewhere";
}

TEST_F(Keyboard, ThePaletteIsReachedUsedAndLeftWithoutAMouse) {
  openStudy();
  auto* go = action("Go to t&he palette");
  ASSERT_NE(go, nullptr);
  EXPECT_FALSE(go->isEnabled()) << "it is closed";
  chooseLabels();
  window_->activateWindow();
  auto& viewer = canvas(*workstation().frontViewer());
  viewer.setFocus();
  settle();
  ASSERT_TRUE(go->isEnabled());
  go->trigger();
  settle();
  PaletteWidget& palette = window_->palette();
  EXPECT_EQ(QApplication::activeWindow(), &palette);
  EXPECT_EQ(QApplication::focusWidget(), palette.choice("anatomicalRegion"));

  std::vector<QWidget*> controls;
  for (auto* box : palette.findChildren<QComboBox*>()) controls.push_back(box);
  for (auto* button : palette.findChildren<QAbstractButton*>()) controls.push_back(button);
  ASSERT_GE(controls.size(), 7U);
  for (const QWidget* control : controls) EXPECT_TRUE(tabTo(control)) << control->metaObject()->className();

  auto* extra = palette.checkbox("additionalVertebra");
  ASSERT_TRUE(tabTo(extra));
  type(Qt::Key_Space);
  EXPECT_TRUE(extra->isChecked());
  type(Qt::Key_Return);
  EXPECT_FALSE(extra->isChecked());

  type(Qt::Key_Escape);
  EXPECT_EQ(QApplication::activeWindow(), window_.get());
  EXPECT_EQ(QApplication::focusWidget(), &viewer);
  EXPECT_TRUE(palette.isVisible());

  go->trigger();
  settle();
  ASSERT_TRUE(tabTo(palette.button("stopWorkFlow:")));
  type(Qt::Key_Return);
  EXPECT_FALSE(palette.isVisible());
  EXPECT_EQ(QApplication::activeWindow(), window_.get());
  EXPECT_EQ(QApplication::focusWidget(), &viewer);
}

TEST_F(Keyboard, LettersChooseInAListOfThePaletteAndAreNoCommandsThere) {
  openStudy();
  chooseLabels();
  action("Go to t&he palette")->trigger();
  settle();
  PaletteWidget& palette = window_->palette();
  const auto isTaken = [](QWidget* widget, Qt::Key key, Qt::KeyboardModifiers modifiers, const QString& text) {
    QKeyEvent event(QEvent::ShortcutOverride, key, modifiers, text);
    event.ignore();
    QApplication::sendEvent(widget, &event);
    return event.isAccepted();
  };
  auto* region = palette.choice("anatomicalRegion");
  ASSERT_EQ(QApplication::focusWidget(), region);
  EXPECT_TRUE(isTaken(region, Qt::Key_T, {}, "t"));
  EXPECT_FALSE(isTaken(region, Qt::Key_L, Qt::ControlModifier, "\f")) << "Ctrl+L still closes it";
  EXPECT_FALSE(isTaken(region, Qt::Key_F6, {}, "")) << "and F6 goes to the next viewer";
  QKeyEvent typed(QEvent::KeyPress, Qt::Key_T, {}, "t");
  QApplication::sendEvent(region, &typed);
  settle();
  EXPECT_EQ(region->currentText(), "Thoracic");
  EXPECT_EQ(workstation().paletteValue("anatomicalRegion").intValue(), region->currentData().toInt());
  auto* done = palette.button("stopWorkFlow:");
  done->setFocus();
  EXPECT_FALSE(isTaken(done, Qt::Key_T, {}, "t"));
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
