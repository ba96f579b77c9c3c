#include "workstation/gui/MessageBar.h"

#include <QHBoxLayout>
#include <QToolButton>

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
  auto* layout = new QHBoxLayout(this);
  layout->setContentsMargins(12, 6, 8, 6);
  layout->addWidget(label_, 1);
  layout->addWidget(dismiss, 0, Qt::AlignTop);
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
  QStringList shown = sentences_.mid(0, mostShown);
  if (sentences_.size() > mostShown) shown << QString("... and %1 more.").arg(sentences_.size() - mostShown);
  label_->setText(shown.join('\n'));
  show();
}

void MessageBar::clear() {
  sentences_.clear();
  hide();
}

}  // namespace workstation
