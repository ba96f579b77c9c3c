#include "workstation/gui/BrowserPanel.h"

#include <QHBoxLayout>
#include <QMenu>
#include <QVBoxLayout>
#include <algorithm>

#include "workstation/gui/StackTitle.h"
#include "workstation/gui/Thumbnail.h"

namespace workstation {
namespace {

constexpr int thumbnailSize = 56;
constexpr int markSize = 16;
enum Role { studyRole = Qt::UserRole, seriesRole, stackRole, filledRole };

std::string join(const std::vector<std::string>& words, const std::string& between) {
  std::string text;
  for (const auto& word : words) text += (text.empty() ? "" : between) + word;
  return text;
}

QString studyText(const StudyEntry& study) {
  const std::string description = study.description.value_or("");
  const std::string modalities = join(study.modalities, ", ");
  std::string text = description.empty() ? "(no description)" : description;
  text += "\n" + (study.date.empty() ? "" : dateWithDashes(study.date) + "   ");
  text += (modalities.empty() ? "" : modalities + "   ") + countText(study.series, "series", "series") + ", " +
          countText(study.slices, "slice", "slices");
  return QString::fromStdString(text);
}

std::optional<StackId> stackOf(const QTreeWidgetItem& item) {
  const QVariant stack = item.data(0, stackRole);
  if (!stack.isValid()) return std::nullopt;
  return StackId{item.data(0, studyRole).toString().toStdString(),
                 static_cast<std::size_t>(item.data(0, seriesRole).toULongLong()),
                 static_cast<std::size_t>(stack.toULongLong())};
}

void setStack(QTreeWidgetItem& item, const StackId& id) {
  item.setData(0, studyRole, QString::fromStdString(id.studyUid));
  item.setData(0, seriesRole, static_cast<qulonglong>(id.series));
  item.setData(0, stackRole, static_cast<qulonglong>(id.stack));
}

}  // namespace

BrowserPanel::BrowserPanel(Desk& desk, QWidget* parent) : QWidget(parent), desk_(desk) {
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(6, 6, 6, 6);
  search_ = new QLineEdit(this);
  search_->setPlaceholderText("Search name, ID, description, date");
  search_->setClearButtonEnabled(true);
  layout->addWidget(search_);
  tree_ = new QTreeWidget(this);
  tree_->setHeaderHidden(true);
  tree_->setIconSize(QSize(thumbnailSize, thumbnailSize));
  tree_->setIndentation(12);
  tree_->setFrameShape(QFrame::NoFrame);
  tree_->setContextMenuPolicy(Qt::CustomContextMenu);
  tree_->setExpandsOnDoubleClick(false);
  empty_ = new QLabel(this);
  empty_->setWordWrap(true);
  empty_->setForegroundRole(QPalette::PlaceholderText);
  layout->addWidget(empty_);
  layout->addWidget(tree_, 1);
  makeProgress(*layout);
  setMinimumWidth(290);
  connect(search_, &QLineEdit::textChanged, this, [this] { refill(); });
  connect(tree_, &QTreeWidget::itemActivated, this, [this](QTreeWidgetItem* item) { opened(item); });
  connect(tree_, &QTreeWidget::itemExpanded, this, [this](QTreeWidgetItem* item) { fillStudy(*item); });
  connect(tree_, &QTreeWidget::itemCollapsed, this,
          [this](QTreeWidgetItem* item) { unfolded_.erase(item->data(0, studyRole).toString().toStdString()); });
  connect(tree_, &QTreeWidget::customContextMenuRequested, this, [this](QPoint at) { showMenu(at); });
  connect(&thumbnailTimer_, &QTimer::timeout, this, [this] { makeNextThumbnail(); });
  refill();
}

void BrowserPanel::makeProgress(QVBoxLayout& layout) {
  progressRow_ = new QWidget(this);
  auto* rows = new QVBoxLayout(progressRow_);
  rows->setContentsMargins(0, 4, 0, 0);
  progressText_ = new QLabel(progressRow_);
  progress_ = new QProgressBar(progressRow_);
  cancel_ = new QToolButton(progressRow_);
  cancel_->setText("Cancel");
  auto* row = new QHBoxLayout;
  row->addWidget(progress_, 1);
  row->addWidget(cancel_);
  rows->addWidget(progressText_);
  rows->addLayout(row);
  layout.addWidget(progressRow_);
  progressRow_->hide();
  connect(cancel_, &QToolButton::clicked, this, [this] {
    if (hooks_.cancelled) hooks_.cancelled();
  });
}

// --- the list ------------------------------------------------------------------------------------------------------

void BrowserPanel::refill() {
  thumbnailsToMake_.clear();
  labelled_.clear();
  const auto wasUnfolded = unfolded_;
  tree_->clear();
  std::map<std::string, QTreeWidgetItem*> patients;
  for (const StudyEntry& study : desk_.folders().studies(search_->text().toStdString())) {
    QTreeWidgetItem*& patient = patients[study.patientName + '\n' + study.patientId];
    if (!patient) {
      patient = new QTreeWidgetItem(tree_);
      const std::string id = study.patientId.empty() ? "" : "   " + study.patientId;
      patient->setText(0, QString::fromStdString(patientText(study.patientName) + id));
      QFont bold = patient->font(0);
      bold.setBold(true);
      patient->setFont(0, bold);
    }
    addStudy(study, *patient);
  }
  tree_->expandToDepth(0);
  for (const auto& patient : patients) {
    for (int index = 0; index < patient.second->childCount(); ++index) {
      auto* study = patient.second->child(index);
      if (wasUnfolded.contains(study->data(0, studyRole).toString().toStdString())) study->setExpanded(true);
    }
  }
  empty_->setVisible(patients.empty());
  empty_->setText(search_->text().isEmpty() ? "No study yet: open a folder (Ctrl+O), import one (Ctrl+I), or drop one."
                                            : "No study matches the search.");
}

void BrowserPanel::refillIfMarksChanged() {
  std::set<std::string> labelled;
  for (const StudyEntry& study : desk_.folders().studies(search_->text().toStdString())) {
    if (study.holdsLabelling) labelled.insert(study.studyUid);
  }
  if (labelled != labelled_) refill();
}

void BrowserPanel::addStudy(const StudyEntry& study, QTreeWidgetItem& patient) {
  auto* item = new QTreeWidgetItem(&patient);
  item->setText(0, studyText(study));
  item->setData(0, studyRole, QString::fromStdString(study.studyUid));
  if (study.holdsLabelling) {
    labelled_.insert(study.studyUid);
    item->setText(0, item->text(0) + "\nLabelled");
    QPixmap mark = QPixmap::fromImage(labelledMark(qRound(markSize * devicePixelRatioF())));
    mark.setDevicePixelRatio(devicePixelRatioF());
    // Not as an icon: that of a fine screen would be drawn at the size of its pixels, as the list has room for more.
    item->setData(0, Qt::DecorationRole, mark);
    item->setToolTip(0, "This study holds a labelling of its spine.");
  }
  item->setChildIndicatorPolicy(study.images > 0 ? QTreeWidgetItem::ShowIndicator : QTreeWidgetItem::DontShowIndicator);
}

void BrowserPanel::fillStudy(QTreeWidgetItem& item) {
  if (stackOf(item) || !item.data(0, studyRole).isValid()) return;
  const std::string study = item.data(0, studyRole).toString().toStdString();
  unfolded_.insert(study);
  if (item.data(0, filledRole).toBool()) return;
  item.setData(0, filledRole, true);
  if (!desk_.addStudy(study)) return;
  desk_.takeChanges(study);
  for (const StackId& id : desk_.workstation().stacks(study)) {
    auto* child = new QTreeWidgetItem(&item);
    child->setText(0, QString::fromStdString(stackTitle(desk_.workstation(), id)));
    setStack(*child, id);
    thumbnailsToMake_.push_back(id);
  }
  if (!thumbnailsToMake_.empty()) thumbnailTimer_.start(0);
}

void BrowserPanel::opened(QTreeWidgetItem* item) {
  if (const auto stack = stackOf(*item)) {
    if (hooks_.openStack) hooks_.openStack(*stack, false);
  } else if (item->data(0, studyRole).isValid()) {
    item->setExpanded(true);
    openStudy(item->data(0, studyRole).toString().toStdString());
  } else {
    item->setExpanded(!item->isExpanded());
  }
}

void BrowserPanel::showMenu(QPoint at) {
  // Asked for by a key, it is for the item that is chosen, wherever that lies.
  auto* item = tree_->hasFocus() && tree_->currentItem() ? tree_->currentItem() : tree_->itemAt(at);
  if (!item || !item->data(0, studyRole).isValid()) return;
  // The list may be filled anew while the menu is open: what an import brings also gives stacks other ids.
  const std::string study = item->data(0, studyRole).toString().toStdString();
  const auto stack = stackOf(*item);
  const Stack* shown = stack ? desk_.workstation().stack(*stack) : nullptr;
  QMenu menu(this);
  if (!shown) {
    menu.addAction("Open study", this, [this, study] { openStudy(study); });
  } else {
    const auto show = [this, study, slice = shown->slices.front()](bool inNewViewer) {
      openStackWith(study, slice, inNewViewer);
    };
    menu.addAction("Show in the front viewer", this, [show] { show(false); });
    menu.addAction("Show in a new viewer", this, [show] { show(true); });
  }
  menu.exec(tree_->viewport()->mapToGlobal(at));
}

void BrowserPanel::openStudy(const std::string& studyUid) {
  if (hooks_.openStudy) hooks_.openStudy(studyUid);
}

void BrowserPanel::openStackWith(const std::string& studyUid, const ImageRecord& slice, bool inNewViewer) {
  for (const StackId& id : desk_.workstation().stacks(studyUid)) {
    const auto& slices = desk_.workstation().stack(id)->slices;
    const bool holdsIt = std::any_of(slices.begin(), slices.end(), [&](const ImageRecord& one) {
      return one.sopInstanceUid == slice.sopInstanceUid && one.frame == slice.frame;
    });
    if (!holdsIt) continue;
    if (hooks_.openStack) hooks_.openStack(id, inNewViewer);
    return;
  }
  if (hooks_.tell)
    hooks_.tell("The series was not shown, because its files are no longer where they were: put them back.");
}

// --- pictures ------------------------------------------------------------------------------------------------------

QIcon BrowserPanel::thumbnail(const StackId& id) {
  const Stack* stack = desk_.workstation().stack(id);
  if (!stack) return {};  // its study has changed
  const ImageRecord& image = stack->slices[stack->slices.size() / 2];
  QIcon& icon = thumbnails_[image.file.string() + '\n' + std::to_string(image.frame)];
  if (icon.isNull()) {
    PixelReader reader;
    const double ratio = devicePixelRatioF();
    QPixmap picture = QPixmap::fromImage(thumbnailOf(image, reader, qRound(thumbnailSize * ratio)));
    picture.setDevicePixelRatio(ratio);
    icon = QIcon(picture);
  }
  return icon;
}

void BrowserPanel::makeNextThumbnail() {
  if (thumbnailsToMake_.empty()) return thumbnailTimer_.stop();
  const StackId id = thumbnailsToMake_.front();
  thumbnailsToMake_.pop_front();
  for (QTreeWidgetItemIterator item(tree_); *item; ++item) {
    if (stackOf(**item) == id) (*item)->setIcon(0, thumbnail(id));
  }
}

// --- progress ------------------------------------------------------------------------------------------------------

void BrowserPanel::showProgress(const QString& what) {
  progressText_->setText(what);
  progress_->setRange(0, 0);
  progressRow_->show();
}

void BrowserPanel::setProgress(std::size_t done, std::size_t total) {
  progress_->setRange(0, static_cast<int>(total));
  progress_->setValue(static_cast<int>(done));
}

void BrowserPanel::hideProgress() { progressRow_->hide(); }

}  // namespace workstation
