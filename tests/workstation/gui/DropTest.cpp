// What is dropped on the window.
#include <gtest/gtest.h>

#include <QDragEnterEvent>
#include <QDropEvent>
#include <QMimeData>
#include <QUrl>

#include "WindowFixture.h"

namespace workstation::test {
namespace {

class Drop : public WindowTest {
 protected:
  /// Brings it over the viewers and lets it go there; whether the window would take it.
  bool drop(const QMimeData& data) {
    const QPoint where = window_->grid().mapTo(window_.get(), window_->grid().rect().center());
    QDragEnterEvent enter(where, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(window_.get(), &enter);
    if (!enter.isAccepted()) return false;
    QDropEvent dropped(where, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(window_.get(), &dropped);
    return dropped.isAccepted();
  }
  static QUrl urlOf(const std::filesystem::path& path) {
    return QUrl::fromLocalFile(QString::fromStdString(path.string()));
  }
};

TEST_F(Drop, AFolderIsImportedIntoTheDatabase) {
  QMimeData data;
  data.setUrls({urlOf(study())});
  EXPECT_TRUE(drop(data));
  EXPECT_TRUE(window_->isBusy()) << "the import has begun";
  waitForTask();
  EXPECT_EQ(messages(), "");
  EXPECT_EQ(window_->browser().tree().topLevelItemCount(), 1);
  EXPECT_TRUE(std::filesystem::is_directory(database() / "studies"));
  EXPECT_TRUE(std::filesystem::is_directory(study())) << "it is copied, not moved";
}

TEST_F(Drop, AllThatIsDroppedAtOnceIsImported) {
  std::filesystem::copy(study(), folder_ / "axial", std::filesystem::copy_options::recursive);
  std::filesystem::remove_all(study() / "SE03");
  for (const char* series : {"SE01", "SE02"}) std::filesystem::remove_all(folder_ / "axial" / series);
  QMimeData data;
  data.setUrls({urlOf(study()), QUrl("https://example.org/study"), urlOf(folder_ / "axial")});
  EXPECT_TRUE(drop(data)) << "what lies elsewhere is passed over";
  waitForTask();
  EXPECT_EQ(messages(), "");
  const auto studies = desk_->folders().studies();
  ASSERT_EQ(studies.size(), 1U);
  EXPECT_EQ(studies[0].series, 3U);
}

TEST_F(Drop, WhatIsNoFileIsNotTaken) {
  QMimeData text;
  text.setText(QString::fromStdString(study().string()));
  EXPECT_FALSE(drop(text));
  QMimeData page;
  page.setUrls({QUrl("https://example.org/study")});
  drop(page);
  EXPECT_FALSE(window_->isBusy());
  EXPECT_EQ(messages(), "");
  EXPECT_FALSE(std::filesystem::exists(database()));
}

}  // namespace
}  // namespace workstation::test
