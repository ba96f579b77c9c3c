#include "workstation/model/Services.h"

#include <gtest/gtest.h>

#include <cmath>
#include <thread>

#include "Recorder.h"
#include "workstation/model/Notifications.h"
#include "workstation/model/Points.h"
#include "workstation/model/Text.h"
#include "workstation/model/Workstation.h"

namespace workstation {
namespace {

using pelmar::Notification;

TEST(Notifications, ObserversAreCalledInTheOrderAdded) {
  Notifications center;
  std::string heard;
  const int first = 0;
  const int second = 0;
  center.addObserver(&first, "n", nullptr, [&](const Notification&) { heard += "1"; });
  center.addObserver(&second, "n", nullptr, [&](const Notification&) { heard += "2"; });
  center.addObserver(&first, "other", nullptr, [&](const Notification&) { heard += "x"; });
  center.postNotification({"n", nullptr, std::nullopt});
  EXPECT_EQ(heard, "12");
}

TEST(Notifications, OneThatIsRemovedDuringThePostingIsNotCalledAnyMore) {
  Notifications center;
  std::string heard;
  const int first = 0;
  const int second = 0;
  center.addObserver(&first, "n", nullptr, [&](const Notification&) {
    heard += "1";
    center.removeObserver(&second);
    center.removeObserver(&first);
  });
  center.addObserver(&second, "n", nullptr, [&](const Notification&) { heard += "2"; });
  center.postNotification({"n", nullptr, std::nullopt});
  center.postNotification({"n", nullptr, std::nullopt});
  EXPECT_EQ(heard, "1");
}

TEST(Notifications, OneThatIsAddedDuringThePostingHearsTheNext) {
  Notifications center;
  std::string heard;
  const int first = 0;
  const int second = 0;
  center.addObserver(&first, "n", nullptr, [&](const Notification&) {
    heard += "1";
    center.addObserver(&second, "n", nullptr, [&](const Notification&) { heard += "2"; });
  });
  center.postNotification({"n", nullptr, std::nullopt});
  EXPECT_EQ(heard, "1");
  center.postNotification({"n", nullptr, std::nullopt});
  EXPECT_EQ(heard, "112");
}

TEST(Notifications, AnObserverOfOneObjectHearsOnlyThatObject) {
  Notifications center;
  const auto wanted = pelmar::makeRef<PatientPoint>(0.0, 0.0, 0.0);
  const auto other = pelmar::makeRef<PatientPoint>(0.0, 0.0, 0.0);
  int heard = 0;
  center.addObserver(&heard, "n", wanted, [&](const Notification&) { ++heard; });
  center.postNotification({"n", other, std::nullopt});
  center.postNotification({"n", wanted, std::nullopt});
  EXPECT_EQ(heard, 1);
}

TEST(PatientPoints, AreStoredInSinglePrecisionAndWidened) {
  PatientPointClass points;
  const auto point = points.pointWithX(0.1, 2, 3);
  EXPECT_EQ(point->x(), static_cast<double>(0.1f));
  point->add(points.pointWithX(1, 1, 1));
  EXPECT_EQ(point->x(), static_cast<double>(0.1f + 1.0f));
  point->subtract(points.pointWithX(0, 3, 0));
  EXPECT_EQ(point->y(), 0);
  point->multiply(0.1);
  EXPECT_EQ(point->z(), static_cast<double>(static_cast<float>(4.0 * 0.1)));
  point->setPoint3D(nullptr);
  EXPECT_EQ(point->z(), 0);
}

TEST(VectorFunctions, DistanceToAPlaneIsUnsignedForNormalsOfAnyLength) {
  ViewClass functions;
  pelmar::Vector3f foot;
  EXPECT_FLOAT_EQ(functions.pbase_Plane({3, 4, -7}, {0, 0, 2}, {0, 0, 5}, foot), 9);
  EXPECT_FLOAT_EQ(foot.x, 3);
  EXPECT_FLOAT_EQ(foot.y, 4);
  EXPECT_FLOAT_EQ(foot.z, 2);
}

TEST(VectorFunctions, AnglesRunFromZeroToPi) {
  ViewClass functions;
  const double pi = std::acos(-1.0);
  EXPECT_FLOAT_EQ(functions.angleBetweenVector({2, 0, 0}, {0, 5, 0}), static_cast<float>(pi / 2));
  EXPECT_FLOAT_EQ(functions.angleBetweenVector({2, 0, 0}, {-3, 0, 0}), static_cast<float>(pi));
  EXPECT_EQ(functions.angleBetweenVector({2, 0, 0}, {3, 0, 0}), 0);
  EXPECT_EQ(functions.angleBetweenVector({0, 0, 0}, {3, 0, 0}), 0);
}

TEST(VectorFunctions, NormalizingKeepsAZeroVector) {
  Workstation workstation;
  const pelmar::N3Vector unit = workstation.api().N3VectorNormalize({0, 3, 4});
  EXPECT_DOUBLE_EQ(unit.y, 0.6);
  EXPECT_DOUBLE_EQ(unit.z, 0.8);
  EXPECT_EQ(workstation.api().N3VectorNormalize({}).x, 0);
}

TEST(Text, CaseIsChangedBeyondAscii) {
  Text text;
  EXPECT_EQ(text.lowercaseString("WIRBELSÄULE Ñ"), "wirbelsäule ñ");
  EXPECT_EQ(text.uppercaseString("colonne à l'éch"), "COLONNE À L'ÉCH");
  EXPECT_EQ(text.uppercaseString("straße"), "STRASSE");
}

TEST(Text, SearchIgnoresCaseDiacriticsAndWidth) {
  Text text;
  EXPECT_TRUE(text.containsIgnoringCaseDiacriticsAndWidth("IRM Colonne CERVICALE", "cervical"));
  EXPECT_TRUE(text.containsIgnoringCaseDiacriticsAndWidth("Säule", "SAULE"));
  EXPECT_TRUE(text.containsIgnoringCaseDiacriticsAndWidth("saule", "Säule"));
  EXPECT_TRUE(text.containsIgnoringCaseDiacriticsAndWidth("Sa\xCC\x88ule", "säule"));  // combining diaeresis
  EXPECT_TRUE(text.containsIgnoringCaseDiacriticsAndWidth("ＬＵＭＢＡＲ　spine", "lumbar spine"));
  EXPECT_TRUE(text.containsIgnoringCaseDiacriticsAndWidth("ｹｲﾂｲ", "ケイツイ"));
  EXPECT_FALSE(text.containsIgnoringCaseDiacriticsAndWidth("lumbar", "lumbal"));
}

TEST(Text, AnEmptyNeedleIsNeverFound) {
  Text text;
  EXPECT_FALSE(text.containsIgnoringCaseDiacriticsAndWidth("abc", ""));
  EXPECT_FALSE(text.containsIgnoringCaseDiacriticsAndWidth("", ""));
  EXPECT_FALSE(text.containsIgnoringCaseDiacriticsAndWidth("abc", "\xCC\x88"));  // nothing but a diacritic
}

TEST(Text, WhatIsNotUtf8IsComparedByteByByte) {
  Text text;
  EXPECT_TRUE(text.containsIgnoringCaseDiacriticsAndWidth("L\xE4NDE", "nde"));
  EXPECT_EQ(text.lowercaseString("L\xE4NDE"), "l\xE4nde");
}

class Store : public DefaultsStore {
 public:
  pelmar::Value::Dictionary load() override { return stored; }
  void save(const pelmar::Value::Dictionary& defaults) override { stored = defaults; }
  pelmar::Value::Dictionary stored{{"kept", 3}, {"overridden", 1}};
};

TEST(Defaults, AreLoadedFromTheStoreAndEachChangeIsStored) {
  Store store;
  Options options;
  options.defaultsStore = &store;
  options.defaults = {{"overridden", 2}};
  Workstation workstation(options);
  auto& defaults = workstation.api().standardUserDefaults();
  EXPECT_EQ(defaults.objectForKey("kept").intValue(), 3);
  EXPECT_EQ(defaults.objectForKey("overridden").intValue(), 2);
  EXPECT_TRUE(defaults.objectForKey("absent").isNil());
  defaults.setObject("text", "new");
  ASSERT_NE(store.stored["new"].string(), nullptr);
  defaults.setObject({}, "kept");
  EXPECT_FALSE(store.stored.contains("kept"));
}

TEST(Alerts, AreRecordedAndShown) {
  int shown = 0;
  Options options;
  options.listeners.showAlert = [&](const Alert&) { ++shown; };
  Workstation workstation(options);
  workstation.api().alertPanels().runModalAlert("100% wrong", "OK", "", "", "why");
  workstation.api().alertPanels().runCriticalAlertPanel("Title", "message", "OK", "", "More");
  const auto alerts = workstation.takeAlerts();
  ASSERT_EQ(alerts.size(), 2u);
  EXPECT_EQ(alerts[0].kind, Alert::Kind::modal);
  EXPECT_EQ(alerts[0].message, "100% wrong");
  EXPECT_EQ(alerts[0].informativeText, "why");
  EXPECT_EQ(alerts[0].buttons, std::vector<std::string>{"OK"});
  EXPECT_EQ(alerts[1].title, "Title");
  EXPECT_EQ(alerts[1].buttons, (std::vector<std::string>{"OK", "More"}));
  EXPECT_TRUE(workstation.takeAlerts().empty());
  EXPECT_EQ(shown, 2);
}

TEST(Application, SaysItsVersionAndRecordsAddresses) {
  Options options;
  options.hostVersion = "8.5";
  Workstation workstation(options);
  auto& application = workstation.api().application();
  EXPECT_EQ(application.shortVersionString(), "8.5");
  application.openURL("https://example.org/a");
  EXPECT_EQ(workstation.takeOpenedAddresses(), std::vector<std::string>{"https://example.org/a"});
  EXPECT_TRUE(workstation.takeOpenedAddresses().empty());
  EXPECT_FALSE(application.fileExistsAtPath("/no/such/file"));
  EXPECT_TRUE(application.isMainThread());
  bool elsewhere = true;
  std::thread([&] { elsewhere = application.isMainThread(); }).join();
  EXPECT_FALSE(elsewhere);
}

TEST(Capabilities, LackingOnesAreLackingInClassesAndObjects) {
  EXPECT_EQ(capabilityNamed("ROIToolTag"), pelmar::Capability::ViewerControllerROIToolTag);
  EXPECT_FALSE(capabilityNamed("roitooltag").has_value());
  Workstation complete;
  EXPECT_TRUE(complete.api().supports(pelmar::Capability::ROIStringTags));
  Options options;
  options.lacking = {pelmar::Capability::ROIStringTags};
  Workstation incomplete(options);
  EXPECT_FALSE(incomplete.api().supports(pelmar::Capability::ROIStringTags));
  EXPECT_TRUE(incomplete.api().supports(pelmar::Capability::Point3DKeyedArchiving));
}

TEST(Database, NoneIsThereUntilOneIsGiven) {
  Workstation workstation;
  EXPECT_FALSE(workstation.api().browserControllerClass().currentBrowser());
  EXPECT_FALSE(workstation.api().srAnnotationClass().initWithContentsOfFile("/a"));
  EXPECT_FALSE(workstation.api().keyedArchiving().archivedDataWithRootObject(1).has_value());
  EXPECT_TRUE(workstation.api().keyedArchiving().unarchiveObjectWithData({1, 2}).isNil());
}

}  // namespace
}  // namespace workstation
