#pragma once
// Files that tests make: a folder that goes with the test, texts in it, and a file of defaults as the programs keep it.

#include <gtest/gtest.h>
#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <string>
#include <system_error>

namespace testsupport {

/// A new folder that goes with the object, whatever lies in it by then.
class TemporaryFolder {
 public:
  /// Throws std::runtime_error where no folder can be made.
  TemporaryFolder() {
    std::string name = (std::filesystem::temp_directory_path() / "vertana-XXXXXX").string();
    if (mkdtemp(name.data()) == nullptr) throw std::runtime_error("no temporary folder can be made");
    path_ = name;
  }
  ~TemporaryFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;

  const std::filesystem::path& path() const { return path_; }
  std::filesystem::path operator/(const std::filesystem::path& name) const { return path_ / name; }
  /// A path in the folder; folders on the way to it are made.
  std::filesystem::path file(const std::string& name) const {
    std::filesystem::create_directories((path_ / name).parent_path());
    return path_ / name;
  }

 private:
  std::filesystem::path path_;
};

/// Writes the file anew; folders on the way to it are made.
inline void putText(const std::filesystem::path& file, const std::string& text) {
  std::filesystem::create_directories(file.parent_path());
  std::ofstream(file, std::ios::binary) << text;
}

/// Everything in the file; empty when it cannot be read.
inline std::string textOf(const std::filesystem::path& file) {
  std::ifstream in(file, std::ios::binary);
  std::ostringstream whole;
  whole << in.rdbuf();
  return whole.str();
}

/// A program's file of defaults in a folder of its own. At first neither the file nor the folder "vertana" is there.
class DefaultsFileTest : public testing::Test {
 protected:
  void put(const std::string& text) const { putText(file_, text); }
  std::string text() const { return textOf(file_); }

  TemporaryFolder folder_;
  const std::filesystem::path file_ = folder_ / "vertana" / "defaults.json";
};

}  // namespace testsupport
