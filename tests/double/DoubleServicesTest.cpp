#include <gtest/gtest.h>

#include "tests/double/TestHost.h"

namespace testhost {
namespace {

using pelmar::Bytes;
using pelmar::Ref;
using pelmar::Value;

TEST(DoublePoint, storesSinglePrecision) {
  const auto point = makePoint(0.1, 1e-60, 3);
  EXPECT_EQ(point->x(), static_cast<double>(0.1F));
  EXPECT_EQ(point->y(), 0);
  point->add(makePoint(1, 1, 1));
  EXPECT_EQ(point->z(), 4);
  point->multiply(-0.5);
  EXPECT_EQ(point->z(), -2);
  point->setPoint3D({});
  EXPECT_EQ(point->z(), 0);
}

TEST(DoublePoint, normalisingKeepsZeroAtZero) {
  const TestHost host;
  const auto zero = host.N3VectorNormalize({0, 0, 0});
  EXPECT_EQ(zero.x, 0);
  EXPECT_EQ(zero.y, 0);
  EXPECT_EQ(zero.z, 0);
  EXPECT_DOUBLE_EQ(host.N3VectorNormalize({3, 0, 4}).z, 0.8);
}

TEST(DoubleNotifications, observersAreCalledInOrderAndARemovedOneNoMore) {
  TestHost host;
  std::vector<int> called;
  int first = 0;
  int second = 0;
  host.center.addObserver(&first, "A", {}, [&](const auto&) {
    called.push_back(1);
    host.center.removeObserver(&second);
  });
  host.center.addObserver(&second, "A", {}, [&](const auto&) { called.push_back(2); });
  host.center.addObserver(&first, "B", {}, [&](const auto&) { called.push_back(3); });
  EXPECT_EQ(host.center.observedNames(), (std::vector<std::string>{"A", "A", "B"}));
  host.post("A");
  EXPECT_EQ(called, std::vector<int>{1});
  EXPECT_EQ(host.center.observerCount("A"), 1U);
}

TEST(DoubleWindows, closingTellsTheDelegateWhileTheWindowIsStillVisible) {
  struct Delegate : pelmar::WindowDelegate {
    void windowWillClose() override { seen = window->visible ? "visible" : "hidden"; }
    Ref<TestWindow> window;
    std::string seen = "never";
  };
  struct Owner : pelmar::WindowOwner {
    bool performAction(std::string_view action) override { return action == "reset:"; }
    Value valueForKey(std::string_view) const override { return {}; }
    bool setValue(const Value&, std::string_view) override { return false; }
  };
  TestHost host;
  Owner owner;
  Delegate delegate;
  EXPECT_FALSE(host.windows.loadWindow("NoSuchDescription", owner));
  const auto window = host.windows.loadWindow("VertanaWindowController", owner);
  delegate.window = host.windows.newest();
  host.windows.setDelegate(window, &delegate);
  EXPECT_FALSE(window->isVisible());
  window->close();
  EXPECT_EQ(delegate.seen, "never") << "a window that is not open does not close";
  window->makeKeyAndOrderFront();
  EXPECT_TRUE(delegate.window->click("reset:"));
  EXPECT_FALSE(delegate.window->click("fly:"));
  window->close();
  EXPECT_EQ(delegate.seen, "visible");
  EXPECT_FALSE(window->isVisible());
  EXPECT_FALSE(delegate.window->click("reset:")) << "a closed window calls nobody";
}

TEST(DoubleText, searchIgnoresCaseAccentsAndWidth) {
  const TestTextServices text;
  EXPECT_TRUE(text.containsIgnoringCaseDiacriticsAndWidth("Zervik\xC3\xA4l", "zervikal"));
  EXPECT_TRUE(
      text.containsIgnoringCaseDiacriticsAndWidth("a\xCC\x81"
                                                  "b",
                                                  "AB"));
  EXPECT_TRUE(text.containsIgnoringCaseDiacriticsAndWidth("\xEF\xBC\xAC\xEF\xBC\x93", "l3")) << "full-width L3";
  EXPECT_FALSE(text.containsIgnoringCaseDiacriticsAndWidth("anything", ""));
  EXPECT_EQ(text.lowercaseString("\xC3\x84"
                                 "B"),
            "\xC3\xA4"
            "b");
  EXPECT_EQ(text.uppercaseString("cspine"), "CSPINE");
}

TEST(DoubleArchives, giveTheValueBackWithNewPoints) {
  TestKeyedArchiving archiving;
  const auto point = makePoint(1, 2, 3);
  const Value::Dictionary state{{"n", Value(2)}, {"points", Value(Value::Array{Value(point)})}};
  const auto bytes = archiving.archivedDataWithRootObject(Value(state));
  ASSERT_TRUE(bytes);
  EXPECT_EQ(bytes->size() % 2, 0U);
  const Value read = archiving.unarchiveObjectWithData(*bytes);
  ASSERT_TRUE(read.dictionary());
  const auto copy = pelmar::ref_cast<pelmar::Point3D>(read.dictionary()->at("points").array()->front().object());
  EXPECT_FALSE(copy == point);
  EXPECT_EQ(copy->z(), 3);
}

TEST(DoubleArchives, oneByteTooManyIsNoArchive) {
  TestKeyedArchiving archiving;
  archiving.oddLength = true;
  Bytes bytes = archiving.archivedDataWithRootObject(Value(Value::Dictionary{})).value_or(Bytes{});
  EXPECT_EQ(bytes.size() % 2, 1U);
  bytes.push_back(0);
  EXPECT_TRUE(archiving.unarchiveObjectWithData(bytes).isNil());
  archiving.fails = true;
  EXPECT_FALSE(archiving.archivedDataWithRootObject(Value(1)));
}

struct DoubleDatabase : ::testing::Test {
  TestHost host;
  Ref<TestStudy> study = host.addStudy("1.2.3");

  /// Writes and imports a report as the plug-in would; an empty UID starts a new series.
  std::string import(const Bytes& data, const std::string& seriesUID) {
    const auto path = host.database->uniquePathForNewDataFileWithExtension("dcm", study->identity->store);
    const auto image = study->series()->front()->images()->front();
    const auto report = host.srAnnotationClass().initWithData(data, path, image, 17, "State");
    if (!seriesUID.empty()) report->setSeriesInstanceUID(seriesUID);
    EXPECT_TRUE(report->writeToFileAtPath(*path));
    host.database->addFilesAtPaths({*path}, true, true, true, true);
    return *path;
  }
};

TEST_F(DoubleDatabase, theNewestReportOfNumberAndDescriptionCounts) {
  const auto older = import({1, 2}, "");
  const auto newer = import({3, 4}, "");
  EXPECT_NE(older, newer);
  EXPECT_EQ(study->SRImageWithSeriesID(17, "State")->completePathResolved(), newer);
  EXPECT_FALSE(study->SRImageWithSeriesID(18, "State"));
  EXPECT_FALSE(study->SRImageWithSeriesID(17, "state"));
  EXPECT_EQ(study->PelmarSRSeries()->size(), 2U) << "without a series UID each starts a series";
}

TEST_F(DoubleDatabase, reportsWithASeriesUIDJoinThatSeries) {
  study->addReportSeries("State", 17, "9.9");
  import({1}, "9.9");
  EXPECT_EQ(study->PelmarSRSeries()->size(), 1U);
  EXPECT_EQ(study->reports.back().seriesUID, "9.9");
}

TEST_F(DoubleDatabase, readingPadsDataOfOddLength) {
  const auto path = import({1, 2, 3}, "");
  EXPECT_EQ(host.reports.initWithContentsOfFile(path)->dataEncapsulated(), (Bytes{1, 2, 3, 0}));
  host.reports.padsOddLength = false;
  EXPECT_EQ(host.reports.initWithContentsOfFile(path)->dataEncapsulated(), (Bytes{1, 2, 3}));
  EXPECT_FALSE(host.reports.initWithContentsOfFile("/nowhere"));
  host.files["/text"] = {'h', 'i'};
  EXPECT_FALSE(host.reports.initWithContentsOfFile("/text"));
}

TEST_F(DoubleDatabase, theIndependentDatabaseIsToldApartInTheLog) {
  host.database->independentDatabase()->addFilesAtPaths({"/x"}, true, true, true, false);
  EXPECT_EQ(host.calls.count("independentDatabase.addFilesAtPaths(/x,true,true,true,false)"), 1U);
}

TEST(DoubleServices, recordPanelsAddressesAndDefaults) {
  TestHost host;
  host.alerts.runModalAlert("Message", "OK", "", "", "info");
  host.application().openURL("https://example.org");
  host.standardUserDefaults().setObject(Value(1), "key");
  ASSERT_EQ(host.alerts.shown.size(), 1U);
  EXPECT_EQ(host.alerts.shown[0].title, "Message");
  EXPECT_EQ(host.app.opened, std::vector<std::string>{"https://example.org"});
  EXPECT_EQ(host.defaults.objectForKey("key"), Value(1));
  EXPECT_TRUE(host.defaults.objectForKey("other").isNil());
  host.translations["OK"] = "Gut";
  EXPECT_EQ(host.app.localizedString("OK"), "Gut");
  EXPECT_EQ(host.app.localizedString("No"), "No");
  EXPECT_EQ(host.calls.indexOf("openURL"), 1U);
}

TEST(DoubleCapabilities, canBeTakenAway) {
  TestHost host;
  EXPECT_TRUE(host.supports(pelmar::Capability::ROIStringTags));
  host.capabilities.erase(pelmar::Capability::ROIStringTags);
  EXPECT_FALSE(host.supports(pelmar::Capability::ROIStringTags));
}

}  // namespace
}  // namespace testhost
