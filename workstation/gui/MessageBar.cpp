#include "workstation/gui/MessageBar.h"

#include <QEvent>

namespace workstation {
namespace {

/// More than these are counted, and wait until these have been dismissed.
constexpr qsizetype mostShown = 4;

}  // namespace

MessageBar::MessageBar(QWidget* parent) : QFrame(parent) {
  label_ = new QLabel(this);
  label_->setWordWrap(true);
  label_->setTextFormat(Qt::PlainText);
  label_->setTextInteractionFlags(Qt::TextSelectableByMouse);
  auto* dismissButton = new QToolButton(this);
  dismissButton->setText("Dismiss");
  dismissButton->setAutoRaise(true);
  dismissButton->installEventFilter(this);
  layout_ = new QHBoxLayout(this);
  layout_->setContentsMargins(12, 6, 8, 6);
  layout_->addWidget(label_, 1);
  layout_->addWidget(dismissButton, 0, Qt::AlignTop);
  setAutoFillBackground(true);
  QPalette colours = palette();
  colours.setColor(QPalette::Window, QColor(92, 70, 24));
  colours.setColor(QPalette::WindowText, QColor(255, 236, 200));
  setPalette(colours);
  connect(dismissButton, &QToolButton::clicked, this, [this] { dismiss(); });
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

QStringList MessageBar::shown() const { return sentences_.mid(0, mostShown); }

void MessageBar::refresh() {
  const QStringList seen = shown();
  QStringList lines = seen;
  if (sentences_.size() > seen.size())
    lines << QString("... and %1 more, shown after Dismiss.").arg(sentences_.size() - seen.size());
  label_->setText(lines.join('\n'));
  // A button without its sentence would not say what it is about.
  for (const auto& [subject, offer] : offers_) offer.button->setVisible(seen.contains(offer.sentence));
  setVisible(!sentences_.isEmpty());
}

bool MessageBar::eventFilter(QObject*, QEvent* event) { return event->type() == QEvent::MouseButtonDblClick; }

void MessageBar::dismiss() {
  const QStringList read = shown();
  std::vector<std::string> subjects;
  for (const auto& [subject, offer] : offers_) {
    if (read.contains(offer.sentence)) subjects.push_back(subject);
  }
  for (const std::string& subject : subjects) withdraw(subject);
  for (const QString& sentence : read) sentences_.removeAll(sentence);
  refresh();
}

}  // namespace workstation
