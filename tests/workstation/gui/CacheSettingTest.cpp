#include "workstation/gui/CacheSetting.h"

#include <gtest/gtest.h>

#include <fstream>

#include "tests/support/TemporaryFolder.h"

namespace workstation {
namespace {

class CacheSize : public testing::Test {
 protected:
  /// A file of its own each time, for Qt may take one of the same size and second for unchanged.
  CacheSetting settingIn(const std::string& text) {
    file_ = folder_ / ("settings-" + std::to_string(++files_) + ".ini");
    std::ofstream(file_) << text;
    return cacheSetting(QSettings(QString::fromStdString(file_.string()), QSettings::IniFormat));
  }

  testsupport::TemporaryFolder folder_;
  std::filesystem::path file_;
  int files_ = 0;
};

TEST_F(CacheSize, IsAGibibyteUnlessItIsSet) {
  EXPECT_EQ(settingIn("[view]\ntexts=true\n").bytes, 1073741824U);
  EXPECT_EQ(settingIn("").problem, "");
}

TEST_F(CacheSize, IsWhatTheSettingsSay) {
  EXPECT_EQ(settingIn("[cache]\nbytes=134217728\n").bytes, 134217728U);
  EXPECT_EQ(settingIn("[cache]\nbytes=5000000000\n").bytes, 5000000000U);
  EXPECT_EQ(settingIn("[cache]\nbytes=0\n").bytes, 0U);
  EXPECT_EQ(settingIn("[cache]\nbytes=0\n").problem, "");
}

TEST_F(CacheSize, WhatIsNoNumberIsNamedAndTheUsualSizeCounts) {
  for (const std::string text : {"much", "-1", "1e9", "1.5", "1 GiB", ""}) {
    const CacheSetting setting = settingIn("[cache]\nbytes=" + text + "\n");
    EXPECT_EQ(setting.bytes, 1073741824U) << text;
    EXPECT_EQ(setting.problem, "In " + file_.string() + " the setting bytes of the section cache is \"" + text +
                                   "\" and no number of bytes, so 1073741824 are used: write a whole number there, or "
                                   "remove the line.");
  }
  EXPECT_NE(settingIn("[cache]\nbytes=1,024\n").problem.find("is \"1, 024\" and"), std::string::npos);
}

}  // namespace
}  // namespace workstation
