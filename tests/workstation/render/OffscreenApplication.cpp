// Text needs an application object; tests need no display.
#include <gtest/gtest.h>

#include <QGuiApplication>
#include <memory>

namespace {

class OffscreenApplication : public testing::Environment {
 public:
  void SetUp() override { application_ = std::make_unique<QGuiApplication>(count_, arguments_); }
  void TearDown() override { application_.reset(); }

 private:
  char name_[5] = "test";
  char option_[10] = "-platform";
  char platform_[10] = "offscreen";
  char* arguments_[4] = {name_, option_, platform_, nullptr};
  int count_ = 3;
  std::unique_ptr<QGuiApplication> application_;
};

[[maybe_unused]] const auto* registered = testing::AddGlobalTestEnvironment(new OffscreenApplication);

}  // namespace
