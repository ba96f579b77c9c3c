#include "workstation/database/ReportShelves.h"

#include <gtest/gtest.h>

namespace workstation {
namespace {

/// Holds one study, and answers with its own name.
class NamedShelf final : public ReportShelf {
 public:
  NamedShelf(std::string name, std::string study) : name_(std::move(name)), study_(std::move(study)) {}

  bool holdsStudy(const std::string& studyUid) override { return studyUid == study_; }
  std::vector<ReportSeries> reportSeries(const std::string&) override { return {{name_, 1, "", {}}}; }
  std::vector<ShelvedReport> labellings(const std::string&) override {
    ShelvedReport report;
    report.sopInstanceUid = name_;
    return {report};
  }
  std::filesystem::path freshPath(const std::string&, std::string_view extension) override {
    return name_ + "/fresh." + std::string(extension);
  }
  Outcome store(const std::string&, const std::filesystem::path& file, const pelmar::Bytes& bytes) override {
    stored.emplace_back(file, bytes.size());
    return Outcome::done();
  }
  std::filesystem::path anyImage(const std::string&) override { return name_ + "/image"; }

  std::vector<std::pair<std::filesystem::path, std::size_t>> stored;

 private:
  std::string name_;
  std::string study_;
};

class Shelves : public testing::Test {
 protected:
  Shelves() {
    shelves.add(a);
    shelves.add(b);
    shelves.add(again);
  }
  NamedShelf a{"a", "1"};
  NamedShelf b{"b", "2"};
  NamedShelf again{"again", "2"};
  ReportShelves shelves;
};

TEST_F(Shelves, AskTheFirstThatHoldsTheStudy) {
  for (const auto& [study, name] : {std::pair{"1", "a"}, {"2", "b"}}) {
    const std::string folder = name;
    EXPECT_TRUE(shelves.holdsStudy(study));
    EXPECT_EQ(shelves.reportSeries(study).at(0).seriesInstanceUid, folder);
    EXPECT_EQ(shelves.labellings(study).at(0).sopInstanceUid, folder);
    EXPECT_EQ(shelves.freshPath(study, "dcm"), folder + "/fresh.dcm");
    EXPECT_EQ(shelves.anyImage(study), folder + "/image");
  }
}

TEST_F(Shelves, StoreWhereTheStudyLies) {
  EXPECT_TRUE(shelves.store("2", "f", pelmar::Bytes(3)));
  EXPECT_TRUE(a.stored.empty());
  ASSERT_EQ(b.stored.size(), 1u);
  EXPECT_EQ(b.stored[0].first, "f");
  EXPECT_EQ(b.stored[0].second, 3u);
  EXPECT_TRUE(again.stored.empty());
}

TEST_F(Shelves, HaveNothingOfAStudyThatNoneHolds) {
  EXPECT_FALSE(shelves.holdsStudy("3"));
  EXPECT_TRUE(shelves.reportSeries("3").empty());
  EXPECT_TRUE(shelves.labellings("3").empty());
  EXPECT_TRUE(shelves.freshPath("3", "dcm").empty());
  EXPECT_TRUE(shelves.anyImage("3").empty());
  const Outcome outcome = shelves.store("3", "f", {});
  ASSERT_FALSE(outcome);
  EXPECT_EQ(*outcome.problem, "The report cannot be stored: no folder that is open holds the study 3.");
  EXPECT_TRUE(a.stored.empty() && b.stored.empty());
}

}  // namespace
}  // namespace workstation
