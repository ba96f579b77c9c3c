#include "workstation/session/SavedDefaults.h"

#include <vector>

#include "tests/support/TemporaryFolder.h"
#include "workstation/session/JsonValues.h"

namespace workstation::test {
namespace {

using pelmar::Value;

class KeptDefaults : public testsupport::DefaultsFileTest {
 protected:
  SavedDefaults made() {
    return SavedDefaults(file_, [this](const std::string& sentence) { told_.push_back(sentence); });
  }

  std::vector<std::string> told_;
};

TEST_F(KeptDefaults, WhatChangesIsThereInTheNextRun) {
  auto first = made();
  EXPECT_TRUE(first.load().empty());
  first.save({{"drawMode", Value(1)}, {"name", Value("a")}});
  auto second = made();
  const auto read = second.load();
  EXPECT_EQ(read.at("drawMode"), Value(1));
  EXPECT_EQ(read.at("name"), Value("a"));
  EXPECT_TRUE(told_.empty());
}

TEST_F(KeptDefaults, OnlyWhatChangedIsWrittenOverWhatAnotherProgramWrote) {
  put(R"({"drawMode": 0, "region": 2, "gone": 1})");
  auto defaults = made();
  auto values = defaults.load();
  put(R"({"drawMode": 0, "region": 1, "gone": 1, "since": true})");
  values["drawMode"] = Value(1);
  values.erase("gone");
  defaults.save(values);
  EXPECT_EQ(nlohmann::json::parse(text()), nlohmann::json::parse(R"({"drawMode": 1, "region": 1, "since": true})"));
}

TEST_F(KeptDefaults, AFileThatIsNoObjectIsToldAndNeverWritten) {
  put("[1]");
  auto defaults = made();
  EXPECT_TRUE(defaults.load().empty());
  ASSERT_EQ(told_.size(), 1U);
  EXPECT_NE(told_.front().find(file_.string()), std::string::npos);
  defaults.save({{"drawMode", Value(1)}});
  EXPECT_EQ(text(), "[1]");
}

TEST_F(KeptDefaults, WhatCannotBeWrittenIsToldOnce) {
  testsupport::putText(folder_ / "vertana", "a file where the folder should be");
  auto defaults = made();
  defaults.load();
  defaults.save({{"drawMode", Value(1)}});
  defaults.save({{"drawMode", Value(2)}});
  ASSERT_EQ(told_.size(), 1U);
  EXPECT_NE(told_.front().find(file_.string()), std::string::npos);
}

}  // namespace
}  // namespace workstation::test
