#include "workstation/gui/PaletteWidget.h"

#include <QAbstractButton>
#include <QCloseEvent>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QMouseEvent>
#include <QPainter>
#include <QSignalBlocker>
#include <QVBoxLayout>
#include <cmath>

namespace workstation {
namespace {

template <class Control>
Control* found(const std::map<std::string, Control*>& controls, const std::string& name) {
  const auto place = controls.find(name);
  return place == controls.end() ? nullptr : place->second;
}

}  // namespace

PaletteWidget::PaletteWidget(Desk& desk, QWidget* over)
    : QWidget(over, Qt::Tool | Qt::CustomizeWindowHint | Qt::WindowTitleHint | Qt::WindowCloseButtonHint), desk_(desk) {
  // Drawing comes next: the keyboard stays with the viewer until it is asked for.
  setAttribute(Qt::WA_ShowWithoutActivating);
  setFocusPolicy(Qt::ClickFocus);
}

QComboBox* PaletteWidget::choice(const std::string& property) const { return found(choices_, property); }
QCheckBox* PaletteWidget::checkbox(const std::string& property) const { return found(checkboxes_, property); }
QPushButton* PaletteWidget::button(const std::string& action) const { return found(buttons_, action); }

void PaletteWidget::build(const WindowDescription& description) {
  qDeleteAll(findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly));
  delete layout();
  choices_.clear();
  checkboxes_.clear();
  buttons_.clear();
  first_ = nullptr;
  built_ = description.name;
  setWindowTitle(QString::fromStdString(description.title));
  auto* rows = new QVBoxLayout(this);
  rows->setContentsMargins(14, 12, 14, 12);
  rows->setSpacing(12);
  auto* form = new QFormLayout;
  form->setHorizontalSpacing(12);
  form->setVerticalSpacing(8);
  form->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
  auto* buttons = new QHBoxLayout;
  buttons->setSpacing(8);
  rows->addLayout(form);
  rows->addStretch(1);
  rows->addLayout(buttons);
  for (const WindowControl& control : description.controls) add(control, *form, *buttons);
  setMinimumSize(static_cast<int>(description.width), 0);
  adjustSize();
  resize(std::max(width(), static_cast<int>(description.width)), height());
}

void PaletteWidget::add(const WindowControl& control, QFormLayout& form, QHBoxLayout& buttons) {
  const QString label = QString::fromStdString(control.label);
  switch (control.kind) {
    case WindowControl::Kind::choice: {
      auto* box = new QComboBox(this);
      for (const WindowChoice& each : control.choices) box->addItem(QString::fromStdString(each.title), each.value);
      form.addRow(label, box);
      choices_[control.property] = box;
      if (!first_) first_ = box;
      connect(box, &QComboBox::activated, this,
              [this, control, box](int index) { set(control, pelmar::Value(box->itemData(index).toInt())); });
      break;
    }
    case WindowControl::Kind::checkbox: {
      auto* box = new QCheckBox(label, this);
      form.addRow(QString(), box);
      checkboxes_[control.property] = box;
      if (!first_) first_ = box;
      connect(box, &QCheckBox::clicked, this, [this, control](bool on) { set(control, pelmar::Value(on)); });
      break;
    }
    case WindowControl::Kind::button: {
      auto* button = new QPushButton(label, this);
      button->setAutoDefault(false);
      buttons.addWidget(button);
      buttons_[control.action] = button;
      if (!first_) first_ = button;
      connect(button, &QPushButton::clicked, this, [this, control] { press(control); });
      break;
    }
    case WindowControl::Kind::label:
      form.addRow(new QLabel(label, this));
      break;
  }
}

void PaletteWidget::refresh() {
  const auto palette = desk_.workstation().palette();
  if (!palette || !palette->visible) return closeByModel();
  description_ = palette->description;
  if (built_ != description_.name) build(description_);
  refreshValues();
  const auto& frame = palette->frame;
  if (!isVisible() || frame.x != placed_.x || frame.y != placed_.y) {
    placed_ = frame;
    placing_ = true;
    // Its height is the toolkit's: the corner that is meant is the upper left one.
    move(static_cast<int>(std::lround(frame.x)),
         static_cast<int>(std::lround(desk_.screenHeight() - frame.y - frame.height)));
    show();
    raise();
    placing_ = false;
  }
}

void PaletteWidget::closeByModel() {
  const bool hasKeyboard = isVisible() && isActiveWindow();
  hide();
  if (hasKeyboard && leave_) leave_();
}

void PaletteWidget::takeKeyboard() {
  if (!isVisible()) return;
  activateWindow();
  // As by Tab, so that the control shows that it has the keyboard.
  if (first_) first_->setFocus(Qt::TabFocusReason);
}

bool PaletteWidget::event(QEvent* event) {
  // A list takes letters to find its entries by; else they would be the main window's commands.
  if (event->type() == QEvent::ShortcutOverride && qobject_cast<QComboBox*>(focusWidget())) {
    const auto* key = static_cast<QKeyEvent*>(event);
    const bool isLetter = !key->text().isEmpty() && key->text().at(0).isPrint();
    if (isLetter && !(key->modifiers() & (Qt::ControlModifier | Qt::AltModifier))) event->accept();
  }
  return QWidget::event(event);
}

void PaletteWidget::keyPressEvent(QKeyEvent* event) {
  if (event->key() == Qt::Key_Escape) {
    if (leave_) leave_();
  } else if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
    if (auto* button = qobject_cast<QAbstractButton*>(focusWidget())) button->click();
    if (auto* box = qobject_cast<QComboBox*>(focusWidget())) box->showPopup();
  } else {
    QWidget::keyPressEvent(event);
  }
}

void PaletteWidget::refreshValues() {
  const Workstation& workstation = desk_.workstation();
  for (const auto& [property, box] : choices_) {
    const QSignalBlocker quiet(box);
    box->setCurrentIndex(box->findData(workstation.paletteValue(property).intValue()));
  }
  for (const auto& [property, box] : checkboxes_) {
    const QSignalBlocker quiet(box);
    box->setChecked(workstation.paletteValue(property).boolValue());
  }
}

bool PaletteWidget::mayDiscard(const WindowControl& control) {
  if (!control.discardsLabelling || !desk_.hasLabellingInMemory()) return true;
  return desk_.prompts().confirm(
      "This throws the labelling away that you see.",
      "The spine has to be drawn anew after \"" + QString::fromStdString(control.label) + "\" is changed or used.",
      "Throw away");
}

void PaletteWidget::set(const WindowControl& control, const pelmar::Value& value) {
  if (mayDiscard(control)) {
    const Outcome outcome = desk_.workstation().setPaletteValue(control.property, value);
    if (!outcome) desk_.tell(*outcome.problem);
  }
  refreshValues();
}

void PaletteWidget::press(const WindowControl& control) {
  if (!mayDiscard(control)) return;
  const Outcome outcome = desk_.workstation().pressPalette(control.action);
  if (!outcome) desk_.tell(*outcome.problem);
}

void PaletteWidget::closeEvent(QCloseEvent* event) {
  // The model closes it, and refresh() hides it then.
  event->ignore();
  if (desk_.workstation().palette()) (void)desk_.workstation().closePalette();
}

void PaletteWidget::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.setPen(QColor(96, 101, 108));
  painter.drawRect(rect().adjusted(0, 0, -1, -1));
}

void PaletteWidget::mousePressEvent(QMouseEvent* event) {
  grip_ = event->globalPosition().toPoint() - frameGeometry().topLeft();
}

void PaletteWidget::mouseMoveEvent(QMouseEvent* event) {
  if (event->buttons().testFlag(Qt::LeftButton)) move(event->globalPosition().toPoint() - grip_);
}

void PaletteWidget::moveEvent(QMoveEvent* event) {
  QWidget::moveEvent(event);
  const auto palette = desk_.workstation().palette();
  if (placing_ || !isVisible() || !palette) return;
  const QPoint corner = frameGeometry().topLeft();
  placed_ = palette->frame;
  placed_.x = corner.x();
  placed_.y = desk_.screenHeight() - corner.y() - palette->frame.height;
  if (placed_.x == palette->frame.x && placed_.y == palette->frame.y) return;
  (void)desk_.workstation().movePalette({placed_.x, placed_.y});
}

}  // namespace workstation
