#pragma once
// Tests that need what a machine may lack: another program that judges ours, or real studies that are not part of the
// project. Such a test says what is missing and what is therefore not checked; with VERTANA_SKIP_NOTHING in the
// environment (scripts/nightly sets it where the studies are) it fails instead.

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <string>

namespace testsupport {

/// What to say of a missing program; empty when the shell finds it. `package`: of Debian.
inline std::string lackOfTool(const std::string& name, const std::string& package) {
  if (std::system(("command -v '" + name + "' > /dev/null 2>&1").c_str()) == 0) return "";
  return name + " is not installed (package " + package + "): what it judges is NOT checked";
}

/// What to say of Python's missing module; empty when it is there.
inline std::string lackOfPydicom() {
  if (std::system("/usr/bin/python3 -c 'import pydicom' > /dev/null 2>&1") == 0) return "";
  return "/usr/bin/python3 has no pydicom (package python3-pydicom): what it reads is NOT checked";
}

/// What to say of a missing folder of data; empty when it is there.
inline std::string lackOfFolder(const std::filesystem::path& folder) {
  if (std::filesystem::is_directory(folder)) return "";
  return "there is no folder " + folder.string() + " on this machine: what lies there is NOT tried";
}

inline bool nothingMayBeSkipped() { return std::getenv("VERTANA_SKIP_NOTHING") != nullptr; }

}  // namespace testsupport

/// Ends the test when `lack` says that something is missing: loudly, and as a failure wherever everything is meant to
/// be there, as it is in CI.
#define SKIP_FOR_LACK(lack)                                                                \
  if (const std::string missing = (lack); !missing.empty()) {                              \
    if (testsupport::nothingMayBeSkipped()) FAIL() << "VERTANA_SKIP_NOTHING: " << missing; \
    GTEST_SKIP() << "SKIPPED: " << missing;                                                \
  }                                                                                        \
  static_assert(true, "")
#define SKIP_WITHOUT_TOOL(name, package) SKIP_FOR_LACK(testsupport::lackOfTool(name, package))
#define SKIP_WITHOUT_PYDICOM() SKIP_FOR_LACK(testsupport::lackOfPydicom())
#define SKIP_WITHOUT_FOLDER(folder) SKIP_FOR_LACK(testsupport::lackOfFolder(folder))
