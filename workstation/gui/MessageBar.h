#pragma once

#include <QFrame>
#include <QLabel>
#include <QStringList>
#include <string>

namespace workstation {

/// What the person must know and may put away when it is read: whole sentences, the newest last.
class MessageBar final : public QFrame {
 public:
  explicit MessageBar(QWidget* parent = nullptr);

  void add(const std::string& sentence);
  const QStringList& sentences() const { return sentences_; }
  void clear();

 private:
  QLabel* label_;
  QStringList sentences_;
};

}  // namespace workstation
