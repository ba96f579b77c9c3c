#include "workstation/gui/ShortcutSheet.h"

#include <QDialogButtonBox>
#include <QGridLayout>
#include <QLabel>
#include <QMenu>
#include <QScreen>
#include <QScrollArea>
#include <QVBoxLayout>
#include <vector>

namespace workstation {
namespace {

struct Row {
  QString keys;
  QString does;
};

struct Section {
  QString title;
  std::vector<Row> rows;
};

constexpr int rowsInColumn = 27;

/// What no menu has.
std::vector<Section> pointerAndKeys() {
  return {{"Label a spine",
           {{"Drag", "draw the line along the spine, from the upper disc to the lower one"},
            {"Click ... double click", "the discs one by one, where the palette says polygon"},
            {"Return", "end a polygon"},
            {"Drag a vertex", "correct the curve; the levels follow"},
            {"Tab, Space in the palette", "next control, press it or open its list"},
            {"Esc in the palette", "back to the viewer, the palette stays open"}}},
          {"Slices",
           {{"Wheel, Up, Down", "one slice"},
            {"Page Up, Page Down", "a tenth of the slices"},
            {"Home, End", "first, last slice"},
            {"Shift+click", "the same point of the patient in every viewer"}}},
          {"Image",
           {{"Middle button", "pan"},
            {"Right button, Ctrl+wheel", "zoom"},
            {"Double click", "one viewer alone, all again"},
            {"Right click, Menu key", "menu of the viewer"},
            {"Tab", "from viewer to viewer and to the list of studies"}}},
          {"Annotations",
           {{"Click on one", "select it; drag to move it (not with a drawing tool)"},
            {"Double click on a text", "change it"},
            {"Esc", "nothing is selected any more"}}}};
}

/// A command as a person reads it: without the mark of its letter and the dots that announce a panel.
QString plainText(QString text) {
  text.remove('&');
  if (text.endsWith(" ...")) text.chop(4);
  if (text.endsWith("…")) text.chop(1);
  return text;
}

/// The commands of a menu that have a key, and after them those of the menus in it.
void addMenu(const QMenu& menu, std::vector<Section>& sections) {
  Section section{plainText(menu.title()), {}};
  std::vector<const QMenu*> inner;
  for (const QAction* action : menu.actions()) {
    if (action->menu()) inner.push_back(action->menu());
    const QString keys = action->shortcut().toString(QKeySequence::NativeText);
    if (!keys.isEmpty()) section.rows.push_back({keys, plainText(action->text())});
  }
  if (!section.rows.empty()) sections.push_back(std::move(section));
  for (const QMenu* each : inner) addMenu(*each, sections);
}

void addSection(QGridLayout& grid, const Section& section, int& row) {
  auto* title = new QLabel(section.title);
  QFont bold = title->font();
  bold.setBold(true);
  title->setFont(bold);
  if (row > 0) grid.setRowMinimumHeight(row++, 10);
  grid.addWidget(title, row++, 0, 1, 2);
  for (const Row& each : section.rows) {
    grid.addWidget(new QLabel(each.keys), row, 0);
    grid.addWidget(new QLabel(each.does), row++, 1);
  }
}

}  // namespace

ShortcutSheet::ShortcutSheet(const QMenuBar& menus, QWidget* parent) : QDialog(parent) {
  setWindowTitle("Keyboard and mouse");
  auto* layout = new QVBoxLayout(this);
  auto* page = new QWidget;
  auto* columns = new QHBoxLayout(page);
  columns->setSpacing(36);
  std::vector<Section> sections = pointerAndKeys();
  for (const QAction* action : menus.actions()) {
    if (action->menu()) addMenu(*action->menu(), sections);
  }
  QGridLayout* grid = nullptr;
  int row = 0;
  for (const Section& section : sections) {
    if (!grid || row + static_cast<int>(section.rows.size()) + 2 > rowsInColumn) {
      if (grid) grid->setRowStretch(row, 1);
      grid = new QGridLayout;
      grid->setHorizontalSpacing(18);
      grid->setVerticalSpacing(5);
      columns->addLayout(grid);
      row = 0;
    }
    addSection(*grid, section, row);
  }
  grid->setRowStretch(row, 1);
  // On a small screen the page is scrolled.
  auto* scroll = new QScrollArea(this);
  scroll->setFrameShape(QFrame::NoFrame);
  scroll->setWidgetResizable(true);
  scroll->setWidget(page);
  layout->addWidget(scroll);
  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close, this);
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
  layout->addWidget(buttons);
  const QSize beside(60, 90);  // margins, scroll bars and the button
  resize((page->sizeHint() + beside).boundedTo(screen()->availableGeometry().size()));
}

}  // namespace workstation
