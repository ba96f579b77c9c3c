#include "cli/PersonDefaults.h"

#include <nlohmann/json.hpp>

#include "tests/support/TemporaryFolder.h"

namespace cli::test {
namespace {

namespace fs = std::filesystem;
using pelmar::Value;

constexpr const char* learntTerms = "kVertanaCustomStudyDescriptionSearchTerms";

class Defaults : public testsupport::DefaultsFileTest {
 protected:
  nlohmann::json json() const { return nlohmann::json::parse(text()); }
  static Value::Dictionary learnt(const std::string& term) {
    return {{learntTerms, Value(Value::Array{Value(term)})}, {"drawMode", Value(1)}};
  }
  std::size_t files() const {
    const auto entries = fs::directory_iterator(file_.parent_path());
    return static_cast<std::size_t>(std::distance(begin(entries), end(entries)));
  }
};

TEST_F(Defaults, WithoutAFileThereAreNoneAndNothingIsComplainedOf) {
  PersonDefaults defaults(file_);
  testing::internal::CaptureStderr();
  EXPECT_TRUE(defaults.load().empty());
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
  EXPECT_FALSE(fs::exists(file_));
}

TEST_F(Defaults, EverythingInTheFileIsRead) {
  put(R"({"drawMode": 1, "name": "Wirbel", "nested": {"a": [true, 2.5]}})");
  const auto read = PersonDefaults(file_).load();
  ASSERT_EQ(read.size(), 3U);
  EXPECT_EQ(read.at("drawMode"), Value(1));
  EXPECT_EQ(read.at("nested"), Value(Value::Dictionary{{"a", Value(Value::Array{Value(true), Value(2.5)})}}));
}

TEST_F(Defaults, OnlyLearntTermsAreWritten) {
  PersonDefaults defaults(file_);
  defaults.load();
  defaults.save({{"drawMode", Value(1)}});
  EXPECT_FALSE(fs::exists(file_));
  defaults.save(learnt("hws"));
  EXPECT_EQ(json(), nlohmann::json::parse(R"({"kVertanaCustomStudyDescriptionSearchTerms": ["hws"]})"));
  EXPECT_EQ(files(), 1U) << "nothing else is left in the folder";
}

TEST_F(Defaults, OtherKeysStayAsTheyAreInTheFileAtThatMoment) {
  put(R"({"zoom": 18446744073709551615, "drawMode": 0, "gone": null})");
  PersonDefaults defaults(file_);
  defaults.load();
  put(R"({"zoom": 18446744073709551615, "drawMode": 0, "gone": null, "since": 1.0})");
  defaults.save(learnt("bws"));
  const auto now = json();
  EXPECT_EQ(now["zoom"].get<std::uint64_t>(), UINT64_MAX);
  EXPECT_EQ(now["drawMode"], 0) << "a batch does not change how the person draws";
  EXPECT_TRUE(now["gone"].is_null());
  EXPECT_TRUE(now["since"].is_number_float());
  EXPECT_EQ(now[learntTerms], nlohmann::json::array({"bws"}));
  EXPECT_EQ(now.size(), 5U);
}

TEST_F(Defaults, LearntTermsAreReplacedOrRemovedAndNothingElse) {
  put(R"({"kVertanaCustomStudyDescriptionSearchTerms": ["hws", "lws"], "drawMode": 0})");
  PersonDefaults defaults(file_);
  defaults.load();
  EXPECT_EQ(defaults.learntTerms(), Value(Value::Array{Value("hws"), Value("lws")}));
  EXPECT_TRUE(defaults.saveLearntTerms(Value(Value::Array{Value("lws")})));
  EXPECT_EQ(json(), nlohmann::json::parse(R"({"kVertanaCustomStudyDescriptionSearchTerms": ["lws"], "drawMode": 0})"));
  EXPECT_TRUE(defaults.saveLearntTerms(std::nullopt));
  EXPECT_EQ(json(), nlohmann::json::parse(R"({"drawMode": 0})"));
  EXPECT_TRUE(defaults.learntTerms().isNil());
}

TEST_F(Defaults, RemovingTermsThatAreNotThereMakesNoFile) {
  PersonDefaults defaults(file_);
  defaults.load();
  EXPECT_TRUE(defaults.readable());
  EXPECT_TRUE(defaults.saveLearntTerms(std::nullopt));
  EXPECT_FALSE(fs::exists(file_));
}

TEST_F(Defaults, TermsThatAreThereAlreadyAreNotWrittenAgain) {
  const std::string same = R"({ "kVertanaCustomStudyDescriptionSearchTerms" : [ "lws" ] })";
  put(same);
  PersonDefaults defaults(file_);
  defaults.load();
  defaults.save(learnt("lws"));
  EXPECT_EQ(text(), same);
}

TEST_F(Defaults, AFileThatIsNoObjectIsReportedAndNeverOverwritten) {
  for (const char* broken : {"{\"drawMode\": 1", "", "[1, 2]", "drawMode=1"}) {
    put(broken);
    PersonDefaults defaults(file_);
    testing::internal::CaptureStderr();
    EXPECT_TRUE(defaults.load().empty());
    EXPECT_FALSE(defaults.readable());
    EXPECT_NE(testing::internal::GetCapturedStderr().find(file_.string()), std::string::npos);
    defaults.save(learnt("hws"));
    EXPECT_EQ(text(), broken);
  }
}

TEST_F(Defaults, AFileThatBrokeSinceItWasReadIsNotOverwritten) {
  put("{}");
  PersonDefaults defaults(file_);
  defaults.load();
  put("{\"half");
  testing::internal::CaptureStderr();
  defaults.save(learnt("hws"));
  EXPECT_NE(testing::internal::GetCapturedStderr().find(file_.string()), std::string::npos);
  EXPECT_EQ(text(), "{\"half");
}

TEST_F(Defaults, ALinkToTheFileStaysALink) {
  put("{}");
  const auto link = folder_ / "link.json";
  fs::create_symlink(file_, link);
  PersonDefaults defaults(link);
  defaults.load();
  defaults.save(learnt("hws"));
  EXPECT_TRUE(fs::is_symlink(link));
  EXPECT_EQ(json()[learntTerms].size(), 1U);
}

TEST_F(Defaults, WhatCannotBeWrittenIsReported) {
  testsupport::putText(folder_ / "vertana", "a file where the folder should be");
  PersonDefaults defaults(file_);
  testing::internal::CaptureStderr();
  defaults.load();
  defaults.save(learnt("hws"));
  EXPECT_NE(testing::internal::GetCapturedStderr().find(file_.string()), std::string::npos);
}

}  // namespace
}  // namespace cli::test
