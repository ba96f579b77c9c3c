#pragma once

#include <QDialog>
#include <QMenuBar>

namespace workstation {

/// What mouse and keys do, on one page: what the pointer does, and every command of the menus that has a key.
class ShortcutSheet final : public QDialog {
 public:
  explicit ShortcutSheet(const QMenuBar& menus, QWidget* parent = nullptr);
};

}  // namespace workstation
