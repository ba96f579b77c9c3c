#pragma once

#include <QWidget>

#include "workstation/gui/Prompts.h"

namespace workstation {

/// Panels of the window system.
class WidgetPrompts final : public Prompts {
 public:
  /// Panels stand over the parent, which may come later and must outlive this.
  void setParent(QWidget* parent) { parent_ = parent; }

  void showAlert(const Alert& alert) override;
  bool confirm(const QString& question, const QString& explanation, const QString& action) override;
  bool tryAgain(const QString& problem, const QString& explanation, const QString& giveUp) override;
  QString askText(const QString& title, const QString& text) override;
  QString chooseFolder(const QString& title, const QString& start) override;
  QString chooseNewFile(const QString& title, const QString& start, const QString& filter) override;

 private:
  QWidget* parent_ = nullptr;
};

}  // namespace workstation
