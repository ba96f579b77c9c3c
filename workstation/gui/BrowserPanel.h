#pragma once

#include <QLabel>
#include <QLineEdit>
#include <QProgressBar>
#include <QTimer>
#include <QToolButton>
#include <QTreeWidget>
#include <QVBoxLayout>
#include <QWidget>
#include <deque>
#include <functional>
#include <map>
#include <set>
#include <string>

#include "workstation/gui/Desk.h"

namespace workstation {

/// The studies at hand: patients, their studies, the series of a study with a picture of each; a search; and the
/// progress of what is read in the background.
class BrowserPanel final : public QWidget {
 public:
  /// What the window does for it; each may be empty.
  struct Hooks {
    std::function<void(const std::string& studyUid)> openStudy;
    std::function<void(const StackId& id, bool inNewViewer)> openStack;
    std::function<void()> cancelled;
    std::function<void(const std::string& sentence)> tell;
  };

  /// The desk must outlive the panel.
  explicit BrowserPanel(Desk& desk, QWidget* parent = nullptr);

  Hooks& hooks() { return hooks_; }
  /// Lists anew what is at hand and matches the search; what was unfolded stays so.
  void refill();

  /// Does so only if other studies than before hold a labelling.
  void refillIfMarksChanged();

  void showProgress(const QString& what);
  void setProgress(std::size_t done, std::size_t total);
  void hideProgress();

  QTreeWidget& tree() { return *tree_; }
  QLineEdit& search() { return *search_; }
  QToolButton& cancelButton() { return *cancel_; }

 private:
  void makeProgress(QVBoxLayout& layout);
  void addStudy(const StudyEntry& study, QTreeWidgetItem& patient);
  void fillStudy(QTreeWidgetItem& item);
  void opened(QTreeWidgetItem* item);
  void showMenu(QPoint at);
  void openStudy(const std::string& studyUid);
  /// Opens the stack that holds the slice; tells when none does any more.
  void openStackWith(const std::string& studyUid, const ImageRecord& slice, bool inNewViewer);
  void makeNextThumbnail();
  QIcon thumbnail(const StackId& id);

  Desk& desk_;
  Hooks hooks_;
  QLineEdit* search_;
  QTreeWidget* tree_;
  QLabel* empty_;
  QWidget* progressRow_ = nullptr;
  QLabel* progressText_ = nullptr;
  QProgressBar* progress_ = nullptr;
  QToolButton* cancel_ = nullptr;
  std::set<std::string> labelled_;  ///< studies that are listed with a mark
  std::set<std::string> unfolded_;  ///< studies whose series are seen
  QTimer thumbnailTimer_;
  std::deque<StackId> thumbnailsToMake_;
  std::map<std::string, QIcon> thumbnails_;  ///< by the file and frame that they show
};

}  // namespace workstation
