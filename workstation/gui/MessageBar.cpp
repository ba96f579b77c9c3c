#include "workstation/gui/MessageBar.h"

namespace workstation {
namespace {

/// More than these are counted, not shown.
constexpr qsizetype mostShown = 4;

}  // namespace

MessageBar::MessageBar(QWidget* parent) : QFrame(parent) {
  label_ = new QLabel(this);
  label_->setWordWrap(true);
  label_->setTextFormat(Qt::PlainText);
  label_->setTextInteractionFlags(Qt::TextSelectableByMouse);
  auto* dismiss = new QToolButton(this);
  dismiss->setText("Dismiss");
  dismiss->setAutoRaise(true);
  layout_ = new QHBoxLayout(this);
  layout_->setContentsMargins(12, 6, 8, 6);
  layout_->addWidget(label_, 1);
  layout_->addWidget(dismiss, 0, Qt::AlignTop);
  setAutoFillBackground(true);
  QPalette colours = palette();
  colours.setColor(QPalette::Window, QColor(92, 70, 24));
  colours.setColor(QPalette::WindowText, QColor(255, 236, 200));
  setPalette(colours);
  connect(dismiss, &QToolButton::clicked, this, [this] { clear(); });
  hide();
}

void MessageBar::add(const std::string& sentence) {
  const QString text = QString::fromStdString(sentence);
  if (sentences_.contains(text)) return;
  sentences_ << text;
  refresh();
}

void MessageBar::offer(const std::string& subject, const std::string& sentence, const QString& action,
                       std::function<void()> act) {
  withdraw(subject);
  auto* button = new QToolButton(this);
  button->setText(action);
  layout_->insertWidget(layout_->count() - 1, button, 0, Qt::AlignTop);
  offers_[subject] = {QString::fromStdString(sentence), button};
  connect(button, &QToolButton::clicked, this, [this, subject, act = std::move(act)] {
    const auto doIt = act;  // with the button its own goes
    withdraw(subject);
    doIt();
  });
  add(sentence);
}

void MessageBar::withdraw(const std::string& subject) {
  const auto found = offers_.find(subject);
  if (found == offers_.end()) return;
  sentences_.removeAll(found->second.sentence);
  found->second.button->hide();
  found->second.button->deleteLater();
  offers_.erase(found);
  refresh();
}

QToolButton* MessageBar::button(const std::string& subject) const {
  const auto found = offers_.find(subject);
  return found == offers_.end() ? nullptr : found->second.button;
}

void MessageBar::refresh() {
  QStringList shown = sentences_.mid(0, mostShown);
  if (sentences_.size() > mostShown) shown << QString("... and %1 more.").arg(sentences_.size() - mostShown);
  label_->setText(shown.join('\n'));
  setVisible(!sentences_.isEmpty());
}

void MessageBar::clear() {
  while (!offers_.empty()) withdraw(std::string(offers_.begin()->first));
  sentences_.clear();
  refresh();
}

}  // namespace workstation
