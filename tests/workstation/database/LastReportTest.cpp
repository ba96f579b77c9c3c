#include "workstation/database/LastReport.h"

#include <gtest/gtest.h>

#include <fstream>

#include "FolderFixtures.h"

namespace workstation::test {
namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;

/// A report's file that has just been written, and what was read from it.
class LastReports : public testing::Test {
 protected:
  LastReports() {
    writeStudy(folder.path());
    write(1);
    report.sopInstanceUid = "1.2.3";
  }
  void write(int number) {
    const pelmar::Bytes bytes = reportOn(openInPlace(folder.path())->anyImage(studyUid()), lumbarAt(number), number);
    std::ofstream(file(), std::ios::binary)
        .write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
  }
  fs::path file() const { return folder.path() / "report.dcm"; }
  /// As if the file had lain there for a minute when it was read.
  void keep() { last.keep(file(), report, LastReport::Clock::now() + 60s); }

  TemporaryFolder folder;
  StoredReport report;
  LastReport last;
};

TEST_F(LastReports, IsFoundAndNotReadAgainWhileItsFileStays) {
  keep();
  ASSERT_TRUE(last.find(file()));
  EXPECT_EQ(last.find(file())->sopInstanceUid, "1.2.3");
  EXPECT_EQ(last.read(file())->sopInstanceUid, "1.2.3") << "what is kept, not what lies there";
}

TEST_F(LastReports, IsNotFoundUnderAnotherNameOrOnceItsFileHasChangedOrGone) {
  keep();
  fs::copy_file(file(), folder.path() / "copy.dcm");
  EXPECT_FALSE(last.find(folder.path() / "copy.dcm"));
  write(2);
  EXPECT_FALSE(last.find(file()));
  EXPECT_EQ(last.read(file())->sopInstanceUid, reportUid(2));
  keep();
  fs::remove(file());
  EXPECT_FALSE(last.find(file()));
  EXPECT_FALSE(last.read(file()));
}

TEST_F(LastReports, IsNotKeptWhenItsFileMayHaveChangedWhileItWasRead) {
  last.keep(file(), report, LastReport::Clock::now());
  EXPECT_FALSE(last.find(file()));
}

TEST_F(LastReports, OneThatWasNotReadBeforeIsRead) { EXPECT_EQ(last.read(file())->sopInstanceUid, reportUid(1)); }

}  // namespace
}  // namespace workstation::test
