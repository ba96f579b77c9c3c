#include "workstation/gui/PageOpener.h"

#include <QAction>
#include <QMenuBar>
#include <fstream>
#include <sstream>

#include "WindowFixture.h"

namespace workstation::test {
namespace {

namespace fs = std::filesystem;

/// A folder with nothing but a desktop's opener in it, which is all that is on the path meanwhile.
class OnlyOpener {
 public:
  OnlyOpener() {
    std::string pattern = (fs::temp_directory_path() / "vertana pages-XXXXXX").string();
    EXPECT_NE(mkdtemp(pattern.data()), nullptr);
    folder = pattern;
    qputenv("PATH", QByteArray::fromStdString(folder.string()));
  }
  ~OnlyOpener() {
    qputenv("PATH", path_);
    std::error_code ignored;
    fs::remove_all(folder, ignored);
  }
  /// It writes down what it is asked for, and ends with that status.
  void install(int status) {
    write("#!/bin/sh\nprintf '%s' \"$*\" > '" + asked().string() + "'\nexit " + std::to_string(status));
  }
  void installWhatCannotStart() { write("#!/nowhere/at/all"); }
  /// What it was asked for, once it was.
  std::string waitForAsked() const {
    while (!fs::exists(asked()) || fs::file_size(asked()) == 0) waitForEvent();
    std::ostringstream text;
    text << std::ifstream(asked()).rdbuf();
    fs::remove(asked());
    return text.str();
  }
  static void waitForEvent() { QApplication::processEvents(QEventLoop::WaitForMoreEvents | QEventLoop::AllEvents); }

  fs::path folder;

 private:
  fs::path asked() const { return folder / "asked"; }
  void write(const std::string& script) const {
    std::ofstream(folder / "xdg-open") << script << '\n';
    fs::permissions(folder / "xdg-open", fs::perms::owner_all);
  }

  QByteArray path_ = qgetenv("PATH");
};

class Pages : public testing::Test {
 protected:
  void SetUp() override { std::ofstream(manual()) << "<html></html>"; }
  fs::path manual() const { return opener_.folder / "index.html"; }
  std::string waitForSentence() {
    while (told_.empty()) OnlyOpener::waitForEvent();
    EXPECT_EQ(told_.size(), 1U);
    return told_.front();
  }

  OnlyOpener opener_;
  std::vector<std::string> told_;
  PageOpener pages_{[this](const std::string& sentence) { told_.push_back(sentence); }, manual()};
};

TEST_F(Pages, TheAddressOfTheManualOpensTheFileOnDisk) {
  opener_.install(0);
  pages_.open("https://vertana.example/manual/");
  const std::string file = "file://" + manual().string();
  EXPECT_EQ(opener_.waitForAsked(), QString::fromStdString(file).replace(" ", "%20").toStdString());
  pages_.open("https://pelmar.example/");
  EXPECT_EQ(opener_.waitForAsked(), "https://pelmar.example/") << "what is not the manual's stays as it is";
  EXPECT_TRUE(told_.empty());
}

TEST_F(Pages, WithoutABrowserTheSentenceNamesTheFile) {
  opener_.install(3);  // as the desktop's opener ends where it finds no browser
  pages_.openManual();
  EXPECT_EQ(waitForSentence(),
            "The manual was not opened, because no browser answers: open " + manual().string() + " in a browser.");
}

TEST_F(Pages, AnOpenerThatCannotStartIsNoBrowser) {
  opener_.installWhatCannotStart();
  pages_.open("https://pelmar.example/");
  EXPECT_EQ(waitForSentence(),
            "The page was not opened, because no browser answers: open https://pelmar.example/ in a browser.");
}

TEST_F(Pages, WithoutAnOpenerTheSentenceNamesTheFile) {
  pages_.openManual();  // the display of the tests has no browser either
  EXPECT_NE(waitForSentence().find(manual().string()), std::string::npos);
}

TEST_F(Pages, AMissingManualIsSaidAndNothingIsOpened) {
  opener_.install(0);
  fs::remove(manual());
  pages_.openManual();
  EXPECT_EQ(waitForSentence(), "The manual cannot be opened, because " + manual().string() +
                                   " is not there: build or install the workstation again.");
}

TEST_F(Pages, ABrowserMayOutliveTheWindow) {
  opener_.install(3);
  {
    PageOpener gone([](const std::string&) { FAIL() << "the window is gone"; }, manual());
    gone.openManual();
  }
  EXPECT_NE(opener_.waitForAsked(), "");
}

class Help : public WindowTest {};

TEST_F(Help, OfThePaletteAndOfTheMenuIsTheManualOfThisTree) {
  OnlyOpener opener;
  opener.install(0);
  ASSERT_TRUE(fs::is_regular_file(manualPage())) << manualPage();
  openStudy();
  chooseLabels();
  window_->palette().button("openHelp:")->click();
  const std::string page = "file://" + manualPage().string();
  EXPECT_EQ(opener.waitForAsked(), page);
  for (QAction* action : window_->findChildren<QAction*>()) {
    if (action->text() == "&Manual") action->trigger();
  }
  EXPECT_EQ(opener.waitForAsked(), page);
}

TEST_F(Help, ThatCannotBeOpenedIsToldInTheWindow) {
  OnlyOpener opener;
  opener.install(3);
  openStudy();
  chooseLabels();
  window_->palette().button("openHelp:")->click();
  while (messages().empty()) OnlyOpener::waitForEvent();
  EXPECT_NE(messages().find(manualPage().string()), std::string::npos) << messages();
}

}  // namespace
}  // namespace workstation::test
