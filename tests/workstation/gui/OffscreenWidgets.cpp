// Widgets need an application object; tests need no display.
#include <gtest/gtest.h>

#include <QApplication>
#include <clocale>
#include <memory>

#include "workstation/gui/Theme.h"

namespace {

class OffscreenWidgets : public testing::Environment {
 public:
  void SetUp() override {
    application_ = std::make_unique<QApplication>(count_, arguments_);
    std::setlocale(LC_NUMERIC, "C");
    workstation::useTheme(*application_);
  }
  void TearDown() override { application_.reset(); }

 private:
  char name_[5] = "test";
  char option_[10] = "-platform";
  char platform_[10] = "offscreen";
  char* arguments_[4] = {name_, option_, platform_, nullptr};
  int count_ = 3;
  std::unique_ptr<QApplication> application_;
};

[[maybe_unused]] const auto* registeredWidgets = testing::AddGlobalTestEnvironment(new OffscreenWidgets);

}  // namespace
