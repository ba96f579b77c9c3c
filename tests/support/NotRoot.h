#pragma once

#include <gtest/gtest.h>
#include <sys/prctl.h>
#include <unistd.h>

namespace testsupport {

/// Permissions mean nothing to root, who runs tests in some places: while it lives, the process is somebody else.
class NotRoot {
 public:
  NotRoot() : wasRoot_(::geteuid() == 0) {
    if (!wasRoot_) return;
    EXPECT_EQ(::seteuid(65534), 0);
  }
  ~NotRoot() {
    if (!wasRoot_) return;
    EXPECT_EQ(::seteuid(0), 0);
    ::prctl(PR_SET_DUMPABLE, 1);  // or a leak checker may not look at the end
  }
  NotRoot(const NotRoot&) = delete;
  NotRoot& operator=(const NotRoot&) = delete;

 private:
  bool wasRoot_;
};

}  // namespace testsupport
