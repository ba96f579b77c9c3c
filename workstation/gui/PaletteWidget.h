#pragma once

#include <QCheckBox>
#include <QComboBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QPushButton>
#include <QWidget>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "workstation/gui/Desk.h"

namespace workstation {

/// The plug-in's window, made from its description: floats over the main window while the model has it open.
class PaletteWidget final : public QWidget {
 public:
  /// The desk must outlive the palette, and so must the window over which it floats.
  PaletteWidget(Desk& desk, QWidget* over);

  /// Opens, moves, closes and fills the window as the model has it.
  void refresh();
  /// Shows the values that the properties have now.
  void refreshValues();

  /// Gives the keyboard to the first control. Esc gives it back; see leave. Nothing while it is closed.
  void takeKeyboard();
  /// Asked to give the keyboard to a viewer: on Esc, and when the palette closes while it has the keyboard.
  std::function<void()>& leave() { return leave_; }

  QComboBox* choice(const std::string& property) const;
  QCheckBox* checkbox(const std::string& property) const;
  QPushButton* button(const std::string& action) const;

 protected:
  bool event(QEvent* event) override;
  /// Return does what Space does; Esc leaves.
  void keyPressEvent(QKeyEvent* event) override;
  void closeEvent(QCloseEvent* event) override;
  void moveEvent(QMoveEvent* event) override;
  void paintEvent(QPaintEvent* event) override;
  // It can be dragged by its background, too: not every desktop gives a small window a title bar.
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;

 private:
  void build(const WindowDescription& description);
  void add(const WindowControl& control, QFormLayout& form, QHBoxLayout& buttons);
  void set(const WindowControl& control, const pelmar::Value& value);
  void press(const WindowControl& control);
  void closeByModel();
  bool mayDiscard(const WindowControl& control);

  Desk& desk_;
  std::string built_;  ///< name of the description that the controls were made from
  WindowDescription description_;
  pelmar::FrameRect placed_;  ///< where the model had it when it was last moved there
  bool placing_ = false;
  QPoint grip_;               ///< from the window's corner to where its background was pressed
  QWidget* first_ = nullptr;  ///< of the controls; none when the description has none
  std::function<void()> leave_;
  std::map<std::string, QComboBox*> choices_;
  std::map<std::string, QCheckBox*> checkboxes_;
  std::map<std::string, QPushButton*> buttons_;
};

}  // namespace workstation
