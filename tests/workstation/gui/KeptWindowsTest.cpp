#include "workstation/gui/KeptWindows.h"

#include <memory>

#include "tests/support/TemporaryFolder.h"

namespace workstation {
namespace {

class Kept : public testing::Test {
 protected:
  void SetUp() override { open(); }
  void open() {
    settings_.reset();
    settings_ =
        std::make_unique<QSettings>(QString::fromStdString((folder_ / "kept.ini").string()), QSettings::IniFormat);
  }

  testsupport::TemporaryFolder folder_;
  std::unique_ptr<QSettings> settings_;
};

TEST_F(Kept, NothingIsKeptAtFirst) { EXPECT_TRUE(keptWindows(*settings_, "MR").empty()); }

TEST_F(Kept, WindowsAreThereInTheNextRunForTheirModality) {
  keepWindow(*settings_, "MR", {300.5, 600, {}});
  keepWindow(*settings_, "MR", {-20, 80, {}});
  open();
  const auto kept = keptWindows(*settings_, "MR");
  ASSERT_EQ(kept.size(), 2U);
  EXPECT_EQ(kept[0].centre, 300.5);
  EXPECT_EQ(kept[0].width, 600);
  EXPECT_EQ(kept[1].centre, -20);
  EXPECT_TRUE(keptWindows(*settings_, "CT").empty());
  EXPECT_TRUE(keptWindows(*settings_, "").empty());
}

TEST_F(Kept, TheSameIsKeptOnceAndOfManyTheOldestGo) {
  for (int centre = 0; centre < 12; ++centre) keepWindow(*settings_, "A/B=%", {static_cast<double>(centre), 10, {}});
  keepWindow(*settings_, "A/B=%", {5, 10, {}});
  const auto kept = keptWindows(*settings_, "A/B=%");
  ASSERT_EQ(kept.size(), 10U);
  EXPECT_EQ(kept.front().centre, 2);
  EXPECT_EQ(kept.back().centre, 5);
}

TEST_F(Kept, WhatIsNoWindowInTheSettingsIsPassedOver) {
  settings_->setValue("windows/MR", QStringList{"nonsense", "1 / -2", "1 / 2 / 3", "nan / 4", "7 / 8"});
  const auto kept = keptWindows(*settings_, "MR");
  ASSERT_EQ(kept.size(), 1U);
  EXPECT_EQ(kept.front().width, 8);
  forgetWindows(*settings_, "MR");
  EXPECT_TRUE(keptWindows(*settings_, "MR").empty());
}

}  // namespace
}  // namespace workstation
