#pragma once

#include <QFrame>
#include <QHBoxLayout>
#include <QLabel>
#include <QStringList>
#include <QToolButton>
#include <functional>
#include <map>
#include <string>
#include <vector>

namespace workstation {

/// What the person must know and may put away when it is read: whole sentences, the newest last. Of many only the first
/// are shown; the others come when those are put away. Some come with a button for what can be done about it.
class MessageBar final : public QFrame {
 public:
  explicit MessageBar(QWidget* parent = nullptr);

  void add(const std::string& sentence);
  /// The same with a button that puts the sentence away and does something. It takes the place of an earlier offer
  /// about the same subject, any text that names it.
  void offer(const std::string& subject, const std::string& sentence, const QString& action, std::function<void()> act);
  /// Puts the offer about a subject away.
  void withdraw(const std::string& subject);
  /// Everything that has not been put away yet, shown or waiting.
  const QStringList& sentences() const { return sentences_; }
  /// What the person sees of it.
  QStringList shown() const;
  /// The button of an offer; null when there is none.
  QToolButton* button(const std::string& subject) const;
  /// Puts away what is shown, with its offers, and shows what comes next.
  void dismiss();

 protected:
  /// A double click on Dismiss must not put away what only just came: its second press is dropped.
  bool eventFilter(QObject* button, QEvent* event) override;

 private:
  struct Offer {
    QString sentence;
    QToolButton* button = nullptr;
  };

  void refresh();

  QLabel* label_;
  QHBoxLayout* layout_;
  QStringList sentences_;
  std::map<std::string, Offer> offers_;
};

}  // namespace workstation
