#pragma once
// What is painted needs an application object of Qt; tests need no display.

#include <gtest/gtest.h>

#include <memory>

namespace testsupport {

/// Gives a test program an application object of the class as long as its tests run.
template <class Application>
class Offscreen : public testing::Environment {
 public:
  /// `prepare`, where given, is called once with the new object.
  explicit Offscreen(void (*prepare)(Application&) = nullptr) : prepare_(prepare) {}
  void SetUp() override {
    application_ = std::make_unique<Application>(count_, arguments_);
    if (prepare_) prepare_(*application_);
  }
  void TearDown() override { application_.reset(); }

 private:
  void (*prepare_)(Application&);
  char name_[5] = "test";
  char option_[10] = "-platform";
  char platform_[10] = "offscreen";
  char* arguments_[4] = {name_, option_, platform_, nullptr};
  int count_ = 3;
  std::unique_ptr<Application> application_;
};

}  // namespace testsupport
