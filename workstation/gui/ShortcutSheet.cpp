#include "workstation/gui/ShortcutSheet.h"

#include <QDialogButtonBox>
#include <QGridLayout>
#include <QLabel>
#include <QVBoxLayout>
#include <vector>

namespace workstation {
namespace {

struct Row {
  const char* keys;
  const char* does;
};

struct Section {
  const char* title;
  std::vector<Row> rows;
};

const std::vector<Section>& sections() {
  static const std::vector<Section> all{
      {"Label a spine",
       {{"Ctrl+L", "Labels: open the palette"},
        {"Drag", "draw the line along the spine, from the upper disc to the lower one"},
        {"Drag a vertex", "correct the curve; the levels follow"},
        {"Return, double click", "end a polygon"},
        {"Ctrl+Z, Ctrl+Shift+Z", "undo, redo"},
        {"Del", "delete the selected annotation"}}},
      {"Slices",
       {{"Wheel, Up, Down", "one slice"},
        {"Page Up, Page Down", "a tenth of the slices"},
        {"Home, End", "first, last slice"},
        {"Shift+click", "the same point of the patient in every viewer"}}},
      {"Image",
       {{"Middle button", "pan"},
        {"Right button, Ctrl+wheel", "zoom"},
        {"F, +, -", "fit, zoom in, zoom out"},
        {"R, Shift+R", "turn right, left"},
        {"H, V", "mirror left to right, top to bottom"},
        {"Ctrl+R", "reset the view and its window"},
        {"Double click", "one viewer alone, all again"}}},
      {"Tools of the left button",
       {{"W, S, P, Z, T", "window and level, scroll, pan, zoom, turn"},
        {"L, G", "length line, open polygon"},
        {"Click on an annotation", "select it; drag to move it (not with a drawing tool)"},
        {"Esc", "nothing is selected any more"}}},
      {"Window",
       {{"Ctrl+1 ... Ctrl+8", "grid of viewers"},
        {"Ctrl+O, Ctrl+I", "open a folder, import one"},
        {"Ctrl+W", "close the front viewer"},
        {"Ctrl+T, Ctrl+E", "texts, reference lines on and off"},
        {"Right click", "menu of the viewer"},
        {"F1, Shift+F1", "this sheet, the manual"}}}};
  return all;
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

ShortcutSheet::ShortcutSheet(QWidget* parent) : QDialog(parent) {
  setWindowTitle("Keyboard and mouse");
  auto* layout = new QVBoxLayout(this);
  auto* columns = new QHBoxLayout;
  columns->setSpacing(36);
  int sectionIndex = 0;
  QGridLayout* grid = nullptr;
  int row = 0;
  for (const Section& section : sections()) {
    if (sectionIndex % 3 == 0) {
      if (grid) grid->setRowStretch(row, 1);
      grid = new QGridLayout;
      grid->setHorizontalSpacing(18);
      grid->setVerticalSpacing(5);
      columns->addLayout(grid);
      row = 0;
    }
    addSection(*grid, section, row);
    ++sectionIndex;
  }
  grid->setRowStretch(row, 1);
  layout->addLayout(columns);
  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close, this);
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
  layout->addWidget(buttons);
}

}  // namespace workstation
