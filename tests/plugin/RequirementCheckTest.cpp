// What the host must offer, the order in which it is asked for, and what the person is told.

#include "tests/plugin/LabellingFixture.h"

namespace testhost {
namespace {

using pelmar::Capability;
using vertana::RequirementsError;

constexpr const char* apiDescription = "Required API unavailable.";
constexpr const char* apiSuggestion = "Update Pelmar and this plugin to the latest versions.";
constexpr const char* versionDescription = "This version of Pelmar is not compatible.";
constexpr const char* versionReason = "Pelmar 9.0 or higher is required.";
constexpr const char* versionSuggestion = "Update to Pelmar 9.0 or higher.";

struct Row {
  Capability capability;
  long code;
  const char* reason;
};

// In the order of the checks.
const std::vector<Row> rows{
    {Capability::Point3DKeyedArchiving, 1, "Point3D does not conforms to NSCoding protocol."},
    {Capability::DCMPixBodyPartExamined, 2, "DCMPix instances do not respond to selector -[DCMPix bodyPartExamined]."},
    {Capability::ROIDontDisplayInKeyImagesWindow, 3,
     "ROI instances do not respond to selector -[ROI dontDisplayInKeyImagesWindow]."},
    {Capability::ROIStringTags, 5, "ROI instances do not respond to selector -[ROI stringTags]."},
    {Capability::ROIResamplePoints, 6,
     "ROI class does not respond to selector +[ROI resamplePoints:number:closeROI:]."}};

struct RequirementCheck : ::testing::Test {
  TestHost host;
  vertana::VertanaFilter filter{host};

  void expectError(long code, const std::string& description, const std::string& reason,
                   const std::string& suggestion) const {
    const auto error = filter.requirementsError();
    ASSERT_TRUE(error);
    EXPECT_EQ(error->domain, "VertanaFilterError");
    EXPECT_EQ(error->code, code);
    EXPECT_EQ(error->localizedDescription, description);
    EXPECT_EQ(error->localizedFailureReason, reason);
    EXPECT_EQ(error->localizedRecoverySuggestion, suggestion);
  }
};

TEST_F(RequirementCheck, aHostThatOffersEverythingPasses) {
  EXPECT_FALSE(filter.requirementsError());
  EXPECT_TRUE(host.calls.lines().empty()) << "asking changes nothing";
}

TEST_F(RequirementCheck, aHostWithoutTheToolTagPasses) {
  host.capabilities.erase(Capability::ViewerControllerROIToolTag);
  EXPECT_FALSE(filter.requirementsError()) << "this one is asked of each viewer, and not required";
}

class MissingCapability : public RequirementCheck, public ::testing::WithParamInterface<std::size_t> {};

TEST_P(MissingCapability, isReportedWithItsOwnCodeAndReason) {
  const Row& row = rows[GetParam()];
  host.capabilities.erase(row.capability);
  expectError(row.code, apiDescription, row.reason, apiSuggestion);
}

TEST_P(MissingCapability, comesBeforeEveryLaterOneAndBeforeTheVersion) {
  for (std::size_t later = GetParam(); later < rows.size(); ++later) host.capabilities.erase(rows[later].capability);
  host.version = "8.5";
  expectError(rows[GetParam()].code, apiDescription, rows[GetParam()].reason, apiSuggestion);
}

INSTANTIATE_TEST_SUITE_P(EachRow, MissingCapability, ::testing::Range<std::size_t>(0, 5));

TEST_F(RequirementCheck, withoutStringTagsAndBodyPartOnlyCodeTwoIsReported) {
  host.capabilities.erase(Capability::ROIStringTags);
  host.capabilities.erase(Capability::DCMPixBodyPartExamined);
  ASSERT_TRUE(filter.requirementsError());
  EXPECT_EQ(filter.requirementsError()->code, 2);
}

// --- the version ---

struct Version {
  std::optional<std::string> text;
  bool passes;
  friend std::ostream& operator<<(std::ostream& out, const Version& row) { return out << row.text.value_or("none"); }
};

class VersionRule : public RequirementCheck, public ::testing::WithParamInterface<Version> {};

TEST_P(VersionRule, joinsTheFirstTwoPartsAndWantsMoreThan89) {
  host.version = GetParam().text;
  if (GetParam().passes) {
    EXPECT_FALSE(filter.requirementsError());
  } else {
    expectError(4, versionDescription, versionReason, versionSuggestion);
  }
}

// A text that begins with no digit reads as 0; one that begins with digits reads as these, of which the low 32 bits
// count: 2147483648 is then the least negative number but all, 4294967297 is 1 and 4294967395 is 99. Beyond 64 bits a
// number stops at the limit: -1 in the low 32 bits of the largest, 0 in those of the smallest. Of two signs the second
// is no digit.
INSTANTIATE_TEST_SUITE_P(
    Table, VersionRule,
    ::testing::Values(Version{"9.0", true}, Version{"9.0.1", true}, Version{"8.9", false}, Version{"8.5", false},
                      Version{"8.10", true}, Version{"10.2", true}, Version{"10.0", true}, Version{"9", true},
                      Version{"8", true}, Version{"", true}, Version{std::nullopt, true}, Version{"8.9.9", false},
                      Version{"0.90", true}, Version{".90", true}, Version{".", false}, Version{"9.", false},
                      Version{"90.", true}, Version{"beta.9", false}, Version{"9.beta", false},
                      Version{"90.beta", true}, Version{"nine.zero", false}, Version{"nine", true},
                      Version{"-9.5", false}, Version{" +9.5", true}, Version{"21474836.47", true},
                      Version{"21474836.48", false}, Version{"42949672.97", false}, Version{"42949673.95", true},
                      Version{"99999999999999999999.9", false}, Version{"-99999999999999999999.9", false},
                      Version{"+-9.5", false}, Version{"-+9.5", false}, Version{" . ", false}, Version{"~9.5", false}));

// --- localisation ---

TEST_F(RequirementCheck, everyTextOfAMissingCapabilityIsLookedUpInTheHostsTable) {
  host.translations = {{apiDescription, "D"}, {apiSuggestion, "S"}};
  for (const Row& row : rows) {
    host.translations[row.reason] = "R" + std::to_string(row.code);
    host.capabilities.erase(row.capability);
    expectError(row.code, "D", "R" + std::to_string(row.code), "S");
    host.capabilities.insert(row.capability);
  }
}

TEST_F(RequirementCheck, everyTextOfTheVersionIsLookedUpInTheHostsTable) {
  host.translations = {{versionDescription, "D"}, {versionReason, "R"}, {versionSuggestion, "S"}};
  host.version = "8.9";
  expectError(4, "D", "R", "S");
}

// --- the alert ---

TEST_F(RequirementCheck, theAlertSaysDomainAndCodeThenReasonThenSuggestion) {
  host.version = "8.5";
  filter.alertRequirementsWithError(filter.requirementsError());
  ASSERT_EQ(host.alerts.shown.size(), 1U);
  const Alert& alert = host.alerts.shown[0];
  EXPECT_TRUE(alert.critical);
  EXPECT_EQ(alert.title, versionDescription);
  EXPECT_EQ(alert.message,
            "VertanaFilterError (4)\nPelmar 9.0 or higher is required.\nUpdate to Pelmar 9.0 or higher.");
  EXPECT_EQ(alert.defaultButton, "OK");
  EXPECT_EQ(alert.alternateButton, "");
  EXPECT_EQ(alert.otherButton, "");
}

TEST_F(RequirementCheck, missingTextsAreLeftOutOfTheAlert) {
  filter.alertRequirementsWithError(RequirementsError{"Domain", -7, std::nullopt, std::nullopt, std::nullopt});
  filter.alertRequirementsWithError(RequirementsError{"Domain", 3, "Title", std::nullopt, "Suggestion"});
  filter.alertRequirementsWithError(RequirementsError{"Domain", 3, "Title", "Reason", std::nullopt});
  ASSERT_EQ(host.alerts.shown.size(), 3U);
  EXPECT_EQ(host.alerts.shown[0].title, "");
  EXPECT_EQ(host.alerts.shown[0].message, "Domain (-7)");
  EXPECT_EQ(host.alerts.shown[1].message, "Domain (3)\nSuggestion");
  EXPECT_EQ(host.alerts.shown[2].message, "Domain (3)\nReason");
}

TEST_F(RequirementCheck, aFormatInATextIsShownAsItIs) {
  filter.alertRequirementsWithError(RequirementsError{"%@", 1, "%s", "100 %d", "%n"});
  ASSERT_EQ(host.alerts.shown.size(), 1U);
  EXPECT_EQ(host.alerts.shown[0].title, "%s");
  EXPECT_EQ(host.alerts.shown[0].message, "%@ (1)\n100 %d\n%n");
}

TEST_F(RequirementCheck, theButtonIsTranslated) {
  host.translations["OK"] = "D'accord";
  filter.alertRequirementsWithError(RequirementsError{"Domain", 1, "Title", "Reason", "Suggestion"});
  EXPECT_EQ(host.alerts.shown[0].defaultButton, "D'accord");
}

TEST_F(RequirementCheck, theSiteOpensEveryTimeAndOnlyOnceThePanelIsGone) {
  host.alerts.whileShown = [&] { EXPECT_EQ(host.app.opened.size() + 1, host.alerts.shown.size()); };
  for (std::size_t time = 1; time <= 3; ++time) {
    filter.alertRequirementsWithError(RequirementsError{"Domain", 1, "Title", "Reason", "Suggestion"});
    EXPECT_EQ(host.app.opened.size(), time);
  }
  EXPECT_EQ(host.app.opened[0], "https://pelmar.example/");
  EXPECT_EQ(host.app.opened[1], host.app.opened[0]);
}

TEST_F(RequirementCheck, withoutAnErrorNothingIsShownOrOpened) {
  filter.alertRequirementsWithError(std::nullopt);
  EXPECT_TRUE(host.calls.lines().empty());
}

TEST_F(RequirementCheck, everyMenuCommandOnAnUnfitHostAlertsAndDoesNothingElse) {
  host.version = "8.9";
  const auto viewer = host.addViewer(host.addStudy("1.2.3", "MRI SPINE"), sagittalSeries(3));
  filter.initPlugin();
  EXPECT_TRUE(host.center.observedNames().empty());
  filter.setViewerController(viewer);
  host.calls.clear();
  EXPECT_EQ(filter.filterImage("Labels"), 0);
  EXPECT_EQ(filter.filterImage("Other"), 0);
  EXPECT_EQ(host.alerts.shown.size(), 2U);
  EXPECT_EQ(host.app.opened.size(), 2U);
  EXPECT_EQ(host.calls.lines().size(), 4U) << "two panels, two addresses";
  EXPECT_FALSE(filter.study());
}

}  // namespace
}  // namespace testhost
