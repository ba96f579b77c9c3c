#include "workstation/gui/WidgetPrompts.h"

#include <QFileDialog>
#include <QInputDialog>
#include <QMessageBox>
#include <QPushButton>

namespace workstation {

void WidgetPrompts::showAlert(const Alert& alert) {
  const bool critical = alert.kind == Alert::Kind::critical;
  QMessageBox box(parent_);
  box.setIcon(critical ? QMessageBox::Critical : QMessageBox::Information);
  box.setWindowTitle(alert.title.empty() ? "Vertana" : QString::fromStdString(alert.title));
  box.setTextFormat(Qt::PlainText);
  box.setText(QString::fromStdString(alert.message));
  box.setInformativeText(QString::fromStdString(alert.informativeText));
  for (std::size_t index = 0; index < alert.buttons.size(); ++index) {
    auto* button = box.addButton(QString::fromStdString(alert.buttons[index]),
                                 index == 0 ? QMessageBox::AcceptRole : QMessageBox::RejectRole);
    if (index == 0) box.setDefaultButton(button);
  }
  box.exec();
}

bool WidgetPrompts::confirm(const QString& question, const QString& explanation, const QString& action) {
  QMessageBox box(QMessageBox::Question, "Vertana", question, QMessageBox::Cancel, parent_);
  box.setTextFormat(Qt::PlainText);
  box.setInformativeText(explanation);
  auto* go = box.addButton(action, QMessageBox::AcceptRole);
  box.setDefaultButton(QMessageBox::Cancel);
  box.exec();
  return box.clickedButton() == go;
}

bool WidgetPrompts::tryAgain(const QString& problem, const QString& explanation, const QString& giveUp) {
  QMessageBox box(QMessageBox::Warning, "Vertana", problem, QMessageBox::NoButton, parent_);
  box.setTextFormat(Qt::PlainText);
  box.setInformativeText(explanation);
  auto* again = box.addButton("Try again", QMessageBox::AcceptRole);
  box.addButton(giveUp, QMessageBox::DestructiveRole);
  box.setDefaultButton(again);
  box.exec();
  return box.clickedButton() == again;
}

QString WidgetPrompts::askText(const QString& title, const QString& text) {
  bool kept = false;
  const QString written = QInputDialog::getText(parent_, title, "Text:", QLineEdit::Normal, text, &kept);
  return kept ? written : QString();
}

QString WidgetPrompts::chooseFolder(const QString& title, const QString& start) {
  return QFileDialog::getExistingDirectory(parent_, title, start);
}

QString WidgetPrompts::chooseNewFile(const QString& title, const QString& start, const QString& filter) {
  return QFileDialog::getSaveFileName(parent_, title, start, filter);
}

}  // namespace workstation
