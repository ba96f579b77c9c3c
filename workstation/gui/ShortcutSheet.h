#pragma once

#include <QDialog>

namespace workstation {

/// What mouse and keys do, on one page.
class ShortcutSheet final : public QDialog {
 public:
  explicit ShortcutSheet(QWidget* parent = nullptr);
};

}  // namespace workstation
